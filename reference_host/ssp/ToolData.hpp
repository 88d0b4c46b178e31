#ifndef ZM_REFERENCE_HOST_SSP_TOOL_DATA_HPP
#define ZM_REFERENCE_HOST_SSP_TOOL_DATA_HPP

#include "reference_host/Export.hpp"
#include "reference_host/model/Model.hpp"
#include "reference_host/observers/SignalRebinding.hpp"

#include <string>
#include <string_view>
#include <vector>

namespace reference_host {

/// The version of the form that `toolDataOf` writes.
inline constexpr unsigned toolDataVersion = 1;

/// What a system structure description cannot say about a model, as JSON text: the number of every block
/// (the ZID) and the order of its output ports, which numbers them, charts with their states and data, and
/// block parameters. Blocks are found again by their names, system by system, so that a
/// description which another program has changed keeps what still fits.
ZM_REFHOST_API std::string toolDataOf(const Model& model);

/// What did not fit a description that another program has changed.
struct ToolDataChanges {
    std::vector<std::string> leftOver;  ///< a sentence for everything that has no place any more
    NewPortNumbers newNumbers;          ///< of blocks whose ports could not keep their numbers
};

/// Gives a model that was just read what `toolDataOf` has kept; blocks that nothing was kept about get new
/// numbers. Text of another form is refused with the reason, a newer version with both numbers
/// ("NewerVersion"); the model is of no use then.
ZM_REFHOST_API ToolDataChanges applyToolData(Model& model, std::string_view json);

}  // namespace reference_host

#endif
