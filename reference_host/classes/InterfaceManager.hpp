#pragma once

#include "host/ClassDescriptors.hpp"
#include "reference_host/Export.hpp"
#include "reference_host/calls/HostFunctions.hpp"

#include <memory>
#include <string>
#include <vector>

namespace reference_host {

inline constexpr const char* interfaceManagerClass = "Zelmar.HMI.InterfaceMgr";

/// The host's interface manager. In a host with windows it would update their titles when a model is renamed;
/// this one records the renames for scripts and tests. There is one for the process: its objects are handles
/// without data of their own. Main thread only.
class ZM_REFHOST_API InterfaceManager {
public:
    InterfaceManager() = delete;

    struct Rename {
        std::u16string oldName;
        std::u16string newName;
    };

    /// The renames announced so far, the first one first.
    static const std::vector<Rename>& renames();
    static void forgetRenames();

    /// The host function "renameModel": takes a manager, the old name and the new one. Other arguments
    /// are a host error ("WrongArgument").
    static void renameModel(HostFunctionCall& call);
};

/// The host's class "InterfaceMgr", which the host contributes to the namespace "Zelmar.HMI". Its static
/// method "getInterfaceMgr" gives the manager; the property "Renames" is a struct array with the fields
/// "OldName" and "NewName".
ZM_REFHOST_API std::unique_ptr<nvcos::COSClassInfo> makeInterfaceManagerClass();

}  // namespace reference_host
