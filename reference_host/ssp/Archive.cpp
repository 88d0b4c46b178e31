#include "reference_host/ssp/Archive.hpp"

#include "reference_host/ssp/ZipLibrary.hpp"
#include "reference_host/support/TextConversion.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace reference_host {

namespace {

struct Entry {
    std::string name;
    std::uint64_t size = 0;  // unpacked
};

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

/// No path twice, neither as a file and as a folder, and nothing below a file.
void checkNamesTogether(const std::vector<Entry>& entries)
{
    std::vector<std::string_view> names;
    names.reserve(entries.size());
    for (const Entry& entry : entries) {
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

void checkCount(std::uint64_t count, const ArchiveLimits& limits)
{
    if (count > limits.entries) {
        refuseArchive("TooManyEntries", {count, std::uint64_t{limits.entries}});
    }
}

void checkEntries(const std::vector<Entry>& entries, const ArchiveLimits& limits)
{
    checkCount(entries.size(), limits);
    std::uint64_t rest = limits.unpackedBytes;
    for (const Entry& entry : entries) {
        checkName(entry.name);
        if (isFolder(entry.name) && entry.size != 0) {
            refuseEntry(entry.name, "FolderWithContent");
        }
        if (entry.size > rest) {
            refuseArchive("UnpackedTooLarge", {std::uint64_t{limits.unpackedBytes}});
        }
        rest -= entry.size;
    }
    checkNamesTogether(entries);
}

void checkPackedSize(std::uint64_t size, const ArchiveLimits& limits)
{
    if (size > limits.packedBytes) {
        refuseArchive("ArchiveTooLarge", {std::uint64_t{limits.packedBytes}});
    }
}

/// What the archive's directory says of an entry. Its name in code page 437 becomes UTF-8.
Entry entryAt(zip_t* archive, std::uint64_t position)
{
    zip_stat_t stat{};
    if (zip_stat_index(archive, position, 0, &stat) < 0 || stat.name == nullptr) {
        refuseArchive("ArchiveDamaged", {zipReason(zip_get_error(archive))});
    }
    if (stat.encryption_method != ZIP_EM_NONE) {
        refuseEntry(stat.name, "EntryEncrypted");
    }
    if (stat.comp_method != ZIP_CM_STORE && stat.comp_method != ZIP_CM_DEFLATE) {
        refuseEntry(stat.name, "EntryMethod", {std::uint64_t{stat.comp_method}});
    }
    return {stat.name, stat.size};
}

std::vector<Entry> entriesOf(zip_t* archive, const ArchiveLimits& limits)
{
    const auto count = static_cast<std::uint64_t>(zip_get_num_entries(archive, 0));
    checkCount(count, limits);
    std::vector<Entry> entries;
    for (std::uint64_t i = 0; i < count; ++i) {
        entries.push_back(entryAt(archive, i));
    }
    return entries;
}

struct CloseEntry {
    void operator()(zip_file_t* file) const noexcept { zip_fclose(file); }
};

/// Passes the content of an entry on in parts, no more than the entry declares. When this returns, the
/// library has found the checksum right.
template <class Take>
void unpack(zip_t* archive, std::uint64_t position, const Entry& entry, const Take& take)
{
    const std::unique_ptr<zip_file_t, CloseEntry> file(zip_fopen_index(archive, position, 0));
    if (file == nullptr) {
        refuseEntry(entry.name, "EntryDamaged", {zipReason(zip_get_error(archive))});
    }
    std::array<char, 65536> part;
    std::uint64_t total = 0;
    for (;;) {
        const zip_int64_t size = zip_fread(file.get(), part.data(), part.size());
        if (size < 0) {
            refuseEntry(entry.name, "EntryDamaged", {zipReason(zip_file_get_error(file.get()))});
        }
        total += static_cast<std::uint64_t>(size);
        if (total > entry.size || (size == 0 && total < entry.size)) {
            refuseEntry(entry.name, "EntryLength", {entry.size});
        }
        if (size == 0) {
            return;
        }
        take(std::string_view(part.data(), static_cast<std::size_t>(size)));
    }
}

/// Changes the archive and the list of its entries, in which a removed one keeps its place without a name.
void apply(const ArchiveChange& change, zip_t* archive, std::vector<Entry>& entries)
{
    const auto former = std::ranges::find(entries, change.name, &Entry::name);
    if (former != entries.end()) {
        zip_delete(archive, static_cast<zip_uint64_t>(former - entries.begin()));
        former->name.clear();
    }
    if (change.content) {
        addZipEntry(archive, change.name, *change.content);
        entries.push_back({change.name, change.content->size()});
    }
}

}  // namespace

struct Archive::Content {
    std::string bytes;
    Zip archive;
    std::vector<Entry> entries;
    std::vector<std::string> names;
    std::unordered_map<std::string_view, std::size_t> positions;  // by name
    std::vector<bool> isVerified;

    Content(std::string content, const ArchiveLimits& limits);
};

Archive::Content::Content(std::string content, const ArchiveLimits& limits) : bytes(std::move(content))
{
    checkPackedSize(bytes.size(), limits);
    archive = openZip(bytes);
    entries = entriesOf(archive.get(), limits);
    checkEntries(entries, limits);
    for (const Entry& entry : entries) {
        positions.emplace(entry.name, names.size());
        names.push_back(entry.name);
    }
    isVerified.resize(entries.size());
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

std::string Archive::read(std::string_view name, std::size_t maximum) const
{
    const auto found = m_content->positions.find(name);
    if (found == m_content->positions.end()) {
        refuseEntry(name, "EntryMissing");
    }
    const Entry& entry = m_content->entries[found->second];
    if (entry.size > maximum) {
        refuseEntry(name, "EntryTooLarge", {entry.size, std::uint64_t{maximum}});
    }
    std::string result;
    result.reserve(entry.size);
    unpack(m_content->archive.get(), found->second, entry,
           [&result](std::string_view part) { result += part; });
    m_content->isVerified[found->second] = true;
    return result;
}

void Archive::verify() const
{
    for (std::size_t i = 0; i < m_content->entries.size(); ++i) {
        if (!m_content->isVerified[i]) {
            unpack(m_content->archive.get(), i, m_content->entries[i], [](std::string_view) {});
            m_content->isVerified[i] = true;
        }
    }
}

std::string Archive::obstacleTo(const std::vector<std::string>& names) const
{
    for (const std::string& name : names) {
        for (const std::string& entry : m_content->names) {
            const bool isAbove = !isFolder(entry) && name.starts_with(entry + "/");
            if (isAbove || entry.starts_with(name + "/")) {
                return entry;
            }
        }
    }
    return {};
}

std::string Archive::pack(const Archive* base, const std::vector<ArchiveChange>& changes,
                          const ArchiveLimits& limits)
{
    std::vector<Entry> entries = base != nullptr ? base->m_content->entries : std::vector<Entry>();
    ZipSource result;
    Zip archive = openZipForWriting(base != nullptr ? std::string_view(base->m_content->bytes) : "", result);
    std::unordered_set<std::string_view> changed;
    for (const ArchiveChange& change : changes) {
        checkName(change.name);
        if (!changed.insert(change.name).second) {
            refuseEntry(change.name, "EntryRepeated");
        }
        apply(change, archive.get(), entries);
    }
    std::erase_if(entries, [](const Entry& entry) { return entry.name.empty(); });
    checkEntries(entries, limits);
    std::string bytes = writtenZip(std::move(archive), result.get());
    checkPackedSize(bytes.size(), limits);
    return bytes;
}

}  // namespace reference_host
