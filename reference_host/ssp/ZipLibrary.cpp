#include "reference_host/ssp/ZipLibrary.hpp"

#include "host/Exceptions.hpp"

#include <zip.h>
#include <array>
#include <cstdint>
#include <utility>

namespace reference_host {

namespace {

constexpr zip_uint32_t deflateLevel = 6;

/// Holds one count on a source; the archive that takes a source over takes that count.
struct FreeSource {
    void operator()(zip_source_t* source) const noexcept { zip_source_free(source); }
};
using Source = std::unique_ptr<zip_source_t, FreeSource>;

struct CloseFile {
    void operator()(zip_file_t* file) const noexcept { zip_fclose(file); }
};
using File = std::unique_ptr<zip_file_t, CloseFile>;

/// An error of the library, emptied at the end.
class Error {
public:
    Error() { zip_error_init(&m_error); }
    ~Error() { zip_error_fini(&m_error); }
    Error(const Error&) = delete;
    Error& operator=(const Error&) = delete;
    zip_error_t* get() noexcept { return &m_error; }

private:
    zip_error_t m_error{};
};

std::string reason(zip_error_t* error)
{
    if (zip_error_code_zip(error) == ZIP_ER_MEMORY) {
        zmsvThrowOutOfMemory();
    }
    return zip_error_strerror(error);
}

[[noreturn]] void refuse(zip_error_t* error)
{
    refuseArchive("ArchiveDamaged", {reason(error)});
}

Source bufferSource(std::string_view bytes)
{
    Error error;
    Source source(zip_source_buffer_create(bytes.data(), bytes.size(), 0, error.get()));
    if (source == nullptr) {
        refuse(error.get());
    }
    return source;
}

/// The archive takes the source over, but only when it can be opened.
zip_t* open(Source source, int flags)
{
    Error error;
    zip_t* archive = zip_open_from_source(source.get(), flags, error.get());
    if (archive == nullptr) {
        refuse(error.get());
    }
    static_cast<void>(source.release());
    return archive;
}

/// The same holds for an entry's source.
void add(zip_t* archive, const UnpackedEntry& entry)
{
    Source source = bufferSource(entry.content);
    const zip_int64_t position =
        zip_file_add(archive, std::string(entry.name).c_str(), source.get(), ZIP_FL_ENC_UTF_8);
    if (position < 0) {
        refuse(zip_get_error(archive));
    }
    static_cast<void>(source.release());
    if (zip_set_file_compression(archive, static_cast<zip_uint64_t>(position), ZIP_CM_DEFLATE, deflateLevel) <
        0) {
        refuse(zip_get_error(archive));
    }
}

std::string content(zip_source_t* source)
{
    zip_stat_t stat{};
    if (zip_source_stat(source, &stat) < 0 || zip_source_open(source) < 0) {
        refuse(zip_source_error(source));
    }
    std::string result(stat.size, '\0');
    const zip_int64_t size = zip_source_read(source, result.data(), result.size());
    zip_source_close(source);
    if (size < 0 || static_cast<zip_uint64_t>(size) != stat.size) {
        refuse(zip_source_error(source));
    }
    return result;
}

}  // namespace

void ZipReader::Discard::operator()(zip* archive) const noexcept
{
    zip_discard(archive);
}

ZipReader::ZipReader(std::string_view bytes, const std::vector<ArchiveEntry>& entries)
    : m_archive(open(bufferSource(bytes), ZIP_RDONLY))
{
    const zip_int64_t count = zip_get_num_entries(m_archive.get(), 0);
    if (!std::cmp_equal(count, entries.size())) {
        refuseArchive("ArchiveAmbiguous");
    }
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const char* name = zip_get_name(m_archive.get(), i, ZIP_FL_ENC_RAW);
        if (name == nullptr || name != entries[i].name) {
            refuseEntry(entries[i].name, "EntryNameAmbiguous");
        }
    }
}

void ZipReader::unpack(std::size_t position, const ArchiveEntry& entry,
                       const std::function<void(std::string_view)>& take) const
{
    const File file(zip_fopen_index(m_archive.get(), position, 0));
    if (file == nullptr) {
        refuseEntry(entry.name, "EntryDamaged", {reason(zip_get_error(m_archive.get()))});
    }
    std::array<char, 65536> buffer;
    std::uint64_t total = 0;
    for (;;) {
        const zip_int64_t size = zip_fread(file.get(), buffer.data(), buffer.size());
        if (size < 0) {
            refuseEntry(entry.name, "EntryDamaged", {reason(zip_file_get_error(file.get()))});
        }
        total += static_cast<std::uint64_t>(size);
        if (total > entry.unpackedSize || (size == 0 && total < entry.unpackedSize)) {
            refuseEntry(entry.name, "EntryLength", {entry.unpackedSize});
        }
        if (size == 0) {
            return;
        }
        take({buffer.data(), static_cast<std::size_t>(size)});
    }
}

std::string deflatedArchive(const std::vector<UnpackedEntry>& entries)
{
    Source source = bufferSource({});
    zip_source_keep(source.get());  // once for the archive, once for us
    const Source result(source.get());
    std::unique_ptr<zip_t, decltype(&zip_discard)> archive(open(std::move(source), ZIP_CREATE | ZIP_TRUNCATE),
                                                           zip_discard);
    for (const UnpackedEntry& entry : entries) {
        add(archive.get(), entry);
    }
    if (zip_close(archive.get()) < 0) {
        refuse(zip_get_error(archive.get()));
    }
    static_cast<void>(archive.release());  // closing took it
    return content(result.get());
}

}  // namespace reference_host
