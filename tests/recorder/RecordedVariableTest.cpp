#include "recorder/RecordedVariable.hpp"

#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueReading.hpp"
#include "tests/recorder/RecorderTest.hpp"

#include <vector>

namespace recorder {
namespace {

using reference_host::OwnedValue;

class RecordedVariableTest : public RecorderTest {
protected:
    OwnedValue variable(const std::string& format) const
    {
        return makeVariable(m_signal, {u"v", u"plant", "", format, "", "", true});
    }

    static std::vector<double> numbers(const nvArray* value)
    {
        std::vector<double> result;
        for (std::size_t i = 0; i < reference_host::elementCount(value); ++i) {
            result.push_back(reference_host::element(value, i));
        }
        return result;
    }

    static std::string shape(const nvArray* value) { return reference_host::dimensions(value).text(); }

    RecordedSignal m_signal{{{0.0, 5.0}, {0.5, 6.0}, {1.0, 7.0}}, u"plant/Luft", u"CO₂"};
};

TEST_F(RecordedVariableTest, PlainArrayIsAColumnOfValues)
{
    const OwnedValue array = variable("array");
    EXPECT_EQ(shape(array.get()), "3x1");
    EXPECT_EQ(numbers(array.get()), (std::vector<double>{5.0, 6.0, 7.0}));
}

TEST_F(RecordedVariableTest, FormatThatIsNoneOfTheThreeIsAPlainArray)
{
    for (const char* format : {"", "Struct", "struct ", "structWithTime", "struct2d", "timeseries"}) {
        EXPECT_EQ(reference_host::className(variable(format).get()), "double") << format;
    }
}

TEST_F(RecordedVariableTest, StructWithTimeHoldsTimesValuesAndNames)
{
    const OwnedValue value = variable("structwithtime");
    EXPECT_EQ(reference_host::fieldNames(value.get()),
              (std::vector<std::string>{"time", "signals", "blockName"}));
    const nvArray* time = reference_host::field(value.get(), 0, "time");
    EXPECT_EQ(shape(time), "3x1");
    EXPECT_EQ(numbers(time), (std::vector<double>{0.0, 0.5, 1.0}));
    EXPECT_EQ(reference_host::text(reference_host::field(value.get(), 0, "blockName")), u"plant/Luft");
    const nvArray* signals = reference_host::field(value.get(), 0, "signals");
    EXPECT_EQ(reference_host::fieldNames(signals),
              (std::vector<std::string>{"values", "dimensions", "label"}));
    EXPECT_EQ(shape(reference_host::field(signals, 0, "values")), "3x1");
    EXPECT_EQ(numbers(reference_host::field(signals, 0, "values")), (std::vector<double>{5.0, 6.0, 7.0}));
    EXPECT_EQ(numbers(reference_host::field(signals, 0, "dimensions")), std::vector<double>{1.0});
    EXPECT_EQ(reference_host::text(reference_host::field(signals, 0, "label")), u"CO₂");
}

TEST_F(RecordedVariableTest, StructHasNoTimes)
{
    const OwnedValue value = variable("struct");
    EXPECT_TRUE(reference_host::isEmpty(reference_host::field(value.get(), 0, "time")));
    const nvArray* signals = reference_host::field(value.get(), 0, "signals");
    EXPECT_EQ(shape(reference_host::field(signals, 0, "values")), "3x1");
}

TEST_F(RecordedVariableTest, Struct2DHoldsAMatrixForEachSample)
{
    const OwnedValue value = variable("struct2D");
    EXPECT_TRUE(reference_host::isEmpty(reference_host::field(value.get(), 0, "time")));
    const nvArray* signals = reference_host::field(value.get(), 0, "signals");
    EXPECT_EQ(shape(reference_host::field(signals, 0, "values")), "1x1x3");
    EXPECT_EQ(numbers(reference_host::field(signals, 0, "values")), (std::vector<double>{5.0, 6.0, 7.0}));
    EXPECT_EQ(numbers(reference_host::field(signals, 0, "dimensions")), (std::vector<double>{1.0, 1.0}));
}

TEST_F(RecordedVariableTest, SignalWithoutSamplesIsEmpty)
{
    m_signal.samples.clear();
    EXPECT_EQ(shape(variable("array").get()), "0x1");
    const OwnedValue pages = variable("struct2D");
    EXPECT_TRUE(reference_host::isEmpty(
        reference_host::field(reference_host::field(pages.get(), 0, "signals"), 0, "values")));
}

}  // namespace
}  // namespace recorder
