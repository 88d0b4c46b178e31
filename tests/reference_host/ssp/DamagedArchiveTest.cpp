#include "reference_host/ssp/Archive.hpp"

#include "host/Exceptions.hpp"
#include "tests/reference_host/ssp/ZipBytes.hpp"
#include "tests/support/HostTest.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

using reference_host::Archive;
using reference_host::zipBytes;

namespace {

using Entries = std::vector<std::pair<std::string, std::string>>;  // name, content

Entries entriesOf(const Archive& archive)
{
    Entries entries;
    for (const std::string& name : archive.names()) {
        entries.emplace_back(name, archive.read(name));
    }
    return entries;
}

/// A small archive with stored and deflated entries, a folder and all kinds of extras.
std::string packedZip()
{
    const std::string extra = "xy" + reference_host::zipNumber(3, 2) + "abc";
    const Archive others(zipBytes({{.name = "resources/", .attributes = 0x10},
                                   {.name = "resources/wheel.fmu",
                                    .packed = "stored as it is",
                                    .time = 0x5A8B6C41,
                                    .recordExtra = extra,
                                    .headerExtra = extra,
                                    .comment = "a comment"}},
                                  {.comment = "of the archive"}));
    std::string large = "<a>";
    for (int i = 0; i < 100; ++i) {
        large += "line " + std::to_string(i * i) + "\n";
    }
    return Archive::pack(&others, {{"SystemStructure.ssd", large}, {"extra/größe.json", "{}"}});
}

struct Whole {
    const char* what;
    std::string (*make)();
};

void PrintTo(const Whole& whole, std::ostream* out)
{
    *out << whole.what;
}

class DamagedArchiveTest : public reference_host::HostTest, public ::testing::WithParamInterface<Whole> {
protected:
    /// Whether the bytes are refused. If they are not, nothing that the archive holds may have changed.
    bool isRefused(const std::string& bytes, const std::string& damage) const
    {
        try {
            EXPECT_EQ(entriesOf(Archive(bytes)), m_entries) << damage;
        } catch (const zmsvException& error) {
            EXPECT_GT(std::string(error.what()).size(), 10U) << damage;
            return true;
        }
        return false;
    }

    std::size_t refusalsWithEveryByteChangedBy(unsigned char mask) const
    {
        std::size_t count = 0;
        for (std::size_t i = 0; i < m_bytes.size(); ++i) {
            std::string bytes = m_bytes;
            bytes[i] = static_cast<char>(static_cast<unsigned char>(bytes[i]) ^ mask);
            count += isRefused(bytes, "byte " + std::to_string(i)) ? 1U : 0U;
        }
        return count;
    }

    std::string m_bytes = GetParam().make();
    Entries m_entries = entriesOf(Archive(m_bytes));
};

TEST_P(DamagedArchiveTest, EveryFlippedByteIsNoticedOrChangesNothing)
{
    EXPECT_GT(refusalsWithEveryByteChangedBy(0xFF), m_bytes.size() / 2);
}

TEST_P(DamagedArchiveTest, EveryFlippedBitIsNoticedOrChangesNothing)
{
    std::size_t refusals = 0;
    for (unsigned bit = 0; bit < 8; ++bit) {
        refusals += refusalsWithEveryByteChangedBy(static_cast<unsigned char>(1U << bit));
    }
    EXPECT_GT(refusals, 8 * m_bytes.size() / 2);
}

TEST_P(DamagedArchiveTest, EveryZeroedByteIsNoticedOrChangesNothing)
{
    for (std::size_t i = 0; i < m_bytes.size(); ++i) {
        std::string bytes = m_bytes;
        bytes[i] = '\0';
        isRefused(bytes, "byte " + std::to_string(i));
    }
}

TEST_P(DamagedArchiveTest, EveryTruncationIsRefused)
{
    for (std::size_t length = 0; length < m_bytes.size(); ++length) {
        EXPECT_TRUE(isRefused(m_bytes.substr(0, length), "length " + std::to_string(length))) << length;
    }
}

TEST_P(DamagedArchiveTest, EveryMissingByteIsNoticedOrChangesNothing)
{
    for (std::size_t i = 0; i < m_bytes.size(); ++i) {
        std::string bytes = m_bytes;
        bytes.erase(i, 1);
        isRefused(bytes, "byte " + std::to_string(i));
    }
}

INSTANTIATE_TEST_SUITE_P(, DamagedArchiveTest,
                         ::testing::Values(Whole{"Packed", packedZip},
                                           Whole{"Wide", reference_host::wideZip}),
                         [](const auto& instance) { return instance.param.what; });

}  // namespace
