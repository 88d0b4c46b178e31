#include "host/Calls.hpp"

#include "reference_host/calls/Warnings.hpp"
#include "reference_host/support/ErrorCatalog.hpp"
#include "reference_host/support/Ledger.hpp"
#include "tests/support/FaultWalk.hpp"
#include "tests/support/HostTest.hpp"

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>

namespace {

using namespace reference_host;
using DiagnosticTest = HostTest;

zmsvDiagnostic* makeDiagnostic()
{
    return zmsvCreateDiagnostic(zmsvMessageId("catalog", "Key"), "the text");
}

/// The id that a diagnostic of whatever the body throws is given.
template <class Body>
std::string keyOfCaught(Body body)
{
    try {
        body();
    } catch (...) {
        zmsvReportAsWarning(zmsvCreateDiagnosticFromCatchClause());
    }
    const std::vector<Warning> warnings = Warnings::take();
    return warnings.size() == 1 ? warnings[0].id.catalog() + " " + warnings[0].id.key() : "none";
}

TEST_F(DiagnosticTest, ReportedTwiceWarnsOnceAndIsAMisuse)
{
    expectMisuses(1);
    zmsvDiagnostic* diagnostic = makeDiagnostic();
    zmsvReportAsWarning(diagnostic);
    zmsvReportAsWarning(diagnostic);
    EXPECT_EQ(Warnings::reported().size(), 1u);
    EXPECT_NE(Ledger::misuses().back().find("zmsvReportAsWarning"), std::string::npos);
}

TEST_F(DiagnosticTest, ThrownAfterItsEndIsAMisuseAndStillThrows)
{
    expectMisuses(1);
    zmsvDiagnostic* diagnostic = makeDiagnostic();
    zmsvDiscardDiagnostic(diagnostic);
    try {
        zmsvThrowIExceptionFromDiagnostic(diagnostic, nullptr);
        FAIL() << "returned";
    } catch (const zmsvException& error) {
        EXPECT_EQ(error.id().key(), "DiagnosticHasEnded");
    }
}

TEST_F(DiagnosticTest, DiscardedAfterBeingThrownIsAMisuse)
{
    expectMisuses(1);
    zmsvDiagnostic* diagnostic = makeDiagnostic();
    EXPECT_THROW(zmsvThrowIExceptionFromDiagnostic(diagnostic, nullptr), zmsvException);
    zmsvDiscardDiagnostic(diagnostic);
}

TEST_F(DiagnosticTest, OfNullShowsNothingAndThrowsAHostError)
{
    EXPECT_NO_THROW(zmsvReportAsWarning(nullptr));
    EXPECT_NO_THROW(zmsvDiscardDiagnostic(nullptr));
    EXPECT_TRUE(Warnings::reported().empty());
    EXPECT_THROW(zmsvThrowIExceptionFromDiagnostic(nullptr, nullptr), zmsvException);
}

TEST_F(DiagnosticTest, DiscardedIsNotShown)
{
    zmsvDiscardDiagnostic(makeDiagnostic());
    EXPECT_TRUE(Warnings::reported().empty());
}

TEST_F(DiagnosticTest, EndsAlsoWhenThrowingItIsToldToFail)
{
    EXPECT_EQ(walkFaults(Faults::anyOperation, FaultKind::OutOfMemory,
                         [] {
                             try {
                                 zmsvThrowIExceptionFromDiagnostic(makeDiagnostic(), nullptr);
                             } catch (const zmsvException& error) {
                                 EXPECT_STREQ(error.what(), "the text");
                             }
                         }),
              2u);
}

TEST_F(DiagnosticTest, IsListedWhileItIsOpen)
{
    const Ledger::Snapshot before = Ledger::snapshot();
    zmsvDiagnostic* diagnostic = makeDiagnostic();
    ASSERT_EQ(Ledger::openSince(before).size(), 1u);
    EXPECT_NE(Ledger::openSince(before)[0].find("(catalog:Key, \"the text\"), made by zmsvCreateDiagnostic"),
              std::string::npos);
    zmsvDiscardDiagnostic(diagnostic);
    EXPECT_TRUE(Ledger::openSince(before).empty());
}

TEST_F(DiagnosticTest, FromACatchClauseHasTheIdOfWhatWasThrown)
{
    const std::string host = hostCatalog;
    EXPECT_EQ(keyOfCaught([] { throw zmsvException(zmsvMessageId("catalog", "Key"), "text"); }),
              "catalog Key");
    EXPECT_EQ(keyOfCaught([] { zmsvThrowOutOfMemory(); }), host + " OutOfMemory");
    EXPECT_EQ(keyOfCaught([] { throw std::bad_alloc(); }), host + " OutOfMemory");
    EXPECT_EQ(keyOfCaught([] { throw std::runtime_error("odd"); }), host + " Exception");
    EXPECT_EQ(keyOfCaught([] { throw 3; }), host + " UnknownException");
}

TEST_F(DiagnosticTest, FromACatchClauseHasTheTextOfAStandardException)
{
    try {
        throw std::runtime_error("as it was worded");
    } catch (const std::exception&) {
        zmsvReportAsWarning(zmsvCreateDiagnosticFromCatchClause());
    }
    EXPECT_EQ(Warnings::take().at(0).text, "as it was worded");
}

}  // namespace
