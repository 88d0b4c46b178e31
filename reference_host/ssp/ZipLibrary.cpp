#include "reference_host/ssp/ZipLibrary.hpp"

#include "reference_host/ssp/FileErrors.hpp"
#include "reference_host/support/QuotedText.hpp"
#include "reference_host/support/TextConversion.hpp"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace reference_host {

namespace {

constexpr zip_uint32_t deflateLevel = 6;
constexpr zip_uint16_t earliestDate = 0x21;  // 1980-01-01

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

[[noreturn]] void refuse(zip_error_t* error)
{
    const int code = zip_error_code_zip(error);
    if (code == ZIP_ER_NOZIP) {
        refuseArchive("NotAnArchive");
    }
    refuseArchive("ArchiveDamaged", {zipReason(error)});
}

/// Null if the library refuses the archive, which takes the source over only otherwise.
Zip tryToOpen(ZipSource& source, int flags, Error& error)
{
    Zip archive(zip_open_from_source(source.get(), flags, error.get()));
    if (archive) {
        static_cast<void>(source.release());
    }
    return archive;
}

/// Whether the names of the entries occur in the bytes in their order, and then once more: before the
/// contents, and in the directory at the end. A damaged name does not.
bool hasEveryNameTwice(std::string_view bytes, zip_t* archive)
{
    const zip_int64_t count = zip_get_num_entries(archive, 0);
    std::size_t position = 0;
    for (zip_int64_t i = 0; i < 2 * count; ++i) {
        const char* name = zip_get_name(archive, static_cast<zip_uint64_t>(i % count), ZIP_FL_ENC_RAW);
        position = name != nullptr ? bytes.find(name, position) : std::string_view::npos;
        if (position == std::string_view::npos) {
            return false;
        }
        position += std::string_view(name).size();
    }
    return true;
}

/// A source that owns a copy: libzip 1.7.3 frees the memory of one that is changed, whoever owns it. It does
/// not free an empty buffer, so an empty source has none.
ZipSource ownedSource(std::string_view bytes)
{
    Error error;
    std::unique_ptr<void, decltype(&std::free)> copy(bytes.empty() ? nullptr : std::malloc(bytes.size()),
                                                     std::free);
    if (copy == nullptr && !bytes.empty()) {
        zmsvThrowOutOfMemory();
    }
    std::copy(bytes.begin(), bytes.end(), static_cast<char*>(copy.get()));
    ZipSource source(zip_source_buffer_create(copy.get(), bytes.size(), 1, error.get()));
    if (source == nullptr) {
        refuse(error.get());
    }
    static_cast<void>(copy.release());
    return source;
}

std::string contentOf(zip_source_t* source)
{
    zip_stat_t stat{};
    if (zip_source_stat(source, &stat) < 0 || zip_source_open(source) < 0) {
        refuse(zip_source_error(source));
    }
    std::string bytes(stat.size, '\0');
    const zip_int64_t size = zip_source_read(source, bytes.data(), bytes.size());
    zip_source_close(source);
    if (!std::cmp_equal(size, bytes.size())) {
        refuse(zip_source_error(source));
    }
    return bytes;
}

}  // namespace

void refuseArchive(const char* key, std::vector<zmsvMessageArgument> arguments)
{
    throw fileError("InvalidArchive", {std::string(fileError(key, std::move(arguments)).what())});
}

void refuseEntry(std::string_view name, const char* key, std::vector<zmsvMessageArgument> arguments)
{
    const std::string shown = utf8FromUtf16(utf16FromUtf8(name));  // well-formed, whatever the bytes are
    throw fileError("InvalidEntry",
                    {quotedText(shown), std::string(fileError(key, std::move(arguments)).what())});
}

std::string zipReason(zip_error_t* error)
{
    if (zip_error_code_zip(error) == ZIP_ER_MEMORY) {
        zmsvThrowOutOfMemory();
    }
    return zip_error_strerror(error);
}

ZipSource zipSource(std::string_view bytes)
{
    Error error;
    ZipSource source(zip_source_buffer_create(bytes.data(), bytes.size(), 0, error.get()));
    if (source == nullptr) {
        refuse(error.get());
    }
    return source;
}

Zip openZip(std::string_view bytes)
{
    if (bytes.empty()) {  // the library takes this for an archive without entries
        refuseArchive("NotAnArchive");
    }
    Error error;
    ZipSource source = zipSource(bytes);
    Zip archive = tryToOpen(source, ZIP_RDONLY | ZIP_CHECKCONS, error);
    const int code = archive == nullptr ? zip_error_code_zip(error.get()) : ZIP_ER_OK;
    if (code == ZIP_ER_INCONS || code == ZIP_ER_EXISTS) {  // our check of names tells which one exists twice
        // `zip` states the size of an entry before it in a pipe, too, but not the rest.
        archive = tryToOpen(source, ZIP_RDONLY, error);
        if (archive != nullptr && !hasEveryNameTwice(bytes, archive.get())) {
            refuseArchive("ArchiveAmbiguous");
        }
    }
    if (archive == nullptr) {
        refuse(error.get());
    }
    return archive;
}

Zip openZipForWriting(std::string_view bytes, ZipSource& result)
{
    Error error;
    ZipSource source = ownedSource(bytes);
    zip_source_keep(source.get());  // once for the archive, once for the result
    result = ZipSource(source.get());
    Zip archive = tryToOpen(source, bytes.empty() ? ZIP_CREATE | ZIP_TRUNCATE : 0, error);
    if (archive == nullptr) {
        refuse(error.get());
    }
    return archive;
}

std::string writtenZip(Zip archive, zip_source_t* result)
{
    if (zip_close(archive.get()) < 0) {
        refuse(zip_get_error(archive.get()));
    }
    static_cast<void>(archive.release());  // closing has freed it
    return contentOf(result);
}

void addZipEntry(zip_t* archive, const std::string& name, std::string_view content)
{
    ZipSource source = zipSource(content);
    const zip_int64_t position = zip_file_add(archive, name.c_str(), source.get(), ZIP_FL_ENC_UTF_8);
    if (position < 0) {
        refuse(zip_get_error(archive));
    }
    static_cast<void>(source.release());
    const auto index = static_cast<zip_uint64_t>(position);
    if (zip_set_file_compression(archive, index, ZIP_CM_DEFLATE, deflateLevel) < 0 ||
        zip_file_set_dostime(archive, index, 0, earliestDate, 0) < 0) {
        refuse(zip_get_error(archive));
    }
}

}  // namespace reference_host
