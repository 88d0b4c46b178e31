#include "live/DiagramPicture.hpp"

#include "host/Exceptions.hpp"
#include "host/Text.hpp"
#include "reference_host/drawing/DiagramDrawing.hpp"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

namespace live {

namespace {

constexpr std::size_t maxBlocks = 400;  // Graphviz takes about a second for them

/// A new folder, removed with its contents.
class TemporaryFolder {
public:
    TemporaryFolder()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "picture-XXXXXX").string();
        if (::mkdtemp(pattern.data()) != nullptr) {
            m_path = pattern;
        }
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder()
    {
        std::error_code ignored;
        if (!m_path.empty()) {
            std::filesystem::remove_all(m_path, ignored);
        }
    }
    const std::filesystem::path& path() const noexcept { return m_path; }

private:
    std::filesystem::path m_path;
};

}  // namespace

std::string diagramPicture(const reference_host::Model& model)
{
    if (model.blockCount() > maxBlocks) {
        return {};
    }
    try {
        const TemporaryFolder folder;
        const std::filesystem::path file = folder.path() / "diagram.svg";
        reference_host::drawDiagram(model, file);
        std::ifstream stream(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    } catch (const zmsvException&) {
        return {};  // the page says that there is no picture; values are served all the same
    }
}

std::string pictureNode(const reference_host::Model& model, const std::string& blockPath)
{
    const std::size_t slash = blockPath.find('/');
    const reference_host::Block* block =
        slash == std::string::npos ? nullptr : model.findByPath(toUtf16(blockPath.c_str() + slash + 1));
    if (block == nullptr) {
        return {};
    }
    return reference_host::drawingNode(*block);
}

}  // namespace live
