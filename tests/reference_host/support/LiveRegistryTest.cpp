#include "reference_host/support/LiveRegistry.hpp"

#include <gtest/gtest.h>

#include <set>
#include <vector>

namespace {

struct Thing {
    std::uint64_t serial = 0;
    Thing* previous = nullptr;
    Thing* next = nullptr;
};

using Registry = reference_host::LiveRegistry<Thing>;

std::vector<std::uint64_t> serialsFromNewest(const Registry& registry)
{
    std::vector<std::uint64_t> serials;
    for (const Thing* thing = registry.newest(); thing != nullptr; thing = thing->previous) {
        serials.push_back(thing->serial);
    }
    return serials;
}

TEST(LiveRegistry, ListsWhatIsAliveInTheOrderOfItsOpening)
{
    Registry registry;
    Thing* first = registry.open();
    registry.open();
    Thing* third = registry.open();
    EXPECT_EQ(serialsFromNewest(registry), (std::vector<std::uint64_t>{3, 2, 1}));
    registry.close(third);
    EXPECT_EQ(serialsFromNewest(registry), (std::vector<std::uint64_t>{2, 1}));
    registry.close(first);
    EXPECT_EQ(serialsFromNewest(registry), (std::vector<std::uint64_t>{2}));
}

TEST(LiveRegistry, ClosesOneInTheMiddle)
{
    Registry registry;
    registry.open();
    Thing* second = registry.open();
    registry.open();
    registry.close(second);
    EXPECT_EQ(serialsFromNewest(registry), (std::vector<std::uint64_t>{3, 1}));
}

TEST(LiveRegistry, DoesNotHandOutAgainWhatEndedALittleWhileAgo)
{
    Registry registry;
    Thing* ended = registry.open();
    registry.close(ended);
    for (int i = 0; i < 4000; ++i) {
        Thing* other = registry.open();
        EXPECT_NE(other, ended);
        registry.close(other);
    }
}

TEST(LiveRegistry, UsesItsThingsAgainInTheEnd)
{
    Registry registry;
    std::set<Thing*> things;
    for (int i = 0; i < 100000; ++i) {
        Thing* thing = registry.open();
        things.insert(thing);
        registry.close(thing);
    }
    EXPECT_LT(things.size(), 10000u);
    EXPECT_EQ(registry.lastSerial(), 100000u);
}

}  // namespace
