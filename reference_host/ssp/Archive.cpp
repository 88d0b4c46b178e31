#include "reference_host/ssp/Archive.hpp"

#include "reference_host/ssp/ArchiveDirectory.hpp"
#include "reference_host/ssp/ZipLibrary.hpp"
#include "reference_host/support/TextConversion.hpp"

#include <algorithm>
#include <iterator>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace reference_host {

namespace {

constexpr std::uint64_t storedMethod = 0;
constexpr std::uint64_t deflatedMethod = 8;

bool isFolder(std::string_view name)
{
    return name.ends_with('/');
}

bool hasBadComponent(std::string_view path)
{
    for (;;) {
        const std::size_t end = std::min(path.find('/'), path.size());
        const std::string_view component = path.substr(0, end);
        if (component.empty() || component == "." || component == "..") {
            return true;
        }
        if (end == path.size()) {
            return false;
        }
        path.remove_prefix(end + 1);
    }
}

/// What is wrong with an entry's name; null when nothing is.
const char* nameFault(std::string_view name)
{
    if (name.empty()) {
        return "EntryUnnamed";
    }
    if (utf8FromUtf16(utf16FromUtf8(name)) != name) {
        return "EntryNameNotUtf8";
    }
    if (name.find('\0') != std::string_view::npos || name.find('\\') != std::string_view::npos) {
        return "EntryNameCharacter";
    }
    const char lower = static_cast<char>(name.front() | 0x20);
    const bool hasDrive = name.size() > 1 && name[1] == ':' && lower >= 'a' && lower <= 'z';
    if (name.front() == '/' || hasDrive ||
        hasBadComponent(isFolder(name) ? name.substr(0, name.size() - 1) : name)) {
        return "EntryNameNotInside";
    }
    return nullptr;
}

void checkName(std::string_view name)
{
    if (const char* fault = nameFault(name)) {
        refuseEntry(name, fault);
    }
}

/// A path's parts come right after the path itself, because "/" comes before all else.
bool comesBefore(std::string_view left, std::string_view right)
{
    const auto [l, r] = std::ranges::mismatch(left, right);
    if (l == left.end() || r == right.end()) {
        return l == left.end() && r != right.end();
    }
    const auto rank = [](char c) { return c == '/' ? 0 : static_cast<int>(static_cast<unsigned char>(c)); };
    return rank(*l) < rank(*r);
}

/// No path twice, be it as a file and as a folder, and nothing below a file.
void checkNamesTogether(const std::vector<ArchiveEntry>& entries)
{
    std::vector<std::string_view> names;
    names.reserve(entries.size());
    for (const ArchiveEntry& entry : entries) {
        names.push_back(entry.name);
    }
    std::ranges::sort(names, comesBefore);
    for (std::size_t i = 1; i < names.size(); ++i) {
        const std::string_view before = names[i - 1];
        const std::string_view name = names[i];
        if (name == before) {
            refuseEntry(name, "EntryRepeated");
        }
        if (!isFolder(before) && name.starts_with(before) && name[before.size()] == '/') {
            refuseEntry(name, "EntryBelowFile");
        }
    }
}

void checkEntry(const ArchiveEntry& entry)
{
    checkName(entry.name);
    if (entry.isEncrypted) {
        refuseEntry(entry.name, "EntryEncrypted");
    }
    if (entry.method != storedMethod && entry.method != deflatedMethod) {
        refuseEntry(entry.name, "EntryMethod", {entry.method});
    }
    if (isFolder(entry.name) && entry.unpackedSize != 0) {
        refuseEntry(entry.name, "FolderWithContent");
    }
}

void checkEntries(const std::vector<ArchiveEntry>& entries, const ArchiveLimits& limits)
{
    if (entries.size() > limits.entries) {
        refuseArchive("TooManyEntries", {std::uint64_t{entries.size()}, std::uint64_t{limits.entries}});
    }
    std::uint64_t rest = limits.unpackedBytes;
    for (const ArchiveEntry& entry : entries) {
        checkEntry(entry);
        if (entry.unpackedSize > rest) {
            refuseArchive("UnpackedTooLarge", {std::uint64_t{limits.unpackedBytes}});
        }
        rest -= entry.unpackedSize;
    }
    checkNamesTogether(entries);
}

void checkPackedSize(std::uint64_t size, const ArchiveLimits& limits)
{
    if (size > limits.packedBytes) {
        refuseArchive("ArchiveTooLarge", {std::uint64_t{limits.packedBytes}});
    }
}

/// What is new in an archive, deflated, as an archive of its own whose pieces then go where they belong.
struct NewEntries {
    std::string bytes;
    ArchiveDirectory directory;
    std::unordered_map<std::string_view, const ArchiveEntry*> byName;  // null: the entry is to go

