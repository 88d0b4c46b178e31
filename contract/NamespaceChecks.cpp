#include "contract/Check.hpp"
#include "contract/Things.hpp"

#include <algorithm>
#include <string>
#include <vector>

// Namespaces, types and names of the class system.

using namespace contract;
using nvcos::internal::Interned;
using nvcos::internal::makeInterned;
using test_classes::findNamespace;
using test_classes::typeNamed;

namespace {

/// A namespace that leaves every operation at its default.
class PlainNamespaceInfo final : public nvcos::COSNamespaceInfo {
public:
    const char* getName() const noexcept override { return "Plain"; }
    void defineContents(nvcos::COSNamespace* /*cosNamespace*/) override {}
};

/// A class that leaves every operation at its default.
class PlainClassInfo final : public nvcos::COSClassInfo {
public:
    const char* getClassName() const noexcept override { return "Plain"; }
    void initializeClass(nvcos::COSClass* /*cosClass*/, const nvcos::COSClient* /*client*/) override {}
    void* allocateInstance(nvcos::COSInterface* /*instance*/) override { return nullptr; }
    void deallocateInstance(nvcos::COSInterface* /*instance*/, void* /*data*/) override {}
};

void expectType(const char* name)
{
    const nvcos::COSType* type = typeNamed(name);
    expectTrue(type != nullptr, std::string("there is a type ") + name);
    expectTrue(type == typeNamed(name), "it is the same one each time");
    expectTrue(type != typeNamed(std::string(name) == "any" ? "double scalar" : "any"), "and not another's");
}

/// What a namespace was asked to load, as "class A".
std::vector<std::string> asked;

void addLoadingNamespace()
{
    things().home.load = [](nvcos::COSNamespace& /*home*/, const std::string& what, const std::string& name) {
        asked.push_back(what + " " + name);
        return false;
    };
    things().add();
}

bool wasAsked(const std::string& question)
{
    return std::find(asked.begin(), asked.end(), question) != asked.end();
}

}  // namespace

ZM_CHECK(equalNamesHaveEqualAddresses, "makeInterned", "Equal names are interned at one address.")
{
    const std::string first = "a name";
    const std::string second = "a name";
    expectTrue(makeInterned(first.c_str()) == makeInterned(second.c_str()), "the same value");
    expectTrue(makeInterned("a name") != makeInterned("another name"), "another value");
}

ZM_CHECK(internedNameKeepsItsText, "makeInterned",
         "An interned name keeps its text when the caller's is gone.")
{
    Interned name;
    {
        const std::string text = "a name that is longer than a small buffer";
        name = makeInterned(text.c_str());
    }
    expectTrue(!name.isNull(), "not the null value");
    expectEqual(std::string(name.c_str()), std::string("a name that is longer than a small buffer"));
}

ZM_CHECK(typeUnicodeString, "COSTypeRepository::getType", "There is one type \"unicodeString\".")
{
    expectType("unicodeString");
}
ZM_CHECK(typeAsciiString, "COSTypeRepository::getType", "There is one type \"asciiString\".")
{
    expectType("asciiString");
}
ZM_CHECK(typeUint32Scalar, "COSTypeRepository::getType", "There is one type \"uint32 scalar\".")
{
    expectType("uint32 scalar");
}
ZM_CHECK(typeInt32Scalar, "COSTypeRepository::getType", "There is one type \"int32 scalar\".")
{
    expectType("int32 scalar");
}
ZM_CHECK(typeDoubleScalar, "COSTypeRepository::getType", "There is one type \"double scalar\".")
{
    expectType("double scalar");
}
ZM_CHECK(typeLogicalScalar, "COSTypeRepository::getType", "There is one type \"logical scalar\".")
{
    expectType("logical scalar");
}
ZM_CHECK(typeAny, "COSTypeRepository::getType", "There is one type \"any\".")
{
    expectType("any");
}
ZM_CHECK(typeOfAClass, "COSTypeRepository::getType COSClassInfo::getClassName",
         "A class is a type by its full name.")
{
    things().add();
    expectType("Contract.Thing");
}
ZM_CHECK(unknownTypeIsRefused, "COSTypeRepository::getType", "A type that is not registered is a host error.")
{
    expectHostError("Contract.NoSuchType", [] { typeNamed("Contract.NoSuchType"); });
}

