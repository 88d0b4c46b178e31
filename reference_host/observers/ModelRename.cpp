#include "reference_host/observers/ModelRename.hpp"

#include "reference_host/classes/BuiltInClasses.hpp"
#include "reference_host/classes/ObjectAccess.hpp"
#include "reference_host/model/OpenModels.hpp"
#include "reference_host/observers/CollectionAccess.hpp"
#include "reference_host/observers/SignalRecords.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"

#include <utility>

namespace reference_host {

namespace {

/// Puts the new model name in the old one's place, where the text begins with that and the separator.
void renameIn(nvArray* signal, const char* property, const std::u16string& oldStart,
              const std::u16string& newStart)
{
    const std::u16string value = textOf(signal, property);
    if (value.starts_with(oldStart)) {
        const OwnedValue renamed = makeText(newStart + value.substr(oldStart.size()));
        ObjectAccess::setProperty(signal, property, renamed.get());
    }
}

OwnedValue copySignals(const nvArray* signals, const std::u16string& oldName, const std::u16string& newName)
{
    const OwnedValue name = makeText(newName);
    OwnedValue copy = ObjectAccess::construct(signalsClass, {name.get()});
    const std::size_t count = elementsIn(signals);
    for (std::size_t i = 0; i < count; ++i) {
        if (const OwnedValue signal = elementAt(signals, i)) {
            renameIn(signal.get(), "BlockPath_", oldName + u"/", newName + u"/");
            renameIn(signal.get(), "ZID_", oldName + u":", newName + u":");
            ObjectAccess::callMethod(copy.get(), "add", {signal.get()});
        }
    }
    return copy;
}

}  // namespace

void renameModelWithObservers(std::u16string oldName, std::u16string newName)
{
    const std::shared_ptr<Model> model = OpenModels::find(oldName);
    const OwnedValue observers = model != nullptr ? model->observers() : nullptr;
    if (!observers || newName == oldName) {
        OpenModels::rename(oldName, newName);
        return;
    }
    OwnedValue signals = ObjectAccess::getProperty(observers.get(), "Signals");
    const OwnedValue clients = ObjectAccess::getProperty(observers.get(), "Clients");
    if (!isEmpty(signals.get())) {
        signals = copySignals(signals.get(), oldName, newName);
    }
    const ObjectAccess::Results renamed = ObjectAccess::callStatic(
        modelObserversClass, "createFromSignalsAndClients", {signals.get(), clients.get()});
    OpenModels::rename(oldName, newName);
    model->setObservers(renamed.front().get());
    if (!isEmpty(clients.get())) {
        ObjectAccess::setProperty(clients.get(), "Model", makeText(newName).get());
    }
}

namespace {

/// At load, before any model can be renamed.
[[maybe_unused]] const bool isRenamingSet = OpenModels::setRenaming(renameModelWithObservers);

}  // namespace

}  // namespace reference_host
