#include "hmi/InstrumentedSignals.hpp"
#include "hmi/Numbers.hpp"

#include "tests/hmi/KeyHash.hpp"
#include "tests/hmi/LibraryTest.hpp"
#include "tests/hmi/SignalValues.hpp"

#include <gtest/gtest.h>

#include <clocale>
#include <locale>
#include <optional>
#include <string>

namespace zm_hmi {
namespace {

constexpr const char* germanLocale = "de_DE.UTF-8";

/// Runs under a German locale, in C and C++, where numbers are written 12,5 and 1.234.567.
class KeyTextsInGermanLocale : public LibraryTest {
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        m_former = std::locale();
        try {
            std::locale::global(std::locale(germanLocale));
        } catch (const std::runtime_error&) {
            GTEST_SKIP() << "the locale " << germanLocale << " is not installed (Debian: locales-all)";
        }
        std::setlocale(LC_ALL, germanLocale);
        ASSERT_EQ(std::to_string(12.5), "12,500000") << "the locale has no effect: the tests would be void";
    }

    void TearDown() override
    {
        std::locale::global(m_former);
        std::setlocale(LC_ALL, "C");
        LibraryTest::TearDown();
    }

private:
    std::locale m_former;
};

TEST_F(KeyTextsInGermanLocale, CachedKeyTextHasAPoint)
{
    EXPECT_EQ(SignalSpecification::getCachedInfoHash(12.5, 1), keyHash("12.5$$1"));
    EXPECT_EQ(SignalSpecification::getCachedInfoHash(12.5, 1234567), keyHash("12.5$$1234567"));
}

TEST_F(KeyTextsInGermanLocale, NonCachedKeyTextDoesNotGroupDigits)
{
    EXPECT_EQ(SignalSpecification::getNonCachedInfoHash(u"A", u"", 1234567, 0, u"m"),
              keyHash("m/A$$$$1234567"));
}

TEST_F(KeyTextsInGermanLocale, BlockPortKeyHasAPoint)
{
    SignalSpecification::addToBlockHandleUUIDmap(1234567, 12.5, "german");
    EXPECT_TRUE(SignalSpecification::getBlockUUIDmap().contains("1234567-12.500000"));
    SignalSpecification::getBlockUUIDmap().erase("1234567-12.500000");
}

TEST_F(KeyTextsInGermanLocale, ChartQueriesWriteTheNumberAsTheStoredTextHasIt)
{
    InstrumentedSignals signals;
    signals.add(makeSignal(stateValues("7", u"12.5", u"Self")));
    signals.add(makeSignal(stateValues("7", u"1234567", u"Self")));
    EXPECT_TRUE(signals.isKWActivityObserved(u"7", 12.5, u"Self"));
    EXPECT_TRUE(signals.isAnyKWActivityObserved(u"7", 1234567.0));
}

TEST_F(KeyTextsInGermanLocale, NumberTextsAreThoseOfTheCLocale)
{
    EXPECT_EQ(NumberText::significant17(0.1).view(), "0.10000000000000001");
    EXPECT_EQ(NumberText::fixed6(1234567.5).view(), "1234567.500000");
    EXPECT_EQ(NumberText::decimal(1234567).view(), "1234567");
}

}  // namespace
}  // namespace zm_hmi
