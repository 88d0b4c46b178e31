#include "reference_host/observers/ObservedPorts.hpp"

#include "host/Text.hpp"
#include "reference_host/model/DiagramErrors.hpp"
#include "reference_host/model/OpenModels.hpp"
#include "reference_host/observers/CollectionAccess.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"

#include <set>
#include <unordered_set>
#include <utility>

namespace reference_host {

namespace {

std::unordered_set<std::string> observedUUIDs(const Model& model)
{
    std::unordered_set<std::string> uuids;
    if (const OwnedValue clients = modelClients(model)) {
        const std::size_t count = elementsIn(clients.get());
        for (std::size_t i = 0; i < count; ++i) {
            if (const OwnedValue client = elementAt(clients.get(), i)) {
                uuids.insert(toUtf8(textOf(client.get(), "SignalUUID_")));
            }
        }
    }
    uuids.erase("");
    return uuids;
}

std::u16string labelOf(const SignalRecord& signal, const SignalPlace& place)
{
    if (!signal.name.empty() || !place.isThere) {
        return signal.name;
    }
    return signal.chartObject
               ? place.block->chart()->find(*signal.chartObject)->name
               : place.block->ports(PortKind::Output)[static_cast<std::size_t>(signal.outputPort) - 1].name;
}

std::u16string pathOf(const ObservedPort& port)
{
    return port.place.block != nullptr ? port.place.block->path() : port.signal.path;
}

std::shared_ptr<Model> openModel(const nvArray* name)
{
    const std::u16string modelName = text(name);
    std::shared_ptr<Model> model = OpenModels::find(modelName);
    if (model == nullptr) {
        throw diagramError("ModelNotOpen", {toUtf8(modelName)});
    }
    return model;
}

/// Which of the observed ports a call asks for.
class Wanted {
public:
    Wanted(const Model& model, const HostFunctionCall& call)
        : m_domainType(text(call.input(2))),
          m_atEveryDepth(isTrueScalar(call.input(3))),
          m_isGoneToo(isTrueScalar(call.input(4)))
    {
        m_start = text(call.input(1));
        const std::u16string modelStart = model.name() + u'/';
        if (m_start.empty() || m_start == model.name()) {
            m_start = modelStart;
        } else {
            m_start = (m_start.starts_with(modelStart) ? m_start : modelStart + m_start) + u'/';
        }
    }

    bool operator()(const ObservedPort& port) const
    {
        const std::u16string path = pathOf(port);
        const bool isInside = path.starts_with(m_start) &&
                              (m_atEveryDepth || path.find(u'/', m_start.size()) == std::u16string::npos);
        return isInside && (m_domainType.empty() || port.signal.domainType == m_domainType) &&
               (m_isGoneToo || port.place.isThere);
    }

private:
    std::u16string m_start;
    std::u16string m_domainType;
    bool m_atEveryDepth;
    bool m_isGoneToo;
};

using Ports = std::vector<ObservedPort>;

template <class Read>
OwnedValue numbersOf(const Ports& ports, Read read)
{
    OwnedValue column = makeNumeric(Dimensions(ports.size(), 1), nvClassID::Double);
    for (std::size_t i = 0; i < ports.size(); ++i) {
        setElement(column.get(), i, static_cast<double>(read(ports[i])));
    }
    return column;
}

template <class Read>
OwnedValue flagsOf(const Ports& ports, Read read)
{
    OwnedValue column = makeLogicals(Dimensions(ports.size(), 1));
    for (std::size_t i = 0; i < ports.size(); ++i) {
        setElement(column.get(), i, read(ports[i]) ? 1.0 : 0.0);
    }
    return column;
}

template <class Read>
OwnedValue textsOf(const Ports& ports, Read read)
{
    OwnedValue column = makeCells(Dimensions(ports.size(), 1));
    for (std::size_t i = 0; i < ports.size(); ++i) {
        setCell(column.get(), i, makeText(read(ports[i])));
    }
    return column;
}

}  // namespace

std::vector<ObservedPort> observedPorts(const Model& model)
{
    const OwnedValue signals = modelSignals(model);
    if (!signals) {
        return {};
    }
    const std::unordered_set<std::string> observed = observedUUIDs(model);
    std::vector<ObservedPort> ports;
    for (SignalRecord& signal : readSignals(signals.get())) {
        const SignalPlace place = placeOf(signal);
        const bool hasClient = observed.contains(signal.uuid);
        std::u16string label = labelOf(signal, place);
        ports.push_back({std::move(signal), place, ports.size(), hasClient, std::move(label)});
    }
    return ports;
}

void getObservedPorts(HostFunctionCall& call)
{
    const std::shared_ptr<Model> model = openModel(call.input(0));
    Ports ports = observedPorts(*model);
    const Wanted isWanted(*model, call);
    std::erase_if(ports, [&isWanted](const ObservedPort& port) { return !isWanted(port); });

    const auto handle = [](const ObservedPort& port) {
        return port.place.block != nullptr ? port.place.block->handle() : 0.0;
    };
    call.setOutput(0, textsOf(ports, [](const ObservedPort& port) { return port.signal.uuid; }));
    call.setOutput(1, numbersOf(ports, handle));
    call.setOutput(2, numbersOf(ports, [](const ObservedPort& port) {
                       return port.signal.chartObject ? 0 : port.signal.outputPort;
                   }));
    call.setOutput(3, numbersOf(ports, [](const ObservedPort& port) { return port.signal.logicalPort; }));
    call.setOutput(4, numbersOf(ports, [](const ObservedPort& port) { return port.index + 1; }));
    call.setOutput(5, flagsOf(ports, [](const ObservedPort& port) { return port.place.isThere; }));
    call.setOutput(6, flagsOf(ports, [](const ObservedPort& port) { return port.hasClient; }));
    call.setOutput(7, textsOf(ports, pathOf));
    call.setOutput(
        8, flagsOf(ports, [](const ObservedPort& port) { return port.signal.chartObject.has_value(); }));
    call.setOutput(9, textsOf(ports, [](const ObservedPort& port) { return port.label; }));
}

void getPortsWithBadges(HostFunctionCall& call)
{
    std::set<double> handles;
    for (const ObservedPort& port : observedPorts(*openModel(call.input(0)))) {
        if (port.place.isThere) {
            handles.insert(port.place.block->handle());
        }
    }
    OwnedValue column = makeNumeric(Dimensions(handles.size(), 1), nvClassID::Double);
    std::size_t i = 0;
    for (const double handle : handles) {
        setElement(column.get(), i++, handle);
    }
    call.setOutput(0, std::move(column));
}

}  // namespace reference_host
