#include "reference_host/calls/Journal.hpp"
#include "reference_host/classes/RecordClass.hpp"
#include "tests/reference_host/classes/ClassesTest.hpp"

namespace reference_host {

namespace {

using test_classes::addClass;
using test_classes::addInner;
using test_classes::addNamespace;
using test_classes::findNamespace;
using test_classes::NamespaceScript;

using Names = std::vector<std::string>;

constexpr const char* signalSpecification = "Zelmar.HMI.SignalSpecification";

std::unique_ptr<nvcos::COSClassInfo> makePlainClass()
{
    return makeRecordClass("Plain", {});
}

class ClassSystemTest : public ClassesTest {};

TEST_F(ClassSystemTest, StartsWithoutNamespaces)
{
    EXPECT_EQ(ClassSystem::namespaces(), Names{});
    EXPECT_FALSE(ClassSystem::hasClass(signalSpecification));
}

TEST_F(ClassSystemTest, AMissingClassIsAnErrorThatNamesIt)
{
    EXPECT_EQ(hostError([] { ObjectAccess::construct(signalSpecification); }, {signalSpecification}),
              "UnknownClass");
}

TEST_F(ClassSystemTest, CreatesANamespaceAndThoseAroundIt)
{
    ClassSystem::createNamespace("A.B");
    EXPECT_TRUE(ClassSystem::hasNamespace("A"));
    EXPECT_TRUE(ClassSystem::hasNamespace("A.B"));
}

TEST_F(ClassSystemTest, CreatingTheOuterNamespaceLeavesTheInnerOneMissing)
{
    ClassSystem::createNamespace("Zelmar");
    EXPECT_NE(findNamespace("Zelmar"), nullptr);
    EXPECT_EQ(findNamespace("Zelmar.HMI"), nullptr);
}

TEST_F(ClassSystemTest, CreatingANamespaceThatExistsChangesNothing)
{
    NamespaceScript script;
    addNamespace("A", script);
    ClassSystem::createNamespace("A");
    ClassSystem::createNamespace("A.B");
    EXPECT_EQ(script.defined, 1);
    EXPECT_EQ(ClassSystem::namespaces(), Names{"A"});
}

TEST_F(ClassSystemTest, CreatesTheNamespacesOfContributedClassesWhenAsked)
{
    ClassSystem::createContributedNamespaces();
    EXPECT_TRUE(ClassSystem::hasClass(signalSpecification));
}

TEST_F(ClassSystemTest, AContributedClassStandsInANamespaceThatALibraryAdds)
{
    NamespaceScript inner;
    NamespaceScript outer;
    outer.define = [&](nvcos::COSNamespace& home) { addInner(home, "HMI", inner); };
    addNamespace("Zelmar", outer);
    EXPECT_TRUE(ClassSystem::hasClass(signalSpecification));
    EXPECT_EQ(inner.defined, 1);
}

TEST_F(ClassSystemTest, AContributedClassIsThereWhileTheNamespaceIsDefined)
{
    bool found = false;
    NamespaceScript script;
    script.define = [&](nvcos::COSNamespace&) { found = ClassSystem::hasClass("A.Plain"); };
    ClassSystem::contributeClass("A", makePlainClass);
    addNamespace("A", script);
    ClassSystem::classes("A");
    EXPECT_TRUE(found);
}

TEST_F(ClassSystemTest, ContributingDefinesNothing)
{
    NamespaceScript outer;
    addNamespace("A", outer);
    ClassSystem::contributeClass("A.B", makePlainClass);
    ClassSystem::contributeClass("A", makePlainClass);
    EXPECT_EQ(outer.defined, 0);
}

TEST_F(ClassSystemTest, AClassContributedToADefinedNamespaceIsAddedAtOnce)
{
    ClassSystem::createNamespace("A");
    EXPECT_EQ(ClassSystem::classes("A"), Names{});
    ClassSystem::contributeClass("A", makePlainClass);
    EXPECT_EQ(ClassSystem::classes("A"), Names{"Plain"});
}

TEST_F(ClassSystemTest, WhatMakesAContributedClassMayContributeMore)
{
    ClassSystem::contributeClass("A", [] {
        for (int i = 0; i < 100; ++i) {
            const std::string name = "Extra" + std::to_string(i);
            ClassSystem::contributeClass("A", [name] { return makeRecordClass(name, {}); });
        }
        return makePlainClass();
    });
    ClassSystem::createContributedNamespaces();
    EXPECT_EQ(ClassSystem::classes("A").size(), 101U);
}

TEST_F(ClassSystemTest, AContributionThatIsRefusedIsForgotten)
{
    ClassSystem::createNamespace("A");
    EXPECT_EQ(ClassSystem::classes("A"), Names{});
    ClassSystem::contributeClass("A", makePlainClass);
    EXPECT_EQ(hostError([] { ClassSystem::contributeClass("A", makePlainClass); }, {"\"Plain\""}),
              "DuplicateName");
    EXPECT_EQ(ClassSystem::classes("A"), Names{"Plain"});
}

TEST_F(ClassSystemTest, ContributedClassesAreThereAgainAfterAFailedDefinition)
{
    NamespaceScript script;
    script.define = [&](nvcos::COSNamespace&) {
        if (script.defined == 1) {
            zmsvThrowOutOfMemory();
        }
    };
    ClassSystem::contributeClass("A", makePlainClass);
    addNamespace("A", script);
    EXPECT_THROW(ClassSystem::classes("A"), zmsvOutOfMemoryException);
    EXPECT_EQ(ClassSystem::classes("A"), Names{"Plain"});
}

TEST_F(ClassSystemTest, ALibraryCannotAddAClassThatHostCodeContributed)
{
    NamespaceScript script;
    script.define = [this](nvcos::COSNamespace& home) { addClass(home, "Plain", m_thing); };
    ClassSystem::contributeClass("A", makePlainClass);
    addNamespace("A", script);
    EXPECT_EQ(hostError([] { ClassSystem::classes("A"); }, {"\"Plain\"", "A"}), "DuplicateName");
}

TEST_F(ClassSystemTest, WhatIsRegisteredIsMeantToLive)
{
    const Ledger::Snapshot before = Ledger::snapshot();
    defineThing({"go", {"A.Thing"}, {}, 0, nullptr});
    makeThing();
    EXPECT_EQ(Ledger::openSince(before), Names{});
}

TEST_F(ClassSystemTest, ADescriptorThatIsNotRegisteredYetIsOpen)
{
    const Ledger::Snapshot before = Ledger::snapshot();
    auto info = std::make_unique<test_classes::MethodInfo>(test_classes::Method{"go", {}, {}, 0, nullptr});
    EXPECT_EQ(Ledger::openSince(before).size(), 3U);  // its memory, itself and its signature
    info.reset();
    EXPECT_EQ(Ledger::openSince(before), Names{});
}

TEST_F(ClassSystemTest, ResettingDeletesEveryDescriptor)
{
    const Ledger::Snapshot before = Ledger::snapshot();
    defineThing({"go", {"A.Thing"}, {}, 0, nullptr});
    makeThing();
    Journal::startRecording();
    ClassSystem::reset();
    EXPECT_EQ(Journal::count("nvFree"), 2U);  // the class and its method
    EXPECT_EQ(Ledger::openSince(before), Names{});
    EXPECT_EQ(ClassSystem::namespaces(), Names{});
}

TEST_F(ClassSystemTest, ResettingForgetsContributionsButTheBuiltInOnes)
{
    ClassSystem::contributeClass("A", makePlainClass);
    ClassSystem::reset();
    ClassSystem::createContributedNamespaces();
    EXPECT_FALSE(ClassSystem::hasNamespace("A"));
    EXPECT_TRUE(ClassSystem::hasClass(signalSpecification));
}

TEST_F(ClassSystemTest, ResettingWithLiveInstancesIsAnErrorThatCountsThem)
{
    defineThing();
    const OwnedValue one = makeThing();
    const OwnedValue two = makeThing();
    EXPECT_EQ(hostError([] { ClassSystem::reset(); }, {"A.Thing: 2"}), "InstancesLive");
    EXPECT_TRUE(ClassSystem::hasClass("A.Thing"));
}

}  // namespace

}  // namespace reference_host
