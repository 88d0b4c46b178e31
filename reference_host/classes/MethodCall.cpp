#include "reference_host/classes/MethodCall.hpp"

#include "reference_host/classes/ClassErrors.hpp"
#include "reference_host/classes/LibraryCall.hpp"
#include "reference_host/classes/Types.hpp"
#include "reference_host/classes/ValueConversion.hpp"
#include "reference_host/support/ChangeCount.hpp"
#include "reference_host/support/ErrorCatalog.hpp"
#include "reference_host/values/Value.hpp"
#include "reference_host/values/ValueMaking.hpp"

#include <algorithm>
#include <span>
#include <utility>

namespace reference_host {

/// The slots that a method fills. Values in them belong to the host; those that are not taken are destroyed.
class MethodCall::Outputs {
public:
    explicit Outputs(std::size_t count) : m_slots(count) {}
    Outputs(const Outputs&) = delete;
    Outputs& operator=(const Outputs&) = delete;
    ~Outputs()
    {
        for (std::size_t i = 0; i < m_slots.size(); ++i) {
            try {
                take(i);
            } catch (const std::exception&) {
                continue;  // the value did not belong to the method; the ledger has counted the misuse
            }
        }
    }

    std::size_t size() const noexcept { return m_slots.size(); }
    nvcos::COSValue* data() noexcept { return m_slots.data(); }
    std::span<const nvcos::COSValue> values() const noexcept { return m_slots; }

    /// Puts the new object into the first slot for a constructor. The caller keeps it.
    void showObject(nvArray* object)
    {
        m_slots.resize(std::max<std::size_t>(m_slots.size(), 1));
        m_slots.front() = object;
        m_object = object;
    }
    bool showsObject() const
    {
        nvArray* const* value = std::get_if<nvArray*>(&m_slots.front());
        return value != nullptr && *value == m_object;
    }

    /// Misuse if one value is in two slots. The second slot is cleared, so that the value is destroyed once.
    void checkGivenOnce(const std::string& method)
    {
        for (std::size_t i = 0; i < m_slots.size(); ++i) {
            nvArray* const* first = std::get_if<nvArray*>(&m_slots[i]);
            for (std::size_t j = i + 1; first != nullptr && *first != nullptr && j < m_slots.size(); ++j) {
                if (m_slots[j] == m_slots[i]) {
                    m_slots[j] = {};
                    throwMisuse("OutputGivenTwice", {method, i + 1, j + 1, describe(*first)});
                }
            }
        }
    }

    OwnedValue take(std::size_t index)
    {
        const nvcos::COSValue slot = std::exchange(m_slots[index], {});
        if (nvArray* const* value = std::get_if<nvArray*>(&slot)) {
            return *value != nullptr ? adopt(*value) : makeEmptyValue();
        }
        return makeValue(slot);
    }

private:
    OwnedValue adopt(nvArray* value) const
    {
        if (value == m_object) {
            return nullptr;
        }
        requireOwned(value);
        return OwnedValue(value);
    }

    std::vector<nvcos::COSValue> m_slots;
    nvArray* m_object = nullptr;
};

MethodCall::MethodCall(const RegisteredClass& cosClass, const RegisteredClass::Method& method)
    : m_class(cosClass),
      m_method(method),
      m_signature(signatureOf(cosClass, method)),
      m_name(cosClass.fullName() + "." + method.name)
{
}

MethodCall::Results MethodCall::run(const nvArray* object, const Arguments& arguments, int outputCount)
{
    const std::size_t wanted = resultCount(outputCount);
    ChangeCount::objectUsed();
    convertInputs(object, arguments);
    Outputs outputs(m_signature.outputs().size());
    invoke(static_cast<int>(wanted), outputs);
    Results results;
    results.reserve(wanted);
    for (std::size_t i = 0; i < wanted; ++i) {
        results.push_back(outputs.take(i));
    }
    return results;
}

void MethodCall::runConstructor(nvArray* object, const Arguments& arguments)
{
    convertInputs(nullptr, arguments);
    const Loan loan(object);
    Outputs outputs(m_signature.outputs().size());
    outputs.showObject(object);
    invoke(1, outputs);
    if (!outputs.showsObject()) {
        throwClassError("ObjectReplaced", {m_class.fullName(), m_method.name});
    }
}

std::size_t MethodCall::resultCount(int outputCount) const
{
    const std::size_t declared = m_signature.outputs().size();
    if (outputCount == AllOutputs) {
        return declared;
    }
    if (outputCount < 0 || static_cast<std::size_t>(outputCount) > declared) {
        throwClassError("TooManyOutputs", {m_class.fullName(), m_method.name}, {declared, outputCount});
    }
    return static_cast<std::size_t>(outputCount);
}

void MethodCall::convertInputs(const nvArray* object, const Arguments& arguments)
{
    const std::size_t objects = object != nullptr ? 1 : 0;
    checkArgumentCount(arguments.size(), objects);
    Arguments all;
    all.reserve(arguments.size() + objects);
    all.insert(all.end(), objects, object);
    all.insert(all.end(), arguments.begin(), arguments.end());
    m_inputs.resize(all.size());
    m_loans.reserve(all.size());
    for (std::size_t i = 0; i < all.size(); ++i) {
        const std::string complaint = convertToType(all[i], *m_signature.inputs()[i], m_inputs[i]);
        if (!complaint.empty()) {
            throwClassError("WrongArgument", {m_class.fullName(), m_method.name, i + 1 - objects},
                            {complaint});
        }
        m_loans.emplace_back(all[i]);
    }
}

void MethodCall::checkArgumentCount(std::size_t count, std::size_t objects) const
{
    const std::size_t declared = m_signature.inputs().size() - objects;
    if (count + objects < m_signature.requiredInputs()) {
        const nvcos::COSType& missing = *m_signature.inputs()[count + objects];
        throwClassError("TooFewArguments", {m_class.fullName(), m_method.name, count + 1}, {missing.name});
    }
    if (count > declared) {
        throwClassError("TooManyArguments", {m_class.fullName(), m_method.name, declared + 1}, {declared});
    }
}

/// "Zelmar.HMI.X.add: argument 1" if one argument only was not checked by its type, else "Zelmar.HMI.X.add".
std::string MethodCall::context() const
{
    const auto isAny = [](const nvcos::COSType* type) { return type->kind == nvcos::COSType::Kind::Any; };
    const auto& types = m_signature.inputs();
    const auto any = std::ranges::find_if(types, isAny);
    if (std::ranges::count_if(types, isAny) != 1) {
        return m_name;
    }
    const std::size_t objects = m_class.isInstanceMethod(m_method) ? 1 : 0;
    const auto position = static_cast<std::size_t>(any - types.begin()) + 1 - objects;
    return m_name + ": argument " + std::to_string(position);
}

/// Takes every output that the body wrote, also those that the returned count does not cover.
void MethodCall::invoke(int outputCount, Outputs& outputs) const
{
    const auto body = [&] {
        m_method.info->invoke(hostClient(), outputCount, outputs.data(), static_cast<int>(m_inputs.size()),
                              m_inputs.data());
        return NativeValues{outputs.values()};
    };
    if (m_class.isLibraryClass()) {
        withContext([&] { callLibrary("invoke", body, m_name, NativeValues{m_inputs}, outputCount); },
                    [this] { return context(); });
    } else {
        body();
    }
    outputs.checkGivenOnce(m_name);
    if (outputCount < 0 || static_cast<std::size_t>(outputCount) > outputs.size()) {
        throwClassError("BadOutputCount", {m_class.fullName(), m_method.name}, {outputCount, outputs.size()});
    }
}

}  // namespace reference_host
