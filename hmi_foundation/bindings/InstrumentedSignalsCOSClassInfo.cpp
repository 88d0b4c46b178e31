#include "hmi_foundation/bindings/InstrumentedSignalsCOSClassInfo.hpp"

#include "hmi/InstrumentedSignals.hpp"
#include "hmi_foundation/bindings/CollectionBinding.hpp"

namespace zm_hmi_foundation {

namespace {

using zm_hmi::InstrumentedSignals;

/// "Model": the model's name.
class SignalsModelPI : public ReadOnlyPI {
public:
    explicit SignalsModelPI(const nvcos::COSClass* owner)
        : ReadOnlyPI(owner, "Model", type_name::unicodeString, ValueKind::Text)
    {
    }
    nvcos::COSValue getValue(nvcos::COSInterface* instance) override
    {
        return static_cast<InstrumentedSignals*>(getInstanceData(instance))->getModelName();
    }
};

using SignalsCountPI = CollectionCountPI<InstrumentedSignals>;
using SignalsPersistencePI = CollectionPersistencePI<InstrumentedSignals>;

}  // namespace

void InstrumentedSignalsCOSClassInfo::initializeClass(nvcos::COSClass* cosClass,
                                                      const nvcos::COSClient* /*client*/)
{
    withHostMemoryErrors([&] {
        addProperty<SignalsModelPI>(cosClass);
        addProperty<SignalsCountPI>(cosClass);
        addProperty<SignalsPersistencePI>(cosClass);
        addInstrumentedSignalsMethods(cosClass);
    });
}

void* InstrumentedSignalsCOSClassInfo::allocateInstance(nvcos::COSInterface* /*instance*/)
{
    return newCollection<InstrumentedSignals>();
}

void InstrumentedSignalsCOSClassInfo::deallocateInstance(nvcos::COSInterface* /*instance*/, void* data)
{
    delete static_cast<InstrumentedSignals*>(data);
}

}  // namespace zm_hmi_foundation
