#ifndef ZM_EDITOR_REMOVED_SIGNALS_HPP
#define ZM_EDITOR_REMOVED_SIGNALS_HPP

#include "reference_host/values/Value.hpp"

#include <cstddef>
#include <vector>

namespace editor {

/// Signals that an edit takes out of a collection, kept so that its undo can put them back where they were.
class RemovedSignals {
public:
    RemovedSignals() = default;

    /// Keeps copies of the elements at ascending 0-based indices, before they go.
    RemovedSignals(const nvArray* signals, std::vector<std::size_t> indices);

    bool isEmpty() const noexcept { return m_indices.empty(); }

    /// Puts them back. Where the collection has not changed since they went, it is as it was then;
    /// otherwise each stands at its old index or as near to it as there are elements.
    void putBack(const nvArray* signals) const;

private:
    std::vector<std::size_t> m_indices;
    reference_host::OwnedValue m_copies;
};

}  // namespace editor

#endif
