#include "host/OwnedArray.hpp"

#include <gtest/gtest.h>

namespace {

TEST(Lifetime, OfAnArgumentIsTemporary)
{
    const OwnedArray value = makeDouble(1);
    EXPECT_NO_THROW(nvSetArrayScope(value.get(), nvScope::Temporary));
    EXPECT_EQ(nvGetScalar(value.get()), 1.0);
}

TEST(Lifetime, InTheLocalScopeEndsNoSoonerThanDestroyed)
{
    const OwnedArray value = makeDouble(1);
    zmsvSetLocalScope(value.get());
    EXPECT_EQ(nvGetScalar(value.get()), 1.0);
}

TEST(Lifetime, MayPassFromLocalToTheCaller)
{
    const OwnedArray value = makeDouble(1);
    zmsvSetLocalScope(value.get());
    EXPECT_NO_THROW(nvSetArrayScope(value.get(), nvScope::CallerOwned));
    EXPECT_EQ(nvGetScalar(value.get()), 1.0);
}

TEST(Lifetime, MayBecomePersistentLast)
{
    const OwnedArray value = makeDouble(1);
    zmsvSetLocalScope(value.get());
    EXPECT_NO_THROW(zmsvSetPersistentScope(value.get()));
    EXPECT_EQ(nvGetScalar(value.get()), 1.0);
}

TEST(Lifetime, OfAScopedValueMayEndInAContainer)
{
    const std::size_t size = 1;
    const OwnedArray cells(nvCreateCellArray(1, &size));
    OwnedArray value = makeDouble(1);
    zmsvSetLocalScope(value.get());
    setCell(cells.get(), 0, std::move(value));
    EXPECT_EQ(nvGetScalar(nvGetCell(cells.get(), 0)), 1.0);
}

}  // namespace
