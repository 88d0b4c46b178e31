#include "hmi/InstrumentedSignals.hpp"

#include "hmi_foundation/ModelPath.hpp"
#include "host/HostCall.hpp"

#include <algorithm>
#include <new>

namespace zm_hmi {

// Every element is looked at once and the map is rebuilt once: the entries of single elements need not be
// moved one by one when the rebuild makes them all anew.
void InstrumentedSignals::renumberPorts(double blockHandle, const std::u16string& blockPath,
                                        const std::string& zid, const std::vector<int>& newNumbers)
try {
    const std::u16string relativePath = zm_hmi_foundation::RemoveModelFromPath(blockPath, m_modelName);
    const std::string relativeZID = zm_hmi_foundation::RemoveModelFromZID(zid, m_modelName);
    const auto isOnBlock = [&](const SignalSpecification& signal) {
        return signal.getCachedBlockHandle() == blockHandle || signal.getBlockPath() == relativePath ||
               signal.getZID() == relativeZID;
    };

    std::vector<std::size_t> deleted;
    bool changed = false;
    for (std::size_t i = 0; i < m_signals.size(); ++i) {
        SignalSpecification& signal = *m_signals[i];
        const int oldNumber = signal.getOutputPortIndex();
        if (!isOnBlock(signal) || oldNumber < 1 || static_cast<std::size_t>(oldNumber) > newNumbers.size()) {
            continue;
        }
        const int newNumber = newNumbers[static_cast<std::size_t>(oldNumber) - 1];
        if (newNumber == oldNumber) {
            continue;
        }
        changed = true;
        if (newNumber == 0) {
            deleted.push_back(i);
        } else {
            signal.renumberPortIndex(newNumber);
        }
    }
    if (!changed) {
        return;
    }
    eraseAt(deleted);
    forgetPortCache();
    updateObservedPortMap();
} catch (const std::bad_alloc&) {
    zmsvThrowOutOfMemory();
}

// Removes the elements at ascending indices, chart elements from the chart caches too, highest first.
void InstrumentedSignals::eraseAt(const std::vector<std::size_t>& indices)
{
    for (auto index = indices.rbegin(); index != indices.rend(); ++index) {
        if (isKestrowDomain(m_signals[*index]->getDomainType())) {
            removeFromObservedKWObject(m_signals[*index]);
        }
    }
    auto next = indices.begin();
    std::size_t position = 0;
    std::erase_if(m_signals, [&](const SignalSpecificationPtr&) {
        const bool erase = next != indices.end() && *next == position;
        next += erase ? 1 : 0;
        ++position;
        return erase;
    });
}

void InstrumentedSignals::applyRebindingRules(const nvArray* value, bool flag)
{
    if (value == nullptr) {
        return;
    }
    const OwnedArray flagValue = asTemporary(makeLogical(flag));
    callHostNoThrow<0>("applyRebindingRules", value, flagValue.get());
    // What is behind an object of another class is not to be written to.
    if (InstrumentedSignals* signals = isValidType(value) ? getFromNVArray(value) : nullptr) {
        signals->m_rebindingPending = false;
    }
}

}  // namespace zm_hmi
