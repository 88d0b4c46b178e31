#ifndef ZM_STREAMOUT_STREAM_OUT_BLOCK_REGISTRY_HPP
#define ZM_STREAMOUT_STREAM_OUT_BLOCK_REGISTRY_HPP

#include "hmi_foundation/Export.hpp"
#include "streamout/StreamOutBlockContext.hpp"

#include <memory>
#include <string>
#include <unordered_set>

namespace streamout {

/// The stream-out blocks that are active now: recording code finds a block's context by the block's
/// identifier, or lists them all. A block registers when it starts and unregisters when it stops.
///
/// Contexts and identifiers are kept apart: every registered context is listed, and an identifier
/// leads to the context that registered it first. Two contexts with one identifier are both listed,
/// but share one entry, and the first of them to unregister takes it away.
///
/// Any thread may call any operation at any time; one mutex is held for the whole of each. What comes
/// back is a copy and stays valid afterwards. A context never ends while the mutex is held, so its
/// destructor may look up and unregister, also while the registry itself is being destroyed.
class ZM_HMI_API StreamOutBlockRegistry {
public:
    StreamOutBlockRegistry();
    StreamOutBlockRegistry(const StreamOutBlockRegistry&) = delete;
    StreamOutBlockRegistry& operator=(const StreamOutBlockRegistry&) = delete;
    ~StreamOutBlockRegistry();

    /// The name under which the host's plug-in mechanism knows the registry.
    static std::string getPluginName();

    /// Lists the context, and enters its identifier unless that already has an entry. Registering a
    /// context twice is the same as once. Throws `std::invalid_argument` when `block` is null. When
    /// the context throws instead of giving its identifier, it stays listed without an entry.
    void registerBlock(std::shared_ptr<StreamOutBlockContext> block);

    /// Takes the context off the list if it is there, then erases the entry of its identifier,
    /// whichever context that entry leads to. Throws `std::invalid_argument` when `block` is null.
    /// When the context throws instead of giving its identifier, it is off the list and no entry is
    /// erased.
    void unregisterBlock(std::shared_ptr<StreamOutBlockContext> block);

    /// Whether the identifier has an entry.
    bool isBlockAlreadyRegistered(std::string blockId) const;

    /// Every listed context, in no particular order.
    std::unordered_set<std::shared_ptr<StreamOutBlockContext>> getRegisteredBlocks() const;

    /// The context that the identifier leads to; an empty pointer when it has no entry.
    std::shared_ptr<StreamOutBlockContext> getBlockForBlockId(const std::string& blockId) const;

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

}  // namespace streamout

#endif
