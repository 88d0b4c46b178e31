#include "tests/support/HostTest.hpp"

#include "host/Array.hpp"
#include "host/Calls.hpp"
#include "host/Memory.hpp"
#include "reference_host/calls/Warnings.hpp"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <functional>

namespace {

using reference_host::HostTest;

/// A test within the test; its body is a function.
class InnerTest : public HostTest {
public:
    explicit InnerTest(const std::function<void()>& body) { body(); }
    InnerTest(const std::function<void()>& body, std::size_t expectedMisuses)
    {
        expectMisuses(expectedMisuses);
        body();
    }

private:
    void TestBody() override {}
};

TEST(HostTestTest, FailsForAValueThatIsLeft)
{
    nvArray* value = nullptr;
    EXPECT_NONFATAL_FAILURE(InnerTest([&] { value = nvCreateDoubleScalar(12); }), "double 12");
    nvDestroyArray(value);
}

TEST(HostTestTest, FailsForADiagnosticThatIsLeft)
{
    zmsvDiagnostic* diagnostic = nullptr;
    EXPECT_NONFATAL_FAILURE(
        InnerTest([&] { diagnostic = zmsvCreateDiagnostic(zmsvMessageId("c", "k"), "left"); }), "left open");
    zmsvDiscardDiagnostic(diagnostic);
}

TEST(HostTestTest, FailsForABlockThatIsLeft)
{
    void* block = nullptr;
    EXPECT_NONFATAL_FAILURE(InnerTest([&] { block = nvAllocateZeroed(24); }), "24 bytes");
    nvFree(block);
}

TEST(HostTestTest, FailsForAMisuseThatWasNotAnnounced)
{
    EXPECT_NONFATAL_FAILURE(InnerTest([] { reference_host::Ledger::recordMisuse("odd"); }), "odd");
}

TEST(HostTestTest, FailsForAnAnnouncedMisuseThatDoesNotCome)
{
    EXPECT_NONFATAL_FAILURE(InnerTest([] {}, 1), "0 misuses instead of 1");
}

TEST(HostTestTest, AcceptsAMisuseThatWasAnnounced)
{
    const InnerTest inner([] { reference_host::Ledger::recordMisuse("odd"); }, 1);
}

TEST(HostTestTest, ForgetsTheWarningsOfATest)
{
    {
        const InnerTest inner([] { reference_host::Warnings::report({zmsvMessageId("c", "k"), "text"}); });
    }
    EXPECT_TRUE(reference_host::Warnings::reported().empty());
}

}  // namespace
