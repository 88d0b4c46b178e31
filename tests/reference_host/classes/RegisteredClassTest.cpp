#include "reference_host/classes/ClassReflection.hpp"
#include "tests/reference_host/classes/ClassesTest.hpp"

#include <stdexcept>

namespace reference_host {

namespace {

using nvcos::COSClass;
using test_classes::addMethod;
using test_classes::addProperty;
using test_classes::MethodInfo;
using test_classes::PropertyInfo;
using test_classes::typeNamed;

class RegisteredClassTest : public ClassesTest {
protected:
    /// The error of using a class that is initialized so.
    std::string initializationError(std::function<void(COSClass&)> initialize,
                                    const std::vector<std::string>& parts)
    {
        defineThing(std::move(initialize));
        return hostError([] { makeThing(); }, parts);
    }
};

TEST_F(RegisteredClassTest, IsInitializedOnFirstUseAndOnce)
{
    defineThing();
    EXPECT_EQ(m_thing.initialized, 0);
    makeThing();
    makeThing();
    describeClass("A.Thing");
    EXPECT_EQ(m_thing.initialized, 1);
}

TEST_F(RegisteredClassTest, LookingUpAMethodOrPropertyIsUse)
{
    defineThing();
    describeProperty("A.Thing", "Count");
    EXPECT_EQ(m_thing.initialized, 1);
}

TEST_F(RegisteredClassTest, AFailedInitializationReachesTheFirstUser)
{
    defineThing([](COSClass&) { throw std::runtime_error("not now"); });
    EXPECT_THROW(makeThing(), std::runtime_error);
}

TEST_F(RegisteredClassTest, TheNextUseAfterAFailedInitializationStartsAnew)
{
    defineThing([this](COSClass& cosClass) {
        addMethod(cosClass, {"first", {"A.Thing"}, {}, 0, nullptr});
        if (m_thing.initialized == 1) {
            zmsvThrowOutOfMemory();
        }
        addMethod(cosClass, {"second", {"A.Thing"}, {}, 0, nullptr});
    });
    EXPECT_THROW(makeThing(), zmsvOutOfMemoryException);
    EXPECT_EQ(describeClass("A.Thing").methods.size(), 2U);
    EXPECT_EQ(m_thing.initialized, 2);
}

TEST_F(RegisteredClassTest, AFailedInitializationDeletesWhatWasAdded)
{
    defineThing([](COSClass& cosClass) {
        addProperty(cosClass, "Count", "uint32 scalar");
        addMethod(cosClass, {"first", {"A.Thing"}, {}, 0, nullptr});
        zmsvThrowOutOfMemory();
    });
    const Ledger::Snapshot before = Ledger::snapshot();
    EXPECT_THROW(makeThing(), zmsvOutOfMemoryException);
    EXPECT_TRUE(Ledger::openSince(before).empty());
}

TEST_F(RegisteredClassTest, ASecondMethodOfOneNameIsAnErrorThatNamesClassAndMethod)
{
    const auto initialize = [](COSClass& cosClass) {
        addMethod(cosClass, {"go", {"A.Thing"}, {}, 0, nullptr});
        addMethod(cosClass, {"go", {"A.Thing"}, {}, 0, nullptr});
    };
    EXPECT_EQ(initializationError(initialize, {"A.Thing", "\"go\""}), "DuplicateMember");
}

TEST_F(RegisteredClassTest, ASecondPropertyOfOneNameIsAnErrorThatNamesClassAndProperty)
{
    const auto initialize = [](COSClass& cosClass) {
        addProperty(cosClass, "Count", "any");
        addProperty(cosClass, "Count", "any");
    };
    EXPECT_EQ(initializationError(initialize, {"A.Thing", "\"Count\""}), "DuplicateMember");
}

TEST_F(RegisteredClassTest, AMethodAndAPropertyCannotShareAName)
{
    const auto initialize = [](COSClass& cosClass) {
        addProperty(cosClass, "Count", "any");
        addMethod(cosClass, {"Count", {"A.Thing"}, {}, 0, nullptr});
    };
    EXPECT_EQ(initializationError(initialize, {"A.Thing", "\"Count\"", "a method"}), "DuplicateMember");
}

TEST_F(RegisteredClassTest, AMethodWithoutNameIsAnErrorThatNamesTheClass)
{
    const auto initialize = [](COSClass& cosClass) {
        MethodInfo nameless(nullptr);
        cosClass.addMethod(&nameless);
    };
    EXPECT_EQ(initializationError(initialize, {"method", "A.Thing"}), "NoName");
}

TEST_F(RegisteredClassTest, AMethodWithoutSignatureIsAnErrorThatNamesIt)
{
    const auto initialize = [](COSClass& cosClass) {
        MethodInfo bare("go");
        cosClass.addMethod(&bare);
    };
    EXPECT_EQ(initializationError(initialize, {"A.Thing.go"}), "NoSignature");
}

TEST_F(RegisteredClassTest, NullIsNoMethodAndNoProperty)
{
    EXPECT_EQ(initializationError([](COSClass& cosClass) { cosClass.addMethod(nullptr); }, {"A.Thing"}),
              "NoName");
    m_thing.initialize = [](COSClass& cosClass) { cosClass.addProperty(nullptr); };
    EXPECT_EQ(hostError([] { makeThing(); }, {"A.Thing"}), "NoName");
}

TEST_F(RegisteredClassTest, APropertyWithoutTypeIsAnErrorThatNamesIt)
{
    const auto initialize = [](COSClass& cosClass) {
        PropertyInfo untyped("Count", nullptr);
        cosClass.addProperty(&untyped);
    };
    EXPECT_EQ(initializationError(initialize, {"A.Thing.Count"}), "NullType");
}

TEST_F(RegisteredClassTest, AnUnknownAccessCodeIsAnErrorThatNamesThePropertyAndTheCode)
{
    const auto initialize = [](COSClass& cosClass) {
        PropertyInfo odd("Count", typeNamed("any"), nullptr, 3);
        cosClass.addProperty(&odd);
    };
    EXPECT_EQ(initializationError(initialize, {"A.Thing.Count", "3"}), "BadAccess");
}

TEST_F(RegisteredClassTest, AnUnknownTypeNameIsAnErrorThatNamesIt)
{
    const auto initialize = [](COSClass& cosClass) {
        addMethod(cosClass, {"go", {"A.Thing", "text"}, {}, 0, nullptr});
    };
    EXPECT_EQ(initializationError(initialize, {"\"text\""}), "UnknownType");
}

TEST_F(RegisteredClassTest, ARefusedDescriptorStaysTheCallers)
{
    const Ledger::Snapshot before = Ledger::snapshot();
    {
        MethodInfo kept("go");
        defineThing([&](COSClass& cosClass) { cosClass.addMethod(&kept); });
        hostError([] { makeThing(); }, {});
        EXPECT_STREQ(kept.getName(), "go");
    }
    ClassSystem::reset();
    EXPECT_TRUE(Ledger::openSince(before).empty());
}

TEST_F(RegisteredClassTest, GivesTheInstanceDataAsTheHostDoes)
{
    COSClass* seen = nullptr;
    defineThing([&](COSClass& cosClass) { seen = &cosClass; });
    const OwnedValue thing = makeThing();
    const nvcos::COSInterfacePtr instance = omGetArrayElement(thing.get(), 0);
    EXPECT_EQ(seen->getInstanceData(instance.get()), &m_thing);
    EXPECT_EQ(seen->getInstanceData(nullptr), nullptr);
}

}  // namespace

}  // namespace reference_host
