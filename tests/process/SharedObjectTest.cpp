#include "host/Exceptions.hpp"
#include "reference_host/calls/HostFunctions.hpp"
#include "reference_host/calls/Warnings.hpp"
#include "reference_host/classes/ClassSystem.hpp"
#include "reference_host/classes/ObjectAccess.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"
#include "tests/support/HostTest.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <utility>

#include <dlfcn.h>
#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

namespace rh = reference_host;

constexpr const char* signalsClass = "Zelmar.HMI.InstrumentedSignals";
constexpr const char* signalClass = "Zelmar.HMI.SignalSpecification";

/// The library's shared object, opened as a host opens it: every symbol resolved at once, its names its own.
class Library {
public:
    Library() : m_handle(dlopen(ZM_LIBRARY_FILE, RTLD_NOW | RTLD_LOCAL))
    {
        EXPECT_NE(m_handle, nullptr) << dlerror();
    }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
    ~Library() { EXPECT_EQ(dlclose(m_handle), 0) << dlerror(); }

    /// Calls an entry point, which takes and gives nothing.
    void call(const char* name) const
    {
        void* symbol = dlsym(m_handle, name);
        ASSERT_NE(symbol, nullptr) << dlerror();
        reinterpret_cast<void (*)()>(symbol)();
    }
    void initialize() const { call("NVInitialize_zm_hmi_foundation"); }

    static bool isLoaded()
    {
        void* handle = dlopen(ZM_LIBRARY_FILE, RTLD_NOW | RTLD_NOLOAD);
        if (handle != nullptr) {
            dlclose(handle);
        }
        return handle != nullptr;
    }

private:
    void* m_handle;
};

/// This process does not link the library.
class SharedObject : public rh::HostTest {
protected:
    void SetUp() override
    {
        ASSERT_FALSE(Library::isLoaded());
        rh::HostTest::SetUp();
    }

    /// The number of signals after one was added, saved and loaded again.
    static double addSaveAndLoad()
    {
        const rh::OwnedValue signals =
            rh::ObjectAccess::construct(signalsClass, {rh::makeText("plant").get()});
        const rh::OwnedValue signal = rh::ObjectAccess::construct(signalClass);
        rh::ObjectAccess::setProperty(signal.get(), "BlockPath_", rh::makeText("plant/Limiter").get());
        rh::ObjectAccess::callMethod(signals.get(), "add", {signal.get()});
        const rh::OwnedValue saved = rh::ObjectAccess::getProperty(signals.get(), "Persistence");
        EXPECT_EQ(rh::utf8Text(rh::field(saved.get(), 0, "BlockPath_")), "Limiter");
        rh::ObjectAccess::setProperty(signals.get(), "Persistence", saved.get());
        return rh::scalar(rh::ObjectAccess::getProperty(signals.get(), "Count").get());
    }

    static rh::ScopedHostFunction answerWithOwnPath()
    {
        return {"getAlignedBlockPath", [](rh::HostFunctionCall& call) {
                    call.setOutput(0, rh::ObjectAccess::getProperty(call.input(0), "BlockPath_"));
                }};
    }
};

TEST_F(SharedObject, IsInitializedByNameAndUsedThroughTheHost)
{
    const Library library;
    const rh::ScopedHostFunction aligned = answerWithOwnPath();
    library.initialize();
    EXPECT_EQ(addSaveAndLoad(), 2.0);
    library.call("NVTerminate_zm_hmi_foundation");
    EXPECT_EQ(addSaveAndLoad(), 2.0);
    rh::ClassSystem::reset();
}

TEST_F(SharedObject, ItsErrorsReachTheHostAsHostErrors)
{
    const Library library;
    library.initialize();
    {
        const rh::OwnedValue signals = rh::ObjectAccess::construct(signalsClass);
        try {
            rh::ObjectAccess::callMethod(signals.get(), "remove", {rh::makeDouble(1.0).get()});
            FAIL() << "nothing was thrown";
        } catch (const zmsvException& error) {
            EXPECT_EQ(error.id().key(), "InvalidElementIndex");
        }
    }
    rh::ClassSystem::reset();
}

TEST_F(SharedObject, IsReallyUnloaded)
{
    {
        const Library library;
        library.initialize();
        EXPECT_TRUE(Library::isLoaded());
        rh::ObjectAccess::construct(signalsClass);
        rh::ClassSystem::reset();
    }
    EXPECT_FALSE(Library::isLoaded());
}

TEST_F(SharedObject, CanBeLoadedAgainAndStartsAfresh)
{
    const rh::ScopedHostFunction aligned = answerWithOwnPath();
    for (int round = 0; round < 3; ++round) {
        const Library library;
        library.initialize();
        EXPECT_EQ(addSaveAndLoad(), 2.0);
        rh::ClassSystem::reset();
    }
    EXPECT_FALSE(Library::isLoaded());
}

std::size_t openRandomDevices()
{
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code gone;
        count += std::filesystem::read_symlink(entry, gone) == "/dev/urandom" ? 1U : 0U;
    }
    return count;
}

TEST_F(SharedObject, OpensTheRandomDeviceWhenItIsLoadedAndClosesItWhenItIsUnloaded)
{
    const std::size_t before = openRandomDevices();
    {
        const Library library;
        EXPECT_EQ(openRandomDevices(), before + 1);
    }
    EXPECT_EQ(openRandomDevices(), before);
}

// ---- without the random device ----------------------------------------------------------------------------

constexpr int notPermitted = 77;
constexpr int loadedAllTheSame = 78;

/// In a child process: hides /dev from itself and loads the library. Like the loader itself, it lets no
/// exception through.
[[noreturn]] void loadWithoutRandomDevice() noexcept
{
    const bool alone = unshare(CLONE_NEWNS) == 0 || unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0;
    if (!alone || mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        mount("none", "/dev", "tmpfs", 0, nullptr) != 0 || access("/dev/urandom", F_OK) == 0) {
        _exit(notPermitted);
    }
    // Its declaration promises not to throw, which compilers rely on; exceptions must not leave it.
    void* (*volatile load)(const char*, int) = dlopen;
    load(ZM_LIBRARY_FILE, RTLD_NOW | RTLD_LOCAL);
    _exit(loadedAllTheSame);
}

/// The child's exit status, as `waitpid` reports it, and its output.
std::pair<int, std::string> endOfChildWithoutRandomDevice()
{
    int ends[2];
    EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
    const pid_t child = fork();
    if (child == 0) {
        dup2(ends[1], STDERR_FILENO);
        loadWithoutRandomDevice();
    }
    close(ends[1]);
    std::string written;
    char bytes[1024];
    for (ssize_t got = 0; (got = read(ends[0], bytes, sizeof bytes)) > 0;) {
        written.append(bytes, static_cast<std::size_t>(got));
    }
    close(ends[0]);
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return {status, written};
}

TEST_F(SharedObject, LoadingWithoutTheRandomDeviceEndsTheProcess)
{
    const auto [status, written] = endOfChildWithoutRandomDevice();
    if (WIFEXITED(status) && WEXITSTATUS(status) == notPermitted) {
        GTEST_SKIP() << "this machine does not let a process hide /dev from itself";
    }
    ASSERT_TRUE(WIFSIGNALED(status)) << "ended with exit code " << WEXITSTATUS(status);
    EXPECT_EQ(WTERMSIG(status), SIGABRT);
    EXPECT_NE(written.find("entropy_error"), std::string::npos) << written;
    EXPECT_NE(written.find("open /dev/urandom"), std::string::npos) << written;
}

}  // namespace
