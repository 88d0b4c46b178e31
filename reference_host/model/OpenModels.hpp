#pragma once

#include "reference_host/Export.hpp"
#include "reference_host/model/Model.hpp"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace reference_host {

/// The models that are open in the process, one for each name. Host functions answer from them. Models are
/// shared: closing removes a model from here and clears its observers parameter; it stays usable for its
/// other owners. Main thread only.
class ZM_REFHOST_API OpenModels {
public:
    OpenModels() = delete;

    /// Opens a model. A name that is taken is a host error ("ModelAlreadyOpen").
    static void add(std::shared_ptr<Model> model);

    /// Closes a model. A name that no open model has is a host error ("ModelNotOpen").
    static void close(const std::u16string& name);
    static void closeAll() noexcept;

    /// Gives an open model another name; full paths and ZIDs follow.
    static void rename(const std::u16string& oldName, const std::u16string& newName);

    /// As `rename`, by the function that was set for it: a room above has a model's observers follow.
    using Renaming = void (*)(std::u16string oldName, std::u16string newName);
    static void renameWithObservers(const std::u16string& oldName, const std::u16string& newName);
    static bool setRenaming(Renaming renaming) noexcept;  ///< true, for the initialiser of a constant

    /// The open model of that name; null when there is none.
    static std::shared_ptr<Model> find(const std::u16string& name);

    /// The open models by name.
    static std::vector<std::shared_ptr<Model>> all();

    /// The block of a full path ("plant/Controller"), of a full ZID ("plant:12"), or of a run-time
    /// handle; null when no open model has it.
    static Block* findByPath(std::u16string_view path);
    static Block* findByZid(std::string_view zid);
    static Block* findByHandle(double handle);
};

}  // namespace reference_host
