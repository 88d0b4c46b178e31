#include "hmi_foundation/Initialization.hpp"

#include "host/Exceptions.hpp"
#include "reference_host/calls/Faults.hpp"
#include "reference_host/calls/Journal.hpp"
#include "reference_host/classes/ClassSystem.hpp"
#include "reference_host/classes/ObjectAccess.hpp"
#include "tests/support/HostTest.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

namespace rh = reference_host;
using Names = std::vector<std::string>;

constexpr const char* signalsClass = "Zelmar.HMI.InstrumentedSignals";
constexpr const char* clientsClass = "Zelmar.HMI.StreamingClients";

/// The library linked, no namespace there yet, nothing called. At the end every descriptor is deleted, so
/// that the ledger tells whether the host came to own them.
class Initialization : public rh::HostTest {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(rh::ClassSystem::namespaces().empty());
        rh::HostTest::SetUp();
    }
    void TearDown() override { rh::ClassSystem::reset(); }

    /// How often the operation crossed the boundary meanwhile.
    template <class Action>
    static std::size_t countDuring(const std::string& operation, Action action)
    {
        rh::Journal::startRecording();
        action();
        rh::Journal::stopRecording();
        return rh::Journal::count(operation);
    }

    template <class Action>
    static std::size_t callsDuring(Action action)
    {
        rh::Journal::startRecording();
        action();
        rh::Journal::stopRecording();
        return rh::Journal::entries().size();
    }

    /// The library's classes in the inner namespace, in order; asking defines it.
    static Names libraryClasses()
    {
        Names found;
        for (const std::string& name : rh::ClassSystem::classes("Zelmar.HMI")) {
            if (name == "InstrumentedSignals" || name == "StreamingClients") {
                found.push_back(name);
            }
        }
        return found;
    }

    static void expectUsable()
    {
        EXPECT_EQ(libraryClasses(), (Names{"InstrumentedSignals", "StreamingClients"}));
        EXPECT_NE(rh::ObjectAccess::construct(signalsClass), nullptr);
        EXPECT_NE(rh::ObjectAccess::construct(clientsClass), nullptr);
    }
};

// ---- the states in which the library may find the namespaces --------------------------------------------

TEST_F(Initialization, WithoutNamespacesItAddsOnlyTheOuterOne)
{
    EXPECT_EQ(countDuring("COSNamespace::addNamespace", NVInitialize_zm_hmi_foundation), 1U);
    EXPECT_EQ(rh::Journal::count("COSNamespace::addInnerNamespace"), 0U);
    EXPECT_EQ(rh::Journal::count("COSNamespace::addClass"), 0U);
    EXPECT_EQ(rh::ClassSystem::namespaces(), Names{"Zelmar"});
}

TEST_F(Initialization, WithoutNamespacesTheClassesAppearWhenTheyAreNeeded)
{
    NVInitialize_zm_hmi_foundation();
    EXPECT_EQ(countDuring("COSNamespace::addClass",
                          [] { EXPECT_EQ(rh::ClassSystem::innerNamespaces("Zelmar"), Names{"HMI"}); }),
              0U);
    EXPECT_EQ(countDuring("COSNamespace::addClass", [] { libraryClasses(); }), 2U);
    expectUsable();
}

TEST_F(Initialization, WithTheOuterNamespaceItAddsOnlyTheInnerOne)
{
    rh::ClassSystem::createNamespace("Zelmar");
    EXPECT_EQ(countDuring("COSNamespace::addInnerNamespace", NVInitialize_zm_hmi_foundation), 1U);
    EXPECT_EQ(rh::Journal::count("COSNamespace::addNamespace"), 0U);
    EXPECT_EQ(rh::Journal::count("COSNamespace::addClass"), 0U);
    expectUsable();
}

TEST_F(Initialization, WithBothNamespacesItAddsTheClassesAtOnceInOrder)
{
    rh::ClassSystem::createNamespace("Zelmar.HMI");
    EXPECT_EQ(countDuring("COSNamespace::addClass", NVInitialize_zm_hmi_foundation), 2U);
    EXPECT_EQ(rh::Journal::count("COSNamespace::addNamespace"), 0U);
    EXPECT_EQ(rh::Journal::count("COSNamespace::addInnerNamespace"), 0U);
    expectUsable();
}

TEST_F(Initialization, ClassesAreAddedWithZeroAndTwo)
{
    rh::ClassSystem::createNamespace("Zelmar.HMI");
    rh::Journal::startRecording();
    NVInitialize_zm_hmi_foundation();
    rh::Journal::stopRecording();
    std::size_t classes = 0;
    for (const rh::JournalEntry& entry : rh::Journal::entries()) {
        if (entry.operation == "COSNamespace::addClass") {
            ++classes;
            ASSERT_GE(entry.arguments.size(), 2U);
            EXPECT_EQ(entry.arguments[entry.arguments.size() - 2], "0");
            EXPECT_EQ(entry.arguments.back(), "2");
        }
    }
    EXPECT_EQ(classes, 2U);
}

TEST_F(Initialization, NamespacesOfOthersAreLeftAlone)
{
    rh::ClassSystem::createNamespace("Zelmar.Other");
    rh::ClassSystem::createNamespace("Tests");
    NVInitialize_zm_hmi_foundation();
    EXPECT_EQ(rh::ClassSystem::namespaces(), (Names{"Zelmar", "Tests"}));
    EXPECT_EQ(rh::ClassSystem::innerNamespaces("Zelmar"), (Names{"Other", "HMI"}));
    expectUsable();
}

