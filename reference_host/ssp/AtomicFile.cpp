#include "reference_host/ssp/AtomicFile.hpp"

#include "host/Text.hpp"
#include "reference_host/ssp/FileErrors.hpp"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <cerrno>
#include <cstdio>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

namespace reference_host {

namespace {

constexpr int linkMaximum = 40;
constexpr std::size_t nameMaximum = 255;

[[noreturn]] void fail(int error)
{
    throw std::system_error(error, std::generic_category());
}

void require(bool isDone)
{
    if (!isDone) {
        fail(errno);
    }
}

/// Whether a call has to be made again because a signal came in between.
bool wasInterrupted(bool hasFailed)
{
    return hasFailed && errno == EINTR;
}

class Descriptor {
public:
    explicit Descriptor(int number) : m_number(number) { require(number >= 0); }
    ~Descriptor()
    {
        if (m_number >= 0) {
            ::close(m_number);
        }
    }
    Descriptor(Descriptor&& other) noexcept : m_number(std::exchange(other.m_number, -1)) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    Descriptor& operator=(Descriptor&&) = delete;

    int get() const noexcept { return m_number; }

    void sync() const
    {
        int result = 0;
        do {
            result = ::fsync(m_number);
        } while (wasInterrupted(result < 0));
        require(result == 0);
    }

