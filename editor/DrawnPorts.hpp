#ifndef ZM_EDITOR_DRAWN_PORTS_HPP
#define ZM_EDITOR_DRAWN_PORTS_HPP

#include "hmi/InstrumentedSignals.hpp"
#include "host/Ports.hpp"
#include "reference_host/model/Model.hpp"

#include <cstddef>
#include <map>
#include <utility>

/// An output port as the editor draws it.
struct zmPort {
    const reference_host::Block* block;
    std::size_t number;  ///< from 1
};

namespace editor {

/// The output ports of the last redraw, with those among them that are observed in the collection's port
/// cache. A change of the collection empties that cache: then no port counts as observed until the next
/// redraw. Nor does one in another collection than was drawn, whose cache may name ports that are gone.
class DrawnPorts {
public:
    /// Draws every output port of the diagram anew, and caches the observed ones in the collection.
    void redraw(const reference_host::Model& model, const nvArray* signals);

    /// Whether the port was observed when it was drawn, and nothing has changed since; false for a port
    /// that was not drawn.
    bool isObserved(const nvArray* signals, const reference_host::Block& block, std::size_t number) const;

private:
    std::map<std::pair<const reference_host::Block*, std::size_t>, zmPort> m_ports;
    const zm_hmi::InstrumentedSignals* m_collection = nullptr;  // only compared
};

}  // namespace editor

#endif
