#include "reference_host/classes/RecordClass.hpp"

#include "reference_host/classes/ClassErrors.hpp"
#include "reference_host/classes/ClassSystem.hpp"
#include "reference_host/classes/Instance.hpp"
#include "reference_host/classes/ObjectAccess.hpp"
#include "reference_host/classes/RegisteredClass.hpp"
#include "reference_host/classes/Types.hpp"
#include "reference_host/classes/ValueConversion.hpp"
#include "reference_host/support/QuotedText.hpp"
#include "reference_host/values/Value.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"

#include <algorithm>
#include <unordered_set>
#include <utility>

namespace reference_host {

namespace {

using nvcos::COSInterface;
using nvcos::COSInterfacePtr;
using nvcos::COSPropAccess;
using nvcos::COSValue;
using Properties = std::shared_ptr<const std::vector<RecordProperty>>;

/// The values of all objects. Never destroyed: objects are released while the process ends.
std::unordered_set<OwnedValue*>& records()
{
    static auto& instance = *new std::unordered_set<OwnedValue*>;
    return instance;
}

/// The values of one object, in a struct with one field a property.
nvArray* valuesOf(const COSInterface* instance)
{
    return static_cast<OwnedValue*>(Instance::of(*instance).data())->get();
}

std::string fullName(const COSInterface* instance)
{
    return Instance::of(*instance).cosClass().fullName();
}

class RecordPropInfo : public nvcos::COSPropInfo {
public:
    RecordPropInfo(Properties all, const RecordProperty& property)
        : m_all(std::move(all)), m_property(property), m_type(ClassSystem::typeNamed(property.type))
    {
    }

    const char* getName() const noexcept override { return m_property.name.c_str(); }
    const nvcos::COSType* getType() const override { return m_type; }
    double getVersion() const noexcept override { return 1.0; }

protected:
    const RecordProperty& property() const noexcept { return m_property; }

private:
    Properties m_all;  // keeps the property's description alive
    const RecordProperty& m_property;
    const nvcos::COSType* m_type;
};

class StoredPropInfo final : public RecordPropInfo {
public:
    using RecordPropInfo::RecordPropInfo;

    int getAccess() const noexcept override { return static_cast<int>(COSPropAccess::ReadWrite); }
    COSValue getValue(COSInterface* instance) override
    {
        // The caller only copies the value.
        return const_cast<nvArray*>(field(valuesOf(instance), 0, getName()));
    }
    void setValue(COSInterface* instance, COSValue value) override
    {
        nvArray* const* array = std::get_if<nvArray*>(&value);
        OwnedValue copy = array != nullptr ? copyDeep(*array) : makeValue(value);
        const std::string complaint = property().check ? property().check(copy.get()) : std::string();
        if (!complaint.empty()) {
            throwClassError("WrongValue", {fullName(instance), getName()}, {complaint});
        }
        replaceField(valuesOf(instance), 0, getName(), std::move(copy));
    }
    void releaseValue(COSInterface* /*instance*/, COSValue /*value*/) override {}
};

class ComputedPropInfo final : public RecordPropInfo {
public:
    using RecordPropInfo::RecordPropInfo;

    int getAccess() const noexcept override { return static_cast<int>(COSPropAccess::ScriptReadOnly); }
    COSValue getValue(COSInterface* instance) override
    {
        const OwnedValue object = makeObjects(fullName(instance), {1, 1}, {COSInterfacePtr(instance)});
        return property().compute(object.get()).release();
    }
    void setValue(COSInterface* /*instance*/, COSValue /*value*/) override {}
    void releaseValue(COSInterface* /*instance*/, COSValue value) override
    {
        destroyValue(std::get<nvArray*>(value));
    }
};

/// The constructor: nothing, or one struct whose fields are assigned.
class RecordConstructor final : public nvcos::COSMethodInfo {
public:
    RecordConstructor(Properties properties, const RegisteredClass& cosClass)
        : COSMethodInfo(nullptr), m_properties(std::move(properties)), m_class(cosClass)
    {
        m_signature.appendInput(findBuiltInType("any"));
        m_signature.makeInputsOptional(1);
        m_signature.appendOutput(classType(cosClass.fullName()));
    }

    const char* getName() const noexcept override { return m_class.simpleName().c_str(); }
    const nvcos::COSMethodSignature* getSignature() const noexcept override { return &m_signature; }

    void invoke(const nvcos::COSClient* /*client*/, int& /*outputCount*/, COSValue* outputs, int inputCount,
                const COSValue* inputs) const override
    {
        if (inputCount == 0) {
            return;
        }
        const nvArray* fields = std::get<nvArray*>(inputs[0]);
        if (!isStruct(fields) || elementCount(fields) != 1) {
            throwArgumentError("must be a 1x1 struct, not " + describe(fields));
        }
        nvArray* object = std::get<nvArray*>(outputs[0]);
        for (const std::string& name : fieldNames(fields)) {
            assign(object, name, field(fields, 0, name.c_str()));
        }
    }

private:
    void assign(nvArray* object, const std::string& name, const nvArray* value) const
    {
        if (!isStored(name)) {
            throwArgumentError("has the field " + quotedText(name) +
                               ", which is no property that can be set");
        }
        if (value != nullptr) {
            ObjectAccess::setProperty(object, name, value);
        }
    }
    bool isStored(const std::string& name) const
    {
        return std::ranges::any_of(*m_properties, [&](const RecordProperty& property) {
            return property.name == name && !property.compute;
        });
    }
    [[noreturn]] void throwArgumentError(const std::string& why) const
    {
        throwClassError("WrongArgument", {m_class.fullName(), m_class.simpleName(), 1U}, {why});
    }