    /// Errors that the system kept back show here. An interrupted close has closed.
    void close()
    {
        const int number = std::exchange(m_number, -1);
        require(::close(number) == 0 || errno == EINTR);
    }

private:
    int m_number;
};

/// The file that a link leads to in the end, be it there or not.
std::filesystem::path followLinks(std::filesystem::path file)
{
    for (int i = 0; i < linkMaximum; ++i) {
        if (!std::filesystem::is_symlink(std::filesystem::symlink_status(file))) {
            return file;
        }
        file = file.parent_path() / std::filesystem::read_symlink(file);
    }
    fail(ELOOP);
}

std::filesystem::path parentOf(const std::filesystem::path& file)
{
    return file.has_parent_path() ? file.parent_path() : ".";
}

/// The state of the file that is there. Only a regular file that may be written is replaced.
std::optional<struct stat> formerFile(const std::filesystem::path& file)
{
    struct stat status {};
    if (::stat(file.c_str(), &status) < 0) {
        require(errno == ENOENT);
        return std::nullopt;
    }
    if (S_ISDIR(status.st_mode)) {
        fail(EISDIR);
    }
    if (!S_ISREG(status.st_mode)) {
        throw fileError("NotARegularFile", {});
    }
    require(::faccessat(AT_FDCWD, file.c_str(), W_OK, AT_EACCESS) == 0);
    return status;
}

// ---- temporary files: a dot, the file's name, a dot and random digits --------------------------------

constexpr std::string_view hexDigits = "0123456789abcdef";
constexpr std::size_t digitCount = 12;

std::string temporaryName(const std::string& name)
{
    std::random_device random;
    std::string suffix = ".";
    for (std::size_t i = 0; i < digitCount; ++i) {
        suffix += hexDigits[random() % hexDigits.size()];
    }
    return "." + name.substr(0, nameMaximum - 1 - suffix.size()) + suffix;
}

/// Whether a name is that of a temporary file for a file with this extension.
bool isTemporaryName(const std::string& name, const std::string& extension)
{
    if (name.size() < digitCount + 3 || name.front() != '.') {
        return false;
    }
    const std::size_t dot = name.size() - digitCount - 1;
    return name[dot] == '.' && name.find_first_not_of(hexDigits, dot + 1) == std::string::npos &&
           std::filesystem::path(name.substr(1, dot - 1)).extension() == extension;
}

/// Removes a temporary file unless a process is writing it: that one has it locked, until it ends.
void removeIfStale(const Descriptor& folder, const std::string& name)
{
    const int number = ::openat(folder.get(), name.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    if (number < 0) {
        return;
    }
    const Descriptor file(number);
    struct stat status {};
    const bool isOurs = ::fstat(number, &status) == 0 && S_ISREG(status.st_mode) &&
                        status.st_uid == ::geteuid() && status.st_nlink == 1;
    if (isOurs && ::flock(number, LOCK_EX | LOCK_NB) == 0) {
        ::unlinkat(folder.get(), name.c_str(), 0);
    }
}

/// Removes what killed processes have left in the folder. Failures do not matter: the next save tries again.
void removeStaleFiles(const Descriptor& folder, const std::filesystem::path& file)
{
    std::error_code error;
    std::filesystem::directory_iterator entry(parentOf(file), error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        if (isTemporaryName(name, file.extension().string())) {
            removeIfStale(folder, name);
        }
    }
}

/// A new file in a folder, which is removed at the end unless it was given its final name.
class TemporaryFile {
public:
    TemporaryFile(const Descriptor& folder, const std::string& name, mode_t mode) : m_folder(folder)
    {
        struct stat status {};
        do {  // until it is locked before another process takes it for a stale one
            m_name = temporaryName(name);
            m_file.emplace(
                ::openat(folder.get(), m_name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode));
            ::flock(m_file->get(), LOCK_EX | LOCK_NB);  // some file systems have no locks
        } while (::fstat(m_file->get(), &status) == 0 && status.st_nlink == 0);
    }
    ~TemporaryFile()
    {
        if (!m_name.empty()) {
            ::unlinkat(m_folder.get(), m_name.c_str(), 0);
        }
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    void write(std::string_view bytes)
    {
        while (!bytes.empty()) {
            const ssize_t count = ::write(m_file->get(), bytes.data(), bytes.size());
            if (!wasInterrupted(count < 0)) {
                require(count >= 0);
                bytes.remove_prefix(static_cast<std::size_t>(count));
            }
        }
    }

    /// Owner and group as far as this process may give files away, then the permissions: changing the owner
    /// clears some of these. A file that belongs to another owner does not run under the former one's rights.
    void setOwnerAndMode(const struct stat& former)
    {
        const bool hasGroup = ::fchown(m_file->get(), static_cast<uid_t>(-1), former.st_gid) == 0;
        const bool hasOwner = ::fchown(m_file->get(), former.st_uid, static_cast<gid_t>(-1)) == 0;
        const mode_t kept = hasGroup && hasOwner ? 07777U : 0777U;
        require(::fchmod(m_file->get(), former.st_mode & kept) == 0);
    }

    void finish(const std::string& name)
    {
        m_file->sync();
        m_file->close();
        require(::renameat(m_folder.get(), m_name.c_str(), m_folder.get(), name.c_str()) == 0);
        m_name.clear();
    }

private:
    const Descriptor& m_folder;
    std::string m_name;
    std::optional<Descriptor> m_file;
};

/// Makes the new name durable. The file has it already, so a failure is told apart from one to write.
/// Some file systems cannot sync folders (EINVAL) and need not.
void syncFolder(const Descriptor& folder, const std::string& shown)
{
    try {
        folder.sync();
    } catch (const std::system_error& error) {
        if (error.code().value() != EINVAL) {
            throw fileError("FileNotDurable", {shown, error.code().message()});
        }
    }
}

/// Returns the folder, which is to be synced.
Descriptor replace(const std::filesystem::path& file, std::string_view bytes)
{
    const std::optional<struct stat> former = formerFile(file);
    Descriptor folder(::open(parentOf(file).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    removeStaleFiles(folder, file);
    const std::string name = file.filename().string();
    // Until it has the permissions of the file there, only its owner reads it.
    TemporaryFile temporary(folder, name, former ? 0600 : 0666);
    temporary.write(bytes);
    if (former) {
        temporary.setOwnerAndMode(*former);
    }
    temporary.finish(name);
    return folder;
}

}  // namespace

void writeFileAtomically(const std::filesystem::path& file, std::string_view bytes)
{
    const std::string shown = toUtf8(toUtf16(file.c_str()));  // well-formed, whatever the file system holds
    std::optional<Descriptor> folder;
    try {
        folder.emplace(replace(followLinks(file), bytes));
    } catch (const std::system_error& error) {  // the file system library's errors among them
        throw fileError("UnwritableFile", {shown, error.code().message()});
    } catch (const zmsvException& reason) {
        throw fileError("UnwritableFile", {shown, std::string(reason.what())});
    }
    syncFolder(*folder, shown);
}

}  // namespace reference_host
