#include "editor/SignalsObject.hpp"

#include "host/Exceptions.hpp"
#include "reference_host/classes/ObjectAccess.hpp"
#include "reference_host/observers/CollectionAccess.hpp"
#include "reference_host/observers/SignalRecords.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"

namespace editor {

namespace rh = reference_host;

namespace {

std::u16string textOf(const nvArray* object, const char* property)
{
    return rh::text(rh::ObjectAccess::getProperty(object, property).get());
}

/// Puts another start in the place of one that the text has.
void renameIn(nvArray* signal, const char* property, const std::u16string& from, const std::u16string& to)
{
    const std::u16string value = textOf(signal, property);
    if (value.starts_with(from)) {
        rh::ObjectAccess::setProperty(signal, property, rh::makeText(to + value.substr(from.size())).get());
    }
}

}  // namespace

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
    return rh::ObjectAccess::construct(rh::signalsClass,
                                       {rh::ObjectAccess::getProperty(signals, "Model").get()});
}

void appendElement(const nvArray* target, const nvArray* source, std::size_t index)
{
    const rh::OwnedValue element = rh::elementAt(source, index);
    const std::u16string from = textOf(source, "Model");
    const std::u16string to = textOf(target, "Model");
    if (element && from != to) {
        renameIn(element.get(), "BlockPath_", from + u'/', to + u'/');
        renameIn(element.get(), "ZID_", from + u':', to + u':');
    }
    rh::ObjectAccess::callMethod(target, "add", {element.get()});
}

void removeElement(const nvArray* signals, std::size_t index)
{
    rh::ObjectAccess::callMethod(signals, "remove", {rh::methodIndex(index).get()});
}

}  // namespace editor
