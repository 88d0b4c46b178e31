#include "host/Exceptions.hpp"
#include "reference_host/ssp/Archive.hpp"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

using reference_host::Archive;
using reference_host::ArchiveLimits;

namespace {

constexpr ArchiveLimits limits{
    .packedBytes = std::size_t{1} << 20U, .unpackedBytes = std::size_t{4} << 20U, .entries = 200};

using Entries = std::vector<std::pair<std::string, std::string>>;  // name, content

Entries entriesOf(const Archive& archive)
{
    Entries entries;
    for (const std::string& name : archive.names()) {
        entries.emplace_back(name, archive.read(name));
    }
    return entries;
}

void require(bool holds)
{
    if (!holds) {
        std::abort();
    }
}

/// What was accepted once stays as it is when it is packed again, with and without something new.
void checkAccepted(const Archive& archive)
{
    const Entries entries = entriesOf(archive);
    const std::string packed = Archive::pack(&archive, {});
    const Archive again(packed);
    require(entriesOf(again) == entries);
    require(Archive::pack(&again, {}) == packed);

    const std::string name = "extra/of.our.own";
    std::string changed;
    try {
        changed = Archive::pack(&archive, {{name, "new"}});
    } catch (const zmsvException&) {
        return;  // "extra" is a file
    }
    Entries rest = entriesOf(Archive(changed));
    require(std::erase(rest, std::pair{name, std::string("new")}) == 1);
    Entries before = entries;
    std::erase_if(before, [&name](const auto& entry) { return entry.first == name; });
    require(rest == before);
}

}  // namespace

/// Every archive is refused, or is read and packed without a loss.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    try {
        const Archive archive({reinterpret_cast<const char*>(data), size}, limits);
        archive.verify();
        try {
            checkAccepted(archive);
        } catch (const zmsvException&) {
            std::abort();  // accepted and then refused
        }
    } catch (const zmsvException&) {
        return 0;  // refused
    }
    return 0;
}
