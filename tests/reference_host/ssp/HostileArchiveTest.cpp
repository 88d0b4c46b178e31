#include "reference_host/ssp/Archive.hpp"

#include "host/Exceptions.hpp"
#include "tests/reference_host/ssp/ZipBytes.hpp"
#include "tests/support/HostTest.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using reference_host::Archive;
using reference_host::ArchiveChange;
using reference_host::ArchiveLimits;
using reference_host::deflatedPlainly;
using reference_host::wideZip;
using reference_host::zipBytes;
using reference_host::zipChecksum;
using reference_host::ZipEntry;
using reference_host::zipNumber;

namespace {

/// What a refusal says; nothing when there is none.
template <typename Action>
std::string refusal(const Action& action)
{
    try {
        action();
    } catch (const zmsvException& error) {
        return error.what();
    }
    return {};
}

std::string readingRefusal(const std::string& bytes, const ArchiveLimits& limits = {})
{
    return refusal([&] { Archive(bytes, limits).verify(); });
}

std::string packingRefusal(const std::vector<ArchiveChange>& changes, const ArchiveLimits& limits = {})
{
    return refusal([&] { Archive::pack(nullptr, changes, limits); });
}

class HostileArchiveTest : public reference_host::HostTest {};

struct BadName {
    const char* what;
    std::string name;
    std::string refusal;
    bool isReadAsOtherName = false;  ///< as code page 437, or up to the NUL
};

void PrintTo(const BadName& name, std::ostream* out)
{
    *out << name.what;
}

class BadNameTest : public HostileArchiveTest, public ::testing::WithParamInterface<BadName> {};

TEST_P(BadNameTest, IsRefusedOnReading)
{
    if (!GetParam().isReadAsOtherName) {
        EXPECT_EQ(readingRefusal(zipBytes({{.name = GetParam().name}})), GetParam().refusal);
    }
}

TEST_P(BadNameTest, IsRefusedOnPacking)
{
    EXPECT_EQ(packingRefusal({{GetParam().name, "content"}}), GetParam().refusal);
}

TEST_P(BadNameTest, IsRefusedForWhatIsTakenAway)
{
    EXPECT_EQ(packingRefusal({{GetParam().name, {}}}), GetParam().refusal);
}

const std::string notInside = ": The name is not a plain path inside the archive.";
const std::string badCharacter = ": The name has a backslash or a NUL character.";
const std::string notUtf8 = ": The name is not UTF-8.";

INSTANTIATE_TEST_SUITE_P(
    , BadNameTest,
    ::testing::Values(BadName{"Empty", "", "\"\": An entry needs a name."},
                      BadName{"Climbing", "../a", "\"../a\"" + notInside},
                      BadName{"ClimbingInside", "a/../../b", "\"a/../../b\"" + notInside},
                      BadName{"ClimbingAtTheEnd", "a/..", "\"a/..\"" + notInside},
                      BadName{"ClimbingFolder", "a/../", "\"a/../\"" + notInside},
                      BadName{"Here", "./a", "\"./a\"" + notInside},
                      BadName{"HereAlone", ".", "\".\"" + notInside},
                      BadName{"Absolute", "/etc/passwd", "\"/etc/passwd\"" + notInside},
                      BadName{"RootAlone", "/", "\"/\"" + notInside},
                      BadName{"EmptyComponent", "a//b", "\"a//b\"" + notInside},
                      BadName{"EmptyLastComponent", "a//", "\"a//\"" + notInside},
                      BadName{"Drive", "C:/a", "\"C:/a\"" + notInside},
                      BadName{"DriveAlone", "c:a", "\"c:a\"" + notInside},
                      BadName{"Backslash", "..\\a", "\"..\\\\a\"" + badCharacter},
                      BadName{"Nul", std::string("a\0b", 3), "\"a\\x00b\"" + badCharacter, true},
                      BadName{"LoneByte", "a\xFF", "\"a\uFFFD\"" + notUtf8, true},
                      BadName{"Overlong", "a\xC0\xAF", "\"a\uFFFD\uFFFD\"" + notUtf8, true},
                      BadName{"CutCharacter", "a\xE2\x82", "\"a\uFFFD\"" + notUtf8, true}),
    [](const auto& instance) { return instance.param.what; });

TEST_F(HostileArchiveTest, NamesThatOnlyLookBadAreAccepted)
{
    for (const std::string name :
         {"..a", "a..", "...", ".hidden/a.", "1:a", "ab:c", "a/b:", "Ä/\U0001F600", "a b", "~"}) {
        EXPECT_EQ(readingRefusal(zipBytes({{.name = name}})), "") << name;
    }
}

TEST_F(HostileArchiveTest, RepeatedEntryIsRefused)
{
    EXPECT_EQ(readingRefusal(zipBytes({{.name = "a"}, {.name = "b"}, {.name = "a"}})),
              "\"a\": The archive has two entries of this name.");
    EXPECT_EQ(packingRefusal({{"a", "1"}, {"a", "2"}}), "\"a\": The archive has two entries of this name.");
}

TEST_F(HostileArchiveTest, EntryBelowFileIsRefused)
{
    const std::string reason = "\"a/b\": The entry lies below one that is not a folder.";
    EXPECT_EQ(readingRefusal(zipBytes({{.name = "a/b"}, {.name = "a.b"}, {.name = "a"}})), reason);
    EXPECT_EQ(packingRefusal({{"a", "1"}, {"a!", "2"}, {"a/b", "3"}}), reason);
}

TEST_F(HostileArchiveTest, PathThatIsFileAndFolderIsRefused)
{
    EXPECT_EQ(readingRefusal(zipBytes({{.name = "a/"}, {.name = "a"}})),
              "\"a/\": The entry lies below one that is not a folder.");
}

TEST_F(HostileArchiveTest, NewEntryBelowAnOldFileIsRefused)
{
    const Archive archive(zipBytes({{.name = "a", .packed = "1"}}));
    EXPECT_EQ(refusal([&] {
                  Archive::pack(&archive, {{"a/b", "2"}});
              }),
              "\"a/b\": The entry lies below one that is not a folder.");
}

TEST_F(HostileArchiveTest, FolderWithContentIsRefused)
{
    const std::string reason = "\"a/\": The entry is a folder and has content.";
    EXPECT_EQ(readingRefusal(zipBytes({{.name = "a/", .packed = "1"}})), reason);
    EXPECT_EQ(packingRefusal({{"a/", "1"}}), reason);
}

TEST_F(HostileArchiveTest, EncryptedEntryIsRefused)
{
    for (const std::uint64_t flag : {0x0001U, 0x0041U}) {
        EXPECT_EQ(readingRefusal(zipBytes({{.name = "a", .packed = "1", .flags = flag}})),
                  "\"a\": The entry is encrypted.");
    }
}

TEST_F(HostileArchiveTest, OtherMethodsAreRefused)
{
    for (const std::uint64_t method : {1U, 9U, 12U, 14U, 93U}) {
        EXPECT_EQ(readingRefusal(zipBytes({{.name = "a", .packed = "1", .method = method}})),
                  "\"a\": The entry is packed by method " + std::to_string(method) +
                      "; stored (0) and deflated (8) are accepted.");
    }
}

TEST_F(HostileArchiveTest, EntryThatUnpacksToMoreThanItDeclaresIsRefused)
{
    EXPECT_EQ(readingRefusal(zipBytes({{.name = "a",
                                        .packed = deflatedPlainly("content"),
                                        .method = 8,
                                        .unpackedSize = 3,
                                        .checksum = zipChecksum("con")}})),
              "\"a\": The entry does not unpack to the 3 bytes that it declares.");
}

TEST_F(HostileArchiveTest, EntryThatUnpacksToLessThanItDeclaresIsRefused)
{
    EXPECT_NE(readingRefusal(zipBytes({{.name = "a",
                                        .packed = deflatedPlainly("con"),
                                        .method = 8,
                                        .unpackedSize = 7,
                                        .checksum = zipChecksum("con")}})),
              "");
}

TEST_F(HostileArchiveTest, StoredEntryOfTwoLengthsIsRefused)
{
    EXPECT_NE(readingRefusal(zipBytes({{.name = "a", .packed = "content", .unpackedSize = 3}})), "");
    EXPECT_NE(readingRefusal(zipBytes({{.name = "a", .packed = "content", .unpackedSize = 9}})), "");
}

TEST_F(HostileArchiveTest, WrongChecksumIsRefused)
{
    EXPECT_EQ(readingRefusal(zipBytes({{.name = "a", .packed = "content", .checksum = 1}})),
              "\"a\": The entry is damaged: CRC error.");
}

TEST_F(HostileArchiveTest, EntryOutsideTheArchiveIsRefused)
{
    for (const std::uint64_t position : {0x100U, 0x7FFFFFFFU, 0xFFFFFFFEU}) {
        EXPECT_NE(readingRefusal(zipBytes({{.name = "a"}, {.name = "b", .position = position}})), "");
    }
}

TEST_F(HostileArchiveTest, EntryOfTwoNamesIsRefused)
{
    EXPECT_EQ(readingRefusal(zipBytes({{.name = "a", .packed = "1", .recordName = "b"}})),
              "The archive can be read in two ways.");
}

TEST_F(HostileArchiveTest, WrongCountOfEntriesIsRefused)
{
    for (const std::uint64_t count : {0U, 1U, 3U, 65535U}) {
        EXPECT_NE(readingRefusal(zipBytes({{.name = "a"}, {.name = "b"}}, {.count = count})), "") << count;
    }
}

TEST_F(HostileArchiveTest, WhatIsNoArchiveIsRefused)
{
    for (const std::string bytes : {"", "x", "<?xml version='1.0'?>", "PK\x03\x04", "PK\x05\x06"}) {
        EXPECT_NE(readingRefusal(bytes), "");
    }
    EXPECT_EQ(readingRefusal(std::string(100000, '\0')), "It is not a ZIP archive, or not all of one.");
}

TEST_F(HostileArchiveTest, TooManyEntriesAreRefused)
{
    const ArchiveLimits limits{.entries = 2};
    EXPECT_EQ(readingRefusal(zipBytes({{.name = "a"}, {.name = "b"}}), limits), "");
    EXPECT_EQ(readingRefusal(zipBytes({{.name = "a"}, {.name = "b"}, {.name = "c"}}), limits),
              "The archive has 3 entries; 2 are accepted.");
    EXPECT_EQ(packingRefusal({{"a", "1"}, {"b", "2"}}, limits), "");
    EXPECT_EQ(packingRefusal({{"a", "1"}, {"b", "2"}, {"c", "3"}}, limits),
              "The archive has 3 entries; 2 are accepted.");
}

TEST_F(HostileArchiveTest, LargeArchiveIsRefused)
{
    const std::string bytes = zipBytes({{.name = "a", .packed = "content"}});
    EXPECT_EQ(readingRefusal(bytes, {.packedBytes = bytes.size()}), "");
    EXPECT_EQ(readingRefusal(bytes, {.packedBytes = bytes.size() - 1}),
              "The archive is larger than " + std::to_string(bytes.size() - 1) + " bytes.");
    const std::string packed = Archive::pack(nullptr, {{"a", "content"}});
    EXPECT_EQ(packingRefusal({{"a", "content"}}, {.packedBytes = packed.size()}), "");
    EXPECT_EQ(packingRefusal({{"a", "content"}}, {.packedBytes = packed.size() - 1}),
              "The archive is larger than " + std::to_string(packed.size() - 1) + " bytes.");
}

TEST_F(HostileArchiveTest, ContentsAreLimitedTogether)
{
    const std::vector<ArchiveChange> changes = {{"a", std::string(600, 'x')}, {"b", std::string(400, 'x')}};
    const std::string bytes = Archive::pack(nullptr, changes);
    EXPECT_EQ(readingRefusal(bytes, {.unpackedBytes = 1000}), "");
    EXPECT_EQ(readingRefusal(bytes, {.unpackedBytes = 999}), "The archive unpacks to more than 999 bytes.");
    EXPECT_EQ(packingRefusal(changes, {.unpackedBytes = 1000}), "");
    EXPECT_EQ(packingRefusal(changes, {.unpackedBytes = 999}), "The archive unpacks to more than 999 bytes.");
}

TEST_F(HostileArchiveTest, EntryThatDeclaresTooMuchIsNotUnpacked)
{
    // Its content is not even deflated data.
    const Archive archive(
        zipBytes({{.name = "a", .packed = "x", .method = 8, .unpackedSize = std::uint64_t{1} << 30U}}));
    EXPECT_EQ(refusal([&] { archive.read("a", std::size_t{128} << 20U); }),
              "\"a\": The entry has 1073741824 bytes; 134217728 are accepted.");
}

TEST_F(HostileArchiveTest, BombThatDeclaresItsLengthIsNotUnpacked)
{
    const std::string bomb = Archive::pack(nullptr, {{"a", std::string(std::size_t{16} << 20U, '\0')}});
    EXPECT_LT(bomb.size(), 20000U);
    EXPECT_EQ(readingRefusal(bomb, {.unpackedBytes = std::size_t{1} << 20U}),
              "The archive unpacks to more than 1048576 bytes.");
}

TEST_F(HostileArchiveTest, BombThatHidesItsLengthIsRefused)
{
    std::string bomb = Archive::pack(nullptr, {{"a", std::string(std::size_t{16} << 20U, '\0')}});
    bomb.replace(22, 4, zipNumber(100, 4));
    bomb.replace(bomb.find("PK\x01\x02") + 24, 4, zipNumber(100, 4));
    EXPECT_EQ(readingRefusal(bomb), "\"a\": The entry does not unpack to the 100 bytes that it declares.");
}

}  // namespace
