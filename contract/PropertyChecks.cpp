#include "contract/Check.hpp"
#include "contract/Things.hpp"
#include "contract/Values.hpp"

#include <string>

// Properties: reading and assigning through the descriptors of a library.

using namespace contract;
using nvcos::COSInterface;
using nvcos::COSValue;
using test_classes::PropertyScript;

namespace {

PropertyScript& script()
{
    static PropertyScript property;
    return property;
}

COSValue assigned;

/// Adds the property "Level" of the type, whose value is this, and makes an object.
OwnedArray makeThingWith(const char* type, COSValue value,
                         nvcos::COSPropAccess access = nvcos::COSPropAccess::ReadWrite)
{
    script().getValue = [value](COSInterface* /*instance*/) { return value; };
    script().setValue = [](COSInterface* /*instance*/, const COSValue& given) { assigned = given; };
    things().members = [type, access](nvcos::COSClass& cosClass) {
        test_classes::addProperty(cosClass, "Level", type, &script(), access);
    };
    things().add();
    return makeThing();
}

OwnedArray readLevel(const OwnedArray& thing)
{
    return OwnedArray(nvGetProperty(thing.get(), 0, "Level"));
}

template <class Expected>
void expectAssigned(const Expected& expected)
{
    expectTrue(std::holds_alternative<Expected>(assigned), "the value is of the declared type");
    expectEqual(std::get<Expected>(assigned), expected);
}

void assign(const char* type, OwnedArray value)
{
    const OwnedArray thing = makeThingWith(type, {});
    nvSetProperty(thing.get(), 0, "Level", value.get());
}

/// Adds members while the class is initialized.
void addToClass(const std::function<void(nvcos::COSClass&)>& members)
{
    things().members = members;
    things().add();
    makeThing();
}

}  // namespace

ZM_CHECK(doublePropertyIsRead,
         "nvGetProperty COSPropInfo::getValue COSPropInfo::getName COSClass::addProperty",
         "A double property reads as a double scalar.")
{
    const OwnedArray thing = makeThingWith("double scalar", 2.5);
    expectEqual(nvGetScalar(readLevel(thing).get()), 2.5);
    expectTrue(nvIsA(readLevel(thing).get(), "double"), "the class is double");
}
ZM_CHECK(wideTextPropertyIsRead, "nvGetProperty COSPropInfo::getValue", "A UTF-16 property reads as text.")
{
    const OwnedArray thing = makeThingWith("unicodeString", std::u16string(u"\u00DCber"));
    expectEqual(nvGetUString(readLevel(thing).get()), std::u16string(u"\u00DCber"));
}
ZM_CHECK(narrowTextPropertyIsRead, "nvGetProperty COSPropInfo::getValue", "A narrow property reads as text.")
{
    const OwnedArray thing = makeThingWith("asciiString", std::string("plain"));
    expectEqual(nvArrayToStdString(readLevel(thing).get()), std::string("plain"));
}
ZM_CHECK(uint32PropertyIsRead, "nvGetProperty COSPropInfo::getValue",
         "A uint32 property reads as a uint32 scalar.")
{
    const OwnedArray thing = makeThingWith("uint32 scalar", std::uint32_t{9});
    expectTrue(nvIsA(readLevel(thing).get(), "uint32"), "the class is uint32");
    expectEqual(nvGetScalar(readLevel(thing).get()), 9.0);
}
ZM_CHECK(int32PropertyIsRead, "nvGetProperty COSPropInfo::getValue",
         "An int32 property reads as an int32 scalar.")
{
    const OwnedArray thing = makeThingWith("int32 scalar", std::int32_t{-9});
    expectEqual(nvGetScalar(readLevel(thing).get()), -9.0);
}
ZM_CHECK(logicalPropertyIsRead, "nvGetProperty COSPropInfo::getValue",
         "A bool property reads as a logical scalar.")
{
    const OwnedArray thing = makeThingWith("logical scalar", true);
    expectTrue(nvIsLogicalScalarTrue(readLevel(thing).get()), "true");
}
ZM_CHECK(hostValuePropertyIsRead, "nvGetProperty COSPropInfo::releaseValue",
         "A host value that a property gives is copied, and given back once.")
{
    static const nvArray* released = nullptr;
    static nvArray* const made = nvCreateDoubleScalar(6);
    script().releaseValue = [](const COSValue& value) { released = std::get<nvArray*>(value); };
    const OwnedArray thing = makeThingWith("any", made);
    const OwnedArray read = readLevel(thing);
    expectEqual(script().released, 1);
    expectTrue(released == made, "the very value is given back");
    expectTrue(read.get() != made, "the reader has a value of its own");
    nvDestroyArray(made);
    expectEqual(nvGetScalar(read.get()), 6.0);
}
ZM_CHECK(valueIsReleasedOnce, "COSPropInfo::releaseValue",
         "Each value that was read is released exactly once.")
{
    const OwnedArray thing = makeThingWith("double scalar", 1.0);
    readLevel(thing);
    expectEqual(script().released, 1);
    OwnedArray(nvGetPropertyShared(thing.get(), 0, "Level")).reset();
    expectEqual(script().released, 2);
}
ZM_CHECK(propertyIsAskedForItsInstance, "COSPropInfo::getValue omGetArrayElement",
         "A property is asked for the value of the object's own instance.")
{
    static const COSInterface* seen = nullptr;
    const OwnedArray thing = makeThingWith("double scalar", 1.0);
    script().getValue = [](COSInterface* instance) {
        seen = instance;
        return COSValue(1.0);
    };
    readLevel(thing);
    expectTrue(seen != nullptr && seen == omGetArrayElement(thing.get(), 0).get(), "the same instance");
}
ZM_CHECK(propertysErrorPassesThrough, "nvGetProperty", "What a property throws reaches its reader.")
{
    const OwnedArray thing = makeThingWith("double scalar", 1.0);
    script().getValue = [](COSInterface* /*instance*/) -> COSValue {
        throw zmsvException(zmsvMessageId("contract", "Refused"), "refused by the property");
    };
    expectHostError("refused by the property", [&] { readLevel(thing); });
}
ZM_CHECK(unknownPropertyIsRefused, "nvGetProperty", "A property that the class lacks is a host error.")
{
    const OwnedArray thing = makeThingWith("double scalar", 1.0);
    expectHostError("Height", [&] { nvDestroyArray(nvGetProperty(thing.get(), 0, "Height")); });
}
ZM_CHECK(propertyPastTheEndIsRefused, "nvGetProperty",
         "A property of an object past the end is a host error.")
{
    const OwnedArray thing = makeThingWith("double scalar", 1.0);
    expectHostError("nvGetProperty", [&] { nvDestroyArray(nvGetProperty(thing.get(), 1, "Level")); });
}
ZM_CHECK(propertyOfANumberIsRefused, "nvGetProperty", "A number has no properties.")
{
    const OwnedArray number = makeDouble(1);
    expectHostError("nvGetProperty", [&] { nvDestroyArray(nvGetProperty(number.get(), 0, "Level")); });
}

