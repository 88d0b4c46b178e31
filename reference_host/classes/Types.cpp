#include "reference_host/classes/Types.hpp"

#include "reference_host/calls/BoundaryCall.hpp"
#include "reference_host/classes/ClassError.hpp"
#include "reference_host/classes/ClassRegistry.hpp"
#include "reference_host/classes/DescribeClassArguments.hpp"

#include <array>
#include <map>

namespace reference_host {

namespace {

using nvcos::COSType;

const COSType* findLoadedType(const std::string& name)
{
    if (const COSType* builtIn = findBuiltInType(name)) {
        return builtIn;
    }
    return ClassRegistry::instance().findClass(name) != nullptr ? classType(name) : nullptr;
}

}  // namespace

const COSType* findBuiltInType(const std::string& name)
{
    using Kind = COSType::Kind;
    // Never destroyed: types are good until the process has ended.
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
    // Never destroyed, as above.
    static auto* const types = new std::map<std::string, COSType>;
    return &types->try_emplace(fullName, COSType{COSType::Kind::Class, fullName}).first->second;
}

const COSType* typeNamed(const std::string& name)
{
    const COSType* type = findLoadedType(name);
    if (type == nullptr && ClassRegistry::instance().attemptToLoadType(name)) {
        type = findLoadedType(name);
    }
    if (type == nullptr) {
        throwClassError("UnknownType", "nobody has registered the type \"" + name + "\"", {name});
    }
    return type;
}

}  // namespace reference_host

const nvcos::COSType* nvcos::COSTypeRepository::getType(internal::Interned name)
{
    using namespace reference_host;
    const Operation operation("COSTypeRepository::getType", CanFail::ThrowingOrNull);
    return BoundaryCall(operation, name).run([&] {
        if (name.isNull()) {
            throwClassError("UnknownType", "a type was asked for without a name");
        }
        return typeNamed(name.c_str());
    });
}
