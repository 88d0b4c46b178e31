#include "contract/Check.hpp"
#include "contract/Values.hpp"

#include <string>
#include <vector>

// Struct arrays and cell arrays: host/Containers.hpp.

using namespace contract;

namespace {

using Names = std::vector<std::string>;

OwnedArray makeRow(std::size_t count)
{
    return makeStruct(count, {"UUID", "BlockPath_", "Decimation_"});
}

}  // namespace

ZM_CHECK(structHasItsFieldsInOrder, "nvCreateStructArray nvGetFieldNames",
         "A struct array has its fields in order.")
{
    const OwnedArray value = makeRow(2);
    expectTrue(nvGetFieldNames(value.get()) == Names{"UUID", "BlockPath_", "Decimation_"}, "names in order");
}

ZM_CHECK(structHasItsElements, "nvCreateStructArray",
         "A struct array has the dimensions that were asked for.")
{
    expectEqual(nvGetNumberOfElements(makeRow(2).get()), std::size_t{2});
    const std::size_t size = 3;
    const char* name = "A";
    const OwnedArray column(nvCreateStructArray(1, &size, 1, &name));
    expectEqual(nvGetNumberOfElements(column.get()), std::size_t{3});
}

ZM_CHECK(structIsAStruct, "nvIsStruct nvCreateStructArray",
         "A struct array is a struct; other values are none.")
{
    expectTrue(nvIsStruct(makeRow(1).get()), "it is a struct");
    expectTrue(nvIsA(makeRow(1).get(), "struct"), "its class is struct");
    expectTrue(!nvIsStruct(makeDouble(1).get()), "a number is no struct");
    expectTrue(!nvIsStruct(makeCells(1).get()), "a cell array is no struct");
}

ZM_CHECK(structMayBeEmpty, "nvCreateStructArray nvGetNumberOfFields",
         "An empty struct array keeps its field names.")
{
    const OwnedArray value = makeRow(0);
    expectTrue(nvIsEmpty(value.get()), "it is empty");
    expectEqual(nvGetNumberOfFields(value.get()), std::size_t{3});
}

ZM_CHECK(structMayHaveNoFields, "nvCreateStructArray nvGetNumberOfFields", "A struct may have no fields.")
{
    const std::array<std::size_t, 2> sizes{1, 1};
    const OwnedArray value(nvCreateStructArray(sizes.size(), sizes.data(), 0, nullptr));
    expectEqual(nvGetNumberOfFields(value.get()), std::size_t{0});
    expectEqual(nvGetNumberOfElements(value.get()), std::size_t{1});
}

ZM_CHECK(newFieldsAreUnset, "nvGetField nvCreateStructArray", "The fields of a new struct array are unset.")
{
    const OwnedArray value = makeRow(1);
    for (const char* name : {"UUID", "BlockPath_", "Decimation_"}) {
        expectTrue(nvGetField(value.get(), 0, name) == nullptr, name);
    }
}

ZM_CHECK(missingFieldIsNull, "nvGetField", "A field that the struct lacks reads as null.")
{
    expectTrue(nvGetField(makeRow(1).get(), 0, "uuid") == nullptr, "names are compared exactly");
}

ZM_CHECK(fieldPastTheEndIsRefused, "nvGetField", "A field of an element past the end is a host error.")
{
    const OwnedArray value = makeRow(2);
    expectHostError("nvGetField", [&] { nvGetField(value.get(), 2, "UUID"); });
}

ZM_CHECK(fieldOfANumberIsNull, "nvGetField", "A value that is no struct has no fields.")
{
    expectTrue(nvGetField(makeDouble(1).get(), 0, "UUID") == nullptr, "no field");
}

ZM_CHECK(fieldBelongsToItsElement, "nvSetField nvGetField",
         "A field is set on the element of the index only.")
{
    const OwnedArray value = makeRow(2);
    setField(value.get(), 1, "UUID", makeText("abc"));
    expectEqual(nvArrayToStdString(nvGetField(value.get(), 1, "UUID")), std::string("abc"));
    expectTrue(nvGetField(value.get(), 0, "UUID") == nullptr, "the other element is untouched");
}

