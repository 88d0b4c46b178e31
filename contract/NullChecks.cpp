#include "contract/Check.hpp"
#include "contract/Values.hpp"
#include "host/ClassObjects.hpp"

#include <string>

// Null values: accepted where a declaration is tagged [null ok], refused by name everywhere else.

using namespace contract;

namespace {

/// Hands the operation null; what it might make of it is ended.
template <class Body>
void expectRefused(const char* operation, Body body)
{
    expectHostError(operation, body);
}

}  // namespace

ZM_CHECK(wideTextOfNullIsEmpty, "nvGetUString", "Null has an empty text.")
{
    expectEqual(nvGetUString(nullptr), std::u16string());
}
ZM_CHECK(narrowTextOfNullIsEmpty, "nvArrayToStdString", "Null has an empty narrow text.")
{
    expectEqual(nvArrayToStdString(nullptr), std::string());
}
ZM_CHECK(nullIsEmpty, "nvIsEmpty", "Null is empty.")
{
    expectTrue(nvIsEmpty(nullptr), "null is empty");
}
ZM_CHECK(nullHasNoElements, "nvGetNumberOfElements", "Null has no elements.")
{
    expectEqual(nvGetNumberOfElements(nullptr), std::size_t{0});
}
ZM_CHECK(nullIsOfNoClass, "nvIsA", "Null is of no class.")
{
    expectTrue(!nvIsA(nullptr, "double"), "no double");
}
ZM_CHECK(nullIsNoLogical, "nvIsLogical", "Null is no logical.")
{
    expectTrue(!nvIsLogical(nullptr), "no logical");
}
ZM_CHECK(nullIsNotTrue, "nvIsLogicalScalarTrue", "Null is not true.")
{
    expectTrue(!nvIsLogicalScalarTrue(nullptr), "not true");
}
ZM_CHECK(nullIsNoStruct, "nvIsStruct", "Null is no struct.")
{
    expectTrue(!nvIsStruct(nullptr), "no struct");
}
ZM_CHECK(nullHasNoField, "nvGetField", "A field of null is null.")
{
    expectTrue(nvGetField(nullptr, 0, "UUID") == nullptr, "no field");
}
ZM_CHECK(nullHasNoFields, "nvGetNumberOfFields", "Null has no fields.")
{
    expectEqual(nvGetNumberOfFields(nullptr), std::size_t{0});
}
ZM_CHECK(nullHasNoFieldNames, "nvGetFieldNames", "Null has no field names.")
{
    expectTrue(nvGetFieldNames(nullptr).empty(), "no names");
}
ZM_CHECK(nullHasNoCells, "nvGetCell", "A cell of null is null.")
{
    expectTrue(nvGetCell(nullptr, 0) == nullptr, "no cell");
}
ZM_CHECK(destroyingNullDoesNothing, "nvDestroyArray", "Destroying null does nothing.")
{
    nvDestroyArray(nullptr);
}
ZM_CHECK(scalarOfNullIsRefused, "nvGetScalar", "Null has no scalar.")
{
    expectRefused("nvGetScalar", [] { nvGetScalar(nullptr); });
}
ZM_CHECK(integerOfNullIsRefused, "nvGetScalarInt", "Null has no integer.")
{
    expectRefused("nvGetScalarInt", [] { nvGetScalarInt(nullptr); });
}
ZM_CHECK(elementOfNullIsRefused, "nvGetElement", "Null has no elements to read.")
{
    expectRefused("nvGetElement", [] { nvGetElement(nullptr, 0); });
}
ZM_CHECK(logicalsOfNullAreRefused, "nvGetLogicals", "Null has no logicals.")
{
    expectRefused("nvGetLogicals", [] { nvGetLogicals(nullptr); });
}
ZM_CHECK(dataPointerOfNullIsRefused, "nvGetDataPointer", "Null has no data pointer.")
{
    expectRefused("nvGetDataPointer", [] { nvGetDataPointer(nullptr); });
}
ZM_CHECK(scopeOfNullIsRefused, "nvSetArrayScope", "Null is given no scope.")
{
    expectRefused("nvSetArrayScope", [] { nvSetArrayScope(nullptr, nvScope::Temporary); });
}
ZM_CHECK(localScopeOfNullIsRefused, "zmsvSetLocalScope", "Null is given no local scope.")
{
    expectRefused("zmsvSetLocalScope", [] { zmsvSetLocalScope(nullptr); });
}
ZM_CHECK(persistentScopeOfNullIsRefused, "zmsvSetPersistentScope", "Null is given no persistent scope.")
{
    expectRefused("zmsvSetPersistentScope", [] { zmsvSetPersistentScope(nullptr); });
}
ZM_CHECK(settingAFieldOfNullIsRefused, "nvSetField", "Null takes no field.")
{
    const OwnedArray value = makeDouble(1);
    expectRefused("nvSetField", [&] { nvSetField(nullptr, 0, "UUID", value.get()); });
}
ZM_CHECK(replacingAFieldOfNullIsRefused, "nvReplaceField", "Null has no field to replace.")
{
    const OwnedArray value = makeDouble(1);
    expectRefused("nvReplaceField", [&] { nvReplaceField(nullptr, 0, "UUID", value.get()); });
}
ZM_CHECK(settingACellOfNullIsRefused, "nvSetCell", "Null takes no element.")
{
    const OwnedArray value = makeDouble(1);
    expectRefused("nvSetCell", [&] { nvSetCell(nullptr, 0, value.get()); });
}
ZM_CHECK(propertyOfNullIsRefused, "nvGetProperty", "Null has no properties.")
{
    expectRefused("nvGetProperty", [] { nvDestroyArray(nvGetProperty(nullptr, 0, "Count")); });
}
ZM_CHECK(sharedPropertyOfNullIsRefused, "nvGetPropertyShared", "Null has no properties to share.")
{
    expectRefused("nvGetPropertyShared", [] { nvDestroyArray(nvGetPropertyShared(nullptr, 0, "Count")); });
}
ZM_CHECK(settingAPropertyOfNullIsRefused, "nvSetProperty", "Null takes no property.")
{
    const OwnedArray value = makeDouble(1);
    expectRefused("nvSetProperty", [&] { nvSetProperty(nullptr, 0, "Count", value.get()); });
}
ZM_CHECK(instanceOfNullIsRefused, "omGetArrayElement", "Null refers to no instance.")
{
    expectRefused("omGetArrayElement", [] { omGetArrayElement(nullptr, 0); });
}
ZM_CHECK(dataOfNoInstanceIsNull, "omGetInstanceData", "No instance has no native data.")
{
    expectTrue(omGetInstanceData(nullptr) == nullptr, "null");
}
ZM_CHECK(internedNullIsTheNullValue, "makeInterned", "Interning null gives the null value.")
{
    expectTrue(nvcos::internal::makeInterned(nullptr).isNull(), "the null value");
}
