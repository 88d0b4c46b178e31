#include "reference_host/support/ErrorCatalog.hpp"

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

TEST_F(ErrorCatalogTest, MessageThatIsNotThereShowsItsId)
{
    EXPECT_STREQ(m_catalog.error("Nothing", {}).what(), "test:errors:Nothing");
}

}  // namespace

}  // namespace reference_host
