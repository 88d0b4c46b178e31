#include "reference_host/classes/ClassReflection.hpp"

#include "tests/reference_host/classes/ClassesTest.hpp"

namespace reference_host {

namespace {

using Kind = MethodDescription::Kind;
using Names = std::vector<std::string>;

class ClassReflectionTest : public ClassesTest {
protected:
    std::string signatureOf(const test_classes::Method& method)
    {
        defineThing(method);
        return describeMethod("A.Thing", method.name).value_or(MethodDescription{}).signature;
    }
};

TEST_F(ClassReflectionTest, AnInstanceMethodShowsItsObjectAndOptionalInputs)
{
    EXPECT_EQ(signatureOf({"get", {"A.Thing", "uint32 scalar", "logical scalar"}, {"any"}, 1, nullptr}),
              "get(obj, uint32 scalar, [logical scalar]) -> any");
}

TEST_F(ClassReflectionTest, AStaticMethodShowsNoObject)
{
    EXPECT_EQ(signatureOf({"put", {"double scalar", "uint32 scalar", "asciiString"}, {}, 0, nullptr}),
              "put(double scalar, uint32 scalar, asciiString)");
}

TEST_F(ClassReflectionTest, SeveralOutputsStandInParentheses)
{
    EXPECT_EQ(signatureOf({"both", {}, {"any", "A.Thing"}, 0, nullptr}), "both() -> (any, A.Thing)");
}

TEST_F(ClassReflectionTest, TheConstructorStandsApart)
{
    defineThing({"Thing", {"unicodeString"}, {"A.Thing"}, 1, nullptr});
    const ClassDescription thing = describeClass("A.Thing");
    const MethodDescription constructor = thing.constructor.value_or(MethodDescription{});
    EXPECT_EQ(constructor.kind, Kind::Constructor);
    EXPECT_EQ(constructor.signature, "Thing([unicodeString]) -> A.Thing");
    EXPECT_TRUE(thing.methods.empty());
}

TEST_F(ClassReflectionTest, AConstructorThatTakesItsOwnClassIsStillTheConstructor)
{
    defineThing({"Thing", {"A.Thing"}, {"A.Thing"}, 0, nullptr});
    const MethodDescription constructor = describeClass("A.Thing").constructor.value_or(MethodDescription{});
    EXPECT_EQ(constructor.signature, "Thing(A.Thing) -> A.Thing");
}

TEST_F(ClassReflectionTest, InputsLeaveOutTheObject)
{
    defineThing({"get", {"A.Thing", "uint32 scalar", "any"}, {"any"}, 1, nullptr});
    const MethodDescription get = describeMethod("A.Thing", "get").value_or(MethodDescription{});
    EXPECT_EQ(get.kind, Kind::Instance);
    EXPECT_EQ(get.inputs, (Names{"uint32 scalar", "any"}));
    EXPECT_EQ(get.optionalInputs, 1U);
    EXPECT_EQ(get.outputs, Names{"any"});
}

TEST_F(ClassReflectionTest, ListsMembersInOrderOfRegistration)
{
    defineThing([](nvcos::COSClass& cosClass) {
        test_classes::addProperty(cosClass, "Model", "unicodeString", nullptr,
                                  nvcos::COSPropAccess::ScriptReadOnly);
        test_classes::addProperty(cosClass, "Area", "any");
        test_classes::addMethod(cosClass, {"remove", {"A.Thing"}, {}, 0, nullptr});
        test_classes::addMethod(cosClass, {"add", {"any"}, {}, 0, nullptr});
    });
    const ClassDescription thing = describeClass("A.Thing");
    EXPECT_EQ(thing.fullName, "A.Thing");
    EXPECT_EQ(thing.simpleName, "Thing");
    EXPECT_FALSE(thing.constructor.has_value());
    ASSERT_EQ(thing.properties.size(), 2U);
    EXPECT_EQ(thing.properties[0].name, "Model");
    EXPECT_EQ(thing.properties[0].type, "unicodeString");
    EXPECT_EQ(thing.properties[0].access, nvcos::COSPropAccess::ScriptReadOnly);
    EXPECT_EQ(thing.properties[1].access, nvcos::COSPropAccess::ReadWrite);
    ASSERT_EQ(thing.methods.size(), 2U);
    EXPECT_EQ(thing.methods[0].name, "remove");
    EXPECT_EQ(thing.methods[1].kind, Kind::Static);
}

TEST_F(ClassReflectionTest, AMissingMemberIsNone)
{
    defineThing();
    EXPECT_FALSE(describeProperty("A.Thing", "Count").has_value());
    EXPECT_FALSE(describeMethod("A.Thing", "get").has_value());
}

TEST_F(ClassReflectionTest, AMissingClassIsAnErrorThatNamesIt)
{
    EXPECT_EQ(hostError([] { describeClass("A.Thing"); }, {"\"A.Thing\""}), "UnknownClass");
}

}  // namespace

}  // namespace reference_host
