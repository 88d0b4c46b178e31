#include "hmi/SignalClient.hpp"
#include "hmi/SignalClientFields.hpp"

#include "host/HostCall.hpp"

#include <array>
#include <utility>

namespace zm_hmi {

const char* const* SignalClient::getStructFields()
{
    static const auto names = fieldNames(Fields::table);
    return names.data();
}

std::size_t SignalClient::getNumStructFields()
{
    return Fields::Count;
}

void SignalClient::createStructData(nvArray* structArray, std::size_t index,
                                    const std::u16string& modelName) const
{
    static constexpr auto order = std::to_array<Fields::Field>({
        Fields::Uuid,
        Fields::SignalUUID,
        Fields::ObserverType,
        Fields::SourceModel,
        Fields::ModelPath,
        Fields::ModelPathZID,
        Fields::ObserverParams,
        Fields::UpdateRate,
        Fields::DimensionChannel,
        Fields::ObserveImaginaryPart,
        Fields::BusLeafPath,
    });
    static_assert(order.size() == Fields::Count);
    for (const Fields::Field field : order) {
        const Fields::Row& row = Fields::table[field];
        OwnedArray value = row.write(*this, modelName);
        if (value) {
            setField(structArray, index, row.name, std::move(value));
        }
    }
}

void SignalClient::getPersistenceData(nvArray* structArray, std::size_t index) const
{
    createStructData(structArray, index, std::u16string());
}

void SignalClient::setFromPersistentData(const nvArray* structArray, std::size_t index)
{
    for (const Fields::Row& row : Fields::table) {
        row.read(*this, nvGetField(structArray, index, row.name));
    }
}

void SignalClient::setFromNVCOS(const nvArray* object, const std::u16string& modelName)
{
    for (std::size_t field = 0; field < Fields::Count; ++field) {
        const Fields::Row& row = Fields::table[field];
        if (field == Fields::ObserverParams) {
            // Taken over as the host's own copy instead of being copied once more.
            OwnedArray params(nvGetProperty(object, 0, row.name));
            if (params) {
                zmsvSetLocalScope(params.get());
            }
            ObserverParams_ = Fields::persistent(std::move(params));
        } else {
            Fields::readProperty(*this, static_cast<Fields::Field>(field),
                                 readProperty(object, row.name).get());
        }
    }
    stripModelName(modelName);
}

OwnedArray SignalClient::getNVCOSObject(const std::u16string& modelName) const
{
    constexpr std::array<std::size_t, 2> scalar = {1, 1};
    const OwnedArray data = asTemporary(OwnedArray(
        nvCreateStructArray(scalar.size(), scalar.data(), getNumStructFields(), getStructFields())));
    createStructData(data.get(), 0, modelName);
    return std::move(callHostNoThrow<1>("Zelmar.HMI.SignalClient", data.get()).outputs[0]);
}

}  // namespace zm_hmi
