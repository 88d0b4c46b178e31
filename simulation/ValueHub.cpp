#include "simulation/ValueHub.hpp"

#include "simulation/HistoryGroup.hpp"

#include <algorithm>
#include <exception>
#include <map>
#include <tuple>
#include <unordered_map>
#include <utility>

namespace simulation {

/// What a subscription and its hub share; either may end first.
struct Subscription::State {
    ValueHub::Impl* hub = nullptr;
    HubConsumer* consumer = nullptr;
    bool isAll = true;
    std::vector<ChannelId> selected;
};

namespace {

/// Samples of a buffered channel that were not delivered yet.
struct Block {
    std::vector<double> times;
    std::vector<double> values;
};

/// Groups are shared by channels that record at the same steps and keep as much.
using GroupKey = std::tuple<std::uint64_t, std::uint64_t, std::size_t>;  // decimation, phase, points

struct Group {
    HistoryGroup history;
    bool hasNewRow = false;
};

struct Slot {
    Channel channel;
    std::optional<std::size_t> source;
    std::shared_ptr<Group> group;  // null until a source gave values
    HistoryGroup::Column column = 0;
    Block block;
};

bool keepsHistory(const Channel& before, const Channel& after)
{
    return before.layout == after.layout && before.decimation == after.decimation &&
           before.maxPoints == after.maxPoints;
}

}  // namespace

class ValueHub::Impl {
public:
    explicit Impl(HubLimits limits) : m_limits(limits) {}
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;
    ~Impl()
    {
        for (const auto& subscription : m_subscriptions) {
            subscription->hub = nullptr;
        }
    }

    const std::vector<Slot>& slots() const noexcept { return m_slots; }
    const Slot* find(ChannelId channel) const
    {
        const auto found = m_places.find(channel);
        return found == m_places.end() ? nullptr : &m_slots[found->second];
    }

    void align(std::vector<ChannelSetup> setups);
    void record(const StepTime& time, std::span<const double> values);
    void flushBlocks();
    void subscribe(const std::shared_ptr<Subscription::State>& subscription);
    void unsubscribe(const Subscription::State& subscription) noexcept;
    std::size_t historyBytes() const noexcept;

    template <class Call>
    void tellAll(Call call);

    std::vector<ResolvedClient> clients;
    RunState state = RunState::Ready;
    std::function<void(const std::string&)> reportShortened;

private:
    using OldSlots = std::unordered_map<std::string, std::vector<Slot>>;

    void adopt(Slot& slot, ChannelSetup setup);
    void startColumn(Slot& slot);
    void endColumn(Slot& slot);
    void share();
    void collectBlocks(double time);
    void addSamples(std::vector<ChannelSamples>& samples, const Slot& slot) const;
    void deliver(const StepTime& time);

