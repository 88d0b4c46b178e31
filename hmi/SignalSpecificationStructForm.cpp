#include "hmi/SignalSpecificationFields.hpp"

#include "hmi_foundation/ModelPath.hpp"

#include <algorithm>

namespace zm_hmi {

bool SignalSpecification::isEqual(const SignalSpecification* other) const
{
    return other != nullptr && std::ranges::all_of(Fields::persisted(), [&](const Fields::Row& row) {
               return row.isEqual(*this, *other);
           });
}

const char* const* SignalSpecification::getStructFields()
{
    static const std::vector<const char*> names = fieldNames(Fields::table());
    return names.data();
}

std::size_t SignalSpecification::getNumStructFields(bool withRuntimeFields)
{
    return withRuntimeFields ? Fields::table().size() : Fields::persisted().size();
}

void SignalSpecification::createStructData(nvArray* structArray, std::size_t index,
                                           const std::u16string& modelName) const
{
    static const auto order = Fields::sorted(Fields::persisted(), &Fields::Row::writeTurn);
    for (const Fields::Row* row : order) {
        replaceField(structArray, index, row->name, row->write(*this, modelName));
    }
}

void SignalSpecification::getPersistenceData(nvArray* structArray, std::size_t index,
                                             std::u16string modelName) const
{
    createStructData(structArray, index, std::u16string());
    // The saved path is the one that the host gives for the block now, and empty when it gives none: the
    // member may be out of date, and an old path would bind to another block on loading.
    const std::u16string aligned = getAlignedBlockPath(modelName);
    replaceField(structArray, index, "BlockPath_",
                 makeString(zm_hmi_foundation::RemoveModelFromPath(aligned, modelName)));
}

void SignalSpecification::setFromPersistentData(const nvArray* structArray, std::size_t index)
{
    static const auto order = Fields::sorted(Fields::persisted(), &Fields::Row::loadTurn);
    for (const Fields::Row* row : order) {
        const nvArray* value = nvGetField(structArray, index, row->name);
        // A required field is read although it is missing, as the host reads null.
        if (value != nullptr || row->isRequired) {
            row->read(*this, value);
        }
    }
}

}  // namespace zm_hmi