ZM_CHECK(fieldIsTheVeryValue, "nvSetField", "A struct takes the value itself, not a copy.")
{
    const OwnedArray value = makeRow(1);
    nvArray* field = nvCreateDoubleScalar(3);
    nvSetField(value.get(), 0, "UUID", field);
    expectTrue(nvGetField(value.get(), 0, "UUID") == field, "the same pointer");
}

ZM_CHECK(settingAMissingFieldIsRefused, "nvSetField", "A field that the struct lacks cannot be set.")
{
    const OwnedArray value = makeRow(1);
    const OwnedArray field = makeDouble(1);
    expectHostError("nvSetField", [&] { nvSetField(value.get(), 0, "NoSuchField", field.get()); });
    expectEqual(nvGetScalar(field.get()), 1.0);
}

ZM_CHECK(settingAFieldPastTheEndIsRefused, "nvSetField", "A field of an element past the end cannot be set.")
{
    const OwnedArray value = makeRow(1);
    const OwnedArray field = makeDouble(1);
    expectHostError("nvSetField", [&] { nvSetField(value.get(), 1, "UUID", field.get()); });
}

ZM_CHECK(settingAFieldTwiceIsRefused, "nvSetField", "A field that is set cannot be set again.")
{
    const OwnedArray value = makeRow(1);
    setField(value.get(), 0, "UUID", makeDouble(1));
    const OwnedArray second = makeDouble(2);
    expectHostError("nvSetField", [&] { nvSetField(value.get(), 0, "UUID", second.get()); });
    expectEqual(nvGetScalar(nvGetField(value.get(), 0, "UUID")), 1.0);
}

ZM_CHECK(settingAFieldToNullIsRefused, "nvSetField", "Null is no field.")
{
    const OwnedArray value = makeRow(1);
    expectHostError("nvSetField", [&] { nvSetField(value.get(), 0, "UUID", nullptr); });
}

ZM_CHECK(settingAFieldOfANumberIsRefused, "nvSetField", "A value that is no struct takes no field.")
{
    const OwnedArray number = makeDouble(1);
    const OwnedArray field = makeDouble(1);
    expectHostError("nvSetField", [&] { nvSetField(number.get(), 0, "UUID", field.get()); });
}

ZM_CHECK(replacedFieldHasTheNewValue, "nvReplaceField", "A replaced field holds the new value.")
{
    const OwnedArray value = makeRow(1);
    setField(value.get(), 0, "Decimation_", makeDouble(1));
    replaceField(value.get(), 0, "Decimation_", makeDouble(2));
    expectEqual(nvGetScalar(nvGetField(value.get(), 0, "Decimation_")), 2.0);
}

ZM_CHECK(unsetFieldCanBeReplaced, "nvReplaceField",
         "An unset field can be replaced; the value itself is taken.")
{
    const OwnedArray value = makeRow(1);
    nvArray* field = nvCreateDoubleScalar(2);
    nvReplaceField(value.get(), 0, "Decimation_", field);
    expectTrue(nvGetField(value.get(), 0, "Decimation_") == field, "the same pointer");
}

ZM_CHECK(replacingAMissingFieldIsRefused, "nvReplaceField",
         "A field that the struct lacks cannot be replaced.")
{
    const OwnedArray value = makeRow(1);
    const OwnedArray field = makeDouble(1);
    expectHostError("nvReplaceField", [&] { nvReplaceField(value.get(), 0, "NoSuchField", field.get()); });
    expectEqual(nvGetScalar(field.get()), 1.0);
}

ZM_CHECK(replacingAFieldPastTheEndIsRefused, "nvReplaceField", "A field past the end cannot be replaced.")
{
    const OwnedArray value = makeRow(1);
    const OwnedArray field = makeDouble(1);
    expectHostError("nvReplaceField", [&] { nvReplaceField(value.get(), 1, "UUID", field.get()); });
}

ZM_CHECK(fieldsAreCounted, "nvGetNumberOfFields", "The number of fields is that of the struct's names.")
{
    expectEqual(nvGetNumberOfFields(makeRow(1).get()), std::size_t{3});
}

