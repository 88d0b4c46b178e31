#include "reference_host/calls/HostFunctions.hpp"

#include "reference_host/support/ErrorCatalog.hpp"

#include <map>
#include <utility>

namespace reference_host {

namespace {

struct FunctionTable {
    std::map<std::string, HostFunction, std::less<>> functions;
    HostFunctions::Resolver resolver;
};

/// Never destroyed: libraries call the host while the process goes down.
FunctionTable& table()
{
    static FunctionTable& instance = *new FunctionTable;
    return instance;
}

/// Empty for an unknown name. A copy, because a function may redefine or remove itself.
HostFunction findFunction(const std::string& name)
{
    const auto found = table().functions.find(name);
    if (found != table().functions.end()) {
        return found->second;
    }
    return table().resolver ? table().resolver(name) : HostFunction();
}

void requireEmptySlots(std::span<nvArray* const> slots)
{
    for (std::size_t i = 0; i < slots.size(); ++i) {
        if (slots[i] != nullptr) {
            throwMisuse("SlotIsFilled", {std::uint64_t{i}});
        }
    }
}

std::vector<Loan> lend(std::span<const nvArray* const> inputs)
{
    std::vector<Loan> loans;
    loans.reserve(inputs.size());
    for (const nvArray* input : inputs) {
        requirePointer(input);
        loans.emplace_back(input);
    }
    return loans;
}

}  // namespace

HostFunctionCall::HostFunctionCall(const std::string& name, std::span<const nvArray* const> inputs,
                                   std::span<nvArray*> outputs, void* context)
    : m_name(name), m_inputs(inputs), m_outputs(outputs), m_context(context)
{
}

const nvArray* HostFunctionCall::input(std::size_t index) const
{
    if (index >= m_inputs.size()) {
        throwHostError("TooFewInputs", {m_name, std::uint64_t{m_inputs.size()}});
    }
    return m_inputs[index];
}

void HostFunctionCall::setOutput(std::size_t index, OwnedValue value)
{
    if (index < m_outputs.size()) {
        const OwnedValue former(std::exchange(m_outputs[index], value.release()));
    }
}

void HostFunctions::define(const std::string& name, HostFunction function)
{
    if (!table().functions.emplace(name, std::move(function)).second) {
        throwHostError("FunctionExists", {name});
    }
}

HostFunction HostFunctions::replace(const std::string& name, HostFunction function)
{
    return std::exchange(table().functions[name], std::move(function));
}

bool HostFunctions::remove(const std::string& name)
{
    return table().functions.erase(name) > 0;
}

bool HostFunctions::isDefined(const std::string& name)
{
    return static_cast<bool>(findFunction(name));
}

std::vector<std::string> HostFunctions::names()
{
    std::vector<std::string> names;
    for (const auto& [name, function] : table().functions) {
        names.push_back(name);
    }
    return names;
}

void HostFunctions::setResolver(Resolver resolver)
{
    table().resolver = std::move(resolver);
}

std::vector<OwnedValue> HostFunctions::call(const std::string& name, std::span<const nvArray* const> inputs,
                                            std::size_t outputCount, void* context)
{
    std::vector<nvArray*> slots(outputCount, nullptr);
    std::vector<OwnedValue> outputs(outputCount);
    const auto takeSlots = [&] {
        for (std::size_t i = 0; i < outputCount; ++i) {
            outputs[i].reset(slots[i]);
        }
    };
    try {
        call(name, inputs, slots, context);
    } catch (...) {  // destroy the outputs that the function made before it failed
        takeSlots();
        throw;
    }
    takeSlots();
    return outputs;
}

void HostFunctions::call(const std::string& name, std::span<const nvArray* const> inputs,
                         std::span<nvArray*> outputs, void* context)
{
    requireEmptySlots(outputs);
    const std::vector<Loan> loans = lend(inputs);
    const HostFunction function = findFunction(name);
    if (!function) {
        throwHostError("UnknownFunction", {name});
    }
    HostFunctionCall functionCall(name, inputs, outputs, context);
    function(functionCall);
}

ScopedHostFunction::ScopedHostFunction(std::string name, HostFunction function)
    : m_name(std::move(name)), m_former(HostFunctions::replace(m_name, std::move(function)))
{
}

ScopedHostFunction::~ScopedHostFunction()
{
    if (m_former) {
        HostFunctions::replace(m_name, std::move(m_former));
    } else {
        HostFunctions::remove(m_name);
    }
}

}  // namespace reference_host
