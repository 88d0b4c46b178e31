#include "reference_host/support/MemoryBlocks.hpp"

#include "reference_host/support/CallSite.hpp"
#include "reference_host/support/Ledger.hpp"
#include "reference_host/support/MemoryLimit.hpp"

#include <algorithm>
#include <cstdlib>
#include <unordered_map>

namespace reference_host {

namespace {

struct MemoryBlock {
    std::uint64_t serial = 0;
    std::size_t size = 0;
    CallSite madeBy;
    bool meantToLive = false;  // declared to the ledger
};

std::uint64_t blockCount = 0;

/// Never destroyed: libraries release blocks while the process ends. Created at load, because the functions
/// that use it cannot fail.
std::unordered_map<const void*, MemoryBlock>& blocks = *new std::unordered_map<const void*, MemoryBlock>;

std::vector<std::string> listOpen(std::uint64_t after)
{
    std::vector<std::string> lines;
    for (const auto& [address, block] : blocks) {
        if (block.serial > after && !block.meantToLive) {
            lines.push_back("block " + std::to_string(block.serial) + " of " + std::to_string(block.size) +
                            " bytes, made by " + describeCallSite(block.madeBy));
        }
    }
    return lines;
}

[[maybe_unused]] const bool isInLedger =
    Ledger::addAccount("blocks", {[] { return blockCount; }, listOpen, nullptr});

}  // namespace

void* allocateBlock(std::size_t size) noexcept
{
    void* block = size <= largestBlock ? std::calloc(std::max<std::size_t>(size, 1), 1) : nullptr;
    if (block == nullptr) {
        return nullptr;
    }
    try {
        blocks[block] = {++blockCount, size, CallSite::current(), false};
    } catch (const std::bad_alloc&) {
        std::free(block);
        return nullptr;
    }
    return block;
}

void releaseBlock(void* block) noexcept
{
    if (block != nullptr && blocks.erase(block) == 0) {
        Ledger::recordMisuse("nvFree: the block is not open; it was given back before or is not the host's");
        return;
    }
    std::free(block);
}

void setBlockMeantToLive(const void* block, bool isMeant) noexcept
{
    if (const auto found = blocks.find(block); found != blocks.end()) {
        found->second.meantToLive = isMeant;
    }
}

}  // namespace reference_host