    Properties m_properties;
    const RegisteredClass& m_class;
    MethodSignature m_signature;
};

class StaticMethodInfo final : public nvcos::COSMethodInfo {
public:
    explicit StaticMethodInfo(StaticMethod method)
        : COSMethodInfo(method.name.c_str()), m_method(std::move(method))
    {
        for (std::size_t i = 0; i < m_method.inputCount; ++i) {
            m_signature.appendInput(findBuiltInType("any"));
        }
        m_signature.appendOutput(ClassSystem::typeNamed(m_method.outputType));
    }

    const nvcos::COSMethodSignature* getSignature() const noexcept override { return &m_signature; }

    void invoke(const nvcos::COSClient* /*client*/, int& outputCount, COSValue* outputs, int inputCount,
                const COSValue* inputs) const override
    {
        std::vector<const nvArray*> values;
        values.reserve(static_cast<std::size_t>(inputCount));
        for (int i = 0; i < inputCount; ++i) {
            values.push_back(std::get<nvArray*>(inputs[i]));
        }
        outputs[0] = m_method.body(values).release();
        outputCount = 1;
    }

private:
    StaticMethod m_method;
    MethodSignature m_signature;
};

class RecordClassInfo final : public nvcos::COSClassInfo {
public:
    RecordClassInfo(std::string simpleName, std::vector<RecordProperty> properties,
                    std::vector<StaticMethod> staticMethods)
        : m_name(std::move(simpleName)),
          m_properties(std::make_shared<const std::vector<RecordProperty>>(std::move(properties))),
          m_staticMethods(std::move(staticMethods))
    {
    }

    const char* getClassName() const noexcept override { return m_name.c_str(); }

    void initializeClass(nvcos::COSClass* cosClass, const nvcos::COSClient* /*client*/) override
    {
        auto& home = static_cast<RegisteredClass&>(*cosClass);
        for (const RecordProperty& property : *m_properties) {
            std::unique_ptr<RecordPropInfo> info;
            if (property.compute) {
                info = std::make_unique<ComputedPropInfo>(m_properties, property);
            } else {
                info = std::make_unique<StoredPropInfo>(m_properties, property);
            }
            home.insertProperty(info.get());
            static_cast<void>(info.release());
        }
        addMethod(home, std::make_unique<RecordConstructor>(m_properties, home));
        for (const StaticMethod& method : m_staticMethods) {
            addMethod(home, std::make_unique<StaticMethodInfo>(method));
        }
    }

    void* allocateInstance(COSInterface* /*instance*/) override
    {
        std::vector<std::string> names;
        for (const RecordProperty& property : *m_properties) {
            names.push_back(property.name);
        }
        auto values = std::make_unique<OwnedValue>(makeStruct({1, 1}, std::move(names)));
        for (const RecordProperty& property : *m_properties) {
            if (!property.compute) {
                setField(values->get(), 0, property.name.c_str(), property.makeDefault());
            }
        }
        declareMeantToLive(values->get());  // lives and is counted with its instance
        records().insert(values.get());
        return values.release();
    }

    void deallocateInstance(COSInterface* /*instance*/, void* data) override
    {
        auto* values = static_cast<OwnedValue*>(data);
        records().erase(values);
        delete values;
    }

private:
    static void addMethod(RegisteredClass& home, std::unique_ptr<nvcos::COSMethodInfo> method)
    {
        home.insertMethod(method.get());
        static_cast<void>(method.release());
    }

    std::string m_name;
    Properties m_properties;
    std::vector<StaticMethod> m_staticMethods;
};

}  // namespace

std::unique_ptr<nvcos::COSClassInfo> makeRecordClass(std::string simpleName,
                                                     std::vector<RecordProperty> properties,
                                                     std::vector<StaticMethod> staticMethods)
{
    return std::make_unique<RecordClassInfo>(std::move(simpleName), std::move(properties),
                                             std::move(staticMethods));
}

void endRecordValues()
{
    // All are taken before the first is destroyed, because that may release other objects.
    std::vector<OwnedValue> all;
    all.reserve(records().size());
    for (OwnedValue* values : records()) {
        all.push_back(std::move(*values));
    }
}

RecordProperty textProperty(std::string name)
{
    return {std::move(name), "unicodeString", [] { return makeText(std::u16string_view()); }};
}

RecordProperty numberProperty(std::string name, double value)
{
    return {std::move(name), "double scalar", [value] { return makeDouble(value); }};
}

RecordProperty flagProperty(std::string name, bool value)
{
    return {std::move(name), "logical scalar", [value] { return makeLogical(value); }};
}

RecordProperty anyProperty(std::string name, RecordProperty::Check check)
{
    return {std::move(name), "any", makeEmptyValue, std::move(check)};
}

RecordProperty computedProperty(std::string name, std::string type, RecordProperty::Compute compute)
{
    return {std::move(name), std::move(type), nullptr, nullptr, std::move(compute)};
}

}  // namespace reference_host
