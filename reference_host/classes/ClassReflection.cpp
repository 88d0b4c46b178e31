#include "reference_host/classes/ClassReflection.hpp"

#include "reference_host/classes/ClassSystem.hpp"
#include "reference_host/classes/RegisteredClass.hpp"
#include "reference_host/classes/Types.hpp"

#include <span>

namespace reference_host {

namespace {

using Types = std::span<const nvcos::COSType* const>;

std::vector<std::string> typeNames(Types types)
{
    std::vector<std::string> names;
    names.reserve(types.size());
    for (const nvcos::COSType* type : types) {
        names.push_back(type->name);
    }
    return names;
}

std::string joined(const std::vector<std::string>& texts)
{
    std::string all;
    for (const std::string& text : texts) {
        all += (all.empty() ? "" : ", ") + text;
    }
    return all;
}

std::string signatureText(const MethodDescription& method)
{
    std::vector<std::string> inputs;
    if (method.kind == MethodDescription::Kind::Instance) {
        inputs.emplace_back("obj");
    }
    const std::size_t required = method.inputs.size() - method.optionalInputs;
    for (std::size_t i = 0; i < method.inputs.size(); ++i) {
        inputs.push_back(i < required ? method.inputs[i] : "[" + method.inputs[i] + "]");
    }
    std::string text = method.name + "(" + joined(inputs) + ")";
    if (method.outputs.size() == 1) {
        text += " -> " + method.outputs.front();
    } else if (!method.outputs.empty()) {
        text += " -> (" + joined(method.outputs) + ")";
    }
    return text;
}

MethodDescription describe(const RegisteredClass& cosClass, const RegisteredClass::Method& method)
{
    const MethodSignature& signature = signatureOf(cosClass, method);
    Types inputs = signature.inputs();
    MethodDescription description;
    description.name = method.name;
    if (cosClass.isConstructor(method)) {
        description.kind = MethodDescription::Kind::Constructor;
    } else if (cosClass.isInstanceMethod(method)) {
        inputs = inputs.subspan(1);
    } else {
        description.kind = MethodDescription::Kind::Static;
    }
    description.inputs = typeNames(inputs);
    description.optionalInputs = std::min(signature.optionalInputs(), inputs.size());
    description.outputs = typeNames(signature.outputs());
    description.signature = signatureText(description);
    return description;
}

PropertyDescription describe(const RegisteredClass& cosClass, const RegisteredClass::Property& property)
{
    return {property.name, typeOf(cosClass, property).name,
            static_cast<nvcos::COSPropAccess>(property.info->getAccess())};
}

}  // namespace

ClassDescription describeClass(const std::string& className)
{
    RegisteredClass& cosClass = ClassSystem::classNamed(className);
    ClassDescription description{cosClass.fullName(), cosClass.simpleName(), std::nullopt, {}, {}};
    for (const RegisteredClass::Method& method : cosClass.methods()) {
        if (cosClass.isConstructor(method)) {
            description.constructor = describe(cosClass, method);
        } else {
            description.methods.push_back(describe(cosClass, method));
        }
    }
    for (const RegisteredClass::Property& property : cosClass.properties()) {
        description.properties.push_back(describe(cosClass, property));
    }
    return description;
}

std::optional<PropertyDescription> describeProperty(const std::string& className, const std::string& property)
{
    RegisteredClass& cosClass = ClassSystem::classNamed(className);
    const RegisteredClass::Property* found = cosClass.findProperty(property);
    return found != nullptr ? std::optional(describe(cosClass, *found)) : std::nullopt;
}

std::optional<MethodDescription> describeMethod(const std::string& className, const std::string& method)
{
    RegisteredClass& cosClass = ClassSystem::classNamed(className);
    const RegisteredClass::Method* found = cosClass.findMethod(method);
    return found != nullptr ? std::optional(describe(cosClass, *found)) : std::nullopt;
}

}  // namespace reference_host
