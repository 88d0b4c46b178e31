#include "contract/Check.hpp"
#include "contract/Values.hpp"

#include <string>

// Both kinds of copies behave alike as far as values tell.

using namespace contract;

namespace {

using MakeCopy = nvArray* (*)(const nvArray*);

OwnedArray makeRecord(double number)
{
    OwnedArray record = makeStruct(1, {"Number", "Cells", "Unset"});
    setField(record.get(), 0, "Number", makeDouble(number));
    OwnedArray cells = makeCells(1);
    setCell(cells.get(), 0, makeText("in a cell"));
    setField(record.get(), 0, "Cells", std::move(cells));
    return record;
}

double numberOf(const OwnedArray& record)
{
    return nvGetScalar(nvGetField(record.get(), 0, "Number"));
}

void checkContents(MakeCopy copyOf)
{
    const OwnedArray record = makeRecord(3);
    const OwnedArray copy(copyOf(record.get()));
    expectEqual(numberOf(copy), 3.0);
    expectEqual(nvArrayToStdString(nvGetCell(nvGetField(copy.get(), 0, "Cells"), 0)),
                std::string("in a cell"));
    expectTrue(nvGetField(copy.get(), 0, "Unset") == nullptr, "unset fields stay unset");
}

void checkIndependence(MakeCopy copyOf)
{
    const OwnedArray record = makeRecord(3);
    const OwnedArray copy(copyOf(record.get()));
    replaceField(record.get(), 0, "Number", makeDouble(4));
    expectEqual(numberOf(copy), 3.0);
    replaceField(copy.get(), 0, "Number", makeDouble(5));
    expectEqual(numberOf(record), 4.0);
}

void checkData(MakeCopy copyOf)
{
    const OwnedArray number = makeMatrix(2, 3);
    const OwnedArray copy(copyOf(number.get()));
    static_cast<double*>(nvGetDataPointer(copy.get()))[5] = 1.5;
    expectEqual(nvGetElement(number.get(), 5), 0.0);
    expectEqual(nvGetElement(copy.get(), 5), 1.5);
}

void checkLifetime(MakeCopy copyOf)
{
    OwnedArray record = makeRecord(3);
    const OwnedArray copy(copyOf(record.get()));
    const OwnedArray field(copyOf(nvGetField(record.get(), 0, "Number")));
    record.reset();
    expectEqual(numberOf(copy), 3.0);
    expectEqual(nvGetScalar(field.get()), 3.0);
}

void checkClass(MakeCopy copyOf)
{
    const OwnedArray logical(copyOf(makeLogical(true).get()));
    expectTrue(nvIsLogicalScalarTrue(logical.get()), "a copied logical is one");
    const OwnedArray empty(copyOf(makeEmpty().get()));
    expectTrue(nvIsEmpty(empty.get()) && nvIsA(empty.get(), "double"), "a copied empty double is one");
}

}  // namespace

ZM_CHECK(deepCopyHasTheContents, "nvCreateDeepCopy", "A deep copy has the contents of the original.")
{
    checkContents(nvCreateDeepCopy);
}
ZM_CHECK(deepCopyIsIndependent, "nvCreateDeepCopy", "A deep copy and the original are written independently.")
{
    checkIndependence(nvCreateDeepCopy);
}
ZM_CHECK(deepCopyHasItsOwnData, "nvCreateDeepCopy nvGetDataPointer",
         "Writing through the data pointer of a deep copy leaves the original.")
{
    checkData(nvCreateDeepCopy);
}
ZM_CHECK(deepCopyOutlivesTheOriginal, "nvCreateDeepCopy", "A deep copy outlives the original.")
{
    checkLifetime(nvCreateDeepCopy);
}
ZM_CHECK(deepCopyKeepsTheClass, "nvCreateDeepCopy", "A deep copy has the class of the original.")
{
    checkClass(nvCreateDeepCopy);
}
ZM_CHECK(deepCopyOfNullIsNull, "nvCreateDeepCopy", "The deep copy of null is null.")
{
    expectTrue(nvCreateDeepCopy(nullptr) == nullptr, "null");
}
ZM_CHECK(sharedCopyHasTheContents, "nvCreateSharedDataCopy",
         "A shared copy has the contents of the original.")
{
    checkContents(nvCreateSharedDataCopy);
}
ZM_CHECK(sharedCopyIsIndependent, "nvCreateSharedDataCopy",
         "A shared copy and the original are written independently.")
{
    checkIndependence(nvCreateSharedDataCopy);
}
ZM_CHECK(sharedCopyHasItsOwnData, "nvCreateSharedDataCopy nvGetDataPointer",
         "Writing through the data pointer of a shared copy leaves the original.")
{
    checkData(nvCreateSharedDataCopy);
}
ZM_CHECK(sharedCopyOutlivesTheOriginal, "nvCreateSharedDataCopy", "A shared copy outlives the original.")
{
    checkLifetime(nvCreateSharedDataCopy);
}
ZM_CHECK(sharedCopyKeepsTheClass, "nvCreateSharedDataCopy", "A shared copy has the class of the original.")
{
    checkClass(nvCreateSharedDataCopy);
}
ZM_CHECK(sharedCopyOfNullIsNull, "nvCreateSharedDataCopy", "The shared copy of null is null.")
{
    expectTrue(nvCreateSharedDataCopy(nullptr) == nullptr, "null");
}
