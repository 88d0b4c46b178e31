#include "live/PageFiles.hpp"

#include "live/ViewerMessages.hpp"

#include <fstream>
#include <iterator>
#include <system_error>

namespace live {

namespace {

constexpr const char* scenePath = "/scene.json";
constexpr const char* picturePath = "/picture.svg";

std::string typeOf(const std::filesystem::path& file)
{
    static const std::map<std::string, std::string> types = {
        {".html", "text/html; charset=utf-8"},
        {".js", "text/javascript; charset=utf-8"},
        {".css", "text/css; charset=utf-8"},
        {".svg", "image/svg+xml"},
    };
    const auto found = types.find(file.extension().string());
    return found == types.end() ? std::string() : found->second;
}

}  // namespace

PageFiles::PageFiles(const std::filesystem::path& folder)
{
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
        const std::string type = typeOf(entry.path());
        std::ifstream stream(entry.path(), std::ios::binary);
        if (!type.empty() && stream) {
            std::string content{std::istreambuf_iterator<char>(stream), {}};
            m_files['/' + entry.path().filename().string()] = {type, std::move(content)};
        }
    }
}

bool PageFiles::isConfidential(std::string_view path)
{
    return path == scenePath || path == picturePath;
}

Answer PageFiles::answer(std::string_view path, const Scene* scene) const
{
    if (path == scenePath) {
        return {200, "application/json", sceneJson(scene != nullptr ? *scene : Scene{})};
    }
    if (path == picturePath && scene != nullptr && !scene->picture.empty()) {
        return {200, "image/svg+xml", scene->picture};
    }
    const auto file = m_files.find(path == "/" ? "/index.html" : path);
    if (file == m_files.end()) {
        return {404, "text/plain; charset=utf-8", "there is no such page\n"};
    }
    return {200, file->second.type, file->second.content};
}

}  // namespace live
