#include "reference_host/support/HostErrors.hpp"

#include "reference_host/support/Ledger.hpp"
#include "tests/support/HostTest.hpp"

#include <gtest/gtest.h>

namespace {

using namespace reference_host;
using HostErrorsTest = HostTest;

TEST_F(HostErrorsTest, CarryTheOperationBeforeTheirArguments)
{
    try {
        throwHostError("UnknownFunction", {std::string("odd")});
    } catch (const zmsvException& error) {
        EXPECT_EQ(error.id().catalog(), hostCatalog);
        EXPECT_EQ(error.id().key(), "UnknownFunction");
        ASSERT_EQ(error.id().arguments().size(), 2u);
        EXPECT_EQ(std::get<std::string>(error.id().arguments()[0]), "host code");
        EXPECT_STREQ(error.what(), "host code: there is no function \"odd\"");
    }
}

TEST_F(HostErrorsTest, ThatAreMisusesAreInTheLedgerToo)
{
    expectMisuses(1);
    EXPECT_THROW(throwMisuse("DiagnosticHasEnded"), zmsvException);
    EXPECT_EQ(Ledger::misuses().back(), "host code: the diagnostic was reported, thrown or discarded before");
}

TEST_F(HostErrorsTest, ComeFromAPointerThatLeadsNowhere)
{
    const int number = 0;
    EXPECT_THROW(requirePointer(nullptr), zmsvException);
    EXPECT_NO_THROW(requirePointer(&number));
    EXPECT_NO_THROW(requirePointer(nullptr, 0));
    EXPECT_THROW(requirePointer(nullptr, 2), zmsvException);
}

}  // namespace
