/// Makes class constructors and static methods callable by name, as functions with the full name.

#include "reference_host/calls/HostFunctions.hpp"
#include "reference_host/classes/ClassErrors.hpp"
#include "reference_host/classes/ClassSystem.hpp"
#include "reference_host/classes/Namespace.hpp"
#include "reference_host/classes/ObjectAccess.hpp"
#include "reference_host/classes/Types.hpp"

#include <utility>

namespace reference_host {

namespace {

ObjectAccess::Arguments argumentsOf(const HostFunctionCall& call)
{
    return {call.inputs().begin(), call.inputs().end()};
}

void constructAsFunction(HostFunctionCall& call)
{
    if (call.outputCount() > 1) {
        throwClassError("TooManyOutputs:constructor", {call.functionName(), call.outputCount()});
    }
    call.setOutput(0, ObjectAccess::construct(call.functionName(), argumentsOf(call)));
}

void callStaticAsFunction(HostFunctionCall& call)
{
    const SplitName name(call.functionName());
    ObjectAccess::Results results = ObjectAccess::callStatic(name.parent, name.simple, argumentsOf(call),
                                                             static_cast<int>(call.outputCount()));
    for (std::size_t i = 0; i < results.size(); ++i) {
        call.setOutput(i, std::move(results[i]));
    }
}

HostFunction findLoaded(const std::string& name)
{
    if (ClassSystem::findClass(name) != nullptr) {
        return constructAsFunction;
    }
    const SplitName split(name);
    RegisteredClass* cosClass = ClassSystem::findClass(split.parent);
    if (cosClass != nullptr && cosClass->findMethod(split.simple) != nullptr) {
        return callStaticAsFunction;
    }
    return {};
}

HostFunction resolve(const std::string& name)
{
    const SplitName split(name);
    if (split.parent.empty()) {
        return {};
    }
    HostFunction function = findLoaded(name);
    Namespace* home = function ? nullptr : ClassSystem::findNamespace(split.parent);
    if (home != nullptr && home->info() != nullptr &&
        home->info()->attemptToLoadFunction(home, intern(split.simple.c_str()))) {
        function = findLoaded(name);
    }
    return function;
}

/// At load, before any code can call a function.
[[maybe_unused]] const bool resolverIsSet = [] {
    HostFunctions::setResolver(resolve);
    return true;
}();

}  // namespace

}  // namespace reference_host
