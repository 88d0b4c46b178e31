#include "host/Calls.hpp"

#include "tests/contract/HostErrors.hpp"

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>
#include <string>

namespace {

/// What a diagnostic throws.
zmsvException thrownBy(zmsvDiagnostic* diagnostic, const char* context = nullptr)
{
    try {
        zmsvThrowIExceptionFromDiagnostic(diagnostic, context);
    } catch (const zmsvException& exception) {
        return exception;
    }
    ADD_FAILURE() << "returned";
    return {zmsvMessageId("none", "None"), "none"};
}

/// The diagnostic of whatever the body throws.
template <class Body>
zmsvDiagnostic* caughtFrom(Body body)
{
    try {
        body();
    } catch (...) {
        return zmsvCreateDiagnosticFromCatchClause();
    }
    return nullptr;
}

TEST(Diagnostic, ThrowsItsIdAndText)
{
    const zmsvMessageId id("catalog", "Key", {std::uint64_t{7}});
    const zmsvException thrown = thrownBy(zmsvCreateDiagnostic(id, "the text"));
    EXPECT_EQ(thrown.id().catalog(), "catalog");
    EXPECT_EQ(thrown.id().key(), "Key");
    EXPECT_EQ(std::get<std::uint64_t>(thrown.id().arguments().at(0)), 7u);
    EXPECT_STREQ(thrown.what(), "the text");
}

TEST(Diagnostic, WithoutATextHasTheCatalogsOwn)
{
    const zmsvMessageId id("dvx_hmi_foundation:errors", "InvalidElementIndex", {std::uint64_t{3}});
    const zmsvException thrown = thrownBy(zmsvCreateDiagnostic(id, ""));
    EXPECT_NE(std::string(thrown.what()).find('3'), std::string::npos) << thrown.what();
}

TEST(Diagnostic, NamesItsContext)
{
    const zmsvException thrown =
        thrownBy(zmsvCreateDiagnostic(zmsvMessageId("c", "K"), "the text"), "loading");
    EXPECT_NE(std::string(thrown.what()).find("loading"), std::string::npos);
    EXPECT_NE(std::string(thrown.what()).find("the text"), std::string::npos);
}

TEST(Diagnostic, FromACatchClauseKeepsAHostException)
{
    const zmsvException thrown =
        thrownBy(caughtFrom([] { throw zmsvException(zmsvMessageId("catalog", "Key"), "the text"); }));
    EXPECT_EQ(thrown.id().key(), "Key");
    EXPECT_STREQ(thrown.what(), "the text");
}

TEST(Diagnostic, FromACatchClauseTakesAnythingThrown)
{
    const zmsvException standard = thrownBy(caughtFrom([] { throw std::runtime_error("of the library"); }));
    EXPECT_NE(std::string(standard.what()).find("of the library"), std::string::npos);
    EXPECT_STRNE(thrownBy(caughtFrom([] { throw 3; })).what(), "");
    EXPECT_STRNE(thrownBy(caughtFrom([] { throw std::bad_alloc(); })).what(), "");
    EXPECT_STRNE(thrownBy(caughtFrom([] { zmsvThrowOutOfMemory(); })).what(), "");
}

TEST(Diagnostic, IsNotMadeOutsideACatchClause)
{
    expectHostError("zmsvCreateDiagnosticFromCatchClause", [] { zmsvCreateDiagnosticFromCatchClause(); });
}

TEST(Diagnostic, EndsQuietlyAsAWarningOrDiscarded)
{
    EXPECT_NO_THROW(zmsvReportAsWarning(zmsvCreateDiagnostic(zmsvMessageId("c", "K"), "shown by this test")));
    EXPECT_NO_THROW(zmsvDiscardDiagnostic(zmsvCreateDiagnostic(zmsvMessageId("c", "K"), "not shown")));
}

}  // namespace
