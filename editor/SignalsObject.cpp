#include "editor/SignalsObject.hpp"

#include "host/Exceptions.hpp"
#include "reference_host/classes/ClassObjects.hpp"
#include "reference_host/diagram/CollectionAccess.hpp"
#include "reference_host/diagram/SignalRecords.hpp"
#include "reference_host/values/ValueReading.hpp"

namespace editor {

namespace rh = reference_host;

zm_hmi::InstrumentedSignals& nativeSignals(const nvArray* object)
{
    if (!rh::isOfClass(object, rh::signalsClass) || rh::elementCount(object) != 1) {
        throw zmsvException(
            zmsvMessageId("reference_host:editor", "InvalidSignals"),
            std::string("The editor takes one object of class \"") + rh::signalsClass + "\".");
    }
    const nvcos::COSInterfacePtr instance = omGetArrayElement(object, 0);
    return *static_cast<zm_hmi::InstrumentedSignals*>(omGetInstanceData(instance.get()));
}

rh::OwnedValue newSignalsLike(const nvArray* signals)
{
    return rh::ClassObjects::construct(rh::signalsClass,
                                       {rh::ClassObjects::getProperty(signals, "Model").get()});
}

void appendElement(const nvArray* target, const nvArray* source, std::size_t index)
{
    const rh::OwnedValue element = rh::elementAt(source, index);
    rh::ClassObjects::callMethod(target, "add", {element.get()});
}

void removeElement(const nvArray* signals, std::size_t index)
{
    rh::ClassObjects::callMethod(signals, "remove", {rh::methodIndex(index).get()});
}

}  // namespace editor
