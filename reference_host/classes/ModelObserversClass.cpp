#include "reference_host/classes/ModelObserversClass.hpp"

#include "reference_host/classes/ClassError.hpp"
#include "reference_host/classes/ClassObjects.hpp"
#include "reference_host/classes/RecordClass.hpp"
#include "reference_host/classes/StaticMethods.hpp"
#include "reference_host/values/Value.hpp"
#include "reference_host/values/ValueReading.hpp"

#include <string>
#include <utility>

namespace reference_host {

namespace {

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
    OwnedValue pair = ClassObjects::construct(modelObserversClass);
    ClassObjects::setProperty(pair.get(), signals, inputs[0]);
    ClassObjects::setProperty(pair.get(), clients, inputs[1]);
    return pair;
}

}  // namespace

std::unique_ptr<nvcos::COSClassInfo> makeModelObserversClass()
{
    return withStaticMethods(
        makeRecordClass("ModelObservers", {collectionProperty(signals, "Zelmar.HMI.InstrumentedSignals"),
                                           collectionProperty(clients, "Zelmar.HMI.StreamingClients")}),
        {{"createFromSignalsAndClients", 2, modelObserversClass, makePair}});
}

void getSignalsAndClients(HostFunctionCall& call)
{
    const nvArray* pair = call.inputs().size() == 1 ? call.input(0) : nullptr;
    if (!isOfClass(pair, modelObserversClass) || elementCount(pair) != 1) {
        throwClassError("WrongArgument", call.functionName() + " takes one " + modelObserversClass);
    }
    call.setOutput(0, ClassObjects::getProperty(pair, signals));
    call.setOutput(1, ClassObjects::getProperty(pair, clients));
}

}  // namespace reference_host
