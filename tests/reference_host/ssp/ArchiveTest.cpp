#include "reference_host/ssp/Archive.hpp"

#include "host/Exceptions.hpp"
#include "tests/reference_host/ssp/ZipBytes.hpp"
#include "tests/support/HostTest.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <string>
#include <string_view>
#include <vector>

using reference_host::Archive;
using reference_host::deflatedPlainly;
using reference_host::wideZip;
using reference_host::zipBytes;
using reference_host::zipChecksum;
using reference_host::ZipEntry;
using reference_host::zipNumber;

namespace {

using Names = std::vector<std::string>;

class ArchiveTest : public reference_host::HostTest {
protected:
    /// Two entries with everything that an archive can say about one.
    static std::vector<ZipEntry> entriesOfOthers()
    {
        const std::string extra = std::string("UT") + zipNumber(6, 2) + "\x01times";
        return {{.name = "documentation/",
                 .time = 0x5A8B6C41,
                 .attributes = 0x41ED0010,
                 .recordExtra = extra,
                 .headerExtra = extra,
                 .comment = "a folder"},
                {.name = "resources/wheel.fmu",
                 .packed = "what another tool made",
                 .time = 0,
                 .attributes = 0x81A40000,
                 .recordExtra = std::string("xy") + zipNumber(3, 2) + "abc",
                 .comment = "an entry"}};
    }

    static std::string zipOfOthers() { return zipBytes(entriesOfOthers(), {.comment = "from afar"}); }

