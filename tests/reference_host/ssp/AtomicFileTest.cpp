#include "reference_host/ssp/AtomicFile.hpp"

#include "host/Exceptions.hpp"
#include "tests/support/HostTest.hpp"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sched.h>
#include <sys/file.h>
#include <sys/mount.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <set>
#include <sstream>
#include <string>
#include <thread>

namespace fs = std::filesystem;

using reference_host::writeFileAtomically;

namespace {

int folderSyncError = 0;

}  // namespace

/// The system's call, but for folders, whose syncing fails with the given error.
extern "C" __attribute__((visibility("default"))) int fsync(int file)
{
    struct stat status {};
    if (folderSyncError != 0 && ::fstat(file, &status) == 0 && S_ISDIR(status.st_mode)) {
        errno = folderSyncError;
        return -1;
    }
    return static_cast<int>(::syscall(SYS_fsync, file));
}

namespace {

/// A folder of its own for each test, which is gone at the end.
class AtomicFileTest : public reference_host::HostTest {
protected:
    AtomicFileTest()
    {
        std::string pattern = ::testing::TempDir() + "atomic_file_XXXXXX";
        m_folder = ::mkdtemp(pattern.data());
        fs::permissions(m_folder, fs::perms(0755));
    }

    ~AtomicFileTest() override { fs::remove_all(m_folder); }

    fs::path path(const std::string& name) const { return m_folder / name; }

    static std::string content(const fs::path& file)
    {
        std::ifstream in(file, std::ios::binary);
        std::ostringstream text;
        text << in.rdbuf();
        return in ? text.str() : "unreadable";
    }

    static void put(const fs::path& file, const std::string& text)
    {
        std::ofstream(file, std::ios::binary) << text;
    }

    static mode_t mode(const fs::path& file)
    {
        struct stat status {};
        EXPECT_EQ(::stat(file.c_str(), &status), 0) << file;
        return status.st_mode & 07777U;
    }

    std::set<std::string> names() const
    {
        std::set<std::string> all;
        for (const auto& entry : fs::directory_iterator(m_folder)) {
            all.insert(entry.path().filename().string());
        }
        return all;
    }

    void removeTemporaryFiles() const
    {
        for (const std::string& name : names()) {
            if (name.starts_with('.')) {
                fs::remove(m_folder / name);
            }
        }
    }

    static std::string refusal(const fs::path& file, std::string_view bytes = "new")
    {
        try {
            writeFileAtomically(file, bytes);
        } catch (const zmsvException& error) {
            return error.what();
        }
        return "written";
    }

