#include "reference_host/classes/DescribeClassArguments.hpp"

#include "reference_host/calls/CallArguments.hpp"
#include "reference_host/classes/Instance.hpp"
#include "reference_host/classes/MethodSignature.hpp"
#include "reference_host/classes/Namespace.hpp"
#include "reference_host/classes/RegisteredClass.hpp"
#include "reference_host/classes/Types.hpp"

namespace reference_host {

namespace {

struct NativeValueText {
    std::string operator()(std::monostate) const { return "nothing"; }
    std::string operator()(const std::u16string& value) const
    {
        return describeArgument(std::u16string_view(value));
    }
    std::string operator()(const std::string& value) const
    {
        return describeArgument(std::string_view(value));
    }
    template <class Value>
    std::string operator()(Value value) const
    {
        return describeArgument(value);
    }
    std::string operator()(nvArray* value) const
    {
        return describeArgument(static_cast<const nvArray*>(value));
    }
};

}  // namespace

std::string describeArgument(const NativeValues& values)
{
    std::string text;
    for (const nvcos::COSValue& value : values.values) {
        text += (text.empty() ? "" : ", ") + std::visit(NativeValueText{}, value);
    }
    return "(" + text + ")";
}

}  // namespace reference_host

std::string nvcos::internal::describeArgument(Interned name)
{
    return reference_host::describeArgument(name.c_str());
}

namespace nvcos {

std::string describeArgument(const COSType* type)
{
    return type != nullptr ? "type " + type->name : "null";
}

std::string describeArgument(const COSNamespace* cosNamespace)
{
    return cosNamespace != nullptr
               ? "namespace " + static_cast<const reference_host::Namespace*>(cosNamespace)->fullName()
               : "null";
}

std::string describeArgument(const COSInterface* instance)
{
    return instance != nullptr
               ? "instance of " + reference_host::Instance::of(*instance).cosClass().fullName()
               : "null";
}

std::string describeArgument(const COSInterfacePtr& instance)
{
    return describeArgument(instance.get());
}

std::string describeArgument(const COSMethodSignature* signature)
{
    return signature != nullptr ? "signature" : "null";
}

}  // namespace nvcos
