#include "reference_host/support/ErrorCatalog.hpp"

#include "reference_host/support/Ledger.hpp"
#include "tests/support/HostTest.hpp"

#include <array>

namespace reference_host {

namespace {

class ErrorCatalogTest : public HostTest {
protected:
    static constexpr std::array messages{CatalogMessage{"TooMany", "{0} are more than {1}."}};
    ErrorCatalog m_catalog{"test:errors", messages};
};

TEST_F(ErrorCatalogTest, ErrorHasTheIdAndTheTextOfItsMessage)
{
    const zmsvException error = m_catalog.error("TooMany", {std::uint64_t{3}, std::uint64_t{2}});
    EXPECT_EQ(error.id().catalog(), "test:errors");
    EXPECT_EQ(error.id().key(), "TooMany");
    EXPECT_STREQ(error.what(), "3 are more than 2.");
}

TEST_F(ErrorCatalogTest, DetailsAreInTheTextAndNotInTheId)
{
    const zmsvException error = m_catalog.error("TooMany", {3U}, {2U});
    EXPECT_EQ(error.id().arguments(), std::vector<zmsvMessageArgument>{std::uint64_t{3}});
    EXPECT_STREQ(error.what(), "3 are more than 2.");
}

TEST_F(ErrorCatalogTest, MessageThatIsNotThereShowsItsId)
{
    EXPECT_STREQ(m_catalog.error("Nothing", {}).what(), "test:errors:Nothing");
}

using HostErrorTest = HostTest;

TEST_F(HostErrorTest, CarriesTheOperationBeforeItsArguments)
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

TEST_F(HostErrorTest, ThatIsAMisuseIsInTheLedgerToo)
{
    expectMisuses(1);
    EXPECT_THROW(throwMisuse("DiagnosticHasEnded"), zmsvException);
    EXPECT_EQ(Ledger::misuses().back(), "host code: the diagnostic was reported, thrown or discarded before");
}

TEST_F(HostErrorTest, ComesFromANullPointer)
{
    const int number = 0;
    EXPECT_THROW(requirePointer(nullptr), zmsvException);
    EXPECT_NO_THROW(requirePointer(&number));
    EXPECT_NO_THROW(requirePointer(nullptr, 0));
    EXPECT_THROW(requirePointer(nullptr, 2), zmsvException);
}

TEST(MessageArguments, AreConvertedToTheTypesOfMessages)
{
    const std::vector<zmsvMessageArgument> list =
        MessageArguments("a", std::string("b"), u"\u00e4", std::size_t{7}, -3, 0.5).take();
    const std::vector<zmsvMessageArgument> expected{std::string("a"), std::string("b"), std::string("\u00e4"),
                                                    std::uint64_t{7}, std::int64_t{-3}, 0.5};
    EXPECT_EQ(list, expected);
}

}  // namespace

}  // namespace reference_host
