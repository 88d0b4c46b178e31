#include "hmi/InstrumentedSignals.hpp"

#include "hmi_foundation/ModelPath.hpp"
#include "host/HostCall.hpp"

#include <boost/unordered/unordered_flat_map.hpp>

#include <algorithm>
#include <functional>
#include <iterator>
#include <new>
#include <optional>
#include <utility>

namespace zm_hmi {

namespace {

constexpr const char* hostClass = "Zelmar.HMI.InstrumentedSignals";

/// Finds the blocks that an element belongs to.
class BlockFinder {
public:
    BlockFinder(const std::vector<InstrumentedSignals::PortNumbers>& blocks, const std::u16string& modelName)
    {
        for (std::size_t i = 0; i < blocks.size(); ++i) {
            m_byHandle[blocks[i].blockHandle].push_back(i);
            m_byPath[zm_hmi_foundation::RemoveModelFromPath(blocks[i].blockPath, modelName)].push_back(i);
            m_byZID[zm_hmi_foundation::RemoveModelFromZID(blocks[i].zid, modelName)].push_back(i);
        }
    }

    /// Appends the number of each block once.
    void find(const SignalSpecification& signal, std::vector<std::size_t>& blocks) const
    {
        const std::size_t before = blocks.size();
        append(m_byHandle, signal.getCachedBlockHandle(), blocks);
        append(m_byPath, signal.getBlockPath(), blocks);
        append(m_byZID, signal.getZID(), blocks);
        if (blocks.size() > before + 1) {
            std::sort(blocks.begin() + static_cast<std::ptrdiff_t>(before), blocks.end());
            blocks.erase(std::unique(blocks.begin() + static_cast<std::ptrdiff_t>(before), blocks.end()),
                         blocks.end());
        }
    }

private:
    // The standard library's hash of texts is five times as fast as Boost's.
    template <class Key>
    using Index = boost::unordered_flat_map<Key, std::vector<std::size_t>, std::hash<Key>>;

    template <class Key>
    static void append(const Index<Key>& index, const Key& key, std::vector<std::size_t>& blocks)
    {
        const auto found = index.find(key);
        if (found != index.end()) {
            blocks.insert(blocks.end(), found->second.begin(), found->second.end());
        }
    }

    Index<double> m_byHandle;  // a NaN is not found, because it is equal to nothing
    Index<std::u16string> m_byPath;
    Index<std::string> m_byZID;
};

/// The decisions of a renumbering: which record gets which number, and which elements are removed. They are
/// made on planned numbers, block by block, in the order of the elements; a record that is in the list twice
/// is renumbered twice. Nothing is changed yet.
class Renumbering {
public:
    using Signals = std::vector<SignalSpecificationPtr>;

    Renumbering(const Signals& signals, const std::vector<InstrumentedSignals::PortNumbers>& blocks,
                const std::u16string& modelName)
        : m_signals(signals), m_isRemoved(signals.size())
    {
        for (const auto& [block, index] : elementsOf(blocks, modelName)) {
            if (!m_isRemoved[index]) {
                renumber(index, blocks[block].newNumbers);
            }
        }
    }

    bool changesNothing() const noexcept { return m_newNumbers.empty() && !m_removesAny; }
    bool isRemoved(std::size_t index) const { return m_isRemoved[index]; }

    std::optional<int> newNumber(const SignalSpecification& record) const
    {
        const auto found = m_newNumbers.find(&record);
        return found != m_newNumbers.end() ? std::optional(found->second) : std::nullopt;
    }

private:
    using Member = std::pair<std::size_t, std::size_t>;  // numbers of block and element

    std::vector<Member> elementsOf(const std::vector<InstrumentedSignals::PortNumbers>& blocks,
                                   const std::u16string& modelName) const
    {
        const BlockFinder finder(blocks, modelName);
        std::vector<Member> members;
        std::vector<std::size_t> found;
        for (std::size_t index = 0; index < m_signals.size(); ++index) {
            found.clear();
            finder.find(*m_signals[index], found);
            std::transform(found.begin(), found.end(), std::back_inserter(members),
                           [&](std::size_t block) { return Member(block, index); });
        }
        std::sort(members.begin(), members.end());
        return members;
    }

