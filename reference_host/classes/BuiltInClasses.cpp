#include "reference_host/classes/BuiltInClasses.hpp"

#include "reference_host/classes/ClassErrors.hpp"
#include "reference_host/classes/ClassSystem.hpp"
#include "reference_host/classes/InterfaceManager.hpp"
#include "reference_host/classes/ObjectAccess.hpp"
#include "reference_host/classes/RecordClass.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"

#include <array>
#include <string>
#include <utility>

namespace reference_host {

namespace {

/// At load, before any code can ask for a class.
[[maybe_unused]] const bool isRegistered = [] {
    for (const auto& makeInfo : {makeSignalSpecificationClass, makeSignalClientClass, makeModelObserversClass,
                                 makeInterfaceManagerClass}) {
        ClassSystem::addBuiltIn("Zelmar.HMI", makeInfo);
    }
    return true;
}();

std::string structOrEmpty(const nvArray* value)
{
    return isStruct(value) || isEmpty(value) ? "" : "must be a struct or empty, not " + describe(value);
}

std::string numberOrEmpty(const nvArray* value)
{
    const bool isNumber = isNumeric(value) && !isComplex(value) && elementCount(value) == 1;
    return isNumber || isEmpty(value) ? "" : "must be one real number or empty, not " + describe(value);
}

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

constexpr const char* signals = "Signals";
constexpr const char* clients = "Clients";

RecordProperty collectionProperty(std::string name, std::string className)
{
    return anyProperty(std::move(name), [className](const nvArray* value) -> std::string {
        const bool isOne = isOfClass(value, className.c_str()) && elementCount(value) == 1;
        return isOne || isEmpty(value) ? ""
                                       : "must be one " + className + " or empty, not " + describe(value);
    });
}

OwnedValue makePair(const std::vector<const nvArray*>& inputs)
{
    OwnedValue pair = ObjectAccess::construct(modelObserversClass);
    ObjectAccess::setProperty(pair.get(), signals, inputs[0]);
    ObjectAccess::setProperty(pair.get(), clients, inputs[1]);
    return pair;
}

}  // namespace

std::unique_ptr<nvcos::COSClassInfo> makeSignalSpecificationClass()
{
    return makeRecordClass("SignalSpecification", {
                                                      textProperty("UUID"),
                                                      textProperty("BlockPath_"),
                                                      textProperty("ZID_"),
                                                      textProperty("SubPath_"),
                                                      numberProperty("OutputPortIndex_"),
                                                      numberProperty("LogicalPortIndex_"),
                                                      textProperty("SignalName_"),
                                                      textProperty("SubSysPath_"),
                                                      numberProperty("Decimation_", 1.0),
                                                      numberProperty("MaxPoints_"),
                                                      flagProperty("TargetBufferedStreaming_"),
                                                      flagProperty("IsFrameBased_"),
                                                      flagProperty("HideInDVX_"),
                                                      textProperty("DomainType_"),
                                                      anyProperty("DomainParams_", structOrEmpty),
                                                      textProperty("VisualType_"),
                                                      textProperty("BindingRule_"),
                                                      anyProperty("CachedBlockHandle_", numberOrEmpty),
                                                      anyProperty("CachedPortIdx_", numberOrEmpty),
                                                      flagProperty("ExcludeForSave_"),
                                                  });
}

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

std::unique_ptr<nvcos::COSClassInfo> makeModelObserversClass()
{
    return makeRecordClass("ModelObservers",
                           {collectionProperty(signals, "Zelmar.HMI.InstrumentedSignals"),
                            collectionProperty(clients, "Zelmar.HMI.StreamingClients")},
                           {{"createFromSignalsAndClients", 2, modelObserversClass, makePair}});
}

void getSignalsAndClients(HostFunctionCall& call)
{
    const nvArray* pair = call.inputs().size() == 1 ? call.input(0) : nullptr;
    if (!isOfClass(pair, modelObserversClass) || elementCount(pair) != 1) {
        throwClassError("WrongArgument:function",
                        {call.functionName(), std::string("one ") + modelObserversClass});
    }
    call.setOutput(0, ObjectAccess::getProperty(pair, signals));
    call.setOutput(1, ObjectAccess::getProperty(pair, clients));
}

}  // namespace reference_host