// ---- a second call ----------------------------------------------------------------------------------------

TEST_F(Initialization, ASecondCallAsksTheHostNothing)
{
    NVInitialize_zm_hmi_foundation();
    EXPECT_EQ(callsDuring(NVInitialize_zm_hmi_foundation), 0U);
    expectUsable();
}

TEST_F(Initialization, ASecondCallAddsNoClassTwice)
{
    rh::ClassSystem::createNamespace("Zelmar.HMI");
    NVInitialize_zm_hmi_foundation();
    EXPECT_EQ(callsDuring(NVInitialize_zm_hmi_foundation), 0U);
    expectUsable();
}

TEST_F(Initialization, TerminatingDoesNothing)
{
    NVInitialize_zm_hmi_foundation();
    EXPECT_EQ(callsDuring(NVTerminate_zm_hmi_foundation), 0U);
    EXPECT_EQ(callsDuring(NVInitialize_zm_hmi_foundation), 0U);
    expectUsable();
}

// ---- the entry for test programs --------------------------------------------------------------------------

TEST_F(Initialization, TheTestEntryRegistersLikeTheOther)
{
    zm_hmi::testAPI::addStreamingClientNVCOSNamespace();
    EXPECT_EQ(rh::ClassSystem::namespaces(), Names{"Zelmar"});
    expectUsable();
}

TEST_F(Initialization, TheTestEntryRegistersOnce)
{
    zm_hmi::testAPI::addStreamingClientNVCOSNamespace();
    EXPECT_EQ(callsDuring(zm_hmi::testAPI::addStreamingClientNVCOSNamespace), 0U);
}

TEST_F(Initialization, TheTestEntryAfterTheOtherRegistersASecondTimeAndTheHostRefuses)
{
    NVInitialize_zm_hmi_foundation();
    EXPECT_THROW(zm_hmi::testAPI::addStreamingClientNVCOSNamespace(), zmsvException);
    expectUsable();
}

TEST_F(Initialization, TheTestEntryAfterTheOtherFindsTheClassesThere)
{
    rh::ClassSystem::createNamespace("Zelmar.HMI");
    NVInitialize_zm_hmi_foundation();
    EXPECT_THROW(zm_hmi::testAPI::addStreamingClientNVCOSNamespace(), zmsvException);
    expectUsable();
}

TEST_F(Initialization, TheOtherEntryAfterTheTestEntryRegistersASecondTimeToo)
{
    zm_hmi::testAPI::addStreamingClientNVCOSNamespace();
    EXPECT_THROW(NVInitialize_zm_hmi_foundation(), zmsvException);
    expectUsable();
}

// ---- failures ---------------------------------------------------------------------------------------------

TEST_F(Initialization, ShortMemoryIsTheHostsException)
{
    rh::Faults::arm("nvAllocateZeroed", rh::FaultKind::Null, 1);
    EXPECT_THROW(NVInitialize_zm_hmi_foundation(), zmsvOutOfMemoryException);
    EXPECT_TRUE(rh::Faults::disarm());
    EXPECT_TRUE(rh::ClassSystem::namespaces().empty());
}

TEST_F(Initialization, AFailedRegistrationIsNotTriedAgain)
{
    rh::Faults::arm(rh::Faults::anyOperation, rh::FaultKind::HostException, 1);
    EXPECT_THROW(NVInitialize_zm_hmi_foundation(), zmsvException);
    EXPECT_TRUE(rh::Faults::disarm());
    EXPECT_EQ(callsDuring(NVInitialize_zm_hmi_foundation), 0U);
    EXPECT_TRUE(rh::ClassSystem::namespaces().empty());
}

TEST_F(Initialization, AFailedTestEntryLeavesTheOtherItsTurn)
{
    rh::Faults::arm(rh::Faults::anyOperation, rh::FaultKind::HostException, 1);
    EXPECT_THROW(zm_hmi::testAPI::addStreamingClientNVCOSNamespace(), zmsvException);
    EXPECT_TRUE(rh::Faults::disarm());
    NVInitialize_zm_hmi_foundation();
    expectUsable();
}

TEST_F(Initialization, ShortMemoryForTheSecondClassLeavesTheFirst)
{
    rh::ClassSystem::createNamespace("Zelmar.HMI");
    rh::Faults::arm("nvAllocateZeroed", rh::FaultKind::Null, 2);
    EXPECT_THROW(NVInitialize_zm_hmi_foundation(), zmsvOutOfMemoryException);
    EXPECT_TRUE(rh::Faults::disarm());
    EXPECT_EQ(libraryClasses(), Names{"InstrumentedSignals"});
}

TEST_F(Initialization, ShortMemoryWithinAHookReachesWhoeverNeedsTheNamespace)
{
    NVInitialize_zm_hmi_foundation();
    for (const std::uint64_t nth : {3U, 2U, 1U}) {  // the second class, the first, the inner namespace
        rh::Faults::arm("nvAllocateZeroed", rh::FaultKind::Null, nth);
        EXPECT_THROW(libraryClasses(), zmsvOutOfMemoryException) << nth;
        EXPECT_TRUE(rh::Faults::disarm());
    }
    expectUsable();
}

}  // namespace
