#ifndef ZM_STREAMOUT_STREAM_OUT_BLOCK_CONTEXT_HPP
#define ZM_STREAMOUT_STREAM_OUT_BLOCK_CONTEXT_HPP

#include "hmi_foundation/Export.hpp"

#include <string>

namespace streamout {

/// What recording code knows of one active stream-out block. The recording framework derives from it
/// and holds its contexts by `std::shared_ptr`; the library only asks for the identifier.
class ZM_HMI_API StreamOutBlockContext {
public:
    StreamOutBlockContext() = default;
    StreamOutBlockContext(const StreamOutBlockContext&) = delete;
    StreamOutBlockContext& operator=(const StreamOutBlockContext&) = delete;
    virtual ~StreamOutBlockContext() = default;

    /// The block's identifier, UTF-8. The registry asks while it holds its mutex, from whichever thread
    /// registers or unregisters the context: an implementation must not call back into the registry.
    /// It may throw; the exception reaches the registry's caller.
    virtual std::string getBlockId() const = 0;
};

}  // namespace streamout

#endif
