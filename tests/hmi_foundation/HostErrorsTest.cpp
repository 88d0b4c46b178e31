#include "hmi_foundation/HostErrors.hpp"

#include "tests/hmi/LibraryTest.hpp"
#include "tests/support/FaultWalk.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace zm_hmi_foundation {
namespace {

namespace rh = reference_host;

class HostErrorsTest : public zm_hmi::LibraryTest {};

/// The exception that the function throws.
template <class Action>
zmsvException thrownBy(Action action)
{
    try {
        action();
    } catch (const zmsvException& error) {
        return error;
    }
    throw std::logic_error("nothing was thrown");
}

TEST_F(HostErrorsTest, AHostErrorCarriesItsMessageId)
{
    const zmsvException error = thrownBy([] {
        throwHostError(zmsvMessageId("catalog", "Key", {std::uint64_t{3}, std::string("text")}));
    });
    EXPECT_EQ(error.id().catalog(), "catalog");
    EXPECT_EQ(error.id().key(), "Key");
    EXPECT_EQ(error.id().arguments(),
              (std::vector<zmsvMessageArgument>{std::uint64_t{3}, std::string("text")}));
}

TEST_F(HostErrorsTest, AnElementIndexErrorCarriesTheCountAsUnsigned)
{
    const zmsvException error = thrownBy([] { throwInvalidElementIndex(3); });
    EXPECT_EQ(error.id().catalog(), "dvx_hmi_foundation:errors");
    EXPECT_EQ(error.id().key(), "InvalidElementIndex");
    EXPECT_EQ(error.id().arguments(), std::vector<zmsvMessageArgument>{std::uint64_t{3}});
}

TEST_F(HostErrorsTest, TheDiagnosticHasNoTextOfOursAndIsThrownWithoutContext)
{
    rh::Journal::startRecording();
    EXPECT_THROW(throwInvalidElementIndex(3), zmsvException);
    rh::Journal::stopRecording();
    ASSERT_EQ(rh::Journal::entries().size(), 2U);
    EXPECT_EQ(rh::Journal::entries()[0].operation, "zmsvCreateDiagnostic");
    EXPECT_EQ(rh::Journal::entries()[0].arguments.at(1), "\"\"");
    EXPECT_EQ(rh::Journal::entries()[1].operation, "zmsvThrowIExceptionFromDiagnostic");
    EXPECT_EQ(rh::Journal::entries()[1].arguments.at(1), "null");
}

TEST_F(HostErrorsTest, IndicesOfScriptsBeginAtOne)
{
    EXPECT_EQ(toZeroBasedIndex(1, 3), 0U);
    EXPECT_EQ(toZeroBasedIndex(3, 3), 2U);
}

TEST_F(HostErrorsTest, IndexZeroIsAnErrorWithTheCount)
{
    const zmsvException error = thrownBy([] { toZeroBasedIndex(0, 2); });
    EXPECT_EQ(error.id().key(), "InvalidElementIndex");
    EXPECT_EQ(error.id().arguments(), std::vector<zmsvMessageArgument>{std::uint64_t{2}});
}

TEST_F(HostErrorsTest, AnIndexPastTheEndIsLeftToTheCollection)
{
    EXPECT_EQ(toZeroBasedIndex(9, 2), 8U);
    EXPECT_EQ(toZeroBasedIndex(1, 0), 0U);
}

TEST_F(HostErrorsTest, ADiagnosticThatCannotBeMadeLeavesNothing)
{
    EXPECT_EQ(rh::walkFaults("zmsvCreateDiagnostic", rh::FaultKind::OutOfMemory,
                             [] {
                                 try {
                                     throwInvalidElementIndex(3);
                                 } catch (const zmsvException& error) {
                                     EXPECT_EQ(error.id().key(), "InvalidElementIndex");
                                 }
                             }),
              1U);
}

}  // namespace
}  // namespace zm_hmi_foundation