ZM_CHECK(sharedPropertyIsRead, "nvGetPropertyShared", "A property can be read sharing its data.")
{
    const OwnedArray thing = makeThingWith("double scalar", 2.5);
    const OwnedArray value(nvGetPropertyShared(thing.get(), 0, "Level"));
    expectTrue(value != nullptr, "there is a value");
    expectEqual(nvGetScalar(value.get()), 2.5);
}
ZM_CHECK(sharedPropertyWithoutValueIsNull, "nvGetPropertyShared",
         "A property without a value reads as null when shared.")
{
    const OwnedArray thing = makeThingWith("double scalar", {});
    const OwnedArray value(nvGetPropertyShared(thing.get(), 0, "Level"));
    expectTrue(value == nullptr, "null");
}
ZM_CHECK(sharedPropertyIsAValueOfItsOwn, "nvGetPropertyShared",
         "Writing a shared property value leaves the property.")
{
    static const OwnedArray kept = makeMatrix(1, 2);
    const OwnedArray thing = makeThingWith("any", kept.get());
    const OwnedArray value(nvGetPropertyShared(thing.get(), 0, "Level"));
    static_cast<double*>(nvGetDataPointer(value.get()))[0] = 5;
    expectEqual(nvGetElement(kept.get(), 0), 0.0);
}
ZM_CHECK(unknownSharedPropertyIsRefused, "nvGetPropertyShared",
         "A property that the class lacks cannot be shared.")
{
    const OwnedArray thing = makeThingWith("double scalar", 1.0);
    expectHostError("Height", [&] { nvDestroyArray(nvGetPropertyShared(thing.get(), 0, "Height")); });
}

