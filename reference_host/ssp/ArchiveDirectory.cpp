#include "reference_host/ssp/ArchiveDirectory.hpp"

#include "reference_host/ssp/FileErrors.hpp"
#include "reference_host/support/QuotedText.hpp"
#include "reference_host/support/TextConversion.hpp"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace reference_host {

namespace {

constexpr std::uint64_t endSignature = 0x06054b50;
constexpr std::uint64_t wideEndSignature = 0x06064b50;
constexpr std::uint64_t wideEndLocatorSignature = 0x07064b50;
constexpr std::uint64_t headerSignature = 0x02014b50;
constexpr std::uint64_t recordSignature = 0x04034b50;
constexpr std::uint64_t endSize = 22;
constexpr std::uint64_t wideEndSize = 56;
constexpr std::uint64_t wideEndLocatorSize = 20;
constexpr std::uint64_t headerSize = 46;
constexpr std::uint64_t recordHeaderSize = 30;
constexpr std::uint64_t commentMaximum = 0xFFFF;
constexpr std::uint64_t wideFieldId = 1;
constexpr std::uint64_t elsewhere = 0xFFFFFFFF;  // in place of a number: it is in the wide field
constexpr std::uint64_t lengthsFollowFlag = 0x0008;
constexpr std::uint64_t encryptionFlags = 0x2041;  // encrypted, strongly encrypted, header masked

/// Reads little-endian numbers and pieces, and refuses to reach outside the bytes.
class Bytes {
public:
    explicit Bytes(std::string_view bytes) : m_bytes(bytes) {}

    std::uint64_t size() const noexcept { return m_bytes.size(); }

    std::string_view piece(std::uint64_t position, std::uint64_t length) const
    {
        if (position > m_bytes.size() || length > m_bytes.size() - position) {
            refuseArchive("ArchiveCutShort");
        }
        return m_bytes.substr(position, length);
    }

