#include "reference_host/model/EditHistory.hpp"

#include "host/Text.hpp"
#include "reference_host/model/DiagramErrors.hpp"
#include "reference_host/model/OpenModels.hpp"

#include <algorithm>
#include <exception>
#include <numeric>

namespace reference_host {

namespace {

std::size_t positionOf(const Block& block)
{
    const auto& siblings = block.parent()->children();
    const auto found = std::find_if(siblings.begin(), siblings.end(),
                                    [&block](const auto& child) { return child.get() == &block; });
    return static_cast<std::size_t>(found - siblings.begin());
}

bool hasConnector(const Block& block, const std::u16string& name)
{
    const auto isNamed = [&name](const Port& port) { return port.name == name; };
    const auto has = [&](PortKind kind) {
        return std::any_of(block.ports(kind).begin(), block.ports(kind).end(), isNamed);
    };
    return has(PortKind::Output) || has(PortKind::Input) || has(PortKind::Other);
}

/// The connections of a system, without those to a connector that the block no longer has.
std::vector<Connection> withoutLoose(const Block& system, const Block& block)
{
    std::vector<Connection> kept = system.connections();
    std::erase_if(kept, [&block](const Connection& connection) {
        const auto isLoose = [&block](const ConnectionEnd& end) {
            return end.element == &block && !hasConnector(block, end.connector);
        };
        return isLoose(connection.start) || isLoose(connection.end);
    });
    return kept;
}

std::vector<int> numbersUpTo(std::size_t count)
{
    std::vector<int> numbers(count);
    std::iota(numbers.begin(), numbers.end(), 1);
    return numbers;
}

void checkPort(const Block& block, std::size_t number, std::size_t last)
{
    if (number < 1 || number > last) {
        throw diagramError("InvalidPort", {toUtf8(block.path()), std::uint64_t{number}});
    }
}

/// The new numbers of `count` ports when a port is inserted at `number`, and the reverse mapping for its
/// removal.
struct OnePort {
    std::vector<int> putIn;
    std::vector<int> takenOut;

