#include "recorder/RecordingRun.hpp"

#include "recorder/RecordingErrors.hpp"
#include "reference_host/support/TextConversion.hpp"

#include <algorithm>
#include <exception>
#include <functional>
#include <utility>

namespace recorder {

namespace {

/// Whether a block that is active writes where this one is to write.
bool isTargetInUse(const RecordingBlock& block)
{
    const auto active = activeBlocks().getRegisteredBlocks();
    return std::any_of(active.begin(), active.end(), [&](const auto& other) {
        const auto* recording = dynamic_cast<const RecordingBlock*>(other.get());
        return recording != nullptr && recording->target() == block.target();
    });
}

}  // namespace

void requireModel(const RecordingBlock& block, const reference_host::Model& model)
{
    const reference_host::Model& blockModel = block.port().block->model();
    if (&blockModel != &model) {
        throw recordingError("OtherModel", {"The recording into " + block.target(),
                                            reference_host::utf8FromUtf16(blockModel.name()),
                                            reference_host::utf8FromUtf16(model.name())});
    }
}

streamout::StreamOutBlockRegistry& activeBlocks()
{
    static streamout::StreamOutBlockRegistry registry;
    return registry;
}

RecordingRun::RecordingRun(RecordingBlocks blocks) : m_blocks(std::move(blocks))
{
    for (const auto& block : m_blocks) {
        if (isTargetInUse(*block)) {
            throw recordingError("TargetInUse", {block->target()});
        }
    }
    for (const auto& block : m_blocks) {
        block->prepare(m_files);
    }
    try {
        registerAll();
        m_files.openAll();
    } catch (...) {  // whatever it is, no block stays active
        unregisterAll();
        throw;
    }
    m_isRunning = true;
}

void RecordingRun::follow(simulation::Run& run)
{
    std::vector<simulation::ChannelId> channels;
    for (std::size_t i = 0; i < m_blocks.size(); ++i) {
        requireModel(*m_blocks[i], *run.model());
        const OutputPort& port = m_blocks[i]->port();
        channels.push_back(run.probe({port.block, port.index, {}}));
        m_blocksOf[channels.back()].push_back(i);
    }
    m_subscription = run.hub().subscribe(*this);
    m_subscription.select(std::move(channels));
}

void RecordingRun::step(const simulation::StepTime& time, std::span<const simulation::ChannelSamples> samples)
{
    if (!m_isRunning) {
        return;
    }
    for (const simulation::ChannelSamples& each : samples) {
        for (const std::size_t block : m_blocksOf.at(each.channel)) {
            if (each.values.size() != 1) {
                throw recordingError("NotOneNumber", {"The recording into " + m_blocks[block]->target(),
                                                      portName(m_blocks[block]->port())});
            }
            sample(block, time.seconds, each.values.front());
        }
    }
    endOfTime(time.seconds);
}

void RecordingRun::runStateChanged(simulation::RunState state, const std::string& /*error*/)
{
    if (state == simulation::RunState::Ended && m_isRunning) {
        stop();
    } else if (m_isRunning) {
        m_files.flushAll();
    }
}

void RecordingRun::endOfTime(double time)
{
    m_files.endRow(time);
    flushWhenDue();
}

/// A little before the second is over, so that a row never waits for longer.
void RecordingRun::flushWhenDue()
{
    constexpr std::chrono::milliseconds interval(900);
    const auto now = std::chrono::steady_clock::now();
    if (m_isRunning && now - m_flushed >= interval) {
        m_flushed = now;
        m_files.flushAll();
    }
}

RecordingRun::~RecordingRun()
{
    if (m_isRunning) {
        try {
            stop();
        } catch (...) {  // the failure that ended the run is on its way already
            return;
        }
    }
}

void RecordingRun::stop()
{
    m_isRunning = false;
    unregisterAll();
    std::exception_ptr failure;
    const auto attempt = [&](const std::function<void()>& work) {
        try {
            work();
        } catch (...) {  // whatever it is, the others are stopped first
            failure = failure ? failure : std::current_exception();
        }
    };
    attempt([&] { m_files.closeAll(); });
    for (const auto& block : m_blocks) {
        attempt([&] { block->finish(); });
    }
    if (failure) {
        std::rethrow_exception(failure);
    }
}

void RecordingRun::registerAll()
{
    for (const auto& block : m_blocks) {
        if (activeBlocks().isBlockAlreadyRegistered(block->getBlockId())) {
            throw recordingError("RecordedTwice", {block->getBlockId()});
        }
        if (!block->sharesTarget() && isTargetInUse(*block)) {
            throw recordingError("TargetInUse", {block->target()});
        }
        activeBlocks().registerBlock(block);
        ++m_registered;
    }
}

void RecordingRun::unregisterAll() noexcept
{
    for (; m_registered > 0; --m_registered) {
        activeBlocks().unregisterBlock(m_blocks[m_registered - 1]);
    }
}

}  // namespace recorder
