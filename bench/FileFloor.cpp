// The least that opening and saving a model file can cost: its bytes through bare libzip, libxml2 and
// nlohmann-json, without a host, a model or a check. bench/model_files.py compares with it.
//
//     zm_file_floor ARCHIVE COPY

#include <libxml/parser.h>
#include <libxml/tree.h>
#include <sys/resource.h>
#include <zip.h>
#include <chrono>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

struct Entry {
    std::string name;
    std::string content;
};

void require(bool isDone, const char* what)
{
    if (!isDone) {
        throw std::runtime_error(what);
    }
}

std::vector<Entry> unpacked(const char* file)
{
    const std::unique_ptr<zip_t, decltype(&zip_discard)> archive(zip_open(file, ZIP_RDONLY, nullptr),
                                                                 zip_discard);
    require(archive != nullptr, "The archive cannot be opened.");
    std::vector<Entry> entries;
    for (zip_int64_t i = 0; i < zip_get_num_entries(archive.get(), 0); ++i) {
        zip_stat_t stat{};
        require(zip_stat_index(archive.get(), static_cast<zip_uint64_t>(i), 0, &stat) == 0, "No entry.");
        Entry entry{stat.name, std::string(stat.size, '\0')};
        zip_file_t* const content = zip_fopen_index(archive.get(), static_cast<zip_uint64_t>(i), 0);
        require(std::cmp_equal(zip_fread(content, entry.content.data(), stat.size), stat.size),
                "No content.");
        zip_fclose(content);
        entries.push_back(std::move(entry));
    }
    return entries;
}

void pack(const char* file, const std::vector<Entry>& entries)
{
    zip_t* const archive = zip_open(file, ZIP_CREATE | ZIP_TRUNCATE, nullptr);
    require(archive != nullptr, "The copy cannot be written.");
    for (const Entry& entry : entries) {
        zip_source_t* const source =
            zip_source_buffer(archive, entry.content.data(), entry.content.size(), 0);
        require(zip_file_add(archive, entry.name.c_str(), source, ZIP_FL_ENC_UTF_8) >= 0, "No entry.");
    }
    require(zip_close(archive) == 0, "The copy cannot be written.");
}

std::string throughXml(const std::string& text)
{
    const std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)> document(
        xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, nullptr, XML_PARSE_HUGE),
        xmlFreeDoc);
    require(document != nullptr, "The description is not XML.");
    xmlChar* written = nullptr;
    int size = 0;
    xmlDocDumpMemory(document.get(), &written, &size);
    std::string result(reinterpret_cast<const char*>(written), static_cast<std::size_t>(size));
    xmlFree(written);
    return result;
}

std::string throughJson(const std::string& text)
{
    return nlohmann::ordered_json::parse(text).dump();
}

void measure(const char* file, const char* copy)
{
    const Clock::time_point start = Clock::now();
    std::vector<Entry> entries = unpacked(file);
    for (Entry& entry : entries) {
        const bool isXml = std::string_view(entry.name).ends_with(".ssd");
        entry.content = isXml ? throughXml(entry.content) : throughJson(entry.content);
    }
    pack(copy, entries);
    const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    std::cout << nlohmann::json{{"seconds", seconds}, {"peak", usage.ru_maxrss}} << '\n';
}

}  // namespace

int main(int count, char** arguments)
{
    try {
        require(count == 3, "usage: zm_file_floor ARCHIVE COPY");
        measure(arguments[1], arguments[2]);
        return 0;
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
