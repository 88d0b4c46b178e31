#include "streamout/StreamOutBlockRegistry.hpp"

#include "streamout/ThreadSafety.hpp"

#include <stdexcept>
#include <unordered_map>

namespace streamout {

namespace {

using BlockPtr = std::shared_ptr<StreamOutBlockContext>;
using BlockSet = std::unordered_set<BlockPtr>;
using BlocksById = std::unordered_map<std::string, BlockPtr>;

void requireBlock(const BlockPtr& block, const char* operation)
{
    if (block == nullptr) {
        throw std::invalid_argument(std::string("StreamOutBlockRegistry::") + operation +
                                    ": the block context is null");
    }
}

}  // namespace

class StreamOutBlockRegistry::Impl {
public:
    Impl() = default;
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;
    ~Impl();

    void registerBlock(const BlockPtr& block);
    void unregisterBlock(const BlockPtr& block);
    bool isBlockAlreadyRegistered(const std::string& blockId) const;
    BlockSet getRegisteredBlocks() const;
    BlockPtr getBlockForBlockId(const std::string& blockId) const;

private:
    BlockSet m_registeredBlocks ZM_GUARDED_BY(m_mutex);
    BlocksById m_blocksById ZM_GUARDED_BY(m_mutex);
    mutable Mutex m_mutex;
};

// The contexts end before the members do, and with the mutex free: their destructors may still call.
StreamOutBlockRegistry::Impl::~Impl()
{
    BlockSet releasedBlocks;
    BlocksById releasedEntries;
    const MutexLock lock(m_mutex);
    releasedBlocks.swap(m_registeredBlocks);
    releasedEntries.swap(m_blocksById);
}

void StreamOutBlockRegistry::Impl::registerBlock(const BlockPtr& block)
{
    requireBlock(block, "registerBlock");
    const MutexLock lock(m_mutex);
    m_registeredBlocks.insert(block);
    // An identifier that is taken keeps its context.
    m_blocksById.try_emplace(block->getBlockId(), block);
}

void StreamOutBlockRegistry::Impl::unregisterBlock(const BlockPtr& block)
{
    requireBlock(block, "unregisterBlock");
    // Made before the lock, so that a context whose last reference was the entry ends after it. The
    // one taken off the list is kept by the caller.
    BlocksById::node_type releasedEntry;
    const MutexLock lock(m_mutex);
    m_registeredBlocks.erase(block);
    releasedEntry = m_blocksById.extract(block->getBlockId());
}

bool StreamOutBlockRegistry::Impl::isBlockAlreadyRegistered(const std::string& blockId) const
{
    const MutexLock lock(m_mutex);
    return m_blocksById.contains(blockId);
}

BlockSet StreamOutBlockRegistry::Impl::getRegisteredBlocks() const
{
    const MutexLock lock(m_mutex);
    return m_registeredBlocks;
}

BlockPtr StreamOutBlockRegistry::Impl::getBlockForBlockId(const std::string& blockId) const
{
    const MutexLock lock(m_mutex);
    const auto entry = m_blocksById.find(blockId);
    return entry == m_blocksById.end() ? nullptr : entry->second;
}

StreamOutBlockRegistry::StreamOutBlockRegistry() : m_impl(std::make_unique<Impl>()) {}

StreamOutBlockRegistry::~StreamOutBlockRegistry() = default;

std::string StreamOutBlockRegistry::getPluginName()
{
    static const std::string name = "StreamOutBlockRegistry";
    return name;
}

// The three operations that take their argument by value hold their own reference or text for the whole
// call, whatever other threads do to the caller's.
void StreamOutBlockRegistry::registerBlock(std::shared_ptr<StreamOutBlockContext> block)
{
    m_impl->registerBlock(block);
}

void StreamOutBlockRegistry::unregisterBlock(std::shared_ptr<StreamOutBlockContext> block)
{
    m_impl->unregisterBlock(block);
}

bool StreamOutBlockRegistry::isBlockAlreadyRegistered(std::string blockId) const
{
    return m_impl->isBlockAlreadyRegistered(blockId);
}

std::unordered_set<std::shared_ptr<StreamOutBlockContext>> StreamOutBlockRegistry::getRegisteredBlocks() const
{
    return m_impl->getRegisteredBlocks();
}

std::shared_ptr<StreamOutBlockContext> StreamOutBlockRegistry::getBlockForBlockId(
    const std::string& blockId) const
{
    return m_impl->getBlockForBlockId(blockId);
}

}  // namespace streamout
