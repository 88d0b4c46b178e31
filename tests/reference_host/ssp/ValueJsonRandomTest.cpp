#include "reference_host/ssp/ValueJson.hpp"

#include "host/Exceptions.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"
#include "tests/reference_host/ssp/SameValue.hpp"
#include "tests/support/HostTest.hpp"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace reference_host;

// ---- arbitrary values -----------------------------------------------------------------------------------

/// 0 to count - 1, in the first cases of a property as in the last.
std::size_t below(std::size_t count)
{
    return *rc::gen::resize(rc::kNominalSize, rc::gen::inRange<std::size_t>(0, count));
}

Dimensions arbitrarySizes()
{
    std::vector<std::size_t> sizes(2 + below(3));
    for (std::size_t& size : sizes) {
        size = below(4);
    }
    return Dimensions(sizes);
}

/// Bytes of numbers, with those that are special in some class among them.
std::uint64_t arbitraryBits()
{
    return *rc::gen::oneOf(
        rc::gen::resize(rc::kNominalSize, rc::gen::arbitrary<std::uint64_t>()),
        rc::gen::elementOf(std::vector<std::uint64_t>{
            0, 0x8000000000000000U, 0x3FF0000000000000U, 0x7FF0000000000000U, 0xFFF0000000000000U,
            0x7FF8000000000000U, 0xFFF8000000000000U, 0x7FF0000000000001U, 0x7FF8DEADBEEF0000U, 1,
            0x7FEFFFFFFFFFFFFFU, 0x7F800000FF800000U, 0x7FC0000080000000U, 0xFFC000007F800001U}));
}

OwnedValue arbitraryNumbers()
{
    constexpr std::array<std::pair<nvClassID, std::size_t>, 10> classes{{{nvClassID::Double, 8},
                                                                         {nvClassID::Single, 4},
                                                                         {nvClassID::Int8, 1},
                                                                         {nvClassID::UInt8, 1},
                                                                         {nvClassID::Int16, 2},
                                                                         {nvClassID::UInt16, 2},
                                                                         {nvClassID::Int32, 4},
                                                                         {nvClassID::UInt32, 4},
                                                                         {nvClassID::Int64, 8},
                                                                         {nvClassID::UInt64, 8}}};
    const auto [classID, bytes] = classes[below(classes.size())];
    const std::size_t parts = 1 + below(2);
    OwnedValue value =
        makeNumeric(arbitrarySizes(), classID, parts == 2 ? nvComplexity::Complex : nvComplexity::Real);
    auto* data = static_cast<unsigned char*>(writableNumericData(value.get()));
    for (std::size_t i = 0; i < elementCount(value.get()) * parts; ++i) {
        const std::uint64_t bits = arbitraryBits();
        std::memcpy(data + i * bytes, &bits, bytes);
    }
    return value;
}

OwnedValue arbitraryLogicals()
{
    OwnedValue value = makeLogicals(arbitrarySizes());
    for (std::size_t i = 0; i < elementCount(value.get()); ++i) {
        setElement(value.get(), i, *rc::gen::arbitrary<bool>() ? 1.0 : 0.0);
    }
    return value;
}

std::u16string arbitraryCharacters(std::size_t count)
{
    return *rc::gen::container<std::u16string>(
        count, rc::gen::oneOf(rc::gen::arbitrary<char16_t>(), rc::gen::inRange<char16_t>(0, 0x80),
                              rc::gen::inRange<char16_t>(0xD7FF, 0xE001)));
}

OwnedValue arbitraryText()
{
    if (*rc::gen::arbitrary<bool>()) {
        return makeText(arbitraryCharacters(below(12)));
    }
    Dimensions sizes = arbitrarySizes();
    std::u16string characters = arbitraryCharacters(sizes.elementCount());
    return makeCharacters(std::move(sizes), std::move(characters));
}

OwnedValue arbitraryValue(int depth);

OwnedValue arbitraryCells(int depth)
{
    OwnedValue cells = makeCells(arbitrarySizes());
    for (std::size_t i = 0; i < elementCount(cells.get()); ++i) {
        if (OwnedValue element = arbitraryValue(depth - 1)) {
            setCell(cells.get(), i, std::move(element));
        }
    }
    return cells;
}

OwnedValue arbitraryStruct(int depth)
{
    std::vector<std::string> names;
    for (std::size_t number = below(4); number > 0; --number) {
        // Different by their last character, whatever bytes stand in front.
        names.push_back(*rc::gen::string<std::string>() + std::to_string(number));
    }
    OwnedValue value = *rc::gen::arbitrary<bool>()
                           ? makeStruct(arbitrarySizes(), names)
                           : makeStructObject(*rc::gen::string<std::string>(), arbitrarySizes(), names);
    for (std::size_t i = 0; i < elementCount(value.get()) * names.size(); ++i) {
        if (OwnedValue element = arbitraryValue(depth - 1)) {
            setNumberedField(value.get(), i / names.size(), i % names.size(), std::move(element));
        }
    }
    return value;
}