    static bool contains(std::string_view text, std::string_view piece)
    {
        return text.find(piece) != std::string_view::npos;
    }
};

/// Another time zone, until the end.
class TimeZone {
public:
    explicit TimeZone(const char* zone)
    {
        setenv("TZ", zone, 1);
        tzset();
    }
    ~TimeZone()
    {
        unsetenv("TZ");
        tzset();
    }
    TimeZone(const TimeZone&) = delete;
    TimeZone& operator=(const TimeZone&) = delete;
};

TEST_F(ArchiveTest, PackedEntriesAreReadBack)
{
    const std::string large(300000, 'x');
    const Archive archive(Archive::pack(
        nullptr, {{"SystemStructure.ssd", "<a/>"}, {"extra/Größe.json", large}, {"empty", std::string()}}));
    EXPECT_EQ(archive.names(), (Names{"SystemStructure.ssd", "extra/Größe.json", "empty"}));
    EXPECT_EQ(archive.read("SystemStructure.ssd"), "<a/>");
    EXPECT_EQ(archive.read("extra/Größe.json"), large);
    EXPECT_EQ(archive.read("empty"), "");
}

TEST_F(ArchiveTest, ContentMayHoldAnyBytes)
{
    std::string bytes;
    for (int i = 0; i < 256; ++i) {
        bytes += static_cast<char>(i);
    }
    EXPECT_EQ(Archive(Archive::pack(nullptr, {{"a", bytes}})).read("a"), bytes);
}

TEST_F(ArchiveTest, EntriesAreDeflated)
{
    EXPECT_LT(Archive::pack(nullptr, {{"a", std::string(100000, 'x')}}).size(), 1000U);
}

TEST_F(ArchiveTest, HasWhatItNames)
{
    const Archive archive(zipOfOthers());
    EXPECT_TRUE(archive.has("resources/wheel.fmu"));
    EXPECT_TRUE(archive.has("documentation/"));
    EXPECT_FALSE(archive.has("documentation"));
    EXPECT_FALSE(archive.has("resources"));
    EXPECT_FALSE(archive.has(""));
}

TEST_F(ArchiveTest, ReadingWhatIsNotThereIsRefused)
{
    const Archive archive(zipOfOthers());
    try {
        archive.read("SystemStructure.ssd");
        FAIL() << "was read";
    } catch (const zmsvException& error) {
        EXPECT_STREQ(error.what(), "\"SystemStructure.ssd\": The archive has no such entry.");
    }
}

TEST_F(ArchiveTest, StoredAndDeflatedEntriesAreRead)
{
    const std::string content = "not much";
    const Archive archive(zipBytes({{.name = "stored", .packed = content},
                                    {.name = "deflated",
                                     .packed = deflatedPlainly(content),
                                     .method = 8,
                                     .unpackedSize = content.size(),
                                     .checksum = zipChecksum(content)}}));
    EXPECT_EQ(archive.read("stored"), content);
    EXPECT_EQ(archive.read("deflated"), content);
}

TEST_F(ArchiveTest, WideArchivesAreRead)
{
    const Archive archive(wideZip());
    EXPECT_EQ(archive.read("narrow"), "1234");
    EXPECT_EQ(archive.read("wide"), "5678");
}

TEST_F(ArchiveTest, WideEntryMoves)
{
    const Archive archive(wideZip());
    const Archive packed(Archive::pack(&archive, {{"narrow", "another length"}}));
    EXPECT_EQ(packed.names(), (Names{"wide", "narrow"}));
    EXPECT_EQ(packed.read("wide"), "5678");
}

TEST_F(ArchiveTest, LengthsMayFollowTheContent)
{
    // A streaming writer: no lengths in the entry's header, and a descriptor behind the content.
    const std::string content = "streamed";
    const std::string lengths =
        zipNumber(zipChecksum(content), 4) + zipNumber(content.size(), 4) + zipNumber(content.size(), 4);
    std::string bytes =
        zipBytes({{.name = "a", .packed = content, .flags = 8, .after = "PK\x07\x08" + lengths},
                  {.name = "b", .packed = "more"}});
    bytes.replace(14, 8, std::string(8, '\0'));  // some tools leave the third, the unpacked length
    const Archive archive(bytes);
    EXPECT_EQ(archive.read("a"), content);
    EXPECT_EQ(archive.read("b"), "more");
    EXPECT_EQ(Archive::pack(&archive, {}), bytes);
}

TEST_F(ArchiveTest, BytesAreKeptWhateverBecomesOfTheOriginal)
{
    std::string bytes = zipOfOthers();
    const Archive archive(bytes);
    bytes.assign(bytes.size(), '\0');
    EXPECT_EQ(archive.read("resources/wheel.fmu"), "what another tool made");
}

TEST_F(ArchiveTest, PackingWithoutChangesGivesTheSameBytes)
{
    const std::string bytes = zipOfOthers();
    const Archive archive(bytes);
    EXPECT_EQ(Archive::pack(&archive, {}), bytes);
}

TEST_F(ArchiveTest, UnchangedEntriesKeepWhatTheArchiveSaysOfThem)
{
    const std::string bytes = zipOfOthers();
    const Archive archive(bytes);
    const std::string packed = Archive::pack(&archive, {{"extra/ours.json", "{}"}});
    EXPECT_TRUE(contains(packed, "what another tool made"));
    EXPECT_TRUE(contains(packed, "a folder"));
    EXPECT_TRUE(contains(packed, "\x01times"));
    EXPECT_TRUE(contains(packed, zipNumber(0x41ED0010, 4)));
    EXPECT_TRUE(packed.ends_with("from afar"));
    EXPECT_EQ(Archive(packed).names(), (Names{"documentation/", "resources/wheel.fmu", "extra/ours.json"}));
}

TEST_F(ArchiveTest, ReplacedEntryIsAmongTheNewOnes)
{
    const Archive archive(
        zipBytes({{.name = "a", .packed = "1"}, {.name = "b", .packed = "2"}, {.name = "c", .packed = "3"}}));
    const Archive packed(Archive::pack(&archive, {{"d", "4"}, {"b", "two, and longer"}}));
    EXPECT_EQ(packed.names(), (Names{"a", "c", "d", "b"}));
    EXPECT_EQ(packed.read("a"), "1");
    EXPECT_EQ(packed.read("b"), "two, and longer");
    EXPECT_EQ(packed.read("c"), "3");
    EXPECT_EQ(packed.read("d"), "4");
}

TEST_F(ArchiveTest, RemovedEntryIsGoneWithAllItsBytes)
{
    const Archive archive(zipBytes({{.name = "a", .packed = "secret"}, {.name = "b", .packed = "2"}}));
    const std::string packed = Archive::pack(&archive, {{"a", {}}});
    EXPECT_FALSE(contains(packed, "secret"));
    EXPECT_EQ(Archive(packed).names(), Names{"b"});
    EXPECT_EQ(Archive(packed).read("b"), "2");
}

TEST_F(ArchiveTest, NamesInCodePage437AreRead)
{
    const Archive archive(zipBytes({{.name = "gr\x94\xE1"
                                             "e.txt",
                                     .packed = "1"}}));
    EXPECT_EQ(archive.names(), Names{"größe.txt"});
    EXPECT_EQ(archive.read("größe.txt"), "1");
    const Archive packed(Archive::pack(&archive, {{"b", "2"}}));
    EXPECT_EQ(packed.names(), (Names{"größe.txt", "b"}));
}

TEST_F(ArchiveTest, ArchivesThatZipWritesIntoAPipeAreRead)
{
    // It states the size of the content before it, but neither the packed size nor the checksum.
    const std::string content = "streamed";
    const std::string lengths =
        zipNumber(zipChecksum(content), 4) + zipNumber(content.size(), 4) + zipNumber(content.size(), 4);
    std::string bytes =
        zipBytes({{.name = "a", .packed = content, .flags = 8, .after = "PK\x07\x08" + lengths}});
    bytes.replace(14, 8, std::string(8, '\0'));
    EXPECT_EQ(Archive(bytes).read("a"), content);
    const Archive archive(bytes);
    EXPECT_EQ(Archive(Archive::pack(&archive, {{"b", "2"}})).read("a"), content);
}

TEST_F(ArchiveTest, ObstaclesToNewEntriesAreFound)
{
    const Archive archive(
        zipBytes({{.name = "extra"}, {.name = "b/c.json/d"}, {.name = "e/"}, {.name = "f/g"}}));
    EXPECT_EQ(archive.obstacleTo({"extra/ours/a.json"}), "extra");
    EXPECT_EQ(archive.obstacleTo({"b/x.json", "b/c.json"}), "b/c.json/d");
    EXPECT_EQ(archive.obstacleTo({"e"}), "e/");
    EXPECT_EQ(archive.obstacleTo({"e/a", "f/g", "extras/a", "b/c.jso"}), "");
}

TEST_F(ArchiveTest, RemovingWhatIsNotThereChangesNothing)
{
    const std::string bytes = zipOfOthers();
    const Archive archive(bytes);
    EXPECT_EQ(Archive::pack(&archive, {{"nobody", {}}}), bytes);
}

TEST_F(ArchiveTest, FolderMayBecomeFile)
{
    const Archive archive(zipOfOthers());
    const Archive packed(Archive::pack(&archive, {{"documentation/", {}}, {"documentation", "text"}}));
    EXPECT_EQ(packed.names(), (Names{"resources/wheel.fmu", "documentation"}));
}

TEST_F(ArchiveTest, SameInputGivesTheSameBytesInEveryTimeZone)
{
    const Archive archive(zipOfOthers());
    const auto pack = [&archive] {
        return Archive::pack(&archive, {{"new", "content"}, {"resources/wheel.fmu", "other content"}});
    };
    std::vector<std::string> packed;
    for (const char* zone : {"UTC", "America/Los_Angeles", "Pacific/Kiritimati"}) {
        const TimeZone other(zone);
        packed.push_back(pack());
    }
    EXPECT_EQ(packed[1], packed[0]);
    EXPECT_EQ(packed[2], packed[0]);
}

TEST_F(ArchiveTest, NewEntriesBearTheEarliestTime)
{
    const std::string packed = Archive::pack(nullptr, {{"a", "content"}});
    const std::size_t header = packed.find("PK\x01\x02");
    EXPECT_EQ(packed.substr(10, 4), zipNumber(0x00210000, 4));
    EXPECT_EQ(packed.substr(header + 12, 4), zipNumber(0x00210000, 4));
}

TEST_F(ArchiveTest, EntriesMayStandInAnotherOrderThanInTheDirectory)
{
    std::string first = zipBytes({{.name = "a", .packed = "1"}});
    const std::size_t length = first.find("PK\x01\x02");
    const std::string bytes = zipBytes(
        {{.name = "b", .packed = "2", .position = length}, {.name = "a", .packed = "1", .position = 0}});
    // Both records have the same length, so they can change places.
    const std::string swapped =
        bytes.substr(length, length) + bytes.substr(0, length) + bytes.substr(2 * length);
    const Archive archive(swapped);
    EXPECT_EQ(archive.names(), (Names{"b", "a"}));
    EXPECT_EQ(archive.read("a"), "1");
    EXPECT_EQ(archive.read("b"), "2");
    EXPECT_EQ(Archive(Archive::pack(&archive, {{"c", "3"}})).read("a"), "1");
}

}  // namespace