    fs::path m_folder;
};

/// Runs something in a process of its own, whose status it returns.
int inChild(const std::function<int()>& action)
{
    const pid_t child = ::fork();
    if (child == 0) {
        ::_exit(action());
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

int openDescriptors()
{
    return static_cast<int>(std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator()));
}

/// The system grants the administrator everything; as somebody else its answers can be seen.
class AsNobody {
public:
    AsNobody() : m_isChanged(::geteuid() == 0 && ::seteuid(65534) == 0) {}
    ~AsNobody()
    {
        if (m_isChanged && ::seteuid(0) != 0) {
            std::abort();
        }
    }
    AsNobody(const AsNobody&) = delete;
    AsNobody& operator=(const AsNobody&) = delete;

private:
    bool m_isChanged;
};

TEST_F(AtomicFileTest, NewFileIsWritten)
{
    writeFileAtomically(path("a"), "content");
    EXPECT_EQ(content(path("a")), "content");
    EXPECT_EQ(names(), std::set<std::string>{"a"});
}

TEST_F(AtomicFileTest, FormerContentIsReplaced)
{
    put(path("a"), "a former, longer content");
    writeFileAtomically(path("a"), "new");
    EXPECT_EQ(content(path("a")), "new");
    EXPECT_EQ(names(), std::set<std::string>{"a"});
}

TEST_F(AtomicFileTest, ContentMayBeEmptyOrHoldAnyBytes)
{
    writeFileAtomically(path("a"), std::string("\0\xFF\n", 3));
    EXPECT_EQ(content(path("a")), std::string("\0\xFF\n", 3));
    writeFileAtomically(path("a"), "");
    EXPECT_EQ(fs::file_size(path("a")), 0U);
}

TEST_F(AtomicFileTest, WhoReadsTheFormerFileReadsItToItsEnd)
{
    put(path("a"), "former");
    std::ifstream reader(path("a"));
    writeFileAtomically(path("a"), "new content");
    std::string text;
    std::getline(reader, text);
    EXPECT_EQ(text, "former");
}

TEST_F(AtomicFileTest, NewFileHasThePermissionsOfAnyNewFile)
{
    const mode_t former = ::umask(027);
    writeFileAtomically(path("a"), "content");
    ::umask(former);
    EXPECT_EQ(mode(path("a")), 0640U);
}

TEST_F(AtomicFileTest, FileKeepsItsPermissions)
{
    put(path("a"), "former");
    for (const mode_t kept : {0600U, 0664U, 0755U}) {
        fs::permissions(path("a"), fs::perms(kept));
        writeFileAtomically(path("a"), "new");
        EXPECT_EQ(mode(path("a")), kept);
    }
}

TEST_F(AtomicFileTest, LinkIsFollowed)
{
    fs::create_directory(path("far"));
    put(path("far/a"), "former");
    fs::create_symlink("far/a", path("near"));
    fs::create_symlink(path("near"), path("nearer"));
    writeFileAtomically(path("nearer"), "new");
    EXPECT_TRUE(fs::is_symlink(path("nearer")));
    EXPECT_TRUE(fs::is_symlink(path("near")));
    EXPECT_EQ(content(path("far/a")), "new");
    EXPECT_EQ(std::distance(fs::directory_iterator(path("far")), fs::directory_iterator()), 1);
}

TEST_F(AtomicFileTest, LinkToNothingMakesWhatItNames)
{
    fs::create_symlink("a", path("link"));
    writeFileAtomically(path("link"), "new");
    EXPECT_TRUE(fs::is_symlink(path("link")));
    EXPECT_EQ(content(path("a")), "new");
}

TEST_F(AtomicFileTest, LinksInACircleAreRefused)
{
    fs::create_symlink("a", path("b"));
    fs::create_symlink("b", path("a"));
    EXPECT_EQ(refusal(path("a")), path("a").string() + ": Too many levels of symbolic links");
}

TEST_F(AtomicFileTest, LinkedFolderIsEntered)
{
    fs::create_directory(path("far"));
    fs::create_directory_symlink("far", path("near"));
    writeFileAtomically(path("near/a"), "new");
    EXPECT_EQ(content(path("far/a")), "new");
}

TEST_F(AtomicFileTest, FileWithoutFolderIsInTheCurrentOne)
{
    const fs::path former = fs::current_path();
    fs::current_path(m_folder);
    writeFileAtomically("a", "content");
    fs::current_path(former);
    EXPECT_EQ(content(path("a")), "content");
}

TEST_F(AtomicFileTest, LongestNameIsWritten)
{
    const std::string longest(255, 'x');
    writeFileAtomically(path(longest), "content");
    EXPECT_EQ(names(), std::set<std::string>{longest});
    EXPECT_EQ(refusal(path(longest + "x")), path(longest + "x").string() + ": File name too long");
}

TEST_F(AtomicFileTest, FolderIsRefused)
{
    fs::create_directory(path("a"));
    EXPECT_EQ(refusal(path("a")), path("a").string() + ": Is a directory");
    EXPECT_EQ(refusal(m_folder / ""), (m_folder / "").string() + ": Is a directory");
    EXPECT_EQ(names(), std::set<std::string>{"a"});
}

TEST_F(AtomicFileTest, MissingFolderIsRefused)
{
    EXPECT_EQ(refusal(path("none/a")), path("none/a").string() + ": No such file or directory");
    EXPECT_EQ(refusal(""), ": No such file or directory");
}

TEST_F(AtomicFileTest, FileInPlaceOfAFolderIsRefused)
{
    put(path("a"), "former");
    EXPECT_EQ(refusal(path("a/b")), path("a/b").string() + ": Not a directory");
}

TEST_F(AtomicFileTest, WhatIsNoRegularFileIsRefused)
{
    ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
    EXPECT_EQ(refusal(path("pipe")), path("pipe").string() + ": It is not a regular file.");
    EXPECT_TRUE(fs::is_fifo(path("pipe")));
    EXPECT_EQ(refusal("/dev/full"), "/dev/full: It is not a regular file.");
}

TEST_F(AtomicFileTest, ForbiddenFolderIsRefused)
{
    put(path("a"), "former");
    fs::permissions(path("a"), fs::perms(0666));
    fs::permissions(m_folder, fs::perms(0555));
    std::string reason;
    {
        const AsNobody nobody;
        reason = refusal(path("a"));
    }
    EXPECT_EQ(reason, path("a").string() + ": Permission denied");
    EXPECT_EQ(content(path("a")), "former");
    EXPECT_EQ(names(), std::set<std::string>{"a"});
    fs::permissions(m_folder, fs::perms(0755));
}

TEST_F(AtomicFileTest, ForbiddenFileIsRefused)
{
    put(path("a"), "former");
    fs::permissions(path("a"), fs::perms(0444));
    fs::permissions(m_folder, fs::perms(0777));
    std::string reason;
    {
        const AsNobody nobody;
        reason = refusal(path("a"));
    }
    EXPECT_EQ(reason, path("a").string() + ": Permission denied");
    EXPECT_EQ(content(path("a")), "former");
}

TEST_F(AtomicFileTest, NoDescriptorStaysOpen)
{
    const int before = openDescriptors();
    writeFileAtomically(path("a"), "content");
    EXPECT_EQ(openDescriptors(), before);
    fs::create_directory(path("folder"));
    refusal(path("folder"));
    refusal(path("none/a"));
    refusal(path(std::string(256, 'x')));
    EXPECT_EQ(openDescriptors(), before);
}

TEST_F(AtomicFileTest, FileThatGrowsTooLargeLeavesTheFormerOne)
{
    put(path("a"), "former");
    const int status = inChild([this] {
        const rlimit limit{.rlim_cur = 50000, .rlim_max = 50000};
        ::signal(SIGXFSZ, SIG_IGN);
        ::setrlimit(RLIMIT_FSIZE, &limit);
        const int before = openDescriptors();
        const bool isRefused =
            refusal(path("a"), std::string(100000, 'x')) == path("a").string() + ": File too large";
        return isRefused && openDescriptors() == before ? 0 : 1;
    });
    EXPECT_EQ(status, 0);
    EXPECT_EQ(content(path("a")), "former");
    EXPECT_EQ(names(), std::set<std::string>{"a"});
}

TEST_F(AtomicFileTest, FullDiskLeavesTheFormerFile)
{
    constexpr int notPermitted = 77;
    const int status = inChild([this]() -> int {
        // A file system of this process alone, with room for one file, but not for two.
        if (::unshare(CLONE_NEWNS) != 0 || ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
            ::mount("none", m_folder.c_str(), "tmpfs", 0, "size=256k") != 0) {
            return notPermitted;
        }
        const std::string former(150000, 'f');
        writeFileAtomically(path("a"), former);
        const bool isRefused =
            refusal(path("a"), std::string(150000, 'n')) == path("a").string() + ": No space left on device";
        return isRefused && content(path("a")) == former && names() == std::set<std::string>{"a"} ? 0 : 1;
    });
    if (status == notPermitted) {
        GTEST_SKIP() << "A full disk was not tried: this process may not mount a file system.";
    }
    EXPECT_EQ(status, 0);
}

TEST_F(AtomicFileTest, FolderThatCannotBeSyncedIsToldWithTheFileWritten)
{
    put(path("a"), "former");
    folderSyncError = EIO;
    const std::string reason = refusal(path("a"));
    folderSyncError = 0;
    EXPECT_EQ(reason, path("a").string() +
                          ": The file is written, but may not be there after a power failure: its folder "
                          "could not be synced: Input/output error");
    EXPECT_EQ(content(path("a")), "new");
    EXPECT_EQ(names(), std::set<std::string>{"a"});
}

TEST_F(AtomicFileTest, FileSystemThatHasNoSyncOfFoldersIsAccepted)
{
    folderSyncError = EINVAL;
    const std::string reason = refusal(path("a"));
    folderSyncError = 0;
    EXPECT_EQ(reason, "written");
}

TEST_F(AtomicFileTest, OwnerAndGroupAreKept)
{
    if (::geteuid() != 0) {
        GTEST_SKIP() << "Only the administrator can give files away.";
    }
    put(path("a"), "former");
    fs::permissions(path("a"), fs::perms(0640));
    ASSERT_EQ(::chown(path("a").c_str(), 65534, 65533), 0);
    writeFileAtomically(path("a"), "new");
    struct stat status {};
    ASSERT_EQ(::stat(path("a").c_str(), &status), 0);
    EXPECT_EQ(status.st_uid, 65534U);
    EXPECT_EQ(status.st_gid, 65533U);
    EXPECT_EQ(mode(path("a")), 0640U);
}

TEST_F(AtomicFileTest, FileOfAnotherOwnerIsReplacedWithoutItsRights)
{
    put(path("a"), "former");
    fs::permissions(path("a"), fs::perms(06777));
    fs::permissions(m_folder, fs::perms(0777));
    if (::geteuid() != 0) {
        GTEST_SKIP() << "The file belongs to this user.";
    }
    {
        const AsNobody nobody;
        writeFileAtomically(path("a"), "new");
    }
    EXPECT_EQ(content(path("a")), "new");
    EXPECT_EQ(mode(path("a")), 0777U);
}

TEST_F(AtomicFileTest, TemporaryFilesOfKilledProcessesAreRemoved)
{
    put(path(".a.ssp.0123456789ab"), "stale");
    put(path(".b.ssp.ba9876543210"), "stale");
    const std::set<std::string> others{".c.txt.0123456789ab", ".d.ssp.0123456789aB", ".e.ssp.0123",
                                       "f.ssp.0123456789ab", ".ssp.0123456789ab"};
    for (const std::string& other : others) {
        put(path(other), "of others");
    }
    writeFileAtomically(path("a.ssp"), "new");
    std::set<std::string> left = others;
    left.insert("a.ssp");
    EXPECT_EQ(names(), left);
}

TEST_F(AtomicFileTest, TemporaryFileThatIsBeingWrittenStays)
{
    put(path(".a.ssp.0123456789ab"), "of another process");
    const int writer = ::open(path(".a.ssp.0123456789ab").c_str(), O_RDONLY);
    ASSERT_EQ(::flock(writer, LOCK_EX), 0);
    writeFileAtomically(path("a.ssp"), "new");
    EXPECT_EQ(names(), (std::set<std::string>{".a.ssp.0123456789ab", "a.ssp"}));
    ::close(writer);
}

/// Two contents of different lengths, one of which a file has at any moment.
class KilledWriterTest : public AtomicFileTest {
protected:
    bool isWhole() const
    {
        const std::string found = content(path("a"));
        return found == m_first || found == m_second;
    }

    [[noreturn]] void writeForever() const
    {
        for (;;) {
            writeFileAtomically(path("a"), m_second);
            writeFileAtomically(path("a"), m_first);
        }
    }

    const std::string m_first = std::string(300000, 'f');
    const std::string m_second = std::string(170001, 's');
};

TEST_F(KilledWriterTest, LeavesOneContentWhole)
{
    put(path("a"), m_first);
    for (int i = 0; i < 250; ++i) {
        const pid_t child = ::fork();
        if (child == 0) {
            writeForever();
        }
        std::this_thread::sleep_for(std::chrono::microseconds(i * 7919 % 5000));
        ::kill(child, SIGKILL);
        int status = 0;
        ::waitpid(child, &status, 0);
        ASSERT_TRUE(WIFSIGNALED(status)) << "the writer ended by itself";
        ASSERT_TRUE(isWhole()) << i;
        removeTemporaryFiles();
    }
    EXPECT_EQ(names(), std::set<std::string>{"a"});
}

/// A process that writes the second content once and is halted before and after every system call.
class HaltedWriter {
public:
    explicit HaltedWriter(const std::function<void()>& write) : m_child(::fork())
    {
        if (m_child == 0) {
            ::_exit(::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) == 0 ? (::raise(SIGSTOP), write(), 0) : 1);
        }
        ::waitpid(m_child, &m_status, 0);
    }
    ~HaltedWriter()
    {
        if (!hasEnded()) {
            ::kill(m_child, SIGKILL);
            ::waitpid(m_child, &m_status, 0);
        }
    }
    HaltedWriter(const HaltedWriter&) = delete;
    HaltedWriter& operator=(const HaltedWriter&) = delete;

    bool hasEnded() const { return WIFEXITED(m_status) || WIFSIGNALED(m_status); }
    bool hasSucceeded() const { return WIFEXITED(m_status) && WEXITSTATUS(m_status) == 0; }

    void goOn()
    {
        ::ptrace(PTRACE_SYSCALL, m_child, nullptr, nullptr);
        ::waitpid(m_child, &m_status, 0);
    }

private:
    pid_t m_child;
    int m_status = 0;
};

TEST_F(KilledWriterTest, LeavesOneContentWholeAtEverySystemCall)
{
    const auto write = [this] { writeFileAtomically(path("a"), m_second); };
    if (HaltedWriter(write).hasEnded()) {
        GTEST_SKIP() << "No system call was tried: this process may not trace another.";
    }
    int withFirst = 0;
    int withSecond = 0;
    bool isDone = false;
    for (int halts = 0; !isDone; ++halts) {
        ASSERT_LT(halts, 10000) << "the writer never ends";
        put(path("a"), m_first);
        {
            HaltedWriter writer(write);
            for (int i = 0; i < halts && !writer.hasEnded(); ++i) {
                writer.goOn();
            }
            isDone = writer.hasEnded();
            ASSERT_EQ(isDone, writer.hasSucceeded());
        }
        ASSERT_TRUE(isWhole()) << halts;
        const bool isSecond = content(path("a")) == m_second;
        ASSERT_TRUE(isSecond || withSecond == 0) << "the former content is back: " << halts;
        ++(isSecond ? withSecond : withFirst);
        removeTemporaryFiles();
    }
    // Before and after: opening, writing, syncing, closing, renaming at the least.
    EXPECT_GE(withFirst, 10);
    EXPECT_GE(withSecond, 2);
}

}  // namespace
