#include "host/Containers.hpp"
#include "reference_host/values/Value.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"
#include "tests/reference_host/classes/ClassesTest.hpp"

#include <new>
#include <stdexcept>

namespace reference_host {

namespace {

using test_classes::Call;

class MethodCallTest : public ClassesTest {
protected:
    static ObjectAccess::Results call(const nvArray* object, const ObjectAccess::Arguments& arguments = {},
                                      int outputCount = ObjectAccess::AllOutputs)
    {
        return ObjectAccess::callMethod(object, "go", arguments, outputCount);
    }

    /// A static method "go" that takes anything and gives `outputs`; its results as texts.
    std::vector<std::string> resultsOf(std::vector<std::string> outputs, test_classes::MethodBody body)
    {
        defineThing({"go", {}, std::move(outputs), 0, std::move(body)});
        std::vector<std::string> texts;
        for (const OwnedValue& result : ObjectAccess::callStatic("A.Thing", "go")) {
            texts.push_back(describe(result.get()));
        }
        return texts;
    }

    const OwnedValue m_one = makeDouble(1.0);
    const OwnedValue m_text = makeText(std::string_view("abc"));
};

// ---- inputs -------------------------------------------------------------------------------------

TEST_F(MethodCallTest, AnInstanceMethodIsPassedItsObjectFirst)
{
    const nvArray* seen = nullptr;
    double number = 0.0;
    defineThing({"go", {"A.Thing", "double scalar"}, {}, 0, [&](Call& now) {
                     seen = std::get<nvArray*>(now.inputs[0]);
                     number = std::get<double>(now.inputs[1]);
                 }});
    const OwnedValue thing = makeThing();
    call(thing.get(), {m_one.get()});
    EXPECT_EQ(seen, thing.get());
    EXPECT_EQ(number, 1.0);
}

TEST_F(MethodCallTest, AMethodThatDoesNotTakeItsClassIsNotPassedTheObject)
{
    int inputCount = -1;
    defineThing({"go", {"double scalar"}, {}, 0, [&](Call& now) { inputCount = now.inputCount; }});
    const OwnedValue thing = makeThing();
    call(thing.get(), {m_one.get()});
    EXPECT_EQ(inputCount, 1);
    inputCount = -1;
    ObjectAccess::callStatic("A.Thing", "go", {m_one.get()});
    EXPECT_EQ(inputCount, 1);
}

TEST_F(MethodCallTest, AMethodWithoutInputsIsStatic)
{
    int inputCount = -1;
    defineThing({"go", {}, {}, 0, [&](Call& now) { inputCount = now.inputCount; }});
    ObjectAccess::callStatic("A.Thing", "go");
    EXPECT_EQ(inputCount, 0);
}

TEST_F(MethodCallTest, AnInstanceMethodCannotBeCalledOnTheClass)
{
    defineThing({"go", {"A.Thing"}, {}, 0, nullptr});
    EXPECT_EQ(hostError([] { ObjectAccess::callStatic("A.Thing", "go"); }, {"A.Thing.go"}), "NoObject");
}

TEST_F(MethodCallTest, OptionalInputsMayBeLeftOut)
{
    std::vector<int> counts;
    defineThing({"go", {"A.Thing", "double scalar", "logical scalar"}, {}, 1, [&](Call& now) {
                     counts.push_back(now.inputCount);
                 }});
    const OwnedValue thing = makeThing();
    call(thing.get(), {m_one.get()});
    call(thing.get(), {m_one.get(), m_one.get()});
    EXPECT_EQ(counts, (std::vector<int>{2, 3}));
}

TEST_F(MethodCallTest, TooFewArgumentsIsAnErrorThatNamesTheMissingOne)
{
    defineThing({"go", {"A.Thing", "double scalar", "uint32 scalar"}, {}, 0, nullptr});
    const OwnedValue thing = makeThing();
    EXPECT_EQ(
        hostError([&] { call(thing.get(), {m_one.get()}); }, {"A.Thing.go", "argument 2", "uint32 scalar"}),
        "TooFewArguments");
}

TEST_F(MethodCallTest, TooManyArgumentsIsAnErrorThatNamesTheFirstInExcess)
{
    defineThing({"go", {"A.Thing", "double scalar"}, {}, 1, nullptr});
    const OwnedValue thing = makeThing();
    EXPECT_EQ(hostError(
                  [&] {
                      call(thing.get(), {m_one.get(), m_one.get(), m_one.get()});
                  },
                  {"A.Thing.go", "argument 2", "at most 1"}),
              "TooManyArguments");
}

TEST_F(MethodCallTest, AWrongTypeIsAnErrorThatNamesTheArgumentAndTheValue)
{
    defineThing({"go", {"A.Thing", "double scalar", "double scalar"}, {}, 0, nullptr});
    const OwnedValue thing = makeThing();
    EXPECT_EQ(hostError(
                  [&] {
                      call(thing.get(), {m_one.get(), m_text.get()});
                  },
                  {"A.Thing.go", "argument 2", "double scalar", "\"abc\""}),
              "WrongArgument");
}

TEST_F(MethodCallTest, ArgumentPositionsOfStaticMethodsCountFromTheFirstInput)
{
    defineThing({"go", {"double scalar"}, {}, 0, nullptr});
    EXPECT_EQ(hostError([&] { ObjectAccess::callStatic("A.Thing", "go", {m_text.get()}); }, {"argument 1"}),
              "WrongArgument");
}

TEST_F(MethodCallTest, TheErrorCarriesClassMethodAndPosition)
{
    defineThing({"go", {"double scalar"}, {}, 0, nullptr});
    try {
        ObjectAccess::callStatic("A.Thing", "go", {m_text.get()});
        FAIL();
    } catch (const zmsvException& error) {
        const std::vector<zmsvMessageArgument> expected{std::string("A.Thing"), std::string("go"),
                                                        std::uint64_t{1}};
        EXPECT_EQ(error.id().arguments(), expected);
    }
}

TEST_F(MethodCallTest, ANullArgumentIsAnError)
{
    defineThing({"go", {"any"}, {}, 0, nullptr});
    EXPECT_EQ(hostError([] { ObjectAccess::callStatic("A.Thing", "go", {nullptr}); }, {"argument 1", "null"}),
              "WrongArgument");
}

TEST_F(MethodCallTest, ArgumentsAreLentToTheMethod)
{
    defineThing({"go", {"any"}, {}, 0, [](Call& now) { nvDestroyArray(std::get<nvArray*>(now.inputs[0])); }});
    EXPECT_THROW(ObjectAccess::callStatic("A.Thing", "go", {m_one.get()}), zmsvException);
    EXPECT_EQ(scalar(m_one.get()), 1.0);
    expectMisuses(1);
}

TEST_F(MethodCallTest, OnlyOneObjectOfAClassHasMethods)
{
    defineThing({"go", {"A.Thing"}, {}, 0, nullptr});
    const OwnedValue thing = makeThing();
    const nvcos::COSInterfacePtr instance = omGetArrayElement(thing.get(), 0);
    const OwnedValue two = ObjectAccess::makeObjectArray("A.Thing", {instance, instance});
    const OwnedValue none = ObjectAccess::makeObjectArray("A.Thing", {});
    for (const nvArray* value : {two.get(), none.get(), m_one.get()}) {
        EXPECT_EQ(hostError([&] { call(value); }, {"\"go\""}), "NoObject");
    }
}

TEST_F(MethodCallTest, AnUnknownMethodIsAnErrorThatNamesClassAndMethod)
{
    defineThing();
    const OwnedValue thing = makeThing();
    EXPECT_EQ(hostError([&] { call(thing.get()); }, {"A.Thing", "\"go\""}), "UnknownMethod");
}

TEST_F(MethodCallTest, TheConstructorIsNoMethodOfObjects)
{
    defineThing({"Thing", {}, {"A.Thing"}, 0, nullptr});
    const OwnedValue thing = makeThing();
    EXPECT_EQ(hostError([&] { ObjectAccess::callMethod(thing.get(), "Thing"); }, {"constructor"}),
              "ConstructorCalled");
}

// ---- outputs ------------------------------------------------------------------------------------

TEST_F(MethodCallTest, OutputsBecomeValuesByWhatTheyHold)
{
    const auto body = [](Call& now) {
        now.outputs[0] = std::u16string(u"wide");
        now.outputs[1] = std::string("narrow");
        now.outputs[2] = std::uint32_t{7};
        now.outputs[3] = std::int32_t{-7};
        now.outputs[4] = 1.5;
        now.outputs[5] = true;
        now.outputs[6] = nvCreateDoubleScalar(2.0);
        now.outputCount = 7;
    };
    EXPECT_EQ(resultsOf({"unicodeString", "asciiString", "uint32 scalar", "int32 scalar", "double scalar",
                         "logical scalar", "any"},
                        body),
              (std::vector<std::string>{"\"wide\"", "\"narrow\"", "uint32 7", "int32 -7", "double 1.5",
                                        "logical true", "double 2"}));
}

TEST_F(MethodCallTest, AnOutputThatWasNotWrittenIsNull)
{
    EXPECT_EQ(resultsOf({"any"}, [](Call&) {}), std::vector<std::string>{"null"});
}

TEST_F(MethodCallTest, ANullObjectReadsAsTheEmptyValue)
{
    const auto body = [](Call& now) { now.outputs[0] = static_cast<nvArray*>(nullptr); };
    EXPECT_EQ(resultsOf({"A.Thing"}, body), std::vector<std::string>{"0x0 double"});
}

TEST_F(MethodCallTest, AWrittenOutputIsTakenWhateverTheCountSays)
{
    const auto body = [](Call& now) {
        now.outputs[0] = 1.0;
        now.outputCount = 0;
    };
    EXPECT_EQ(resultsOf({"any"}, body), std::vector<std::string>{"double 1"});
}

TEST_F(MethodCallTest, TheBodySeesHowManyOutputsWereAskedFor)
{
    std::vector<int> counts;
    defineThing({"go", {}, {"any"}, 0, [&](Call& now) { counts.push_back(now.outputCount); }});
    ObjectAccess::callStatic("A.Thing", "go", {}, 0);
    ObjectAccess::callStatic("A.Thing", "go", {}, 1);
    EXPECT_EQ(counts, (std::vector<int>{0, 1}));
}

TEST_F(MethodCallTest, AnOutputThatWasNotAskedForIsFreed)
{
    defineThing({"go", {}, {"any"}, 0, [](Call& now) {
                     now.outputs[0] = nvCreateDoubleScalar(1.0);
                     now.outputCount = 1;
                 }});
    EXPECT_TRUE(ObjectAccess::callStatic("A.Thing", "go", {}, 0).empty());
}

TEST_F(MethodCallTest, OutputsOfAMethodThatThrowsAreFreed)
{
    defineThing({"go", {}, {"any"}, 0, [](Call& now) {
                     now.outputs[0] = nvCreateDoubleScalar(1.0);
                     throw std::runtime_error("late");
                 }});
    EXPECT_THROW(ObjectAccess::callStatic("A.Thing", "go"), std::runtime_error);
}

TEST_F(MethodCallTest, AskingForMoreOutputsThanDeclaredIsAnErrorBeforeTheCall)
{
    bool ran = false;
    defineThing({"go", {}, {}, 0, [&](Call&) { ran = true; }});
    EXPECT_EQ(hostError([] { ObjectAccess::callStatic("A.Thing", "go", {}, 1); }, {"A.Thing.go", "0 output"}),
              "TooManyOutputs");
    EXPECT_FALSE(ran);
}

TEST_F(MethodCallTest, GivingMoreOutputsThanDeclaredIsAnError)
{
    defineThing({"go", {}, {"any"}, 0, [](Call& now) { now.outputCount = 2; }});
    EXPECT_EQ(hostError([] { ObjectAccess::callStatic("A.Thing", "go"); }, {"A.Thing.go", "2"}),
              "BadOutputCount");
}

TEST_F(MethodCallTest, HandingAnInputBackAsOutputIsMisuse)
{
    defineThing({"go", {"any"}, {"any"}, 0, [](Call& now) { now.outputs[0] = now.inputs[0]; }});
    EXPECT_THROW(ObjectAccess::callStatic("A.Thing", "go", {m_one.get()}), zmsvException);
    expectMisuses(1);
}

TEST_F(MethodCallTest, GivingOneValueAsTwoOutputsIsMisuseAndTheValueEndsOnce)
{
    defineThing({"go", {}, {"any", "any", "any"}, 0, [](Call& now) {
                     now.outputs[0] = nvCreateDoubleScalar(1.0);
                     now.outputs[1] = nvCreateDoubleScalar(2.0);
                     now.outputs[2] = now.outputs[0];
                     now.outputCount = 3;
                 }});
    for (const int wanted : {3, 1, 0}) {
        EXPECT_EQ(hostError([&] { ObjectAccess::callStatic("A.Thing", "go", {}, wanted); },
                            {"A.Thing.go", "output 1", "output 3"}),
                  "OutputGivenTwice");
    }
    expectMisuses(3);
}

TEST_F(MethodCallTest, TwoOutputsMayBeNull)
{
    defineThing({"go", {}, {"any", "any"}, 0, [](Call& now) {
                     now.outputs[0] = static_cast<nvArray*>(nullptr);
                     now.outputs[1] = static_cast<nvArray*>(nullptr);
                     now.outputCount = 2;
                 }});
    EXPECT_EQ(ObjectAccess::callStatic("A.Thing", "go", {}, 2).size(), 2U);
}

// ---- constructors -------------------------------------------------------------------------------

TEST_F(MethodCallTest, TheConstructorFindsTheNewObjectInItsOutput)
{
    void* data = nullptr;
    int inputCount = -1;
    defineThing({"Thing", {"unicodeString"}, {"A.Thing"}, 1, [&](Call& now) {
                     const nvArray* object = std::get<nvArray*>(now.outputs[0]);
                     data = omGetInstanceData(omGetArrayElement(object, 0).get());
                     inputCount = now.inputCount;
                     now.outputCount = 1;
                 }});
    const OwnedValue thing = makeThing();
    EXPECT_EQ(data, &m_thing);
    EXPECT_EQ(inputCount, 0);
    EXPECT_EQ(describe(thing.get()), "1x1 A.Thing");
}

TEST_F(MethodCallTest, TheConstructorGetsItsArguments)
{
    std::u16string name;
    defineThing({"Thing", {"unicodeString"}, {"A.Thing"}, 1, [&](Call& now) {
                     name = std::get<std::u16string>(now.inputs[0]);
                 }});
    ObjectAccess::construct("A.Thing", {m_text.get()});
    EXPECT_EQ(name, u"abc");
}

TEST_F(MethodCallTest, AConstructorThatThrowsEndsTheObject)
{
    defineThing({"Thing", {}, {"A.Thing"}, 0, [](Call&) { throw std::runtime_error("no"); }});
    EXPECT_THROW(makeThing(), std::runtime_error);
    EXPECT_EQ(m_thing.deallocated, 1);
}

TEST_F(MethodCallTest, AConstructorCannotReplaceItsObject)
{
    defineThing({"Thing", {}, {"A.Thing"}, 0, [](Call& now) { now.outputs[0] = nvCreateDoubleScalar(1.0); }});
    EXPECT_EQ(hostError([] { makeThing(); }, {"A.Thing.Thing"}), "ObjectReplaced");
    EXPECT_EQ(m_thing.deallocated, 1);
}

TEST_F(MethodCallTest, WrongConstructorArgumentsAreErrorsThatNameThem)
{
    defineThing({"Thing", {"unicodeString"}, {"A.Thing"}, 1, nullptr});
    EXPECT_EQ(
        hostError([&] { ObjectAccess::construct("A.Thing", {m_one.get()}); }, {"A.Thing", "argument 1"}),
        "WrongArgument");
    EXPECT_EQ(hostError(
                  [&] {
                      ObjectAccess::construct("A.Thing", {m_text.get(), m_text.get()});
                  },
                  {"A.Thing", "argument 2"}),
              "TooManyArguments");
}

TEST_F(MethodCallTest, AClassWithoutConstructorTakesNoArguments)
{
    defineThing();
    EXPECT_EQ(
        hostError([&] { ObjectAccess::construct("A.Thing", {m_one.get()}); }, {"A.Thing", "argument 1"}),
        "TooManyArguments");
    EXPECT_EQ(m_thing.allocated, 0);
}

// ---- failures -----------------------------------------------------------------------------------

TEST_F(MethodCallTest, WhatAMethodThrowsComesOutUnchanged)
{
    std::function<void()> fail;
    defineThing({"go", {}, {}, 0, [&](Call&) { fail(); }});
    const auto go = [] { ObjectAccess::callStatic("A.Thing", "go"); };
    fail = [] { zmsvThrowOutOfMemory(); };
    EXPECT_THROW(go(), zmsvOutOfMemoryException);
    fail = [] { throw std::bad_alloc(); };
    EXPECT_THROW(go(), std::bad_alloc);
    fail = [] { throw std::length_error("long"); };
    EXPECT_THROW(go(), std::length_error);
    fail = [] { throw std::out_of_range("far"); };
    EXPECT_THROW(go(), std::out_of_range);
    fail = [] { throw 5; };
    EXPECT_THROW(go(), int);
}

TEST_F(MethodCallTest, AHostErrorOutOfAMethodKeepsItsIdentity)
{
    defineThing(
        {"go", {}, {}, 0, [](Call&) { throw zmsvException(zmsvMessageId("cat", "Key", {1.5}), "text"); }});
    try {
        ObjectAccess::callStatic("A.Thing", "go");
        FAIL();
    } catch (const zmsvException& error) {
        EXPECT_EQ(error.id().catalog(), "cat");
        EXPECT_EQ(error.id().key(), "Key");
        EXPECT_EQ(error.id().arguments(), std::vector<zmsvMessageArgument>{1.5});
        EXPECT_STREQ(error.what(), "text");
    }
}

TEST_F(MethodCallTest, AMethodMayCallBackIntoItsOwnObject)
{
    int depth = 0;
    defineThing({"go", {"A.Thing"}, {}, 0, [&](Call& now) {
                     if (++depth < 3) {
                         call(std::get<nvArray*>(now.inputs[0]));
                     }
                 }});
    const OwnedValue thing = makeThing();
    call(thing.get());
    EXPECT_EQ(depth, 3);
}

}  // namespace

}  // namespace reference_host
