#include "hmi/InstrumentedSignals.hpp"

#include "host/Text.hpp"
#include "tests/hmi/LibraryTest.hpp"
#include "tests/hmi/SignalValues.hpp"
#include "tests/support/CountingNew.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <new>
#include <string>

namespace zm_hmi {
namespace {

template <class Action>
std::size_t allocationsOf(Action action)
{
    const std::size_t before = counting_new::allocations();
    action();
    return counting_new::allocations() - before;
}

class PortQueryAllocations : public LibraryTest {
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        m_signals.setModelName(u"plant");
        for (int i = 1; i <= 100; ++i) {
            m_signals.add(
                makeSignal({.blockPath = m_path, .outputPort = i, .cachedHandle = i + 0.1, .cachedPort = i}));
        }
    }

    // Far longer than what fits in a string itself.
    const std::u16string m_path = u"Greenhouse/Climate/Controller/Temperature/Limiter";
    InstrumentedSignals m_signals;
};

TEST_F(PortQueryAllocations, CountingCounts)
{
    EXPECT_EQ(allocationsOf([] { ::operator delete(::operator new(8)); }), 1U);
    EXPECT_GT(allocationsOf([&] { toUtf8(m_path); }), 0U) << "also those of the host";
}

TEST_F(PortQueryAllocations, CachedHashAllocatesNothing)
{
    EXPECT_EQ(
        allocationsOf([] { SignalSpecification::getCachedInfoHash(-1.2345678901234567e-300, -2147483647); }),
        0U);
}

TEST_F(PortQueryAllocations, CachedQueryAllocatesNothingWhereItFinds)
{
    bool found = false;
    EXPECT_EQ(allocationsOf([&] { found = m_signals.isPortObserved(42.1, 42); }), 0U);
    EXPECT_TRUE(found);
}

TEST_F(PortQueryAllocations, CachedQueryAllocatesNothingWhereItFindsNothing)
{
    bool found = true;
    EXPECT_EQ(allocationsOf([&] { found = m_signals.isPortObserved(42.2, 42); }), 0U);
    EXPECT_FALSE(found);
}

TEST_F(PortQueryAllocations, FullQueryAllocatesNothingWhereTheHandleDecides)
{
    EXPECT_EQ(allocationsOf([&] { m_signals.isPortObserved(42.1, m_path, u"", 42, 42, 0); }), 0U);
}

TEST_F(PortQueryAllocations, FullQueryAllocatesNothingWhereThePathDecides)
{
    const std::u16string subPath;
    const std::u16string unknown = m_path + u"2";
    bool found = false;
    EXPECT_EQ(allocationsOf([&] { found = m_signals.isPortObserved(0.5, m_path, subPath, 42, 0, 0); }), 0U);
    EXPECT_TRUE(found);
    EXPECT_EQ(allocationsOf([&] { found = m_signals.isPortObserved(0.5, unknown, subPath, 42, 42, 0); }), 0U);
    EXPECT_FALSE(found);
}

TEST_F(PortQueryAllocations, NonCachedHashAllocatesNothingForWellFormedText)
{
    const std::u16string ascii(300, u'a');
    const std::u16string cyrillic(300, u'\u0416');
    const std::u16string none;
    EXPECT_EQ(allocationsOf([&] { SignalSpecification::getNonCachedInfoHash(ascii, none, 1, 0, cyrillic); }),
              0U);
}

TEST_F(PortQueryAllocations, FullQueryOfIllFormedTextAllocatesOnlyTheConvertedText)
{
    const std::u16string subPath;
    const std::u16string illFormed = m_path + u"\xd800";
    const std::size_t conversions = allocationsOf([&] { toUtf8(illFormed); });
    bool found = true;
    EXPECT_LE(allocationsOf([&] { found = m_signals.isPortObserved(0.5, illFormed, subPath, 42, 42, 0); }),
              conversions);
    EXPECT_FALSE(found);
}

TEST_F(PortQueryAllocations, PortCacheQueryAllocatesNothing)
{
    EXPECT_EQ(allocationsOf([&] { m_signals.isZMPortObserved(nullptr); }), 0U);
    EXPECT_EQ(allocationsOf([&] { m_signals.isAnyPortObserved(); }), 0U);
}

// What the entry costs is the one thing that a query for a known object does without.
TEST_F(PortQueryAllocations, AQueryForAnyActivityOfAnObjectLeavesAnEmptyEntry)
{
    const auto query = [&](double kzid) {
        return allocationsOf([&] { EXPECT_FALSE(m_signals.isAnyKWActivityObserved(u"7", kzid)); });
    };
    query(1.0);  // what is made on first use is there from now on
    const std::size_t known = query(1.0);
    EXPECT_EQ(query(1.0), known);
    EXPECT_GT(query(2.0), known) << "the entry of another object";
    EXPECT_EQ(query(2.0), known);
    EXPECT_EQ(query(1.0), known);
}

TEST_F(PortQueryAllocations, AQueryForOneActivityLeavesNoEntry)
{
    const auto query = [&](double kzid) {
        return allocationsOf([&] { EXPECT_FALSE(m_signals.isKWActivityObserved(u"7", kzid, u"Self")); });
    };
    query(1.0);
    const std::size_t unknown = query(1.0);
    EXPECT_EQ(query(2.0), unknown);
    EXPECT_EQ(query(2.0), unknown);
}

}  // namespace
}  // namespace zm_hmi
