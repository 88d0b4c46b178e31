#ifndef ZM_LIVE_PAGE_FILES_HPP
#define ZM_LIVE_PAGE_FILES_HPP

#include "live/Scene.hpp"

#include <filesystem>
#include <map>
#include <string>
#include <string_view>

namespace live {

/// What a GET request is answered with.
struct Answer {
    unsigned status = 200;
    std::string type = "text/plain; charset=utf-8";
    std::string body;
};

/// The web page: the files of one folder, which are read once, and what is made from the scene. Only names
/// that were found in the folder are served, so a path in a request never reaches the file system.
class PageFiles {
public:
    /// A folder that does not exist gives a page without files.
    explicit PageFiles(const std::filesystem::path& folder);

    /// Whether the path's answer contains what the model is, and so needs the token.
    static bool isConfidential(std::string_view path);

    /// `scene` may be null: nothing is known yet.
    Answer answer(std::string_view path, const Scene* scene) const;

private:
    struct File {
        std::string type;
        std::string content;
    };
    std::map<std::string, File, std::less<>> m_files;  // by path, with the slash
};

}  // namespace live

#endif
