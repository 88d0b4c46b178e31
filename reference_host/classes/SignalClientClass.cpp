#include "reference_host/classes/SignalClientClass.hpp"

#include "reference_host/calls/HostFunctions.hpp"
#include "reference_host/classes/RecordClass.hpp"
#include "reference_host/values/Value.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"

#include <array>
#include <string>
#include <utility>

namespace reference_host {

namespace {

std::string cellsOfTextOrEmpty(const nvArray* value)
{
    const std::size_t count = elementCount(value);
    if (count > 0 && !isCell(value)) {
        return "must be a cell array of texts or empty, not " + describe(value);
    }
    for (std::size_t i = 0; i < count; ++i) {
        const nvArray* part = cell(value, i);
        if (part == nullptr || part->valueClass != ValueClass::Char) {
            return "must hold texts only, not " + describe(part) + " at place " + std::to_string(i + 1);
        }
    }
    return {};
}

RecordProperty uint32Property(std::string name, double value)
{
    return {std::move(name), "uint32 scalar", [value] { return makeNumber(value, nvClassID::UInt32); }};
}

OwnedValue askForSignal(const nvArray* client)
{
    if (!HostFunctions::isDefined(signalInfoFunction)) {
        return nullptr;
    }
    const std::array inputs{client};
    return std::move(HostFunctions::call(signalInfoFunction, inputs, 1).front());
}

}  // namespace

std::unique_ptr<nvcos::COSClassInfo> makeSignalClientClass()
{
    return makeRecordClass("SignalClient", {
                                               textProperty("UUID"),
                                               anyProperty("ModelPath_", cellsOfTextOrEmpty),
                                               anyProperty("ModelPathZID_", cellsOfTextOrEmpty),
                                               textProperty("SourceModel_"),
                                               textProperty("SignalUUID_"),
                                               textProperty("ObserverType_"),
                                               anyProperty("ObserverParams_"),
                                               uint32Property("UpdateRate_", 1.0),
                                               uint32Property("DimensionChannel_", 1.0),
                                               flagProperty("ObserveImaginaryPart_"),
                                               textProperty("BusLeafPath_"),
                                               computedProperty("SignalInfo", "any", askForSignal),
                                           });
}

}  // namespace reference_host
