#include "tests/reference_host/classes/ClassesTest.hpp"

#include <stdexcept>

namespace reference_host {

namespace {

using test_classes::addClass;
using test_classes::addInner;
using test_classes::addNamespace;
using test_classes::ClassScript;
using test_classes::findNamespace;
using test_classes::NamespaceScript;

using Names = std::vector<std::string>;

class NamespaceTest : public ClassesTest {
protected:
    NamespaceScript m_a;
    NamespaceScript m_b;
};

TEST_F(NamespaceTest, AMissingNamespaceIsNull)
{
    EXPECT_EQ(findNamespace("A"), nullptr);
    EXPECT_EQ(findNamespace("A.B"), nullptr);
    EXPECT_EQ(nvcos::COSNamespace::getNamespace({}), nullptr);
}

TEST_F(NamespaceTest, AddingDefinesNothing)
{
    addNamespace("A", m_a);
    EXPECT_NE(findNamespace("A"), nullptr);
    EXPECT_EQ(m_a.defined, 0);
}

TEST_F(NamespaceTest, FindingAnInnerNamespaceDefinesTheOuterOneOnly)
{
    m_a.define = [&](nvcos::COSNamespace& home) { addInner(home, "B", m_b); };
    addNamespace("A", m_a);
    EXPECT_NE(findNamespace("A.B"), nullptr);
    EXPECT_EQ(m_a.defined, 1);
    EXPECT_EQ(m_b.defined, 0);
}

TEST_F(NamespaceTest, IsDefinedOnce)
{
    addNamespace("A", m_a);
    ClassSystem::classes("A");
    ClassSystem::innerNamespaces("A");
    ClassSystem::hasClass("A.Thing");
    findNamespace("A.B");
    EXPECT_EQ(m_a.defined, 1);
}

TEST_F(NamespaceTest, EnumeratingDefines)
{
    m_a.define = [&](nvcos::COSNamespace& home) {
        addClass(home, "Thing", m_thing);
        addInner(home, "B", m_b);
    };
    addNamespace("A", m_a);
    EXPECT_EQ(ClassSystem::namespaces(), Names{"A"});
    EXPECT_EQ(ClassSystem::classes("A"), Names{"Thing"});
    EXPECT_EQ(ClassSystem::innerNamespaces("A"), Names{"B"});
}

TEST_F(NamespaceTest, EnumeratingAMissingNamespaceIsAnErrorThatNamesIt)
{
    EXPECT_EQ(hostError([] { ClassSystem::classes("A.B"); }, {"\"A.B\""}), "UnknownNamespace");
}

TEST_F(NamespaceTest, AddingAClassFromOutsideDefinesFirst)
{
    ClassScript inside;
    m_a.define = [&](nvcos::COSNamespace& home) { addClass(home, "Inside", inside); };
    addNamespace("A", m_a);
    addClass(*findNamespace("A"), "Thing", m_thing);
    EXPECT_EQ(ClassSystem::classes("A"), (Names{"Inside", "Thing"}));
}

TEST_F(NamespaceTest, AddingAnInnerNamespaceFromOutsideDefinesFirst)
{
    addNamespace("A", m_a);
    addInner(*findNamespace("A"), "B", m_b);
    EXPECT_EQ(m_a.defined, 1);
    EXPECT_EQ(ClassSystem::innerNamespaces("A"), Names{"B"});
}

TEST_F(NamespaceTest, ASecondTopLevelNamespaceIsAnErrorAndStaysTheCallers)
{
    addNamespace("A", m_a);
    EXPECT_EQ(hostError([&] { addNamespace("A", m_b); }, {"\"A\""}), "DuplicateName");
}

TEST_F(NamespaceTest, ASecondClassOfOneNameIsAnErrorThatNamesIt)
{
    defineThing();
    EXPECT_EQ(hostError([&] { defineThing(); }, {"\"Thing\"", "namespace A"}), "DuplicateName");
    EXPECT_EQ(ClassSystem::classes("A"), Names{"Thing"});
}

TEST_F(NamespaceTest, AClassAndAnInnerNamespaceCannotShareAName)
{
    defineThing();
    EXPECT_EQ(hostError([&] { addInner(*findNamespace("A"), "Thing", m_b); }, {"\"Thing\""}),
              "DuplicateName");
}

TEST_F(NamespaceTest, TheInfoMayWordTheErrorOfAnExistingName)
{
    m_a.refuse = [](const std::string& name) { throw std::runtime_error("taken: " + name); };
    m_a.define = [&](nvcos::COSNamespace& home) { addClass(home, "Thing", m_thing); };
    addNamespace("A", m_a);
    EXPECT_THROW(addClass(*findNamespace("A"), "Thing", m_thing), std::runtime_error);
}

TEST_F(NamespaceTest, AnExistingNameIsAnErrorAlsoWhenTheInfoKeepsSilent)
{
    m_a.refuse = [](const std::string&) {};
    addNamespace("A", m_a);
    addInner(*findNamespace("A"), "B", m_b);
    EXPECT_EQ(hostError([&] { addInner(*findNamespace("A"), "B", m_b); }, {"\"B\""}), "DuplicateName");
}

TEST_F(NamespaceTest, ANameIsNeededAndHasNoDot)
{
    EXPECT_EQ(hostError([&] { addNamespace("", m_a); }, {"namespace"}), "NoName");
    EXPECT_EQ(hostError([&] { addNamespace("A.B", m_a); }, {"\"A.B\""}), "BadName");
    EXPECT_EQ(hostError([] { nvcos::COSNamespace::addNamespace(nullptr); }, {"namespace"}), "NoName");
    ClassSystem::createNamespace("A");
    EXPECT_EQ(hostError([] { findNamespace("A")->addClass(nullptr, 0, 2); }, {"class"}), "NoName");
}

TEST_F(NamespaceTest, AFailedDefinitionReachesTheCallerAndLeavesNothing)
{
    m_a.define = [&](nvcos::COSNamespace& home) {
        addClass(home, "Thing", m_thing);
        addInner(home, "B", m_b);
        throw std::runtime_error("not now");
    };
    addNamespace("A", m_a);
    EXPECT_THROW(ClassSystem::classes("A"), std::runtime_error);
    m_a.define = nullptr;
    EXPECT_EQ(ClassSystem::classes("A"), Names{});
    EXPECT_EQ(ClassSystem::innerNamespaces("A"), Names{});
}

TEST_F(NamespaceTest, TheNextNeedAfterAFailedDefinitionTriesAgain)
{
    m_a.define = [&](nvcos::COSNamespace& home) {
        addClass(home, "Thing", m_thing);
        if (m_a.defined == 1) {
            zmsvThrowOutOfMemory();
        }
    };
    addNamespace("A", m_a);
    EXPECT_THROW(ClassSystem::hasClass("A.Thing"), zmsvOutOfMemoryException);
    EXPECT_TRUE(ClassSystem::hasClass("A.Thing"));
    EXPECT_EQ(m_a.defined, 2);
}

TEST_F(NamespaceTest, AClassWithInstancesOutlivesAFailedDefinition)
{
    OwnedValue thing;
    m_a.define = [&](nvcos::COSNamespace& home) {
        addClass(home, "Thing", m_thing);
        thing = ObjectAccess::construct("A.Thing");
        throw std::runtime_error("not now");
    };
    addNamespace("A", m_a);
    EXPECT_THROW(ClassSystem::classes("A"), std::runtime_error);
    m_a.define = nullptr;
    EXPECT_EQ(ClassSystem::classes("A"), Names{"Thing"});
    thing.reset();
    EXPECT_EQ(m_thing.deallocated, 1);
}

TEST_F(NamespaceTest, CanBeSearchedWhileItIsDefined)
{
    bool found = false;
    m_a.define = [&](nvcos::COSNamespace& home) {
        addClass(home, "Thing", m_thing);
        found = ClassSystem::hasClass("A.Thing");
    };
    addNamespace("A", m_a);
    ClassSystem::classes("A");
    EXPECT_TRUE(found);
    EXPECT_EQ(m_a.defined, 1);
}

TEST_F(NamespaceTest, TheInfoMayLoadAMissingClassOrInnerNamespace)
{
    m_a.load = [&](nvcos::COSNamespace& home, const std::string& what, const std::string& name) {
        if (what == "class" && name == "Thing") {
            addClass(home, "Thing", m_thing);
        } else if (what == "namespace" && name == "B") {
            addInner(home, "B", m_b);
        } else {
            return false;
        }
        return true;
    };
    addNamespace("A", m_a);
    EXPECT_TRUE(ClassSystem::hasClass("A.Thing"));
    EXPECT_TRUE(ClassSystem::hasNamespace("A.B"));
    EXPECT_FALSE(ClassSystem::hasClass("A.Other"));
    EXPECT_FALSE(ClassSystem::hasNamespace("A.C"));
}

}  // namespace

}  // namespace reference_host
