#include "reference_host/classes/RecordClass.hpp"

#include "reference_host/calls/HostFunctions.hpp"
#include "reference_host/classes/ClassReflection.hpp"
#include "reference_host/classes/RecordClass.hpp"
#include "reference_host/values/Value.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"
#include "tests/reference_host/classes/ClassesTest.hpp"

namespace reference_host {

namespace {

OwnedValue join(const std::vector<const nvArray*>& inputs)
{
    return makeText(utf8Text(inputs[0]) + utf8Text(inputs[1]));
}

OwnedValue makeCard(const std::vector<const nvArray*>& /*inputs*/)
{
    return ObjectAccess::construct("A.Card");
}

class StaticMethodsTest : public ClassesTest {
protected:
    void SetUp() override
    {
        ClassSystem::contributeClass("A", [] {
            return makeRecordClass("Card", {numberProperty("Weight", 2.5)},
                                   {{"join", 2, "any", join},
                                    {"make", 0, "A.Card", makeCard},
                                    {"nothing", 0, "any", [](const auto&) { return nullptr; }}});
        });
        ClassSystem::createNamespace("A");
    }

    static std::string call(const char* method, const ObjectAccess::Arguments& arguments)
    {
        return describe(ObjectAccess::callStatic("A.Card", method, arguments).front().get());
    }

    const OwnedValue m_left = makeText("l");
    const OwnedValue m_right = makeText("r");
};

TEST_F(StaticMethodsTest, StandBehindWhatTheClassHas)
{
    const ClassDescription description = describeClass("A.Card");
    EXPECT_EQ(description.properties.size(), 1U);
    EXPECT_TRUE(description.constructor.has_value());
    EXPECT_EQ(describeMethod("A.Card", "join")->signature, "join(any, any) -> any");
    EXPECT_EQ(describeMethod("A.Card", "make")->signature, "make() -> A.Card");
    EXPECT_EQ(describeMethod("A.Card", "make")->kind, MethodDescription::Kind::Static);
}

TEST_F(StaticMethodsTest, AreCalledOnTheClass)
{
    EXPECT_EQ(call("join", {m_left.get(), m_right.get()}), "\"lr\"");
}

TEST_F(StaticMethodsTest, AreHostFunctionsNamedInFull)
{
    const std::vector<const nvArray*> inputs{m_left.get(), m_right.get()};
    EXPECT_EQ(describe(HostFunctions::call("A.Card.join", inputs, 1).front().get()), "\"lr\"");
}

TEST_F(StaticMethodsTest, MayGiveAnObjectOfTheirOwnClass)
{
    const OwnedValue made = std::move(ObjectAccess::callStatic("A.Card", "make").front());
    EXPECT_EQ(scalar(ObjectAccess::getProperty(made.get(), "Weight").get()), 2.5);
}

TEST_F(StaticMethodsTest, GiveAnEmptyValueWhereTheyGiveNothing)
{
    EXPECT_EQ(call("nothing", {}), "0x0 double");
}

TEST_F(StaticMethodsTest, TakeExactlyTheirInputs)
{
    EXPECT_EQ(hostError([&] { call("join", {m_left.get()}); }, {"join", "argument 2"}), "TooFewArguments");
    EXPECT_EQ(hostError([&] { call("make", {m_left.get()}); }, {"make"}), "TooManyArguments");
}

}  // namespace

}  // namespace reference_host
