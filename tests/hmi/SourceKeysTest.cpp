#include "hmi/SignalSpecification.hpp"

#include "host/Text.hpp"
#include "tests/hmi/KeyHash.hpp"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>
#include <boost/container_hash/hash.hpp>

#include <bit>
#include <limits>
#include <string>

namespace zm_hmi {
namespace {

using Record = SignalSpecification;

// ---- the hash -----------------------------------------------------------------------------------

TEST(KeyHash, OfNothingMixesTheEmptyTail)
{
    EXPECT_EQ(Record::getInfoHashFromStringList({}), mixed(std::uint64_t{0x9e3779b9} + 1));
    EXPECT_EQ(Record::getInfoHashFromStringList({""}), mixed(std::uint64_t{0x9e3779b9} + 1));
}

TEST(KeyHash, TellsTailsWithZeroBytesApart)
{
    using namespace std::string_literals;
    EXPECT_NE(Record::getInfoHashFromStringList({"a"}), Record::getInfoHashFromStringList({"a\0"s}));
    EXPECT_EQ(Record::getInfoHashFromStringList({"a\0"s}), keyHash("a\0"s));
}

TEST(KeyHash, TakesBytesAsUnsigned)
{
    EXPECT_EQ(Record::getInfoHashFromStringList({"\xff\xfe\x80\x81\xc3"}), keyHash("\xff\xfe\x80\x81\xc3"));
}

RC_GTEST_PROP(KeyHashProperties, IsTheLiteralAlgorithm, (const std::string& text))
{
    RC_ASSERT(Record::getInfoHashFromStringList({text}) == keyHash(text));
}

RC_GTEST_PROP(KeyHashProperties, IsTheHashOfBoost, (const std::string& text))
{
    RC_ASSERT(boost::hash<std::string>()(text) == keyHash(text));
}

// ---- string lists -------------------------------------------------------------------------------

TEST(InfoHashFromStringList, JoinsWithoutASeparator)
{
    EXPECT_EQ(Record::getInfoHashFromStringList({"ab", "c"}), Record::getInfoHashFromStringList({"a", "bc"}));
    EXPECT_EQ(Record::getInfoHashFromStringList({"ab", "c"}), keyHash("abc"));
}

TEST(InfoHashFromStringList, JoinsInListOrder)
{
    EXPECT_NE(Record::getInfoHashFromStringList({"ab", "c"}), Record::getInfoHashFromStringList({"c", "ab"}));
}

// ---- cached keys --------------------------------------------------------------------------------

TEST(CachedInfoHash, IsOfHandleAndPort)
{
    EXPECT_EQ(Record::getCachedInfoHash(12.5, 1), keyHash("12.5$$1"));
    EXPECT_EQ(Record::getCachedInfoHash(0.1, 1), keyHash("0.10000000000000001$$1"));
    EXPECT_EQ(Record::getCachedInfoHash(3.0, 12), keyHash("3$$12"));
    EXPECT_EQ(Record::getCachedInfoHash(0.0, 0), keyHash("0$$0"));
}

TEST(CachedInfoHash, WritesNegativePortsWithAMinusSign)
{
    EXPECT_EQ(Record::getCachedInfoHash(2.0, -7), keyHash("2$$-7"));
}

TEST(CachedInfoHash, WritesInfinitiesAndNotANumberAsWords)
{
    using Limits = std::numeric_limits<double>;
    EXPECT_EQ(Record::getCachedInfoHash(Limits::infinity(), 1), keyHash("inf$$1"));
    EXPECT_EQ(Record::getCachedInfoHash(-Limits::infinity(), 1), keyHash("-inf$$1"));
    EXPECT_EQ(Record::getCachedInfoHash(std::bit_cast<double>(std::uint64_t{0x7ff8000000000000}), 1),
              keyHash("nan$$1"));
    EXPECT_EQ(Record::getCachedInfoHash(std::bit_cast<double>(std::uint64_t{0xfff8000000000000}), 1),
              keyHash("-nan$$1"));
}

TEST(CachedInfoHash, TellsNegativeZeroFromZero)
{
    EXPECT_EQ(Record::getCachedInfoHash(-0.0, 1), keyHash("-0$$1"));
    EXPECT_NE(Record::getCachedInfoHash(-0.0, 1), Record::getCachedInfoHash(0.0, 1));
}

TEST(CachedInfoHash, TellsHandlesApartThatAgreeToSixDecimals)
{
    EXPECT_NE(Record::getCachedInfoHash(12.5, 1), Record::getCachedInfoHash(12.5000001, 1));
}

// ---- non-cached keys ----------------------------------------------------------------------------

TEST(NonCachedInfoHash, IsOfModelPathSubPathAndPort)
{
    EXPECT_EQ(Record::getNonCachedInfoHash(u"A/B", u"", 2, 0, u"m"), keyHash("m/A/B$$$$2"));
    EXPECT_EQ(Record::getNonCachedInfoHash(u"A/B", u"bus.x", 2, 0, u"m"), keyHash("m/A/B$$bus.x$$2"));
}

TEST(NonCachedInfoHash, HasNoLeadingSlashWithoutAModelName)
{
    EXPECT_EQ(Record::getNonCachedInfoHash(u"A/B", u"", 2, 0, u""), keyHash("A/B$$$$2"));
}

TEST(NonCachedInfoHash, IsMadeOfNothingToo)
{
    EXPECT_EQ(Record::getNonCachedInfoHash(u"", u"", 0, 0, u""), keyHash("$$$$0"));
    EXPECT_EQ(Record::getNonCachedInfoHash(u"", u"", 0, 0, u"m"), keyHash("m/$$$$0"));
}

TEST(NonCachedInfoHash, FallsBackToTheOutputPortWithoutALogicalPort)
{
    EXPECT_EQ(Record::getNonCachedInfoHash(u"A", u"", 4, 0, u""), keyHash("A$$$$4"));
    EXPECT_EQ(Record::getNonCachedInfoHash(u"A", u"", 4, -1, u""), keyHash("A$$$$4"));
    EXPECT_EQ(Record::getNonCachedInfoHash(u"A", u"", -4, 0, u""), keyHash("A$$$$-4"));
}

TEST(NonCachedInfoHash, PrefersTheLogicalPortFromOneOn)
{
    EXPECT_EQ(Record::getNonCachedInfoHash(u"A", u"", 4, 1, u""), keyHash("A$$$$1"));
    EXPECT_EQ(Record::getNonCachedInfoHash(u"A", u"", 4, 9, u""), keyHash("A$$$$9"));
}

TEST(NonCachedInfoHash, IsOfUtf8)
{
    EXPECT_EQ(Record::getNonCachedInfoHash(u"\u00c4/\U0001F33F", u"\u00df", 1, 0, u"Gew\u00e4chs"),
              keyHash("Gew\xc3\xa4"
                      "chs/\xc3\x84/\xf0\x9f\x8c\xbf$$\xc3\x9f$$1"));
}

// ---- conversion in place ------------------------------------------------------------------------

std::size_t keyOfPath(const std::u16string& path)
{
    return Record::getNonCachedInfoHash(path, u"", 1, 0, u"");
}

TEST(NonCachedInfoHash, ConvertsEveryCodeUnitAsTheHostDoes)
{
    for (unsigned unit = 0; unit <= 0xffff; ++unit) {
        for (const std::u16string& before :
             {std::u16string(), std::u16string(u"ab"), std::u16string(u"abcde")}) {
            const std::u16string path = before + static_cast<char16_t>(unit) + u"xyz";
            ASSERT_EQ(keyOfPath(path), keyHash(toUtf8(path) + "$$$$1")) << unit;
        }
    }
}

TEST(NonCachedInfoHash, ConvertsSurrogatesAsTheHostDoes)
{
    const std::u16string units = u"\xd7ff\xd800\xdbff\xdc00\xdfff\xe000";
    for (const char16_t first : units) {
        for (const char16_t second : units) {
            for (const char16_t third : units + u'a') {
                const std::u16string path{first, second, third};
                ASSERT_EQ(keyOfPath(path), keyHash(toUtf8(path) + "$$$$1"));
            }
        }
    }
    for (char32_t point = 0x10000; point <= 0x10ffff; point += 0x101) {
        const std::u16string path{static_cast<char16_t>(0xd800 + ((point - 0x10000) >> 10)),
                                  static_cast<char16_t>(0xdc00 + ((point - 0x10000) & 0x3ff))};
        ASSERT_EQ(keyOfPath(path), keyHash(toUtf8(path) + "$$$$1"));
    }
}

RC_GTEST_PROP(KeyHashProperties, OfAPathIsThatOfItsText,
              (const std::u16string& model, const std::u16string& path, const std::u16string& subPath,
               int port))
{
    const std::string prefix = model.empty() ? "" : toUtf8(model) + "/";
    RC_ASSERT(Record::getNonCachedInfoHash(path, subPath, port, 0, model) ==
              keyHash(prefix + toUtf8(path) + "$$" + toUtf8(subPath) + "$$" + std::to_string(port)));
}

TEST(NonCachedInfoHash, HoldsForPathsBeyondTheOrdinaryLength)
{
    const std::u16string longPath(5000, u'x');
    EXPECT_EQ(Record::getNonCachedInfoHash(longPath, u"", 1, 0, u"m"),
              keyHash("m/" + std::string(5000, 'x') + "$$$$1"));
}

RC_GTEST_PROP(NonCachedInfoHashProperties, IsTheHashOfTheLiteralText,
              (const std::u16string& path, const std::u16string& subPath, int output, int logical,
               const std::u16string& model))
{
    const std::string prefix = model.empty() ? "" : toUtf8(model) + "/";
    const std::string port = std::to_string(logical >= 1 ? logical : output);
    RC_ASSERT(Record::getNonCachedInfoHash(path, subPath, output, logical, model) ==
              keyHash(prefix + toUtf8(path) + "$$" + toUtf8(subPath) + "$$" + port));
}

// ---- texts that other tests rely on --------------------------------------------------------------

TEST(SourceKeys, TwoKnownTextsHashToZero)
{
    EXPECT_EQ(Record::getNonCachedInfoHash(u"M73TK7FOsLMa", u"", 1, 0, u""), 0U);
    EXPECT_EQ(Record::getCachedInfoHash(1.6122492007444271, 2145007537), 0U);
}

TEST(SourceKeys, TwoKnownTextsCollide)
{
    EXPECT_EQ(Record::getNonCachedInfoHash(u"Gain", u"", 1, 0, u""),
              Record::getNonCachedInfoHash(u"zsvaRe0ZzMma", u"", 1, 0, u""));
}

// ---- keys of records ------------------------------------------------------------------------------

// A record for a port, made without a host value.
std::unique_ptr<Record> makePort(const std::u16string& path, int output, int logical)
{
    return std::unique_ptr<Record>(
        Record::createSigSpecFromPort(path, "1", output, logical, 0.0, u"", false));
}

TEST(SourceKeys, CachedKeyIsOfTheCachedHandleAndPort)
{
    const auto record = makePort(u"A", 3, 0);
    record->setCachedInfo(12.5, 1);
    EXPECT_EQ(record->getSourceKeyCached(), keyHash("12.5$$1"));
}

TEST(SourceKeys, CachedKeysAreEqualWhateverThePaths)
{
    const auto one = makePort(u"A", 1, 0);
    const auto other = makePort(u"B/C", 2, 5);
    one->setCachedInfo(12.5, 1);
    other->setCachedInfo(12.5, 1);
    EXPECT_EQ(one->getSourceKeyCached(), other->getSourceKeyCached());
}

TEST(SourceKeys, NonCachedKeyPutsTheModelInFront)
{
    const auto record = makePort(u"A/B", 2, 0);
    EXPECT_EQ(record->getSourceKeyNonCached(u"m"), keyHash("m/A/B$$$$2"));
    EXPECT_EQ(record->getSourceKeyNonCached(u""), keyHash("A/B$$$$2"));
}

TEST(SourceKeys, NonCachedKeyPrefersTheLogicalPort)
{
    EXPECT_EQ(makePort(u"A", 2, 7)->getSourceKeyNonCached(u""), keyHash("A$$$$7"));
}

}  // namespace
}  // namespace zm_hmi
