#include "editor/RemovedSignals.hpp"

#include "editor/SignalsObject.hpp"
#include "reference_host/observers/CollectionAccess.hpp"

#include <algorithm>
#include <utility>

namespace editor {

namespace rh = reference_host;

RemovedSignals::RemovedSignals(const nvArray* signals, std::vector<std::size_t> indices)
    : m_indices(std::move(indices))
{
    if (!m_indices.empty()) {
        m_copies = newSignalsLike(signals);
        for (const std::size_t index : m_indices) {
            appendElement(m_copies.get(), signals, index);
        }
    }
}

// The collection's methods can append but not insert: what is behind the first of them is taken out and
// appended again.
void RemovedSignals::putBack(const nvArray* signals) const
{
    if (m_indices.empty()) {
        return;
    }
    const std::size_t count = rh::elementsIn(signals);
    const std::size_t first = std::min(m_indices.front(), count);
    const rh::OwnedValue behind = newSignalsLike(signals);
    for (std::size_t i = first; i < count; ++i) {
        appendElement(behind.get(), signals, i);
    }
    for (std::size_t i = count; i-- > first;) {
        removeElement(signals, i);
    }
    std::size_t back = 0;
    std::size_t moved = 0;
    const std::size_t movedCount = count - first;
    for (std::size_t place = first; back < m_indices.size() || moved < movedCount; ++place) {
        const bool isBack = back < m_indices.size() && (m_indices[back] <= place || moved == movedCount);
        appendElement(signals, isBack ? m_copies.get() : behind.get(), isBack ? back++ : moved++);
    }
}

}  // namespace editor