ZM_CHECK(doublePropertyIsAssigned, "nvSetProperty COSPropInfo::setValue COSPropInfo::getType",
         "A double property is assigned a double.")
{
    assign("double scalar", makeDouble(4.5));
    expectAssigned(4.5);
}
ZM_CHECK(wideTextPropertyIsAssigned, "nvSetProperty COSPropInfo::setValue COSPropInfo::getType",
         "A property \"unicodeString\" is assigned UTF-16 text.")
{
    assign("unicodeString", makeString(std::u16string(u"\u00DCber")));
    expectAssigned(std::u16string(u"\u00DCber"));
}
ZM_CHECK(narrowTextPropertyIsAssigned, "nvSetProperty COSPropInfo::setValue",
         "A property \"asciiString\" is assigned narrow text.")
{
    assign("asciiString", makeText("plain"));
    expectAssigned(std::string("plain"));
}
ZM_CHECK(uint32PropertyIsAssigned, "nvSetProperty COSPropInfo::setValue",
         "A uint32 property is assigned that integer.")
{
    assign("uint32 scalar", makeDouble(7));
    expectAssigned(std::uint32_t{7});
}
ZM_CHECK(int32PropertyIsAssigned, "nvSetProperty COSPropInfo::setValue",
         "An int32 property is assigned that integer.")
{
    assign("int32 scalar", makeDouble(-7));
    expectAssigned(std::int32_t{-7});
}
ZM_CHECK(logicalPropertyIsAssigned, "nvSetProperty COSPropInfo::setValue",
         "A logical property is assigned a bool.")
{
    assign("logical scalar", makeLogical(true));
    expectAssigned(true);
}
ZM_CHECK(assignedValueStaysTheCallers, "nvSetProperty", "An assigned value stays the caller's.")
{
    const OwnedArray thing = makeThingWith("double scalar", {});
    const OwnedArray value = makeDouble(4.5);
    nvSetProperty(thing.get(), 0, "Level", value.get());
    expectEqual(nvGetScalar(value.get()), 4.5);
}
ZM_CHECK(wrongValueIsNotAssigned, "nvSetProperty COSPropInfo::getType",
         "A value of another type is not assigned.")
{
    const OwnedArray thing = makeThingWith("double scalar", {});
    const OwnedArray text = makeText("no number");
    expectHostError("Level", [&] { nvSetProperty(thing.get(), 0, "Level", text.get()); });
    expectTrue(std::holds_alternative<std::monostate>(assigned), "the descriptor was not called");
}
ZM_CHECK(unknownPropertyIsNotAssigned, "nvSetProperty", "A property that the class lacks is not assigned.")
{
    const OwnedArray thing = makeThingWith("double scalar", {});
    const OwnedArray value = makeDouble(1);
    expectHostError("Height", [&] { nvSetProperty(thing.get(), 0, "Height", value.get()); });
}
ZM_CHECK(propertyPastTheEndIsNotAssigned, "nvSetProperty",
         "A property of an object past the end is not assigned.")
{
    const OwnedArray thing = makeThingWith("double scalar", {});
    const OwnedArray value = makeDouble(1);
    expectHostError("nvSetProperty", [&] { nvSetProperty(thing.get(), 1, "Level", value.get()); });
}
ZM_CHECK(readOnlyPropertyIsAssignedByHostCode, "nvSetProperty COSPropInfo::getAccess",
         "An assignment from host code reaches a property that scripts only read.")
{
    const OwnedArray thing = makeThingWith("double scalar", {}, nvcos::COSPropAccess::ScriptReadOnly);
    const OwnedArray value = makeDouble(3);
    nvSetProperty(thing.get(), 0, "Level", value.get());
    expectAssigned(3.0);
}
ZM_CHECK(propertyIsNotAddedTwice, "COSClass::addProperty", "A second property of one name is a host error.")
{
    addToClass([](nvcos::COSClass& cosClass) {
        test_classes::addProperty(cosClass, "Level", "any", &script());
        expectHostError("Level", [&] { test_classes::addProperty(cosClass, "Level", "any", &script()); });
    });
}
ZM_CHECK(severalPropertiesAreTold, "COSPropInfo::getName COSClass::addProperty",
         "Each property has its own value.")
{
    static PropertyScript other;
    other.getValue = [](COSInterface* /*instance*/) { return COSValue(2.0); };
    script().getValue = [](COSInterface* /*instance*/) { return COSValue(1.0); };
    addToClass([](nvcos::COSClass& cosClass) {
        test_classes::addProperty(cosClass, "Level", "double scalar", &script());
        test_classes::addProperty(cosClass, "Other", "double scalar", &other);
    });
    const OwnedArray thing = makeThing();
    expectEqual(nvGetScalar(readLevel(thing).get()), 1.0);
    expectEqual(nvGetScalar(OwnedArray(nvGetProperty(thing.get(), 0, "Other")).get()), 2.0);
}