    explicit NewEntries(const std::vector<ArchiveChange>& changes);
};

NewEntries::NewEntries(const std::vector<ArchiveChange>& changes)
{
    std::vector<UnpackedEntry> contents;
    for (const ArchiveChange& change : changes) {
        checkName(change.name);
        if (!byName.emplace(change.name, nullptr).second) {
            refuseEntry(change.name, "EntryRepeated");
        }
        if (change.content) {
            contents.push_back({change.name, *change.content});
        }
    }
    if (contents.empty()) {
        return;
    }
    bytes = deflatedArchive(contents);
    directory = readArchiveDirectory(bytes, contents.size());
    clearTimes(bytes, directory);
    for (const ArchiveEntry& entry : directory.entries) {
        byName.at(entry.name) = &entry;
    }
}

/// The entries of the new archive, in their order.
std::vector<ArchiveEntry> merge(const std::vector<ArchiveEntry>& old, const NewEntries& changes)
{
    std::vector<ArchiveEntry> merged;
    std::unordered_set<std::string_view> replaced;
    for (const ArchiveEntry& entry : old) {
        const auto change = changes.byName.find(entry.name);
        if (change == changes.byName.end()) {
            merged.push_back(entry);
        } else if (change->second != nullptr) {
            merged.push_back(*change->second);
            replaced.insert(entry.name);
        }
    }
    std::ranges::copy_if(changes.directory.entries, std::back_inserter(merged),
                         [&](const ArchiveEntry& entry) { return !replaced.contains(entry.name); });
    return merged;
}

/// What a plain archive (without ZIP64) can hold at most.
ArchiveLimits plainLimits(const ArchiveLimits& limits)
{
    return {.packedBytes = std::min<std::size_t>(limits.packedBytes, 0xFFFFFFFE),
            .unpackedBytes = limits.unpackedBytes,
            .entries = std::min<std::size_t>(limits.entries, 0xFFFF)};
}

}  // namespace

struct Archive::Content {
    std::string bytes;
    ArchiveDirectory directory;
    std::vector<std::string> names;
    std::unordered_map<std::string_view, std::size_t> positions;  // into both, by name
    ZipReader reader;

    Content(std::string archive, const ArchiveLimits& limits);
};

Archive::Content::Content(std::string archive, const ArchiveLimits& limits) : bytes(std::move(archive))
{
    checkPackedSize(bytes.size(), limits);
    directory = readArchiveDirectory(bytes, limits.entries);
    checkEntries(directory.entries, limits);
    for (const ArchiveEntry& entry : directory.entries) {
        positions.emplace(entry.name, names.size());
        names.emplace_back(entry.name);
    }
    reader = ZipReader(bytes, directory.entries);
    for (std::size_t i = 0; i < names.size(); ++i) {
        reader.unpack(i, directory.entries[i], [](std::string_view) {});
    }
}

Archive::Archive(std::string bytes, const ArchiveLimits& limits)
    : m_content(std::make_unique<Content>(std::move(bytes), limits))
{
}

Archive::~Archive() = default;

const std::vector<std::string>& Archive::names() const noexcept
{
    return m_content->names;
}

bool Archive::has(std::string_view name) const
{
    return m_content->positions.contains(name);
}

std::string Archive::read(std::string_view name) const
{
    const auto found = m_content->positions.find(name);
    if (found == m_content->positions.end()) {
        refuseEntry(name, "EntryMissing");
    }
    const std::size_t position = found->second;
    const ArchiveEntry& entry = m_content->directory.entries[position];
    std::string result;
    result.reserve(entry.unpackedSize);
    m_content->reader.unpack(position, entry, [&result](std::string_view part) { result += part; });
    return result;
}

std::string Archive::pack(const Archive* base, const std::vector<ArchiveChange>& changes,
                          const ArchiveLimits& limits)
{
    static const ArchiveDirectory none;
    const ArchiveDirectory& old = base == nullptr ? none : base->m_content->directory;
    const NewEntries fresh(changes);
    const std::vector<ArchiveEntry> entries = merge(old.entries, fresh);
    const ArchiveLimits bounds = plainLimits(limits);
    checkEntries(entries, bounds);
    checkPackedSize(joinedSize(entries, old.comment), bounds);
    return joinArchive(entries, old.comment);
}

}  // namespace reference_host