    std::uint64_t number(std::uint64_t position, std::uint64_t length) const
    {
        const std::string_view digits = piece(position, length);
        std::uint64_t result = 0;
        for (auto digit = digits.rbegin(); digit != digits.rend(); ++digit) {
            result = result << 8U | static_cast<unsigned char>(*digit);
        }
        return result;
    }

private:
    std::string_view m_bytes;
};

/// Writes a little-endian number over the bytes at `position`.
void overwriteNumber(std::string& bytes, std::size_t position, std::size_t size, std::uint64_t number)
{
    for (std::size_t i = 0; i < size; ++i) {
        bytes.at(position + i) = static_cast<char>(number >> (8 * i) & 0xFFU);
    }
}

/// Where the directory lies: it has to end where the record of its end begins.
struct Extent {
    std::uint64_t count = 0;
    std::uint64_t begin = 0;
    std::uint64_t end = 0;
};

void requireOneDisk(bool isOne)
{
    if (!isOne) {
        refuseArchive("SeveralDisks");
    }
}

/// The position of the end record, whose comment has to reach to the last byte.
std::uint64_t findEnd(const Bytes& bytes)
{
    for (std::uint64_t comment = 0; comment <= commentMaximum && comment + endSize <= bytes.size();
         ++comment) {
        const std::uint64_t position = bytes.size() - comment - endSize;
        if (bytes.number(position, 4) == endSignature && bytes.number(position + 20, 2) == comment) {
            return position;
        }
    }
    refuseArchive("NotAnArchive");
}

/// What the end record says.
Extent findDirectory(const Bytes& bytes, std::uint64_t end)
{
    requireOneDisk(bytes.number(end + 4, 4) == 0 && bytes.number(end + 8, 2) == bytes.number(end + 10, 2));
    return {bytes.number(end + 10, 2), bytes.number(end + 16, 4), end};
}

/// What the wide end record (ZIP64) says, which stands before its locator, and that before the end record.
Extent findWideDirectory(const Bytes& bytes, std::uint64_t locator)
{
    const std::uint64_t end = bytes.number(locator + 8, 8);
    if (end > locator || locator - end < wideEndSize || bytes.number(end, 4) != wideEndSignature ||
        bytes.number(end + 4, 8) != locator - end - 12) {
        refuseArchive("DirectoryMisplaced");
    }
    requireOneDisk(bytes.number(locator + 4, 4) == 0 && bytes.number(locator + 16, 4) <= 1 &&
                   bytes.number(end + 16, 8) == 0 && bytes.number(end + 24, 8) == bytes.number(end + 32, 8));
    return {bytes.number(end + 32, 8), bytes.number(end + 48, 8), end};
}

Extent findExtent(const Bytes& bytes, std::uint64_t end)
{
    const bool isWide =
        end >= wideEndLocatorSize && bytes.number(end - wideEndLocatorSize, 4) == wideEndLocatorSignature;
    return isWide ? findWideDirectory(bytes, end - wideEndLocatorSize) : findDirectory(bytes, end);
}

/// The wide field (ZIP64) among an entry's extra fields: where it begins, and how long it is.
std::optional<std::pair<std::uint64_t, std::uint64_t>> findWideField(const Bytes& header, std::uint64_t begin,
                                                                     std::uint64_t end)
{
    for (std::uint64_t position = begin; position + 4 <= end;) {
        const std::uint64_t size = header.number(position + 2, 2);
        if (header.number(position, 2) == wideFieldId) {
            return std::pair{position + 4, std::min(size, end - position - 4)};
        }
        position += 4 + size;
    }
    return std::nullopt;
}

/// Numbers that do not fit their places are in the wide field, in this order.
void readWideNumbers(ArchiveEntry& entry, const Bytes& header, std::uint64_t extraBegin,
                     std::uint64_t extraEnd)
{
    const auto field = findWideField(header, extraBegin, extraEnd);
    std::uint64_t position = field ? field->first : extraEnd;
    const std::uint64_t end = field ? field->first + field->second : extraEnd;
    for (std::uint64_t* number : {&entry.unpackedSize, &entry.packedSize, &entry.recordBegin}) {
        if (*number != elsewhere) {
            continue;
        }
        if (end - position < 8) {
            refuseEntry(entry.name, "EntryDamaged", {std::string("a length or position is missing")});
        }
        *number = header.number(position, 8);
        if (number == &entry.recordBegin) {
            entry.beginField = position;
            entry.beginFieldSize = 8;
        }
        position += 8;
    }
}

ArchiveEntry readHeader(const Bytes& bytes, std::uint64_t position)
{
    const Bytes head(bytes.piece(position, headerSize));
    if (head.number(0, 4) != headerSignature) {
        refuseArchive("DirectoryMisplaced");
    }
    const std::uint64_t nameSize = head.number(28, 2);
    const std::uint64_t extraSize = head.number(30, 2);
    ArchiveEntry entry;
    entry.header = bytes.piece(position, headerSize + nameSize + extraSize + head.number(32, 2));
    entry.name = entry.header.substr(headerSize, nameSize);
    entry.isEncrypted = (head.number(8, 2) & encryptionFlags) != 0;
    entry.method = head.number(10, 2);
    entry.packedSize = head.number(20, 4);
    entry.unpackedSize = head.number(24, 4);
    requireOneDisk(head.number(34, 2) == 0);
    entry.recordBegin = head.number(42, 4);
    entry.beginField = 42;
    entry.beginFieldSize = 4;
    readWideNumbers(entry, Bytes(entry.header), headerSize + nameSize, headerSize + nameSize + extraSize);
    return entry;
}

/// The record's own header has to say what the directory says. Lengths and checksum may also follow the
/// content instead; then those in the header mean nothing.
void checkRecordHeader(const ArchiveEntry& entry, const Bytes& record)
{
    ArchiveEntry own;
    own.name = record.piece(recordHeaderSize, record.number(26, 2));
    own.method = record.number(8, 2);
    own.packedSize = record.number(18, 4);
    own.unpackedSize = record.number(22, 4);
    if (own.name != entry.name) {
        refuseEntry(entry.name, "EntryDamaged", {std::string("its header has another name")});
    }
    bool isSame = own.method == entry.method;
    if ((record.number(6, 2) & lengthsFollowFlag) == 0) {
        const std::uint64_t extra = recordHeaderSize + own.name.size();
        readWideNumbers(own, record, extra, extra + record.number(28, 2));
        isSame = isSame && own.packedSize == entry.packedSize && own.unpackedSize == entry.unpackedSize &&
                 record.number(14, 4) == Bytes(entry.header).number(16, 4);
    }
    if (!isSame) {
        refuseEntry(entry.name, "EntryDamaged", {std::string("its header and the directory differ")});
    }
}

/// The entry's record, which has to end before the next one begins.
void findRecord(ArchiveEntry& entry, const Bytes& bytes, std::uint64_t next)
{
    if (entry.recordBegin > next) {
        refuseEntry(entry.name, "EntryDamaged", {std::string("it lies outside the archive")});
    }
    entry.record = bytes.piece(entry.recordBegin, next - entry.recordBegin);
    const Bytes record(entry.record);
    if (record.size() < recordHeaderSize || record.number(0, 4) != recordSignature) {
        refuseEntry(entry.name, "EntryDamaged", {std::string("its header is not where it should be")});
    }
    const std::uint64_t begin = recordHeaderSize + record.number(26, 2) + record.number(28, 2);
    if (begin > record.size() || entry.packedSize > record.size() - begin) {
        refuseEntry(entry.name, "EntryDamaged", {std::string("it reaches into what follows it")});
    }
    checkRecordHeader(entry, record);
    entry.isEncrypted = entry.isEncrypted || (record.number(6, 2) & encryptionFlags) != 0;
}

void findRecords(std::vector<ArchiveEntry>& entries, const Bytes& bytes, std::uint64_t directory)
{
    std::vector<ArchiveEntry*> byPlace;
    byPlace.reserve(entries.size());
    for (ArchiveEntry& entry : entries) {
        byPlace.push_back(&entry);
    }
    std::ranges::stable_sort(byPlace, {}, &ArchiveEntry::recordBegin);
    if ((byPlace.empty() ? directory : byPlace.front()->recordBegin) != 0) {
        refuseArchive("BytesBeforeArchive");
    }
    for (std::size_t i = 0; i < byPlace.size(); ++i) {
        findRecord(*byPlace[i], bytes, i + 1 < byPlace.size() ? byPlace[i + 1]->recordBegin : directory);
    }
}

}  // namespace

