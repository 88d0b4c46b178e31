#include "recorder/RecordingRun.hpp"

#include "recorder/RecordingErrors.hpp"

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
