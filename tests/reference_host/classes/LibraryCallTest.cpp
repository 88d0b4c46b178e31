#include "host/Containers.hpp"
#include "host/OwnedArray.hpp"
#include "reference_host/calls/Journal.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "tests/reference_host/classes/ClassesTest.hpp"
#include "tests/support/FaultWalk.hpp"

namespace reference_host {

namespace {

using test_classes::Call;

class LibraryCallTest : public ClassesTest {
protected:
    /// The operations that the work puts into the journal.
    static std::vector<std::string> operationsOf(const std::function<void()>& work)
    {
        Journal::startRecording();
        work();
        Journal::stopRecording();
        std::vector<std::string> operations;
        for (const JournalEntry& entry : Journal::entries()) {
            operations.push_back(entry.operation);
        }
        return operations;
    }
};

TEST_F(LibraryCallTest, ACallShowsItsInputsAndOutputs)
{
    defineThing({"go", {"A.Thing", "double scalar", "asciiString"}, {"any"}, 0, [](Call& now) {
                     now.outputs[0] = std::uint32_t{3};
                     now.outputCount = 1;
                 }});
    const OwnedValue thing = makeThing();
    const OwnedValue number = makeDouble(1.5);
    const OwnedValue text = makeText(u"abc");
    operationsOf([&] { ObjectAccess::callMethod(thing.get(), "go", {number.get(), text.get()}); });
    ASSERT_EQ(Journal::entries().size(), 1U);
    const JournalEntry entry = Journal::entries().front();
    EXPECT_EQ(entry.operation, "invoke");
    ASSERT_EQ(entry.arguments.size(), 3U);
    EXPECT_EQ(entry.arguments[0], "\"A.Thing.go\"");
    EXPECT_NE(entry.arguments[1].find("1x1 A.Thing, 1.5, \"abc\""), std::string::npos) << entry.arguments[1];
    EXPECT_EQ(entry.arguments[2], "1");
    EXPECT_EQ(entry.result, "(3)");
}

TEST_F(LibraryCallTest, WhatTheLibraryCallsStandsBelowTheCall)
{
    defineThing({"go", {}, {}, 0, [](Call&) { const OwnedArray value(nvCreateDoubleScalar(1.0)); }});
    ObjectAccess::callStatic("A.Thing", "go");
    EXPECT_EQ(operationsOf([] { ObjectAccess::callStatic("A.Thing", "go"); }),
              (std::vector<std::string>{"invoke", "nvCreateDoubleScalar", "nvDestroyArray"}));
    EXPECT_EQ(Journal::entries()[0].depth, 0U);
    EXPECT_EQ(Journal::entries()[1].depth, 1U);
}

TEST_F(LibraryCallTest, AThingsLifeIsJournaled)
{
    defineThing();
    EXPECT_EQ(operationsOf([] { makeThing(); }),
              (std::vector<std::string>{"initializeClass", "allocateInstance", "deallocateInstance"}));
}

TEST_F(LibraryCallTest, DefiningANamespaceIsJournaled)
{
    test_classes::NamespaceScript script;
    test_classes::addNamespace("A", script);
    EXPECT_EQ(operationsOf([] { ClassSystem::classes("A"); }), std::vector<std::string>{"defineContents"});
}

TEST_F(LibraryCallTest, PropertyAccessIsJournaled)
{
    test_classes::PropertyScript script;
    script.getValue = [](nvcos::COSInterface*) { return nvcos::COSValue(1.0); };
    script.setValue = [](nvcos::COSInterface*, const nvcos::COSValue&) {};
    defineThing([&](nvcos::COSClass& cosClass) { test_classes::addProperty(cosClass, "P", "any", &script); });
    const OwnedValue thing = makeThing();
    const OwnedValue value = makeDouble(1.0);
    EXPECT_EQ(operationsOf([&] {
                  ObjectAccess::getProperty(thing.get(), "P");
                  ObjectAccess::setProperty(thing.get(), "P", value.get());
              }),
              (std::vector<std::string>{"getValue", "releaseValue", "setValue"}));
}

TEST_F(LibraryCallTest, RegisteringAClassSurvivesShortMemoryAtEveryStep)
{
    const auto strikes = walkFaults(Faults::anyOperation, FaultKind::OutOfMemory, [this] {
        test_classes::NamespaceScript script;
        script.define = [this](nvcos::COSNamespace& home) {
            m_thing.initialize = [](nvcos::COSClass& cosClass) {
                test_classes::addProperty(cosClass, "P", "any");
                test_classes::addMethod(cosClass, {"Thing", {"unicodeString"}, {"A.Thing"}, 1, nullptr});
                test_classes::addMethod(cosClass, {"go", {"A.Thing"}, {"any"}, 0, nullptr});
            };
            test_classes::addClass(home, "Thing", m_thing);
        };
        struct Reset {
            ~Reset() { ClassSystem::reset(); }
        } const atTheEnd;
        test_classes::addNamespace("A", script);
        makeThing();
    });
    EXPECT_GE(strikes, 15U);
}

TEST_F(LibraryCallTest, AClassIsUsableAfterAnyStepOfItsRegistrationFailed)
{
    test_classes::NamespaceScript script;
    script.define = [this](nvcos::COSNamespace& home) { test_classes::addClass(home, "Thing", m_thing); };
    m_thing.initialize = [](nvcos::COSClass& cosClass) {
        test_classes::addMethod(cosClass, {"go", {"A.Thing"}, {"any"}, 0, nullptr});
    };
    test_classes::addNamespace("A", script);
    std::uint64_t nth = 0;
    bool failed = true;
    while (failed) {
        Faults::arm(Faults::anyOperation, FaultKind::HostException, ++nth);
        try {
            makeThing();
        } catch (const zmsvException&) {
            EXPECT_TRUE(Faults::hasFired());
        }
        failed = Faults::disarm();
    }
    EXPECT_GE(nth, 5U);
    EXPECT_EQ(m_thing.allocated, 1);
}

}  // namespace

}  // namespace reference_host
