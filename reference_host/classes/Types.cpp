#include "reference_host/classes/Types.hpp"

#include "reference_host/calls/BoundaryCall.hpp"

#include <array>
#include <map>
#include <unordered_set>

namespace reference_host {

using nvcos::COSType;

const COSType* findBuiltInType(const std::string& name)
{
    using Kind = COSType::Kind;
    static const auto* const types = new std::array<COSType, 7>{{{Kind::UnicodeString, "unicodeString"},
                                                                 {Kind::AsciiString, "asciiString"},
                                                                 {Kind::UInt32, "uint32 scalar"},
                                                                 {Kind::Int32, "int32 scalar"},
                                                                 {Kind::Double, "double scalar"},
                                                                 {Kind::Logical, "logical scalar"},
                                                                 {Kind::Any, "any"}}};
    for (const COSType& type : *types) {
        if (type.name == name) {
            return &type;
        }
    }
    return nullptr;
}

const COSType* classType(const std::string& fullName)
{
    static auto* const types = new std::map<std::string, COSType>;
    return &types->try_emplace(fullName, COSType{COSType::Kind::Class, fullName}).first->second;
}

nvcos::internal::Interned intern(const char* name)
{
    // Never destroyed: names are valid until the process has ended.
    static auto* const names = new std::unordered_set<std::string>;
    return name != nullptr ? nvcos::internal::Interned(names->emplace(name).first->c_str())
                           : nvcos::internal::Interned();
}

}  // namespace reference_host

nvcos::internal::Interned nvcos::internal::makeInterned(const char* name)
{
    return reference_host::BoundaryCall({"makeInterned"}, name).run([&] {
        return reference_host::intern(name);
    });
}

std::string nvcos::internal::describeArgument(Interned name)
{
    return reference_host::describeArgument(name.c_str());
}

std::string nvcos::describeArgument(const COSType* type)
{
    return type != nullptr ? "type " + type->name : "null";
}