ZM_CHECK(numbersHaveNoFields, "nvGetNumberOfFields nvGetFieldNames", "A number has no fields.")
{
    const OwnedArray number = makeDouble(1);
    expectEqual(nvGetNumberOfFields(number.get()), std::size_t{0});
    expectTrue(nvGetFieldNames(number.get()).empty(), "no names");
}

ZM_CHECK(fieldNamesKeepTheirLetters, "nvGetFieldNames", "Field names come back as they were given.")
{
    const OwnedArray value = makeStruct(1, {"b", "a", "Gr\u00F6\u00DFe_"});
    expectTrue(nvGetFieldNames(value.get()) == Names{"b", "a", "Gr\u00F6\u00DFe_"}, "same names, same order");
}

ZM_CHECK(newCellsAreUnset, "nvCreateCellArray nvGetCell", "The cells of a new cell array are unset.")
{
    const OwnedArray value = makeCells(2);
    expectEqual(nvGetNumberOfElements(value.get()), std::size_t{2});
    expectTrue(nvIsA(value.get(), "cell"), "its class is cell");
    expectTrue(nvGetCell(value.get(), 0) == nullptr && nvGetCell(value.get(), 1) == nullptr, "unset");
}

ZM_CHECK(cellArrayMayBeEmpty, "nvCreateCellArray", "A cell array may be empty.")
{
    const OwnedArray value = makeCells(0);
    expectTrue(nvIsEmpty(value.get()) && nvIsA(value.get(), "cell"), "an empty cell array");
}

ZM_CHECK(cellIsTheVeryValue, "nvSetCell nvGetCell",
         "A cell array takes the value itself, into the cell of the index.")
{
    const OwnedArray value = makeCells(2);
    nvArray* element = nvCreateDoubleScalar(4);
    nvSetCell(value.get(), 1, element);
    expectTrue(nvGetCell(value.get(), 1) == element, "the same pointer");
    expectTrue(nvGetCell(value.get(), 0) == nullptr, "the other cell is untouched");
}

ZM_CHECK(cellCanBeSetAgain, "nvSetCell", "A cell that is set can be set again.")
{
    const OwnedArray value = makeCells(1);
    setCell(value.get(), 0, makeDouble(1));
    setCell(value.get(), 0, makeDouble(2));
    expectEqual(nvGetScalar(nvGetCell(value.get(), 0)), 2.0);
}

ZM_CHECK(settingACellPastTheEndIsRefused, "nvSetCell", "A cell past the end cannot be set; the value stays.")
{
    const OwnedArray value = makeCells(1);
    const OwnedArray element = makeDouble(7);
    expectHostError("nvSetCell", [&] { nvSetCell(value.get(), 1, element.get()); });
    expectEqual(nvGetScalar(element.get()), 7.0);
}

ZM_CHECK(settingACellToNullIsRefused, "nvSetCell", "Null is no element.")
{
    const OwnedArray value = makeCells(1);
    expectHostError("nvSetCell", [&] { nvSetCell(value.get(), 0, nullptr); });
}

ZM_CHECK(settingACellOfANumberIsRefused, "nvSetCell", "A number has no cells to set.")
{
    const OwnedArray number = makeDouble(1);
    const OwnedArray element = makeDouble(1);
    expectHostError("nvSetCell", [&] { nvSetCell(number.get(), 0, element.get()); });
}

ZM_CHECK(cellPastTheEndIsRefused, "nvGetCell", "A cell past the end is a host error.")
{
    const OwnedArray value = makeCells(1);
    expectHostError("nvGetCell", [&] { nvGetCell(value.get(), 1); });
}

ZM_CHECK(cellOfANumberIsNull, "nvGetCell", "A value that is no cell array has no cells.")
{
    expectTrue(nvGetCell(makeDouble(1).get(), 0) == nullptr, "no cell");
}

ZM_CHECK(cellsMayHoldContainers, "nvGetCell nvSetCell", "A cell may hold a cell array.")
{
    const OwnedArray outer = makeCells(1);
    OwnedArray inner = makeCells(1);
    setCell(inner.get(), 0, makeText("deep"));
    setCell(outer.get(), 0, std::move(inner));
    expectEqual(nvArrayToStdString(nvGetCell(nvGetCell(outer.get(), 0), 0)), std::string("deep"));
}
