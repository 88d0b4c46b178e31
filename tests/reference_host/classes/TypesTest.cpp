#include "tests/reference_host/classes/ClassesTest.hpp"

namespace reference_host {

namespace {

using test_classes::typeNamed;

class TypesTest : public ClassesTest {};

TEST_F(TypesTest, KnowsTheBuiltInTypes)
{
    for (const char* name : {"unicodeString", "asciiString", "uint32 scalar", "int32 scalar", "double scalar",
                             "logical scalar", "any"}) {
        EXPECT_NE(typeNamed(name), nullptr) << name;
    }
}

TEST_F(TypesTest, KnowsARegisteredClassByItsFullName)
{
    defineThing();
    EXPECT_EQ(typeNamed("A.Thing"), typeNamed("A.Thing"));
}

TEST_F(TypesTest, AnUnknownNameIsAnErrorThatNamesIt)
{
    EXPECT_EQ(hostError([] { typeNamed("double"); }, {"\"double\""}), "UnknownType");
    EXPECT_EQ(hostError([] { typeNamed("A.Missing"); }, {"\"A.Missing\""}), "UnknownType");
}

TEST_F(TypesTest, TheNullNameIsAnError)
{
    EXPECT_EQ(hostError([] { nvcos::COSTypeRepository::getType({}); }, {}), "UnknownType");
}

TEST_F(TypesTest, LookingUpAClassDefinesItsNamespaces)
{
    test_classes::NamespaceScript inner;
    inner.define = [this](nvcos::COSNamespace& home) { test_classes::addClass(home, "Thing", m_thing); };
    test_classes::NamespaceScript outer;
    outer.define = [&](nvcos::COSNamespace& home) { test_classes::addInner(home, "B", inner); };
    test_classes::addNamespace("A", outer);
    EXPECT_NE(typeNamed("A.B.Thing"), nullptr);
}

TEST_F(TypesTest, LookingUpAClassDoesNotInitializeIt)
{
    defineThing();
    typeNamed("A.Thing");
    EXPECT_EQ(m_thing.initialized, 0);
}

TEST_F(TypesTest, AClassThatIsBeingInitializedIsFound)
{
    const nvcos::COSType* seen = nullptr;
    defineThing([&](nvcos::COSClass&) { seen = typeNamed("A.Thing"); });
    makeThing();
    EXPECT_NE(seen, nullptr);
}

TEST_F(TypesTest, TheNamespaceMayLoadAMissingType)
{
    test_classes::NamespaceScript script;
    script.load = [this](nvcos::COSNamespace& home, const std::string& what, const std::string& name) {
        if (what == "type" && name == "Thing") {
            test_classes::addClass(home, "Thing", m_thing);
            return true;
        }
        return false;
    };
    test_classes::addNamespace("A", script);
    EXPECT_NE(typeNamed("A.Thing"), nullptr);
}

}  // namespace

}  // namespace reference_host
