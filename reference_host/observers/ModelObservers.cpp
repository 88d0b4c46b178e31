#include "reference_host/classes/BuiltInClasses.hpp"
#include "reference_host/model/Model.hpp"
#include "reference_host/support/ChangeCount.hpp"
#include "reference_host/support/MessageCatalog.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"

namespace reference_host {

namespace {

[[noreturn]] void refuse(const char* key)
{
    const zmsvMessageId id("dvx_hmi_foundation:errors", key);
    throw zmsvException(id, MessageCatalog::text(id));
}

}  // namespace

OwnedValue Model::observers() const
{
    return copyShared(m_observers.get());
}

void Model::setObservers(const nvArray* value)
{
    ChangeCount::diagramChanged();
    if (isEmpty(value)) {
        m_observers.reset();
        return;
    }
    if (elementCount(value) != 1) {
        refuse("SignalObserversSetParamNonScalar");
    }
    if (!isOfClass(value, modelObserversClass)) {
        refuse("SignalObserversSetParamInvalidType");
    }
    m_observers = copyShared(value);
}

}  // namespace reference_host
