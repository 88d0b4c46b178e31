#include "reference_host/drawing/DiagramDrawing.hpp"

#include "reference_host/model/DiagramErrors.hpp"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <system_error>

extern char** environ;  // NOLINT(readability-redundant-declaration): POSIX leaves it to the program

namespace reference_host {

namespace {

[[noreturn]] void refuse(const std::filesystem::path& file, const std::string& reason)
{
    throw diagramError("DrawingFailed", {file.string(), reason});
}

/// A file without a name, which is gone when it is closed.
using NamelessFile = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

NamelessFile makeFile(const std::filesystem::path& drawing)
{
    NamelessFile made(std::tmpfile(), std::fclose);
    if (made == nullptr) {
        refuse(drawing, "No temporary file could be made (" + std::generic_category().message(errno) + ").");
    }
    return made;
}

NamelessFile write(const std::filesystem::path& drawing, const std::string& text)
{
    NamelessFile out = makeFile(drawing);
    if (std::fwrite(text.data(), 1, text.size(), out.get()) != text.size() || std::fflush(out.get()) != 0) {
        refuse(drawing,
               "The drawing cannot be written down (" + std::generic_category().message(errno) + ").");
    }
    std::rewind(out.get());
    return out;
}

/// What a program has written into a file, without the end of the last line.
std::string read(std::FILE* file)
{
    std::rewind(file);
    std::string text;
    for (int c = std::fgetc(file); c != EOF; c = std::fgetc(file)) {
        text += static_cast<char>(c);
    }
    text.erase(text.find_last_not_of(" \n") + 1);
    return text;
}

/// Runs the program to its end on an input, and with a file for its errors; its exit code.
int run(const std::filesystem::path& file, std::vector<std::string> words, std::FILE* input,
        std::FILE* errors)
{
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    int error = posix_spawn_file_actions_adddup2(&actions, fileno(input), STDIN_FILENO);
    if (error == 0) {
        error = posix_spawn_file_actions_adddup2(&actions, fileno(errors), STDERR_FILENO);
    }
    pid_t process = 0;
    if (error == 0) {
        error = posix_spawnp(&process, arguments[0], &actions, nullptr, arguments.data(), environ);
    }
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0) {
        refuse(file, "Graphviz's program \"dot\" could not be started (" +
                         std::generic_category().message(error) + ").");
    }
    int status = 0;
    while (waitpid(process, &status, 0) == -1) {
        if (errno != EINTR) {
            refuse(file, std::generic_category().message(errno));
        }
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace

void drawDiagram(const Model& model, const std::filesystem::path& file)
{
    const std::string extension = file.extension().string();
    if (extension.size() < 2) {
        refuse(file, "The file's extension says what format to draw in, such as \".svg\".");
    }
    const NamelessFile source = write(file, diagramAsDot(model));
    const NamelessFile errors = makeFile(file);
    // A name that begins with a dash would count as an option; a whole path never does.
    const int exitCode =
        run(file, {"dot", "-T" + extension.substr(1), "-o", std::filesystem::absolute(file).string()},
            source.get(), errors.get());
    if (exitCode != 0) {
        const std::string reason = read(errors.get());
        refuse(file, "Graphviz's program \"dot\" failed with code " + std::to_string(exitCode) +
                         (reason.empty() ? "." : ": " + reason));
    }
}

}  // namespace reference_host
