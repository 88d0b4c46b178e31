#ifndef ZM_EDITOR_SIGNAL_EDITOR_HPP
#define ZM_EDITOR_SIGNAL_EDITOR_HPP

#include "editor/DrawnPorts.hpp"
#include "editor/RemovedClients.hpp"
#include "editor/RemovedSignals.hpp"
#include "hmi/InstrumentedSignals.hpp"
#include "reference_host/model/EditHistory.hpp"
#include "reference_host/observers/SignalRecords.hpp"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace editor {

/// What a host's editor does with the library while a person edits a diagram. As long as it lives it
/// follows the edits of one model, with the instrumented signals in the model's observers parameter:
///
///   output ports added, deleted, put in order    signals renumbered, those of deleted ports removed
///   a block gone, with its contents              its signals removed, those on its chart too
///   a block renamed or moved                     signals rebound
///   the model renamed                            the rename announced to the interface manager
///   a parameter changed                          announced to the host
///
/// After edits that removed signals or blocks, and after a rename of the model, the host validates the
/// streaming clients and removes those without a block or signal. Undo does the opposite, and puts back at
/// its place what an edit removed. The process-wide map of block ports to UUIDs follows the ports, with and
/// without signals. Signals that are bound to no handle yet are bound by path before they are renumbered.
/// Main thread only; the library has to be loaded.
class SignalEditor {
public:
    using Source = zm_hmi::InstrumentedSignals::Source;

    /// A model has one editor at a time. A second one is a host error ("SecondEditor"), null too
    /// ("InvalidModel").
    explicit SignalEditor(std::shared_ptr<reference_host::Model> model);
    SignalEditor(const SignalEditor&) = delete;
    SignalEditor& operator=(const SignalEditor&) = delete;
    ~SignalEditor();

    const std::shared_ptr<reference_host::Model>& model() const noexcept { return m_model; }

    /// Has the host bind the signals to the diagram as it is now.
    void rebind(bool removeUnbound);

    /// Draws the ports anew: see `DrawnPorts`. Signals that are bound to no handle yet are bound before.
    /// Without signals no port is observed.
    void redraw();
    bool isDrawnPortObserved(const reference_host::Block& block, std::size_t number) const;

    /// The host's answers about the open model; see `reference_host::getObservedPorts`.
    std::vector<Source> observedPorts(const std::string& system, const std::string& domainType,
                                      bool atEveryDepth, bool goneToo) const;
    std::set<double> badgedBlocks() const;

    /// One streaming client with the signal that it observes, as the host aligns them with the diagram.
    struct Observer {
        std::string uuid;
        std::vector<std::u16string>
            path;      ///< of the observer, then of the observed block; empty for no block
        int port = 0;  ///< the observed output port, from 1; 0 for none
        int decimation = 1;
        int maxPoints = 0;
    };
    /// The model's streaming clients, in order. Each signal that the host cannot align gives a warning.
    std::vector<Observer> observers() const;

private:
    /// Elements that an edit removed, for its undo.
    struct Removed {
        RemovedSignals signals;
        RemovedClients clients{};
        std::map<std::size_t, std::string> portUUIDs{};  // by port number
    };

    void follow(const reference_host::DiagramChange& change);
    // Each takes the collections of the model, or null.
    void followVanished(const nvArray* signals, const nvArray* clients,
                        const reference_host::DiagramChange& change);
    void followOutputs(const nvArray* signals, const nvArray* clients,
                       const reference_host::DiagramChange& change);
    void followRename(const nvArray* clients, const reference_host::DiagramChange& change);
    Removed takeRemoved(std::uint64_t edit);

    std::shared_ptr<reference_host::Model> m_model;
    std::uint64_t m_listener;
    std::map<std::uint64_t, Removed> m_removed;  // by edit
    DrawnPorts m_drawn;
};

}  // namespace editor

#endif
