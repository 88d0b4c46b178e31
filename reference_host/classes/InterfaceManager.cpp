#include "reference_host/classes/InterfaceManager.hpp"

#include "reference_host/classes/ClassErrors.hpp"
#include "reference_host/classes/ObjectAccess.hpp"
#include "reference_host/classes/RecordClass.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"

namespace reference_host {

namespace {

std::vector<InterfaceManager::Rename>& announced()
{
    static auto& instance = *new std::vector<InterfaceManager::Rename>;
    return instance;
}

OwnedValue makeRenames(const nvArray* /*manager*/)
{
    OwnedValue renames = makeStruct(Dimensions(1, announced().size()), {"OldName", "NewName"});
    for (std::size_t i = 0; i < announced().size(); ++i) {
        setField(renames.get(), i, "OldName", makeText(announced()[i].oldName));
        setField(renames.get(), i, "NewName", makeText(announced()[i].newName));
    }
    return renames;
}

OwnedValue getInterfaceMgr(const std::vector<const nvArray*>& /*inputs*/)
{
    return ObjectAccess::construct(interfaceManagerClass);
}

bool isName(const nvArray* value)
{
    return value != nullptr && value->valueClass == ValueClass::Char;
}

}  // namespace

const std::vector<InterfaceManager::Rename>& InterfaceManager::renames()
{
    return announced();
}

void InterfaceManager::forgetRenames()
{
    announced().clear();
}

void InterfaceManager::renameModel(HostFunctionCall& call)
{
    const bool fits = call.inputs().size() == 3 && isOfClass(call.input(0), interfaceManagerClass) &&
                      isName(call.input(1)) && isName(call.input(2));
    if (!fits) {
        throwClassError("WrongArgument:function",
                        {call.functionName(),
                         std::string("one ") + interfaceManagerClass + ", the old name and the new name"});
    }
    announced().push_back({text(call.input(1)), text(call.input(2))});
}

std::unique_ptr<nvcos::COSClassInfo> makeInterfaceManagerClass()
{
    return makeRecordClass("InterfaceMgr", {computedProperty("Renames", "any", makeRenames)},
                           {{"getInterfaceMgr", 0, interfaceManagerClass, getInterfaceMgr}});
}

}  // namespace reference_host