    HubLimits m_limits;
    std::vector<Slot> m_slots;
    std::unordered_map<ChannelId, std::size_t> m_places;
    std::vector<std::size_t> m_buffered;  // places
    std::map<GroupKey, std::shared_ptr<Group>> m_groups;
    std::vector<std::shared_ptr<Subscription::State>> m_subscriptions;
    std::vector<ChannelSamples> m_all;
    std::vector<ChannelSamples> m_selected;
    StepTime m_time;
    std::uint64_t m_steps = 0;
    ChannelId m_lastId = 0;
    bool m_isFlushing = false;
    bool m_isShortened = false;
};

/// Calls every consumer, also after one that fails; then throws what the first of them threw.
template <class Call>
void ValueHub::Impl::tellAll(Call call)
{
    std::exception_ptr failure;
    const auto subscriptions = m_subscriptions;  // consumers may come and go meanwhile
    for (const auto& subscription : subscriptions) {
        try {
            if (subscription->consumer != nullptr) {
                call(*subscription);
            }
        } catch (...) {  // whatever it is, the others are told first
            failure = failure ? failure : std::current_exception();
        }
    }
    if (failure) {
        std::rethrow_exception(failure);
    }
}

void ValueHub::Impl::align(std::vector<ChannelSetup> setups)
{
    flushBlocks();  // under the old settings
    OldSlots old;
    for (Slot& slot : m_slots) {
        old[slot.channel.uuid].push_back(std::move(slot));
    }
    for (auto& [uuid, slots] : old) {
        std::reverse(slots.begin(), slots.end());  // the first of a UUID is taken first
    }
    std::vector<Slot> slots;
    std::vector<std::size_t> added;
    std::vector<std::size_t> changed;
    for (ChannelSetup& setup : setups) {
        const auto found = old.find(setup.channel.uuid);
        Slot slot;
        if (found != old.end() && !found->second.empty()) {
            slot = std::move(found->second.back());
            found->second.pop_back();
            const Channel before = slot.channel;
            adopt(slot, std::move(setup));
            if (before != slot.channel && !slot.channel.isProbe) {
                changed.push_back(slots.size());
            }
        } else {
            slot.channel.id = ++m_lastId;
            adopt(slot, std::move(setup));
            if (!slot.channel.isProbe) {
                added.push_back(slots.size());
            }
        }
        slots.push_back(std::move(slot));
    }
    std::vector<ChannelId> removed;
    for (auto& [uuid, gone] : old) {
        for (Slot& slot : gone) {
            if (!slot.channel.isProbe) {
                removed.push_back(slot.channel.id);
            }
            endColumn(slot);
        }
    }
    std::sort(removed.begin(), removed.end());
    m_slots = std::move(slots);
    m_places.clear();
    m_buffered.clear();
    for (std::size_t i = 0; i < m_slots.size(); ++i) {
        m_places.emplace(m_slots[i].channel.id, i);
        if (m_slots[i].channel.isBuffered) {
            m_buffered.push_back(i);
        }
    }
    share();
    tellAll([&](const Subscription::State& subscription) {
        for (const ChannelId id : removed) {
            subscription.consumer->channelRemoved(id);
        }
        for (const std::size_t place : changed) {
            subscription.consumer->channelChanged(m_slots[place].channel);
        }
        for (const std::size_t place : added) {
            subscription.consumer->channelAdded(m_slots[place].channel);
        }
    });
}

/// Takes on the new settings, and keeps the history where it goes on with them.
void ValueHub::Impl::adopt(Slot& slot, ChannelSetup setup)
{
    const Channel before = std::exchange(slot.channel, std::move(setup.channel));
    slot.channel.id = before.id;
    slot.channel.decimation = std::max<std::uint32_t>(slot.channel.decimation, 1);
    slot.channel.hasSource = setup.valueOffset.has_value();
    if (slot.channel.maxPoints == 0) {
        slot.channel.maxPoints = m_limits.defaultMaxPoints;
    }
    if (slot.group && !keepsHistory(before, slot.channel)) {
        endColumn(slot);
    }
    const bool hadSource = slot.source.has_value();
    slot.source = setup.valueOffset;
    if (!slot.source) {
        if (slot.group && hadSource) {
            slot.group->history.close(slot.column);  // what it has can still be read
        }
    } else if (slot.group && hadSource) {
        slot.group->history.move(slot.column, *slot.source);
    } else {
        endColumn(slot);
        startColumn(slot);
    }
}

void ValueHub::Impl::startColumn(Slot& slot)
{
    const std::uint64_t decimation = slot.channel.decimation;
    const std::uint64_t phase = m_steps % decimation;  // the next step is recorded
    std::shared_ptr<Group>& group = m_groups[{decimation, phase, slot.channel.maxPoints}];
    if (!group) {
        group = std::make_shared<Group>(Group{HistoryGroup(decimation, phase, slot.channel.maxPoints)});
    }
    slot.group = group;
    slot.column = group->history.add(*slot.source, slot.channel.layout.width);
}

void ValueHub::Impl::endColumn(Slot& slot)
{
    if (slot.group) {
        slot.group->history.remove(slot.column);
        slot.group.reset();
        slot.block = {};
    }
}

/// Shares out the memory: each group keeps the same fraction of the points that it is to have.
void ValueHub::Impl::share()
{
    std::erase_if(m_groups, [](const auto& entry) { return entry.second->history.isEmpty(); });
    double needed = 0.0;
    double fixed = 0.0;
    for (const auto& [key, group] : m_groups) {
        needed += static_cast<double>(group->history.bytesFor(std::get<2>(key)));
        fixed += static_cast<double>(group->history.bytesFor(0));
    }
    const double forRows = static_cast<double>(m_limits.historyBytes) - fixed;
    const double fraction = std::clamp(forRows / std::max(needed - fixed, 1.0), 0.0, 1.0);
    for (const auto& [key, group] : m_groups) {
        group->history.setRowLimit(
            static_cast<std::size_t>(static_cast<double>(std::get<2>(key)) * fraction));
    }
    if (fraction < 1.0 && !m_isShortened) {
        m_isShortened = true;
        if (reportShortened) {
            reportShortened("The histories of " + std::to_string(m_slots.size()) + " signals would take " +
                            std::to_string(static_cast<std::size_t>(needed)) +
                            " bytes; each is shortened to " +
                            std::to_string(static_cast<int>(fraction * 100.0)) +
                            " % of its points, so that all together take at most " +
                            std::to_string(m_limits.historyBytes) + " bytes.");
        }
    }
}

void ValueHub::Impl::record(const StepTime& time, std::span<const double> values)
{
    for (const auto& [key, group] : m_groups) {
        group->hasNewRow = group->history.record(m_steps, time.seconds, values);
    }
    ++m_steps;
    m_time = time;
    if (!m_subscriptions.empty()) {
        collectBlocks(time.seconds);
        deliver(time);
    }
}

void ValueHub::Impl::collectBlocks(double time)
{
    for (const std::size_t place : m_buffered) {
        Slot& slot = m_slots[place];
        if (!slot.group || !slot.source || !slot.group->hasNewRow) {
            continue;
        }
        if (slot.block.times.size() >= m_limits.blockSamples) {
            slot.block.times.clear();  // delivered by the last step
            slot.block.values.clear();
        }
        const double* const values = slot.group->history.lastValues(slot.column);
        slot.block.times.push_back(time);
        slot.block.values.insert(slot.block.values.end(), values, values + slot.channel.layout.width);
    }
}

void ValueHub::Impl::addSamples(std::vector<ChannelSamples>& samples, const Slot& slot) const
{
    if (slot.channel.isBuffered) {
        const Block& block = slot.block;
        const bool isFull =
            block.times.size() >= m_limits.blockSamples && slot.group && slot.group->hasNewRow;
        if (isFull || (m_isFlushing && !block.times.empty())) {
            samples.push_back({slot.channel.id, block.times, block.values});
        }
    } else if (!m_isFlushing && slot.group && slot.source && slot.group->hasNewRow) {
        samples.push_back({slot.channel.id,
                           {&m_time.seconds, 1},
                           {slot.group->history.lastValues(slot.column), slot.channel.layout.width}});
    }
}

void ValueHub::Impl::deliver(const StepTime& time)
{
    const bool anyAll = std::any_of(m_subscriptions.begin(), m_subscriptions.end(),
                                    [](const auto& subscription) { return subscription->isAll; });
    m_all.clear();
    for (std::size_t i = 0; anyAll && i < m_slots.size(); ++i) {
        if (!m_slots[i].channel.isProbe) {
            addSamples(m_all, m_slots[i]);
        }
    }
    tellAll([&](const Subscription::State& subscription) {
        if (!subscription.isAll) {
            m_selected.clear();
            for (const ChannelId id : subscription.selected) {
                if (const Slot* slot = find(id)) {
                    addSamples(m_selected, *slot);
                }
            }
        }
        const auto& samples = subscription.isAll ? m_all : m_selected;
        if (!m_isFlushing || !samples.empty()) {
            subscription.consumer->step(time, samples);
        }
    });
}

void ValueHub::Impl::flushBlocks()
{
    for (const std::size_t place : m_buffered) {
        if (m_slots[place].block.times.size() >= m_limits.blockSamples) {
            m_slots[place].block = {};  // delivered by the last step
        }
    }
    m_isFlushing = true;
    std::exception_ptr failure;
    try {
        deliver(m_time);
    } catch (...) {  // whatever it is, the blocks are empty afterwards
        failure = std::current_exception();
    }
    m_isFlushing = false;
    for (const std::size_t place : m_buffered) {
        m_slots[place].block = {};
    }
    if (failure) {
        std::rethrow_exception(failure);
    }
}

void ValueHub::Impl::subscribe(const std::shared_ptr<Subscription::State>& subscription)
{
    for (const Slot& slot : m_slots) {
        if (!slot.channel.isProbe) {
            subscription->consumer->channelAdded(slot.channel);
        }
    }
    subscription->consumer->clientsChanged(clients);
    m_subscriptions.push_back(subscription);
}

void ValueHub::Impl::unsubscribe(const Subscription::State& subscription) noexcept
{
    std::erase_if(m_subscriptions, [&](const auto& each) { return each.get() == &subscription; });
}

std::size_t ValueHub::Impl::historyBytes() const noexcept
{
    std::size_t sum = 0;
    for (const auto& [key, group] : m_groups) {
        sum += group->history.bytes();
    }
    return sum;
}

Subscription& Subscription::operator=(Subscription&& other) noexcept
{
    if (this != &other) {
        end();
        m_state = std::move(other.m_state);
    }
    return *this;
}

void Subscription::select(std::vector<ChannelId> channels)
{
    if (m_state) {
        std::sort(channels.begin(), channels.end());
        channels.erase(std::unique(channels.begin(), channels.end()), channels.end());
        m_state->selected = std::move(channels);
        m_state->isAll = false;
    }
}

void Subscription::selectAll()
{
    if (m_state) {
        m_state->selected.clear();
        m_state->isAll = true;
    }
}

void Subscription::end() noexcept
{
    if (m_state) {
        m_state->consumer = nullptr;
        if (m_state->hub != nullptr) {
            m_state->hub->unsubscribe(*m_state);
        }
        m_state.reset();
    }
}

ValueHub::ValueHub(HubLimits limits) : m_impl(std::make_unique<Impl>(limits)) {}

ValueHub::~ValueHub() = default;

std::vector<Channel> ValueHub::channels() const
{
    std::vector<Channel> channels;
    channels.reserve(m_impl->slots().size());
    for (const Slot& slot : m_impl->slots()) {
        if (!slot.channel.isProbe) {
            channels.push_back(slot.channel);
        }
    }
    return channels;
}

const Channel* ValueHub::find(ChannelId channel) const
{
    const Slot* slot = m_impl->find(channel);
    return slot != nullptr ? &slot->channel : nullptr;
}

const Channel* ValueHub::findByUuid(const std::string& uuid) const
{
    const auto& slots = m_impl->slots();
    const auto found =
        std::find_if(slots.begin(), slots.end(), [&](const Slot& slot) { return slot.channel.uuid == uuid; });
    return found != slots.end() ? &found->channel : nullptr;
}

const std::vector<ResolvedClient>& ValueHub::clients() const noexcept
{
    return m_impl->clients;
}

std::optional<Sample> ValueHub::latest(ChannelId channel) const
{
    const Slot* slot = m_impl->find(channel);
    if (slot == nullptr || !slot->group || slot->group->history.rowCount(slot->column) == 0) {
        return std::nullopt;
    }
    const double* const values = slot->group->history.lastValues(slot->column);
    return Sample{slot->group->history.lastTime(slot->column),
                  {values, values + slot->channel.layout.width},
                  slot->channel.layout};
}

History ValueHub::history(ChannelId channel) const
{
    History history;
    if (const Slot* slot = m_impl->find(channel)) {
        history.layout = slot->channel.layout;
        if (slot->group) {
            slot->group->history.copy(slot->column, history.times, history.values);
        }
    }
    return history;
}

Subscription ValueHub::subscribe(HubConsumer& consumer)
{
    const auto state = std::make_shared<Subscription::State>();
    state->hub = m_impl.get();
    state->consumer = &consumer;
    m_impl->subscribe(state);
    return Subscription(state);
}

RunState ValueHub::state() const noexcept
{
    return m_impl->state;
}

void ValueHub::align(std::vector<ChannelSetup> setups)
{
    m_impl->align(std::move(setups));
}

void ValueHub::setClients(std::vector<ResolvedClient> clients)
{
    if (m_impl->clients != clients) {
        m_impl->clients = std::move(clients);
        m_impl->tellAll(
            [&](const auto& subscription) { subscription.consumer->clientsChanged(m_impl->clients); });
    }
}

void ValueHub::record(const StepTime& time, std::span<const double> values)
{
    m_impl->record(time, values);
}

void ValueHub::setState(RunState state, const std::string& error)
{
    m_impl->state = state;
    if (state != RunState::Running) {
        m_impl->flushBlocks();
    }
    m_impl->tellAll([&](const auto& subscription) { subscription.consumer->runStateChanged(state, error); });
}

void ValueHub::tellWaiting()
{
    m_impl->tellAll([](const auto& subscription) { subscription.consumer->waiting(); });
}

void ValueHub::onShortened(std::function<void(const std::string& message)> report)
{
    m_impl->reportShortened = std::move(report);
}

std::size_t ValueHub::historyBytes() const noexcept
{
    return m_impl->historyBytes();
}

}  // namespace simulation