    OnePort(std::size_t count, std::size_t number) : putIn(numbersUpTo(count)), takenOut(numbersUpTo(count))
    {
        const auto place = static_cast<std::ptrdiff_t>(number - 1);
        std::for_each(putIn.begin() + place, putIn.end(), [](int& moved) { ++moved; });
        takenOut.insert(takenOut.begin() + place, 0);
    }
};

}  // namespace

// ---- blocks -----------------------------------------------------------------------------------------

Block& EditHistory::addBlock(Block& system, std::u16string name, BlockKind kind)
{
    Block& block = m_model.add(system, std::move(name), kind);
    const std::size_t position = positionOf(block);
    record(&block,
           {[this, &block, position] { m_model.restore(block, position); }, ChangeKind::BlockAppeared},
           {[this, &block] { m_model.remove(block); }, ChangeKind::BlockVanished}, block.path());
    return block;
}

void EditHistory::deleteBlock(Block& block)
{
    checkBlock(block);
    perform(&block, {[this, &block] { m_model.remove(block); }, ChangeKind::BlockVanished},
            {[this, &block, position = positionOf(block), connections = block.parent()->connections()] {
                 m_model.restore(block, position);
                 block.parent()->setConnections(connections);
             },
             ChangeKind::BlockAppeared});
}

void EditHistory::renameBlock(Block& block, const std::u16string& name)
{
    perform(
        &block, {[this, &block, name] { m_model.rename(block, name); }, ChangeKind::BlockRenamed},
        {[this, &block, former = block.name()] { m_model.rename(block, former); }, ChangeKind::BlockRenamed});
}

void EditHistory::moveBlock(Block& block, Block& system)
{
    checkBlock(block);
    Block& former = *block.parent();
    perform(&block, {[this, &block, &system] { m_model.move(block, system); }, ChangeKind::BlockMoved},
            {[this, &block, &former, position = positionOf(block), connections = former.connections()] {
                 m_model.move(block, former, position);
                 former.setConnections(connections);
             },
             ChangeKind::BlockMoved});
}

void EditHistory::setParameter(Block& block, const std::u16string& name, std::u16string value)
{
    checkBlock(block);
    const auto found = block.parameters().find(name);
    std::function<void()> back;
    if (found == block.parameters().end()) {
        back = [&block, name] { block.removeParameter(name); };
    } else {
        back = [&block, name, former = found->second] { block.setParameter(name, former); };
    }
    perform(&block,
            {[&block, name, value = std::move(value)] { block.setParameter(name, value); },
             ChangeKind::ParameterChanged},
            {std::move(back), ChangeKind::ParameterChanged});
}

// ---- output ports -----------------------------------------------------------------------------------

void EditHistory::addOutput(Block& block, std::u16string name, std::size_t number)
{
    checkBlock(block);
    std::vector<Port> ports = block.ports(PortKind::Output);
    checkPort(block, number, ports.size() + 1);
    if (name.empty()) {
        throw diagramError("InvalidName", {std::string(), std::string("is empty")});
    }
    if (hasConnector(block, name)) {
        throw diagramError("DuplicateName", {toUtf8(name), toUtf8(block.path())});
    }
    OnePort numbers(ports.size(), number);
    ports.insert(ports.begin() + static_cast<std::ptrdiff_t>(number - 1), {std::move(name)});
    changeOutputs(block, std::move(ports), std::move(numbers.putIn), std::move(numbers.takenOut));
}

void EditHistory::deleteOutput(Block& block, std::size_t number)
{
    checkBlock(block);
    std::vector<Port> ports = block.ports(PortKind::Output);
    checkPort(block, number, ports.size());
    OnePort numbers(ports.size() - 1, number);
    ports.erase(ports.begin() + static_cast<std::ptrdiff_t>(number - 1));
    changeOutputs(block, std::move(ports), std::move(numbers.takenOut), std::move(numbers.putIn));
}

void EditHistory::reorderOutputs(Block& block, const std::vector<int>& newNumbers)
{
    checkBlock(block);
    const std::vector<Port>& ports = block.ports(PortKind::Output);
    const std::vector<int> inOrder = numbersUpTo(ports.size());
    if (!std::is_permutation(newNumbers.begin(), newNumbers.end(), inOrder.begin(), inOrder.end())) {
        throw diagramError("InvalidPortOrder", {toUtf8(block.path()), std::uint64_t{ports.size()}});
    }
    std::vector<Port> after(ports.size());
    std::vector<int> oldNumbers(ports.size());
    for (std::size_t i = 0; i < ports.size(); ++i) {
        const auto place = static_cast<std::size_t>(newNumbers[i]) - 1;
        after[place] = ports[i];
        oldNumbers[place] = inOrder[i];
    }
    changeOutputs(block, std::move(after), newNumbers, std::move(oldNumbers));
}

void EditHistory::changeOutputs(Block& block, std::vector<Port> after, std::vector<int> newNumbers,
                                std::vector<int> oldNumbers)
{
    Block& system = *block.parent();
    auto forth = [&block, &system, after = std::move(after)] {
        block.setPorts(PortKind::Output, after);
        system.setConnections(withoutLoose(system, block));
        block.setConnections(withoutLoose(block, block));
    };
    auto back = [&block, &system, before = block.ports(PortKind::Output), around = system.connections(),
                 inside = block.connections()] {
        block.setPorts(PortKind::Output, before);
        system.setConnections(around);
        block.setConnections(inside);
    };
    perform(&block, {std::move(forth), ChangeKind::OutputsChanged, std::move(newNumbers)},
            {std::move(back), ChangeKind::OutputsChanged, std::move(oldNumbers)});
}

// ---- the model --------------------------------------------------------------------------------------

void EditHistory::renameModel(const std::u16string& name)
{
    const auto renameTo = [this](const std::u16string& newName) {
        if (OpenModels::find(m_model.name()).get() == &m_model) {
            OpenModels::renameWithObservers(m_model.name(), newName);
        } else {
            m_model.setName(newName);
        }
    };
    perform(nullptr, {[renameTo, name] { renameTo(name); }, ChangeKind::ModelRenamed},
            {[renameTo, former = m_model.name()] { renameTo(former); }, ChangeKind::ModelRenamed});
}

// ---- undo and redo ----------------------------------------------------------------------------------

bool EditHistory::undo()
{
    if (m_done == 0) {
        return false;
    }
    const Step step = m_steps[m_done - 1];  // a copy: a listener may edit
    run(step, step.back, m_done - 1);
    return true;
}

bool EditHistory::redo()
{
    if (m_done == m_steps.size()) {
        return false;
    }
    const Step step = m_steps[m_done];
    run(step, step.forth, m_done + 1);
    return true;
}

void EditHistory::perform(Block* block, Turn forth, Turn back)
{
    std::u16string formerPath = pathOf(block);
    forth.work();
    record(block, std::move(forth), std::move(back), std::move(formerPath));
}

void EditHistory::record(Block* block, Turn forth, Turn back, std::u16string formerPath)
{
    DiagramChange change{forth.kind, &m_model, block, std::move(formerPath), forth.newNumbers, ++m_lastEdit};
    m_steps.resize(m_done);
    m_steps.push_back({m_lastEdit, block, std::move(forth), std::move(back)});
    ++m_done;
    tell(std::move(change));
}

void EditHistory::run(const Step& step, const Turn& turn, std::size_t done)
{
    DiagramChange change{turn.kind, &m_model, step.block, pathOf(step.block), turn.newNumbers, step.edit};
    turn.work();
    m_done = done;
    tell(std::move(change));
}

std::u16string EditHistory::pathOf(const Block* block) const
{
    return block != nullptr ? block->path() : m_model.name();
}

void EditHistory::checkBlock(const Block& block) const
{
    if (!m_model.holds(block)) {
        throw diagramError("InvalidBlock", {toUtf8(block.path()), toUtf8(m_model.name())});
    }
}

// ---- listeners --------------------------------------------------------------------------------------

std::uint64_t EditHistory::addListener(Listener listener)
{
    m_listeners.emplace(++m_lastListener, std::move(listener));
    return m_lastListener;
}

void EditHistory::removeListener(std::uint64_t id)
{
    m_listeners.erase(id);
}

void EditHistory::tell(DiagramChange change)
{
    m_untold.push_back(std::move(change));
    if (m_untold.size() > 1) {
        return;  // a listener edits: all are told when all know of the edit before
    }
    std::exception_ptr failure;
    for (; !m_untold.empty(); m_untold.pop_front()) {
        const std::uint64_t newest = m_lastListener;
        for (auto next = m_listeners.begin(); next != m_listeners.end() && next->first <= newest;) {
            const std::uint64_t id = next->first;
            try {
                const Listener listener = next->second;  // it may take itself away, or another
                listener(m_untold.front());
            } catch (...) {
                failure = failure ? failure : std::current_exception();
            }
            next = m_listeners.upper_bound(id);
        }
    }
    if (failure) {
        std::rethrow_exception(failure);
    }
}

}  // namespace reference_host
