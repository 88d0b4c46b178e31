#include "reference_host/classes/StaticMethods.hpp"

#include "reference_host/classes/RegisteredClass.hpp"
#include "reference_host/classes/Types.hpp"

#include <utility>

namespace reference_host {

namespace {

using nvcos::COSValue;

class StaticMethodInfo final : public nvcos::COSMethodInfo {
public:
    explicit StaticMethodInfo(StaticMethod method)
        : COSMethodInfo(method.name.c_str()), m_method(std::move(method))
    {
        for (std::size_t i = 0; i < m_method.inputCount; ++i) {
            m_signature.appendInput(findBuiltInType("any"));
        }
        m_signature.appendOutput(typeNamed(m_method.outputType));
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

class WithStaticMethods final : public nvcos::COSClassInfo {
public:
    WithStaticMethods(std::unique_ptr<nvcos::COSClassInfo> described, std::vector<StaticMethod> methods)
        : m_described(registered(described.release())), m_methods(std::move(methods))
    {
    }

    const char* getClassName() const noexcept override { return m_described->getClassName(); }

    void initializeClass(nvcos::COSClass* cosClass, const nvcos::COSClient* client) override
    {
        m_described->initializeClass(cosClass, client);
        auto& home = static_cast<RegisteredClass&>(*cosClass);
        for (const StaticMethod& method : m_methods) {
            auto info = std::make_unique<StaticMethodInfo>(method);
            home.insertMethod(info.get());
            static_cast<void>(info.release());
        }
    }

    void* allocateInstance(nvcos::COSInterface* instance) override
    {
        return m_described->allocateInstance(instance);
    }

    void deallocateInstance(nvcos::COSInterface* instance, void* data) override
    {
        m_described->deallocateInstance(instance, data);
    }

private:
    Registered<nvcos::COSClassInfo> m_described;  // with this description
    std::vector<StaticMethod> m_methods;
};

}  // namespace

std::unique_ptr<nvcos::COSClassInfo> withStaticMethods(std::unique_ptr<nvcos::COSClassInfo> described,
                                                       std::vector<StaticMethod> methods)
{
    return std::make_unique<WithStaticMethods>(std::move(described), std::move(methods));
}

}  // namespace reference_host
