#include "tests/reference_host/classes/ClassesTest.hpp"

namespace reference_host {

namespace {

using nvcos::internal::makeInterned;

class InterningTest : public ClassesTest {};

TEST_F(InterningTest, EqualNamesHaveEqualAddresses)
{
    const std::string name = "Zelmar";
    EXPECT_EQ(makeInterned(name.c_str()).c_str(), makeInterned(std::string(name).c_str()).c_str());
}

TEST_F(InterningTest, DifferentNamesDiffer)
{
    EXPECT_FALSE(makeInterned("a") == makeInterned("b"));
}

TEST_F(InterningTest, NullGivesTheNullValue)
{
    EXPECT_TRUE(makeInterned(nullptr).isNull());
}

TEST_F(InterningTest, ANameOutlivesTheTextItWasMadeFrom)
{
    std::string name = "ephemeral";
    const nvcos::internal::Interned interned = makeInterned(name.c_str());
    name.assign(name.size(), 'x');
    EXPECT_STREQ(interned.c_str(), "ephemeral");
}

}  // namespace

}  // namespace reference_host