ZM_CHECK(namespaceIsFound,
         "COSNamespace::getNamespace COSNamespace::addNamespace COSNamespaceInfo::getName "
         "COSNamespace::COSNamespace",
         "A namespace that was added is found by its name, the same one each time.")
{
    things().add();
    nvcos::COSNamespace* found = findNamespace("Contract");
    expectTrue(found != nullptr, "there is a namespace");
    expectTrue(found == findNamespace("Contract"), "the same one each time");
}

ZM_CHECK(unknownNamespaceIsNull, "COSNamespace::getNamespace", "A namespace that was not added is null.")
{
    expectTrue(findNamespace("Contract") == nullptr, "not added yet");
    things().add();
    expectTrue(findNamespace("Contract.NoSuchNamespace") == nullptr, "no inner namespace of that name");
}

ZM_CHECK(namespaceIsNotAddedTwice, "COSNamespace::addNamespace",
         "A second namespace of one name is a host error.")
{
    things().add();
    static test_classes::NamespaceScript second;
    expectHostError("Contract", [] { test_classes::addNamespace("Contract", second); });
}

ZM_CHECK(namespaceIsDefinedWhenNeeded, "COSNamespaceInfo::defineContents",
         "A namespace is defined once, when its contents are first needed.")
{
    things().add();
    expectEqual(things().home.defined, 0);
    makeThing();
    makeThing();
    expectEqual(things().home.defined, 1);
}

ZM_CHECK(namespaceDefinesItself, "COSNamespaceInfo::defineContents",
         "A namespace is asked to define itself with the object that it is found as.")
{
    static nvcos::COSNamespace* given = nullptr;
    static test_classes::NamespaceScript home;
    home.define = [](nvcos::COSNamespace& space) {
        given = &space;
        test_classes::addClass(space, "Thing", things().thing);
    };
    test_classes::addNamespace("Contract", home);
    typeNamed("Contract.Thing");
    expectTrue(given != nullptr && given == findNamespace("Contract"), "the same namespace");
}

ZM_CHECK(innerNamespaceIsFound, "COSNamespace::addInnerNamespace COSNamespace::getNamespace",
         "An inner namespace is found by its full name.")
{
    things().add();
    static test_classes::NamespaceScript inner;
    test_classes::addInner(*findNamespace("Contract"), "Inner", inner);
    nvcos::COSNamespace* found = findNamespace("Contract.Inner");
    expectTrue(found != nullptr && found != findNamespace("Contract"), "a namespace of its own");
    expectTrue(findNamespace("Inner") == nullptr, "it is not at the top");
}

ZM_CHECK(innerNamespaceIsNotAddedTwice, "COSNamespace::addInnerNamespace",
         "A second inner namespace of one name is a host error.")
{
    things().add();
    static test_classes::NamespaceScript inner;
    nvcos::COSNamespace& home = *findNamespace("Contract");
    test_classes::addInner(home, "Inner", inner);
    expectHostError("Inner", [&] { test_classes::addInner(home, "Inner", inner); });
}

ZM_CHECK(innerNamespaceIsDefinedForItsClass,
         "COSNamespace::addInnerNamespace COSNamespaceInfo::defineContents",
         "A class of an inner namespace is found: both namespaces are defined for it.")
{
    static test_classes::NamespaceScript outer;
    static test_classes::NamespaceScript inner;
    inner.define = [](nvcos::COSNamespace& space) { test_classes::addClass(space, "Thing", things().thing); };
    outer.define = [](nvcos::COSNamespace& space) { test_classes::addInner(space, "Inner", inner); };
    test_classes::addNamespace("Contract", outer);
    expectTrue(typeNamed("Contract.Inner.Thing") != nullptr, "the class is a type");
    expectEqual(outer.defined, 1);
    expectEqual(inner.defined, 1);
}

ZM_CHECK(classIsNotAddedTwice, "COSNamespace::addClass", "A second class of one name is a host error.")
{
    things().add();
    nvcos::COSNamespace& home = *findNamespace("Contract");
    static test_classes::ClassScript second;
    expectHostError("Thing", [&] { test_classes::addClass(home, "Thing", second); });
}

