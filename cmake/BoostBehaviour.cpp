// Run at configure time: does this Boost do what the library relies on?
//
//  - The hash of strings decides which key texts have the key 0 and which share a key.
//  - The random generator reads "/dev/urandom", opened with these flags, and names what failed.

#include "tests/hmi/KeyHash.hpp"

#include <boost/container_hash/hash.hpp>
#include <boost/uuid/random_generator.hpp>
#include <boost/version.hpp>

#include <fcntl.h>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

namespace {

std::string openedPath;
int openedFlags = 0;

}  // namespace

/// Takes the place of the system's: remembers what is asked for and fails.
extern "C" int open(const char* path, int flags, ...)
{
    openedPath = path;
    openedFlags = flags;
    errno = EACCES;
    return -1;
}

int main()
{
    int wrong = 0;
    for (const std::string text : {"", "a", "ab", "abc", "abcd", "model/Block|1", "12.5|3"}) {
        if (boost::hash<std::string>()(text) != zm_hmi::keyHash(text)) {
            std::printf("the hash of \"%s\" is another one\n", text.c_str());
            ++wrong;
        }
    }
    try {
        boost::uuids::random_generator_pure generate;
        static_cast<void>(generate());
        std::puts("the random generator does not report that its device cannot be opened");
        ++wrong;
    } catch (const boost::uuids::entropy_error& error) {
        if (error.errcode() != EACCES || std::strstr(error.what(), "open /dev/urandom") == nullptr) {
            std::printf("the random generator's error is \"%s\"\n", error.what());
            ++wrong;
        }
    }
    if (openedPath != "/dev/urandom" || openedFlags != (O_RDONLY | O_CLOEXEC)) {
        std::printf("the random generator opens \"%s\" with flags %d\n", openedPath.c_str(), openedFlags);
        ++wrong;
    }
    std::printf("Boost %s\n", BOOST_LIB_VERSION);
    return wrong;
}
