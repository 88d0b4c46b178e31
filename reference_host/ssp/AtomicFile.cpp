#include "reference_host/ssp/AtomicFile.hpp"

#include "host/Text.hpp"
#include "reference_host/ssp/FileErrors.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <cerrno>
#include <cstdio>
#include <optional>
#include <random>
#include <string>
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
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

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

/// The permissions of the file that is there. Only a regular file that may be written is replaced.
std::optional<mode_t> permissions(const std::filesystem::path& file)
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
    return status.st_mode & 07777U;
}

std::string temporaryName(const std::string& name)
{
    static constexpr char digits[] = "0123456789abcdef";
    std::random_device random;
    std::string suffix = ".";
    for (int i = 0; i < 12; ++i) {
        suffix += digits[random() % 16];
    }
    return "." + name.substr(0, nameMaximum - 1 - suffix.size()) + suffix;
}

/// A new file in a folder, which is gone again at the end unless it was given its final name.
class TemporaryFile {
public:
    TemporaryFile(const Descriptor& folder, const std::string& name, mode_t mode)
        : m_folder(folder), m_name(temporaryName(name)), m_file(make(mode))
    {
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
            const ssize_t count = ::write(m_file.get(), bytes.data(), bytes.size());
            if (!wasInterrupted(count < 0)) {
                require(count >= 0);
                bytes.remove_prefix(static_cast<std::size_t>(count));
            }
        }
    }

    void setPermissions(mode_t mode) { require(::fchmod(m_file.get(), mode) == 0); }

    void finish(const std::string& name)
    {
        m_file.sync();
        m_file.close();
        require(::renameat(m_folder.get(), m_name.c_str(), m_folder.get(), name.c_str()) == 0);
        m_name.clear();
    }

private:
    /// The name is long and random, so one that is taken is an error like any other.
    int make(mode_t mode) const
    {
        return ::openat(m_folder.get(), m_name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    }

    const Descriptor& m_folder;
    std::string m_name;
    Descriptor m_file;
};

void replace(const std::filesystem::path& file, std::string_view bytes)
{
    const std::optional<mode_t> mode = permissions(file);
    const std::filesystem::path parent = file.has_parent_path() ? file.parent_path() : ".";
    const Descriptor folder(::open(parent.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const std::string name = file.filename().string();
    // Until it has the permissions of the file there, nobody else reads it.
    TemporaryFile temporary(folder, name, mode ? 0600 : 0666);
    temporary.write(bytes);
    if (mode) {
        temporary.setPermissions(*mode);
    }
    temporary.finish(name);
    folder.sync();
}

}  // namespace

void writeFileAtomically(const std::filesystem::path& file, std::string_view bytes)
{
    const std::string shown = toUtf8(toUtf16(file.c_str()));  // well-formed, whatever the file system holds
    try {
        replace(followLinks(file), bytes);
    } catch (const std::system_error& error) {  // the file system library's errors among them
        throw fileError("UnwritableFile", {shown, error.code().message()});
    } catch (const zmsvException& reason) {
        throw fileError("UnwritableFile", {shown, std::string(reason.what())});
    }
}

}  // namespace reference_host