ZM_CHECK(addingAClassDefinesItsNamespace, "COSNamespace::addClass",
         "A namespace that is not defined yet is defined before a class is added.")
{
    things().add();
    static test_classes::ClassScript other;
    test_classes::addClass(*findNamespace("Contract"), "Other", other);
    expectEqual(things().home.defined, 1);
    expectTrue(typeNamed("Contract.Other") != typeNamed("Contract.Thing"), "both classes are there");
}

ZM_CHECK(existingNameIsReported, "COSNamespaceInfo::throwErrorForDefinitionOfExistingName",
         "A namespace is told of a name that is defined a second time.")
{
    static std::string told;
    things().home.refuse = [](const std::string& name) {
        told = name;
        throw zmsvException(zmsvMessageId("contract", "Refused"), "refused by the namespace");
    };
    things().add();
    nvcos::COSNamespace& home = *findNamespace("Contract");
    static test_classes::ClassScript second;
    expectHostError("refused by the namespace", [&] { test_classes::addClass(home, "Thing", second); });
    expectEqual(told, std::string("Thing"));
}

ZM_CHECK(existingNameIsAHostErrorByDefault, "COSNamespaceInfo::throwErrorForDefinitionOfExistingName",
         "The default for a name that is defined a second time throws a host error with the name.")
{
    PlainNamespaceInfo info;
    nvcos::COSNamespaceInfo& base = info;
    expectHostError("Again",
                    [&] { base.throwErrorForDefinitionOfExistingName(nullptr, makeInterned("Again")); });
}

ZM_CHECK(namespaceIsAskedForAMissingClass, "COSNamespaceInfo::attemptToLoadClass",
         "A namespace is asked for a class that it lacks.")
{
    addLoadingNamespace();
    static_cast<void>(zmsvFEVAL_NoThrow(0, nullptr, 0, nullptr, "Contract.Missing", true));
    expectTrue(wasAsked("class Missing"), "it was asked");
}

ZM_CHECK(loadedClassIsUsed, "COSNamespaceInfo::attemptToLoadClass",
         "A class that a namespace loads is found.")
{
    things().home.load = [](nvcos::COSNamespace& home, const std::string& what, const std::string& name) {
        if (what == "class" && name == "Late") {
            static test_classes::ClassScript late;
            test_classes::addClass(home, "Late", late);
            return true;
        }
        return false;
    };
    things().add();
    expectTrue(typeNamed("Contract.Late") != nullptr, "the loaded class is a type");
}

ZM_CHECK(namespaceIsAskedForAMissingFunction, "COSNamespaceInfo::attemptToLoadFunction",
         "A namespace is asked for a function that it lacks.")
{
    addLoadingNamespace();
    static_cast<void>(zmsvFEVAL_NoThrow(0, nullptr, 0, nullptr, "Contract.missing", true));
    expectTrue(wasAsked("function missing"), "it was asked");
}

ZM_CHECK(loadedFunctionIsCalled, "COSNamespaceInfo::attemptToLoadFunction",
         "A function that a namespace loads is called.")
{
    things().home.load = [](nvcos::COSNamespace& home, const std::string& what, const std::string& name) {
        if (what == "function" && name == "Late") {
            static test_classes::ClassScript late;
            test_classes::addClass(home, "Late", late);
            return true;
        }
        return false;
    };
    things().add();
    expectTrue(callHostNoThrow<1>("Contract.Late").succeeded, "the constructor of the loaded class ran");
}

ZM_CHECK(namespaceIsAskedForAMissingType, "COSNamespaceInfo::attemptToLoadType",
         "A namespace is asked for a type that it lacks.")
{
    addLoadingNamespace();
    expectHostError("Contract.Missing", [] { typeNamed("Contract.Missing"); });
    expectTrue(wasAsked("type Missing"), "it was asked");
}

ZM_CHECK(loadedTypeIsUsed, "COSNamespaceInfo::attemptToLoadType", "A type that a namespace loads is found.")
{
    things().home.load = [](nvcos::COSNamespace& home, const std::string& what, const std::string& name) {
        if (what == "type" && name == "Late") {
            static test_classes::ClassScript late;
            test_classes::addClass(home, "Late", late);
            return true;
        }
        return false;
    };
    things().add();
    expectTrue(typeNamed("Contract.Late") != nullptr, "the loaded type is found");
}

