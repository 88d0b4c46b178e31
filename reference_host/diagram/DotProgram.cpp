#include "reference_host/diagram/DiagramDrawing.hpp"

#include "reference_host/diagram/DiagramErrors.hpp"

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

NamelessFile write(const std::filesystem::path& file, const std::string& text)
{
    NamelessFile out(std::tmpfile(), std::fclose);
    if (out == nullptr || std::fwrite(text.data(), 1, text.size(), out.get()) != text.size() ||
        std::fflush(out.get()) != 0) {
        refuse(file, "The drawing cannot be written down (" + std::generic_category().message(errno) + ").");
    }
    std::rewind(out.get());
    return out;
}

/// Runs the program to its end on an input; its exit code.
int run(const std::filesystem::path& file, std::vector<std::string> words, std::FILE* input)
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
    // A name that begins with a dash would count as an option; a whole path never does.
    const int exitCode =
        run(file, {"dot", "-T" + extension.substr(1), "-o", std::filesystem::absolute(file).string()},
            source.get());
    if (exitCode != 0) {
        refuse(file, "Graphviz's program \"dot\" failed with code " + std::to_string(exitCode) + ".");
    }
}

}  // namespace reference_host
