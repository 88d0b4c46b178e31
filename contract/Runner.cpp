#include "contract/Runner.hpp"

#include "contract/SetUp.hpp"

#include <poll.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <exception>

namespace contract {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int failedCode = 1;
constexpr int skippedCode = 77;
constexpr std::size_t mostOutput = 4000;

int runHere(const Check& check)
{
    try {
        if (zmHostContractSetUp != nullptr) {
            zmHostContractSetUp();
        }
        check.run();
        return 0;
    } catch (const Failure& failure) {
        std::printf("%s\n", failure.message.c_str());
    } catch (const Skip& reason) {
        std::printf("%s\n", reason.reason.c_str());
        return skippedCode;
    } catch (const std::exception& error) {
        std::printf("unexpected exception: %s\n", error.what());
    } catch (...) {
        std::printf("unexpected exception of an unknown type\n");
    }
    return failedCode;
}

/// Destructors of static objects do not run: what they do is not what is checked.
[[noreturn]] void runAsChild(const Check& check, int output)
{
    const rlimit noCoreFile{0, 0};
    setrlimit(RLIMIT_CORE, &noCoreFile);
    dup2(output, STDOUT_FILENO);
    dup2(output, STDERR_FILENO);
    const int code = runHere(check);
    std::fflush(nullptr);
    _exit(code);
}

/// What the child prints until it ends; false when the time is over.
bool readUntil(int input, Clock::time_point end, std::string& text)
{
    for (;;) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
        pollfd descriptor{input, POLLIN, 0};
        const int ready = left > 0 ? poll(&descriptor, 1, static_cast<int>(left)) : 0;
        if (ready < 0 && errno == EINTR) {
            continue;
        }
        if (ready <= 0) {
            return false;
        }
        std::array<char, 1024> buffer{};
        const ssize_t count = read(input, buffer.data(), buffer.size());
        if (count <= 0) {
            return true;
        }
        if (text.size() < mostOutput) {
            text.append(buffer.data(), static_cast<std::size_t>(count));
        }
    }
}

Outcome judge(int status, std::string output)
{
    while (!output.empty() && output.back() == '\n') {
        output.pop_back();
    }
    if (WIFSIGNALED(status)) {
        const std::string signal = strsignal(WTERMSIG(status));
        return {Verdict::Crashed, signal + (output.empty() ? "" : "\n" + output)};
    }
    switch (WEXITSTATUS(status)) {
        case 0:
            return {};
        case failedCode:
            return {Verdict::Failed, output};
        case skippedCode:
            return {Verdict::Skipped, output};
        default:
            return {Verdict::Crashed,
                    "left with code " + std::to_string(WEXITSTATUS(status)) + "\n" + output};
    }
}

}  // namespace

const char* nameOf(Verdict verdict)
{
    static constexpr std::array names{"passed", "failed", "crashed", "skipped"};
    return names[static_cast<std::size_t>(verdict)];
}

Outcome runIsolated(const Check& check, std::chrono::milliseconds limit)
{
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0) {
        return {Verdict::Skipped, "no pipe for the child's output"};
    }
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        close(ends[0]);
        runAsChild(check, ends[1]);
    }
    close(ends[1]);
    std::string output;
    const bool inTime = child > 0 && readUntil(ends[0], Clock::now() + limit, output);
    close(ends[0]);
    if (child < 0) {
        return {Verdict::Skipped, "no child process"};
    }
    if (!inTime) {
        kill(child, SIGKILL);
    }
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return inTime ? judge(status, output)
                  : Outcome{Verdict::Failed,
                            "not done after " + std::to_string(limit.count()) + " ms\n" + output};
}

}  // namespace contract
