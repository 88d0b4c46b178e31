#include "recorder/RecordedVariable.hpp"

#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"

#include <array>
#include <utility>

namespace recorder {

using reference_host::Dimensions;
using reference_host::OwnedValue;

namespace {

OwnedValue makeNumbers(const std::deque<Sample>& samples, double Sample::*part, Dimensions dimensions)
{
    OwnedValue numbers = reference_host::makeNumeric(std::move(dimensions), nvClassID::Double);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        reference_host::setElement(numbers.get(), i, samples[i].*part);
    }
    return numbers;
}

OwnedValue makeColumn(const std::deque<Sample>& samples, double Sample::*part)
{
    return makeNumbers(samples, part, Dimensions(samples.size(), 1));
}

/// One sample after the other along the third dimension.
OwnedValue makePages(const std::deque<Sample>& samples)
{
    const std::array<std::size_t, 3> sizes{1, 1, samples.size()};
    return makeNumbers(samples, &Sample::value, Dimensions(sizes));
}

OwnedValue makeOnes(std::size_t count)
{
    OwnedValue ones = reference_host::makeNumeric(Dimensions(1, count), nvClassID::Double);
    for (std::size_t i = 0; i < count; ++i) {
        reference_host::setElement(ones.get(), i, 1.0);
    }
    return ones;
}

OwnedValue makeSignals(const RecordedSignal& signal, bool asMatrices)
{
    OwnedValue result = reference_host::makeStruct(Dimensions(1, 1), {"values", "dimensions", "label"});
    reference_host::setField(
        result.get(), 0, "values",
        asMatrices ? makePages(signal.samples) : makeColumn(signal.samples, &Sample::value));
    reference_host::setField(result.get(), 0, "dimensions", makeOnes(asMatrices ? 2 : 1));
    reference_host::setField(result.get(), 0, "label", reference_host::makeText(signal.portName));
    return result;
}

}  // namespace

OwnedValue makeVariable(const RecordedSignal& signal, const streamout::WksRecordingContext& context)
{
    if (!context.usingStructFormat()) {
        return makeColumn(signal.samples, &Sample::value);
    }
    const std::string format = context.getFormat();
    OwnedValue result = reference_host::makeStruct(Dimensions(1, 1), {"time", "signals", "blockName"});
    reference_host::setField(result.get(), 0, "time",
                             format == "structwithtime" ? makeColumn(signal.samples, &Sample::time)
                                                        : reference_host::makeEmptyValue());
    reference_host::setField(result.get(), 0, "signals", makeSignals(signal, format == "struct2D"));
    reference_host::setField(result.get(), 0, "blockName", reference_host::makeText(signal.blockPath));
    return result;
}

}  // namespace recorder
