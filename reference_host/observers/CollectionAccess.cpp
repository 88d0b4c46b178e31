#include "reference_host/observers/CollectionAccess.hpp"

#include "host/Text.hpp"
#include "reference_host/classes/ObjectAccess.hpp"
#include "reference_host/model/DiagramErrors.hpp"
#include "reference_host/model/OpenModels.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"

#include <utility>

namespace reference_host {

namespace {

OwnedValue ask(const nvArray* collection, const char* method, std::size_t index)
{
    const OwnedValue scriptIndex = methodIndex(index);
    return std::move(ObjectAccess::callMethod(collection, method, {scriptIndex.get()}).front());
}

}  // namespace

const nvArray* requireClients(const std::string& function, const nvArray* value)
{
    if (!isOfClass(value, clientsClass) || elementCount(value) != 1) {
        throw diagramError("InvalidClients", {function, std::string(clientsClass)});
    }
    return value;
}

std::shared_ptr<Model> modelOf(const nvArray* collection)
{
    const std::u16string name = textOf(collection, "Model");
    std::shared_ptr<Model> model = OpenModels::find(name);
    if (model == nullptr) {
        throw diagramError("ModelNotOpen", {toUtf8(name)});
    }
    return model;
}

std::u16string textOf(const nvArray* object, const char* name)
{
    return text(ObjectAccess::getProperty(object, name).get());
}

std::u16string textInCells(const nvArray* object, const char* name, std::size_t place)
{
    const OwnedValue cells = ObjectAccess::getProperty(object, name);
    return place < elementCount(cells.get()) ? text(cell(cells.get(), place)) : std::u16string();
}

std::size_t elementsIn(const nvArray* collection)
{
    return static_cast<std::size_t>(scalarInteger(ObjectAccess::getProperty(collection, "Count").get()));
}

OwnedValue elementAt(const nvArray* collection, std::size_t index)
{
    OwnedValue element = ask(collection, "get", index);
    return isEmpty(element.get()) ? nullptr : std::move(element);
}

std::string signalUUID(const nvArray* signals, std::size_t index)
{
    return utf8Text(ask(signals, "getUUID", index).get());
}

OwnedValue methodIndex(std::size_t index)
{
    return makeNumber(static_cast<double>(index + 1), nvClassID::UInt32);
}

}  // namespace reference_host
