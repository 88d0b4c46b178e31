#include "editor/DrawnPorts.hpp"

#include "editor/SignalsObject.hpp"
#include "reference_host/classes/ObjectAccess.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"

#include <vector>

namespace editor {

namespace rh = reference_host;

namespace {

bool isGivenPortObserved(const nvArray* signals, const zmPort& port)
{
    const rh::OwnedValue handle = rh::makeDouble(port.block->handle());
    const rh::OwnedValue number = rh::makeNumber(static_cast<double>(port.number), nvClassID::Int32);
    const auto observed =
        rh::ObjectAccess::callMethod(signals, "isGivenPortObserved", {handle.get(), number.get()});
    return rh::isTrueScalar(observed.front().get());
}

}  // namespace

void DrawnPorts::redraw(const rh::Model& model, const nvArray* signals)
{
    m_collection = nullptr;
    m_ports.clear();
    std::vector<zmPort*> observed;
    for (const rh::Block* block : model.blocks()) {
        for (std::size_t number = 1; number <= block->ports(rh::PortKind::Output).size(); ++number) {
            zmPort& port = m_ports.emplace(std::pair(block, number), zmPort{block, number}).first->second;
            if (isGivenPortObserved(signals, port)) {
                observed.push_back(&port);
            }
        }
    }
    nativeSignals(signals).cacheZMPorts(observed);
    m_collection = &nativeSignals(signals);
}

bool DrawnPorts::isObserved(const nvArray* signals, const rh::Block& block, std::size_t number) const
{
    const auto port = m_ports.find({&block, number});
    const zm_hmi::InstrumentedSignals& collection = nativeSignals(signals);
    return port != m_ports.end() && &collection == m_collection && collection.isZMPortObserved(&port->second);
}

}  // namespace editor
