#include "reference_host/support/FileReading.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <stdexcept>
#include <system_error>

namespace reference_host {

namespace {

constexpr std::size_t firstPart = 65536;

[[noreturn]] void fail(int error)
{
    throw std::runtime_error(std::generic_category().message(error));
}

/// An open file that is read from its beginning to its end.
class Input {
public:
    // O_NONBLOCK: a FIFO without a writer must not block before it is known to be one.
    explicit Input(const std::filesystem::path& file)
        : m_number(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK))
    {
        if (m_number < 0) {
            fail(errno);
        }
    }
    ~Input() { ::close(m_number); }
    Input(const Input&) = delete;
    Input& operator=(const Input&) = delete;

    /// The size that the system states; files of some file systems state 0 and have content.
    std::size_t requireRegular() const
    {
        struct stat status {};
        if (::fstat(m_number, &status) < 0) {
            fail(errno);
        }
        if (S_ISDIR(status.st_mode)) {
            fail(EISDIR);
        }
        if (!S_ISREG(status.st_mode)) {
            throw std::runtime_error("It is not a regular file.");
        }
        return static_cast<std::size_t>(status.st_size);
    }

    /// 0 at the end.
    std::size_t read(char* part, std::size_t size) const
    {
        ssize_t count = 0;
        do {
            count = ::read(m_number, part, size);
        } while (count < 0 && errno == EINTR);
        if (count < 0) {
            fail(errno);
        }
        return static_cast<std::size_t>(count);
    }

private:
    int m_number;
};

void requireAtMost(std::size_t size, std::size_t limit)
{
    if (size > limit) {
        throw std::runtime_error("It is larger than " + std::to_string(limit) + " bytes.");
    }
}

}  // namespace

std::string readRegularFile(const std::filesystem::path& file, std::size_t limit)
{
    const Input input(file);
    const std::size_t stated = input.requireRegular();
    requireAtMost(stated, limit);
    // One byte more than stated: reading it shows that the end has been reached.
    std::string bytes(std::max(stated, firstPart) + 1, '\0');
    std::size_t size = 0;
    for (;;) {
        const std::size_t count = input.read(bytes.data() + size, bytes.size() - size);
        size += count;
        requireAtMost(size, limit);
        if (count == 0) {
            break;
        }
        if (size == bytes.size()) {
            bytes.resize(2 * bytes.size());
        }
    }
    bytes.resize(size);
    return bytes;
}

}  // namespace reference_host
