#include "reference_host/diagram/DiagramDrawing.hpp"

#include "reference_host/diagram/DiagramErrors.hpp"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <fstream>
#include <system_error>

extern char** environ;  // NOLINT(readability-redundant-declaration): POSIX leaves it to the program

namespace reference_host {

namespace {

[[noreturn]] void refuse(const std::filesystem::path& file, const std::string& reason)
{
    throw diagramError("DrawingFailed", {file.string(), reason});
}

/// Runs the program to its end; its exit code.
int run(const std::filesystem::path& file, std::vector<std::string> words)
{
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    pid_t process = 0;
    const int error = posix_spawnp(&process, arguments[0], nullptr, nullptr, arguments.data(), environ);
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
    const std::filesystem::path source = file.string() + ".dot";
    {
        std::ofstream out(source, std::ios::binary);
        out << diagramAsDot(model);
        if (!out.flush()) {
            refuse(file, "The file cannot be written.");
        }
    }
    int exitCode = 0;
    try {
        exitCode = run(file, {"dot", "-T" + extension.substr(1), "-o", file.string(), source.string()});
    } catch (...) {
        std::filesystem::remove(source);
        throw;
    }
    std::filesystem::remove(source);
    if (exitCode != 0) {
        refuse(file, "Graphviz's program \"dot\" failed with code " + std::to_string(exitCode) + ".");
    }
}

}  // namespace reference_host