    void renumber(std::size_t index, const std::vector<int>& newNumbers)
    {
        const SignalSpecification& record = *m_signals[index];
        const int oldNumber = newNumber(record).value_or(record.getOutputPortIndex());
        if (oldNumber < 1 || static_cast<std::size_t>(oldNumber) > newNumbers.size()) {
            return;
        }
        const int number = newNumbers[static_cast<std::size_t>(oldNumber) - 1];
        if (number == 0) {
            m_isRemoved[index] = true;
            m_removesAny = true;
        } else if (number != oldNumber) {
            m_newNumbers[&record] = number;
        }
    }

    const Signals& m_signals;
    boost::unordered_flat_map<const SignalSpecification*, int> m_newNumbers;
    std::vector<bool> m_isRemoved;  // by element
    bool m_removesAny = false;
};

}  // namespace

void InstrumentedSignals::renumberPorts(double blockHandle, const std::u16string& blockPath,
                                        const std::string& zid, const std::vector<int>& newNumbers)
try {
    renumberPorts({{blockHandle, blockPath, zid, newNumbers}});
} catch (const std::bad_alloc&) {
    zmsvThrowOutOfMemory();
}

// Everything that can fail is done aside: the decisions, the chart caches, the port map with the new numbers.
// What follows cannot fail. The port map is rebuilt once in place of moving the entries of single elements.
void InstrumentedSignals::renumberPorts(const std::vector<PortNumbers>& blocks)
try {
    const Renumbering plan(m_signals, blocks, m_modelName);
    if (plan.changesNothing()) {
        return;
    }
    ChartActivityCache charts = m_charts;
    for (std::size_t i = m_signals.size(); i-- > 0;) {
        if (plan.isRemoved(i) && isKestrowDomain(m_signals[i]->getDomainType())) {
            setActivityObserved(charts, *m_signals[i], false);
        }
    }
    ObservedPortMap ports;
    ports.reserve(m_signals.size());
    for (std::size_t i = 0; i < m_signals.size(); ++i) {
        if (!plan.isRemoved(i)) {
            enter(ports, charts, m_signals[i], plan.newNumber(*m_signals[i]));
        }
    }

    ports.acceptChange([&] {
        for (const SignalSpecificationPtr& signal : m_signals) {
            if (const std::optional<int> number = plan.newNumber(*signal)) {
                signal->renumberPortIndex(*number);
            }
        }
    });
    std::size_t position = 0;
    std::erase_if(m_signals, [&](const SignalSpecificationPtr&) { return plan.isRemoved(position++); });
    m_ports.takeEntries(std::move(ports));
    m_ports.forgetPortCache();
    std::swap(m_charts, charts);
} catch (const std::bad_alloc&) {
    zmsvThrowOutOfMemory();
}

namespace {

InstrumentedSignals* firstCollection(const nvArray* value)
{
    // The data of an object of another class is not a collection.
    const bool isOurs = !nvIsEmpty(value) && nvIsA(value, hostClass);
    return isOurs ? InstrumentedSignals::getFromNVArray(value) : nullptr;
}

}  // namespace

void InstrumentedSignals::applyRebindingRules(const nvArray* value, bool flag)
{
    if (value == nullptr) {
        return;
    }
    const auto endRebinding = [&] {
        if (InstrumentedSignals* signals = firstCollection(value)) {
            signals->m_rebindingPending = false;
        }
    };
    try {
        const OwnedArray flagValue = asTemporary(makeLogical(flag));
        callHostNoThrow<0>("applyRebindingRules", value, flagValue.get());
        endRebinding();
    } catch (...) {
        endRebinding();  // once more where memory was too short to reach the collection
        throw;
    }
}

}  // namespace zm_hmi