ArchiveDirectory readArchiveDirectory(std::string_view archive, std::size_t maximum)
{
    const Bytes bytes(archive);
    const std::uint64_t end = findEnd(bytes);
    const Extent extent = findExtent(bytes, end);
    if (extent.count > maximum) {
        refuseArchive("TooManyEntries", {extent.count, std::uint64_t{maximum}});
    }
    ArchiveDirectory directory;
    std::uint64_t position = extent.begin;
    for (std::uint64_t i = 0; i < extent.count; ++i) {
        directory.entries.push_back(readHeader(bytes, position));
        position += directory.entries.back().header.size();
    }
    if (position != extent.end) {
        refuseArchive("DirectoryMisplaced");
    }
    findRecords(directory.entries, bytes, extent.begin);
    directory.comment = bytes.piece(end + endSize, bytes.size() - end - endSize);
    return directory;
}

std::string joinArchive(const std::vector<ArchiveEntry>& entries, std::string_view comment)
{
    std::string result;
    std::string directory;
    for (const ArchiveEntry& entry : entries) {
        const std::size_t header = directory.size();
        directory += entry.header;
        overwriteNumber(directory, header + entry.beginField, entry.beginFieldSize, result.size());
        result += entry.record;
    }
    std::string end(endSize, '\0');
    overwriteNumber(end, 0, 4, endSignature);
    overwriteNumber(end, 8, 2, entries.size());
    overwriteNumber(end, 10, 2, entries.size());
    overwriteNumber(end, 12, 4, directory.size());
    overwriteNumber(end, 16, 4, result.size());
    overwriteNumber(end, 20, 2, comment.size());
    return result.append(directory).append(end).append(comment);
}

std::uint64_t joinedSize(const std::vector<ArchiveEntry>& entries, std::string_view comment)
{
    std::uint64_t size = endSize + comment.size();
    for (const ArchiveEntry& entry : entries) {
        size += entry.record.size() + entry.header.size();
    }
    return size;
}

void clearTimes(std::string& bytes, const ArchiveDirectory& directory)
{
    constexpr std::uint64_t earliest = 0x00210000;  // the date is the upper half: year 0, month 1, day 1
    for (const ArchiveEntry& entry : directory.entries) {
        overwriteNumber(bytes, entry.recordBegin + 10, 4, earliest);
        overwriteNumber(bytes, static_cast<std::size_t>(entry.header.data() - bytes.data()) + 12, 4,
                        earliest);
    }
}

void refuseArchive(const char* key, std::vector<zmsvMessageArgument> arguments)
{
    throw fileError("InvalidArchive", {std::string(fileError(key, std::move(arguments)).what())});
}

void refuseEntry(std::string_view name, const char* key, std::vector<zmsvMessageArgument> arguments)
{
    // Whatever the bytes are, the message is text.
    const std::string text = utf8FromUtf16(utf16FromUtf8(name));
    throw fileError("InvalidEntry",
                    {quotedText(text), std::string(fileError(key, std::move(arguments)).what())});
}

}  // namespace reference_host
