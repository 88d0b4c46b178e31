#include "contract/Check.hpp"
#include "contract/Things.hpp"
#include "contract/Values.hpp"

#include <string>
#include <utility>

// Instances: native data, references, and when an instance ends. Values cannot be counted through host/, but
// instances can: a value that has not ended keeps its instance.

using namespace contract;
using nvcos::COSInterfacePtr;

namespace {

int data = 0;

OwnedArray makeCounted()
{
    if (!things().home.define) {
        things().thing.allocate = [] { return static_cast<void*>(&data); };
        things().add();
    }
    return makeThing();
}

/// A value that refers to the instance of another value.
OwnedArray wrap(const OwnedArray& object)
{
    return OwnedArray(omCreateNVCOSScalar(omGetArrayElement(object.get(), 0)));
}

nvcos::COSClass* initializedClass = nullptr;

}  // namespace

ZM_CHECK(constructedObjectIsOfItsClass, "zmsvFEVAL nvIsA COSClassInfo::getClassName COSNamespace::addClass",
         "A class name calls its constructor, which gives one object of the class.")
{
    const OwnedArray thing = makeCounted();
    expectTrue(nvIsA(thing.get(), "Contract.Thing"), "its class is Contract.Thing");
    expectTrue(!nvIsA(thing.get(), "Thing"), "the class has its full name");
    expectEqual(nvGetNumberOfElements(thing.get()), std::size_t{1});
    expectTrue(!nvIsStruct(thing.get()) && !nvIsEmpty(thing.get()), "an object is no struct and not empty");
}
ZM_CHECK(classIsInitializedOnce, "COSClassInfo::initializeClass COSClass::COSClass",
         "A class is initialized once, when it is first used.")
{
    things().add();
    expectEqual(things().thing.initialized, 0);
    makeCounted();
    makeCounted();
    expectEqual(things().thing.initialized, 1);
}
ZM_CHECK(instanceHasItsData, "omGetInstanceData COSClassInfo::allocateInstance",
         "The native data of an instance is what the class allocated.")
{
    const OwnedArray thing = makeCounted();
    expectTrue(omGetInstanceData(omGetArrayElement(thing.get(), 0).get()) == &data, "the same address");
}
ZM_CHECK(classGivesTheDataToo, "COSClass::getInstanceData",
         "The class gives the native data of an instance, too.")
{
    things().members = [](nvcos::COSClass& cosClass) { initializedClass = &cosClass; };
    const OwnedArray thing = makeCounted();
    expectTrue(initializedClass != nullptr, "the class was initialized");
    const COSInterfacePtr instance = omGetArrayElement(thing.get(), 0);
    expectTrue(initializedClass->getInstanceData(instance.get()) == &data, "the same address");
}
ZM_CHECK(instanceIsAllocatedForEachObject, "COSClassInfo::allocateInstance",
         "Each object has an instance of its own.")
{
    const OwnedArray one = makeCounted();
    const OwnedArray two = makeCounted();
    expectEqual(things().thing.allocated, 2);
    expectTrue(omGetArrayElement(one.get(), 0).get() != omGetArrayElement(two.get(), 0).get(),
               "two instances");
}
ZM_CHECK(elementIsTheInstance, "omGetArrayElement COSInterface::addReference",
         "The element of an object is its instance, the same one each time.")
{
    const OwnedArray thing = makeCounted();
    const COSInterfacePtr instance = omGetArrayElement(thing.get(), 0);
    expectTrue(static_cast<bool>(instance), "there is an instance");
    expectTrue(instance.get() == omGetArrayElement(thing.get(), 0).get(), "the same one");
}
ZM_CHECK(elementPastTheEndIsNoInstance, "omGetArrayElement", "An object past the end is a host error.")
{
    const OwnedArray thing = makeCounted();
    expectHostError("omGetArrayElement", [&] { omGetArrayElement(thing.get(), 1); });
}
ZM_CHECK(numberIsNoInstance, "omGetArrayElement", "A number refers to no instance.")
{
    const OwnedArray number = makeDouble(1);
    expectHostError("omGetArrayElement", [&] { omGetArrayElement(number.get(), 0); });
}
ZM_CHECK(wrappedInstanceIsTheSame, "omCreateNVCOSScalar",
         "A value made of an instance refers to that instance.")
{
    const OwnedArray thing = makeCounted();
    const OwnedArray second = wrap(thing);
    expectTrue(nvIsA(second.get(), "Contract.Thing"), "it is of the class");
    expectTrue(omGetArrayElement(second.get(), 0).get() == omGetArrayElement(thing.get(), 0).get(),
               "the same one");
    expectEqual(things().thing.allocated, 1);
}
ZM_CHECK(noInstanceIsNotWrapped, "omCreateNVCOSScalar", "A value is not made of no instance.")
{
    expectHostError("omCreateNVCOSScalar", [] { nvDestroyArray(omCreateNVCOSScalar(COSInterfacePtr())); });
}
ZM_CHECK(instanceEndsWithItsLastValue,
         "nvDestroyArray COSClassInfo::deallocateInstance COSInterface::releaseReference",
         "An instance ends when the last value that refers to it is destroyed.")
{
    OwnedArray thing = makeCounted();
    OwnedArray second = wrap(thing);
    thing.reset();
    expectEqual(things().alive(), 1);
    second.reset();
    expectEqual(things().alive(), 0);
}
ZM_CHECK(referenceKeepsTheInstance, "COSInterface::addReference COSInterface::releaseReference",
         "A reference keeps an instance; the last one that is given back ends it.")
{
    OwnedArray thing = makeCounted();
    COSInterfacePtr first = omGetArrayElement(thing.get(), 0);
    COSInterfacePtr second = first;
    thing.reset();
    first = COSInterfacePtr();
    expectEqual(things().alive(), 1);
    expectTrue(omGetInstanceData(second.get()) == &data, "its data is there");
    second = COSInterfacePtr();
    expectEqual(things().alive(), 0);
}
ZM_CHECK(dataIsGivenBackOnce,
         "COSClassInfo::deallocateInstance COSInterface::COSInterface COSInterface::~COSInterface",
         "The class is given its native data back, once.")
{
    makeCounted();
    expectEqual(things().thing.deallocated, 1);
    expectTrue(things().thing.lastData == &data, "what it allocated");
}
ZM_CHECK(deepCopyOfAnObjectIsAHandle, "nvCreateDeepCopy",
         "A deep copy of an object refers to the same instance.")
{
    OwnedArray thing = makeCounted();
    const OwnedArray copy(nvCreateDeepCopy(thing.get()));
    expectTrue(omGetArrayElement(copy.get(), 0).get() == omGetArrayElement(thing.get(), 0).get(),
               "the same one");
    thing.reset();
    expectEqual(things().alive(), 1);
}
ZM_CHECK(sharedCopyOfAnObjectIsAHandle, "nvCreateSharedDataCopy",
         "A shared copy of an object refers to the same instance.")
{
    OwnedArray thing = makeCounted();
    const OwnedArray copy(nvCreateSharedDataCopy(thing.get()));
    thing.reset();
    expectEqual(things().alive(), 1);
}
ZM_CHECK(replacedFieldEnds, "nvReplaceField", "The value that a replaced field held ends.")
{
    const OwnedArray record = makeStruct(1, {"A"});
    setField(record.get(), 0, "A", makeCounted());
    expectEqual(things().alive(), 1);
    replaceField(record.get(), 0, "A", makeDouble(1));
    expectEqual(things().alive(), 0);
}
ZM_CHECK(replacedCellEnds, "nvSetCell", "The value that a cell held before ends.")
{
    const OwnedArray cells = makeCells(1);
    setCell(cells.get(), 0, makeCounted());
    setCell(cells.get(), 0, makeDouble(1));
    expectEqual(things().alive(), 0);
}
ZM_CHECK(structEndsItsFields, "nvDestroyArray", "The fields of a struct end with it.")
{
    OwnedArray record = makeStruct(1, {"A"});
    setField(record.get(), 0, "A", makeCounted());
    record.reset();
    expectEqual(things().alive(), 0);
}
ZM_CHECK(cellArrayEndsItsCells, "nvDestroyArray", "The cells of a cell array end with it.")
{
    OwnedArray cells = makeCells(2);
    setCell(cells.get(), 1, makeCounted());
    cells.reset();
    expectEqual(things().alive(), 0);
}
ZM_CHECK(refusedFieldStaysTheCallers, "nvSetField", "A field that is refused stays the caller's and lives.")
{
    const OwnedArray record = makeStruct(1, {"A"});
    const OwnedArray thing = makeCounted();
    expectHostError("nvSetField", [&] { nvSetField(record.get(), 0, "B", thing.get()); });
    expectEqual(things().alive(), 1);
}
ZM_CHECK(temporaryScopeEndsNothing, "nvSetArrayScope",
         "A value in the temporary scope lives until it is destroyed.")
{
    const OwnedArray thing = makeCounted();
    nvSetArrayScope(thing.get(), nvScope::Temporary);
    expectEqual(things().alive(), 1);
    expectTrue(nvIsA(thing.get(), "Contract.Thing"), "it can be read");
}
ZM_CHECK(callerOwnedScopeFollowsTheLocal, "nvSetArrayScope", "A local value may be handed to the caller.")
{
    const OwnedArray value = makeDouble(1);
    zmsvSetLocalScope(value.get());
    nvSetArrayScope(value.get(), nvScope::CallerOwned);
    expectEqual(nvGetScalar(value.get()), 1.0);
}
ZM_CHECK(localScopeEndsNothing, "zmsvSetLocalScope",
         "A value in the local scope lives until it is destroyed.")
{
    OwnedArray thing = makeCounted();
    zmsvSetLocalScope(thing.get());
    expectEqual(things().alive(), 1);
    thing.reset();
    expectEqual(things().alive(), 0);
}
ZM_CHECK(persistentScopeIsTheLast, "zmsvSetPersistentScope",
         "A local value may become persistent, and is destroyed at last.")
{
    OwnedArray thing = makeCounted();
    zmsvSetLocalScope(thing.get());
    zmsvSetPersistentScope(thing.get());
    expectEqual(things().alive(), 1);
    thing.reset();
    expectEqual(things().alive(), 0);
}
ZM_CHECK(scopedValueMayEndInAContainer, "nvSetCell zmsvSetLocalScope",
         "A local value may be put into a container.")
{
    const OwnedArray cells = makeCells(1);
    OwnedArray value = makeDouble(1);
    zmsvSetLocalScope(value.get());
    setCell(cells.get(), 0, std::move(value));
    expectEqual(nvGetScalar(nvGetCell(cells.get(), 0)), 1.0);
}
ZM_CHECK(helperFreesWhatNobodyTakes, "zmsvFEVAL_NoThrow",
         "Outputs that the caller drops end, and so do temporaries.")
{
    {
        const OwnedArray temporary = asTemporary(makeCounted());
        const HostCallResult<1> result = callHostNoThrow<1>("Contract.Thing", temporary.get());
        expectTrue(result.succeeded, "the call succeeded");
        expectEqual(things().alive(), 2);
    }
    expectEqual(things().alive(), 0);
}
ZM_CHECK(helperFreesItsTemporaryWhenACallFails, "zmsvFEVAL zmsvFEVAL_NoThrow",
         "When a call fails, its temporary ends and nothing is left of its result.")
{
    const OwnedArray temporary = asTemporary(makeCounted());
    things().construct = [](test_classes::Call& /*call*/) {
        throw zmsvException(zmsvMessageId("contract", "Refused"), "refused");
    };
    const HostCallResult<1> result = callHostNoThrow<1>("Contract.Thing", temporary.get());
    expectTrue(!result.succeeded && result.outputs[0] == nullptr, "no result");
    expectHostError("refused", [&] { callHost<1>("Contract.Thing", temporary.get()); });
    expectEqual(things().alive(), 1);
}
