#include "tests/reference_host/ssp/ZipBytes.hpp"

namespace reference_host {

namespace {

/// What the entry's header and the directory have in common, from the flags to the sizes.
std::string commonFields(const ZipEntry& entry)
{
    return zipNumber(entry.flags, 2) + zipNumber(entry.method, 2) + zipNumber(entry.time, 4) +
           zipNumber(entry.checksum.value_or(zipChecksum(entry.packed)), 4) +
           zipNumber(entry.packedSize.value_or(entry.packed.size()), 4) +
           zipNumber(entry.unpackedSize.value_or(entry.packed.size()), 4);
}

std::string record(const ZipEntry& entry)
{
    const std::string& name = entry.recordName ? *entry.recordName : entry.name;
    return "PK\x03\x04" + zipNumber(20, 2) + commonFields(entry) + zipNumber(name.size(), 2) +
           zipNumber(entry.recordExtra.size(), 2) + name + entry.recordExtra + entry.packed + entry.after;
}

std::string header(const ZipEntry& entry, std::uint64_t position)
{
    return "PK\x01\x02" + zipNumber(0x0314, 2) + zipNumber(20, 2) + commonFields(entry) +
           zipNumber(entry.name.size(), 2) + zipNumber(entry.headerExtra.size(), 2) +
           zipNumber(entry.comment.size(), 2) + zipNumber(entry.disk, 2) + zipNumber(0, 2) +
           zipNumber(entry.attributes, 4) + zipNumber(entry.position.value_or(position), 4) + entry.name +
           entry.headerExtra + entry.comment;
}

std::string wideEnd(std::uint64_t count, std::uint64_t size, std::uint64_t begin)
{
    return "PK\x06\x06" + zipNumber(44, 8) + zipNumber(45, 2) + zipNumber(45, 2) + zipNumber(0, 8) +
           zipNumber(count, 8) + zipNumber(count, 8) + zipNumber(size, 8) + zipNumber(begin, 8) +
           "PK\x06\x07" + zipNumber(0, 4) + zipNumber(begin + size, 8) + zipNumber(1, 4);
}

}  // namespace

std::string zipNumber(std::uint64_t number, std::size_t size)
{
    std::string bytes;
    for (std::size_t i = 0; i < size; ++i) {
        bytes += static_cast<char>(number >> (8 * i) & 0xFFU);
    }
    return bytes;
}

std::uint64_t zipChecksum(std::string_view content)
{
    std::uint32_t remainder = 0xFFFFFFFF;
    for (const char byte : content) {
        remainder ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit) {
            remainder = remainder >> 1U ^ ((remainder & 1U) != 0 ? 0xEDB88320U : 0U);
        }
    }
    return remainder ^ 0xFFFFFFFFU;
}

std::string deflatedPlainly(std::string_view content)
{
    return "\x01" + zipNumber(content.size(), 2) + zipNumber(~content.size(), 2) + std::string(content);
}

std::string zipBytes(const std::vector<ZipEntry>& entries, const ZipFrame& frame)
{
    std::string bytes = frame.before;
    std::string directory;
    for (const ZipEntry& entry : entries) {
        directory += header(entry, bytes.size());
        bytes += record(entry);
    }
    const std::uint64_t count = frame.count.value_or(entries.size());
    const std::uint64_t begin = bytes.size();
    bytes += directory;
    if (frame.isWide) {
        bytes += wideEnd(count, directory.size(), begin);
    }
    return bytes + "PK\x05\x06" + zipNumber(frame.disk, 2) + zipNumber(frame.disk, 2) + zipNumber(count, 2) +
           zipNumber(count, 2) + zipNumber(directory.size(), 4) + zipNumber(begin, 4) +
           zipNumber(frame.comment.size(), 2) + frame.comment + frame.after;
}

std::string wideZip()
{
    const std::string lengths = zipNumber(4, 8) + zipNumber(4, 8);
    const std::string position = zipNumber(30 + 6 + 4, 8);  // behind the first entry
    return zipBytes({{.name = "narrow", .packed = "1234"},
                     {.name = "wide",
                      .packed = "5678",
                      .packedSize = 0xFFFFFFFF,
                      .unpackedSize = 0xFFFFFFFF,
                      .position = 0xFFFFFFFF,
                      .recordExtra = zipNumber(1, 2) + zipNumber(16, 2) + lengths,
                      .headerExtra = zipNumber(1, 2) + zipNumber(24, 2) + lengths + position}},
                    {.isWide = true});
}

}  // namespace reference_host