ZM_CHECK(namespaceIsAskedForAMissingNamespace, "COSNamespaceInfo::attemptToLoadInnerNamespace",
         "A namespace is asked for an inner namespace that it lacks.")
{
    addLoadingNamespace();
    expectTrue(findNamespace("Contract.Missing") == nullptr, "null");
    expectTrue(wasAsked("namespace Missing"), "it was asked");
}

ZM_CHECK(loadedNamespaceIsUsed, "COSNamespaceInfo::attemptToLoadInnerNamespace",
         "An inner namespace that a namespace loads is found.")
{
    things().home.load = [](nvcos::COSNamespace& home, const std::string& what, const std::string& name) {
        static test_classes::NamespaceScript late;
        if (what == "namespace" && name == "Late") {
            test_classes::addInner(home, "Late", late);
            return true;
        }
        return false;
    };
    things().add();
    expectTrue(findNamespace("Contract.Late") != nullptr, "the loaded namespace is found");
}

ZM_CHECK(namespaceLoadsNothingByDefault,
         "COSNamespaceInfo::attemptToLoadType COSNamespaceInfo::attemptToLoadClass "
         "COSNamespaceInfo::attemptToLoadFunction COSNamespaceInfo::attemptToLoadInnerNamespace",
         "A namespace loads no type, class, function or namespace unless it says how.")
{
    PlainNamespaceInfo plain;
    nvcos::COSNamespaceInfo& info = plain;
    const Interned name = makeInterned("Missing");
    expectTrue(!info.attemptToLoadType(nullptr, name), "no type");
    expectTrue(!info.attemptToLoadClass(nullptr, name), "no class");
    expectTrue(!info.attemptToLoadFunction(nullptr, name), "no function");
    expectTrue(!info.attemptToLoadInnerNamespace(nullptr, name), "no namespace");
}

ZM_CHECK(classSavesNothingByDefault,
         "COSClassInfo::customLoad COSClassInfo::customSave COSClassInfo::copyData",
         "A class loads, saves and copies nothing of its own unless it says how.")
{
    PlainClassInfo plain;
    nvcos::COSClassInfo& info = plain;
    expectTrue(!info.customLoad(nullptr, nullptr), "nothing is loaded");
    expectTrue(info.customSave(nullptr) == nullptr, "nothing is saved");
    int data = 0;
    expectTrue(info.copyData(nullptr, &data) == nullptr, "nothing is copied");
}

ZM_CHECK(classIsUnrestrictedByDefault,
         "COSClassInfo::getChildrenOfInstance COSClassInfo::canOtherClassContainThisClass "
         "COSClassInfo::canThisClassContainOtherClass COSClassInfo::isPropertyNameReservedByThisClass "
         "COSClassInfo::instanceLoaded",
         "An instance has no children, any class may contain any other, and no name is reserved.")
{
    PlainClassInfo plain;
    nvcos::COSClassInfo& info = plain;
    info.instanceLoaded(nullptr);
    expectEqual(info.getChildrenOfInstance(nullptr), std::size_t{0});
    expectTrue(info.canOtherClassContainThisClass(nullptr), "others may contain it");
    expectTrue(info.canThisClassContainOtherClass(nullptr), "it may contain others");
    expectTrue(!info.isPropertyNameReservedByThisClass("Name"), "no name is reserved");
}

ZM_CHECK(descriptorsCanEnd,
         "COSMethodSignature::~COSMethodSignature COSMethodSignature::COSMethodSignature "
         "COSMethodInfo::~COSMethodInfo COSPropInfo::~COSPropInfo COSPropInfo::COSPropInfo "
         "COSClassInfo::~COSClassInfo COSClassInfo::COSClassInfo COSNamespaceInfo::~COSNamespaceInfo "
         "COSNamespaceInfo::COSNamespaceInfo",
         "Descriptors that were not added can be made and ended.")
{
    const test_classes::MethodInfo method({"method", {"any"}, {"any"}, 0, {}});
    const test_classes::PropertyInfo property("property", typeNamed("any"));
    const PlainClassInfo plainClass;
    const PlainNamespaceInfo plainNamespace;
    expectEqual(std::string(property.getName()), std::string("property"));
}
