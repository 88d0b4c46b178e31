#include "host/Containers.hpp"

#include "reference_host/calls/BoundaryCall.hpp"
#include "reference_host/support/ErrorCatalog.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueMaking.hpp"

#include <span>
#include <utility>

using namespace reference_host;

namespace {

std::vector<std::string> nameList(std::size_t count, const char* const* names)
{
    requirePointer(names, count);
    std::vector<std::string> list;
    list.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        requirePointer(names[i]);
        list.emplace_back(names[i]);
    }
    return list;
}

}  // namespace

// ---- struct arrays ------------------------------------------------------------------------------

nvArray* nvCreateStructArray(std::size_t dimensionCount, const std::size_t* dimensions,
                             std::size_t fieldCount, const char* const* names)
{
    const SizeList sizes{dimensions, dimensionCount};
    return BoundaryCall({"nvCreateStructArray"}, sizes, NameList{names, fieldCount}).run([&] {
        requirePointer(dimensions, dimensionCount);
        return makeStruct(Dimensions(std::span(dimensions, dimensionCount)), nameList(fieldCount, names))
            .release();
    });
}

const nvArray* nvGetField(const nvArray* value, std::size_t index, const char* name)
{
    return BoundaryCall({"nvGetField", CanFail::ThrowingOrNull}, value, index, name).run([&] {
        return field(value, index, name);
    });
}

void nvSetField(nvArray* value, std::size_t index, const char* name, nvArray* field)
{
    BoundaryCall({"nvSetField"}, value, index, name, field).run([&] {
        storeField(value, index, name, field, false);
    });
}

void nvReplaceField(nvArray* value, std::size_t index, const char* name, nvArray* field)
{
    BoundaryCall({"nvReplaceField"}, value, index, name, field).run([&] {
        storeField(value, index, name, field, true);
    });
}

std::size_t nvGetNumberOfFields(const nvArray* value)
{
    return BoundaryCall({"nvGetNumberOfFields"}, value).run([&] { return fieldNames(value).size(); });
}

std::vector<std::string> nvGetFieldNames(const nvArray* value)
{
    return BoundaryCall({"nvGetFieldNames"}, value).run([&] {
        return std::vector<std::string>(fieldNames(value));
    });
}

// ---- cell arrays --------------------------------------------------------------------------------

nvArray* nvCreateCellArray(std::size_t dimensionCount, const std::size_t* dimensions)
{
    const SizeList sizes{dimensions, dimensionCount};
    return BoundaryCall({"nvCreateCellArray"}, sizes).run([&] {
        requirePointer(dimensions, dimensionCount);
        return makeCells(Dimensions(std::span(dimensions, dimensionCount))).release();
    });
}

void nvSetCell(nvArray* value, std::size_t index, nvArray* element)
{
    BoundaryCall({"nvSetCell"}, value, index, element).run([&] { storeCell(value, index, element); });
}

const nvArray* nvGetCell(const nvArray* value, std::size_t index)
{
    return BoundaryCall({"nvGetCell", CanFail::ThrowingOrNull}, value, index).run([&] {
        return cell(value, index);
    });
}