/// Null now and then.
OwnedValue arbitraryValue(int depth)
{
    switch (below(depth > 0 ? 9 : 7)) {
        case 0:
            return nullptr;
        case 1:
            return makeDouble(static_cast<double>(*rc::gen::arbitrary<float>()));
        case 2:
            return makeLogical(*rc::gen::arbitrary<bool>());
        case 3:
        case 4:
            return arbitraryNumbers();
        case 5:
            return arbitraryText();
        case 6:
            return arbitraryLogicals();
        case 7:
            return arbitraryCells(depth);
        default:
            return arbitraryStruct(depth);
    }
}

class ValueJsonProperties : public HostTest {};

RC_GTEST_FIXTURE_PROP(ValueJsonProperties, AnyValueComesBackIdentical, ())
{
    const OwnedValue value = makeCells({1, 8});
    for (std::size_t i = 0; i < 8; ++i) {
        if (OwnedValue element = arbitraryValue(3)) {
            setCell(value.get(), i, std::move(element));
        }
    }
    const std::string json = valueToJson(value.get());
    const OwnedValue again = valueFromJson(json);
    RC_LOG() << json;
    RC_ASSERT(difference(value.get(), again.get()) == "");
    RC_ASSERT(valueToJson(again.get()) == json);
}

RC_GTEST_FIXTURE_PROP(ValueJsonProperties, AnyDoubleComesBackIdentical, (std::uint64_t bits))
{
    const OwnedValue value = makeNumeric({1, 1}, nvClassID::Double);
    std::memcpy(writableNumericData(value.get()), &bits, sizeof(bits));
    RC_ASSERT(difference(value.get(), valueFromJson(valueToJson(value.get())).get()) == "");
}

RC_GTEST_FIXTURE_PROP(ValueJsonProperties, AnySingleComesBackIdentical, (std::uint32_t bits))
{
    const OwnedValue value = makeNumeric({1, 1}, nvClassID::Single);
    std::memcpy(writableNumericData(value.get()), &bits, sizeof(bits));
    RC_ASSERT(difference(value.get(), valueFromJson(valueToJson(value.get())).get()) == "");
}

// ---- damage ---------------------------------------------------------------------------------------------

/// Texts that have everything in them.
constexpr std::array sound{
    R"({"class":"struct","size":[1,2],"fields":["a",{"bytes":[255]}],"values":[[1.5,"x"],[true,null]]})",
    R"({"class":"object","size":[0,3],"name":"Old","fields":["a"],"values":[[]]})",
    R"({"class":"cell","size":[2,2],"values":["ä\n",{"class":"single","data":["NaN"]},-0.0,false]})",
    R"({"class":"double","size":[1,2],"data":[1e+300,"0xfff8000000000000"],"imaginary":["Inf","-Inf"]})",
    R"({"class":"uint64","size":[1,1,2],"data":[18446744073709551615,0]})",
    R"({"class":"int64","size":[2,1],"data":[-9223372036854775808,7]})",
    R"({"class":"char","size":[1,2],"text":{"units":[55296,97]}})",
    R"({"class":"logical","size":[1,3],"data":[true,false,true]})",
};

class DamagedValueJsonTest : public HostTest {
protected:
    /// A value that is written and read again, or a refusal.
    static void read(const std::string& json)
    {
        try {
            const OwnedValue value = valueFromJson(json);
            const std::string text = valueToJson(value.get());
            EXPECT_EQ(valueToJson(valueFromJson(text).get()), text) << json;
        } catch (const zmsvException& error) {
            EXPECT_STRNE(error.what(), "") << json;
        }
    }
};

TEST_F(DamagedValueJsonTest, SoundTextIsWrittenAsItWasRead)
{
    for (const char* json : sound) {
        EXPECT_EQ(valueToJson(valueFromJson(json).get()), json);
    }
}

TEST_F(DamagedValueJsonTest, EveryBeginningIsRefused)
{
    for (const std::string json : sound) {
        for (std::size_t length = 0; length < json.size(); ++length) {
            EXPECT_THROW(valueFromJson(json.substr(0, length)), zmsvException) << json.substr(0, length);
        }
    }
}

TEST_F(DamagedValueJsonTest, EveryFlippedBitGivesAValueOrARefusal)
{
    for (const std::string json : sound) {
        for (std::size_t bit = 0; bit < 8 * json.size(); ++bit) {
            std::string damaged = json;
            damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ (1 << (bit % 8)));
            read(damaged);
        }
    }
}

TEST_F(DamagedValueJsonTest, RandomDamageGivesAValueOrARefusal)
{
    constexpr std::string_view characters = "{}[]\",:0123456789.eE+-truefalsnabcdx\\u \xC3\xA4\xFF";
    std::mt19937 random(20261121);
    const auto randomBelow = [&random](std::size_t count) { return random() % count; };
    for (int round = 0; round < 20'000; ++round) {
        std::string json = sound[randomBelow(sound.size())];
        for (std::size_t changes = 1 + randomBelow(4); changes > 0 && !json.empty(); --changes) {
            const std::size_t at = randomBelow(json.size());
            const char character = characters[randomBelow(characters.size())];
            switch (randomBelow(4)) {
                case 0:
                    json[at] = character;
                    break;
                case 1:
                    json.insert(at, 1, character);
                    break;
                case 2:
                    json.erase(at, 1 + randomBelow(4));
                    break;
                default:
                    json.insert(randomBelow(json.size()), json.substr(at, 1 + randomBelow(20)));
            }
        }
        read(json);
    }
}

}  // namespace
