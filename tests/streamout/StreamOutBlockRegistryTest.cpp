#include "streamout/StreamOutBlockRegistry.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <stdexcept>
#include <utility>

namespace streamout {
namespace {

using BlockPtr = std::shared_ptr<StreamOutBlockContext>;
using BlockSet = std::unordered_set<BlockPtr>;

/// A context whose identifier can change, be refused, or whose end can be watched.
class Block : public StreamOutBlockContext {
public:
    explicit Block(std::string id) : m_id(std::move(id)) {}
    Block(const Block&) = delete;
    Block& operator=(const Block&) = delete;
    ~Block() override
    {
        if (m_atEnd) {
            m_atEnd();
        }
    }

    std::string getBlockId() const override
    {
        if (!m_id) {
            throw std::runtime_error("no identifier");
        }
        return *m_id;
    }

    void rename(std::string id) { m_id = std::move(id); }
    void refuseIdentifier() { m_id.reset(); }
    void atEnd(std::function<void()> action) { m_atEnd = std::move(action); }

private:
    std::optional<std::string> m_id;
    std::function<void()> m_atEnd;
};

std::string messageOf(const std::function<void()>& action)
{
    try {
        action();
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
    return "nothing thrown";
}

class StreamOutBlockRegistryTest : public ::testing::Test {
protected:
    std::shared_ptr<Block> registered(const std::string& id)
    {
        auto block = std::make_shared<Block>(id);
        registry.registerBlock(block);
        return block;
    }

    StreamOutBlockRegistry registry;
};

TEST_F(StreamOutBlockRegistryTest, HasItsPluginName)
{
    EXPECT_EQ(StreamOutBlockRegistry::getPluginName(), "StreamOutBlockRegistry");
}

TEST_F(StreamOutBlockRegistryTest, IsEmptyAtFirst)
{
    EXPECT_TRUE(registry.getRegisteredBlocks().empty());
}

TEST_F(StreamOutBlockRegistryTest, RegisteredContextIsListedAndFound)
{
    const BlockPtr block = registered("x");

    EXPECT_EQ(registry.getRegisteredBlocks(), BlockSet{block});
    EXPECT_EQ(registry.getBlockForBlockId("x"), block);
    EXPECT_TRUE(registry.isBlockAlreadyRegistered("x"));
}

TEST_F(StreamOutBlockRegistryTest, AnEmptyIdentifierIsAnIdentifier)
{
    const BlockPtr block = registered("");

    EXPECT_EQ(registry.getBlockForBlockId(""), block);
}

TEST_F(StreamOutBlockRegistryTest, UnknownIdentifierFindsNothing)
{
    registered("x");

    EXPECT_EQ(registry.getBlockForBlockId("y"), nullptr);
    EXPECT_FALSE(registry.isBlockAlreadyRegistered("y"));
}

TEST_F(StreamOutBlockRegistryTest, LookingUpEntersNothing)
{
    EXPECT_EQ(registry.getBlockForBlockId("y"), nullptr);
    EXPECT_FALSE(registry.isBlockAlreadyRegistered("y"));
}

TEST_F(StreamOutBlockRegistryTest, RegisteringTwiceIsTheSameAsOnce)
{
    const BlockPtr block = registered("x");
    registry.registerBlock(block);
    EXPECT_EQ(registry.getRegisteredBlocks(), BlockSet{block});

    registry.unregisterBlock(block);
    EXPECT_TRUE(registry.getRegisteredBlocks().empty());
    EXPECT_FALSE(registry.isBlockAlreadyRegistered("x"));
}

TEST_F(StreamOutBlockRegistryTest, RegistersAgainAfterUnregistering)
{
    const BlockPtr block = registered("x");
    registry.unregisterBlock(block);
    registry.registerBlock(block);

    EXPECT_EQ(registry.getBlockForBlockId("x"), block);
}

TEST_F(StreamOutBlockRegistryTest, FirstContextKeepsASharedIdentifier)
{
    const BlockPtr first = registered("x");
    const BlockPtr second = registered("x");

    EXPECT_EQ(registry.getRegisteredBlocks(), (BlockSet{first, second}));
    EXPECT_EQ(registry.getBlockForBlockId("x"), first);
}

TEST_F(StreamOutBlockRegistryTest, UnregisteringTheSecondErasesASharedIdentifier)
{
    const BlockPtr first = registered("x");
    registry.unregisterBlock(registered("x"));

    EXPECT_EQ(registry.getRegisteredBlocks(), BlockSet{first});
    EXPECT_EQ(registry.getBlockForBlockId("x"), nullptr);
    EXPECT_FALSE(registry.isBlockAlreadyRegistered("x"));
}

TEST_F(StreamOutBlockRegistryTest, UnregisteringTheFirstLeavesTheSecondWithoutAnEntry)
{
    const BlockPtr first = registered("x");
    const BlockPtr second = registered("x");
    registry.unregisterBlock(first);

    EXPECT_EQ(registry.getRegisteredBlocks(), BlockSet{second});
    EXPECT_EQ(registry.getBlockForBlockId("x"), nullptr);
}

TEST_F(StreamOutBlockRegistryTest, UnregisteringAStrangerWithAnUnknownIdentifierChangesNothing)
{
    const BlockPtr block = registered("x");
    registry.unregisterBlock(std::make_shared<Block>("y"));

    EXPECT_EQ(registry.getRegisteredBlocks(), BlockSet{block});
    EXPECT_EQ(registry.getBlockForBlockId("x"), block);
}

TEST_F(StreamOutBlockRegistryTest, UnregisteringAStrangerErasesTheEntryOfItsIdentifier)
{
    const BlockPtr block = registered("x");
    registry.unregisterBlock(std::make_shared<Block>("x"));

    EXPECT_EQ(registry.getRegisteredBlocks(), BlockSet{block});
    EXPECT_EQ(registry.getBlockForBlockId("x"), nullptr);
}

TEST_F(StreamOutBlockRegistryTest, UnregisteringARenamedContextErasesTheEntryOfItsNewName)
{
    const std::shared_ptr<Block> renamed = registered("old");
    const BlockPtr other = registered("new");
    renamed->rename("new");
    registry.unregisterBlock(renamed);

    EXPECT_EQ(registry.getRegisteredBlocks(), BlockSet{other});
    EXPECT_EQ(registry.getBlockForBlockId("old"), renamed);
    EXPECT_EQ(registry.getBlockForBlockId("new"), nullptr);
}

TEST_F(StreamOutBlockRegistryTest, RegisteringNullIsRefused)
{
    EXPECT_EQ(messageOf([this] { registry.registerBlock(nullptr); }),
              "StreamOutBlockRegistry::registerBlock: the block context is null");
    EXPECT_TRUE(registry.getRegisteredBlocks().empty());
}

TEST_F(StreamOutBlockRegistryTest, UnregisteringNullIsRefused)
{
    EXPECT_EQ(messageOf([this] { registry.unregisterBlock(nullptr); }),
              "StreamOutBlockRegistry::unregisterBlock: the block context is null");
}

TEST_F(StreamOutBlockRegistryTest, ListOfBlocksIsACopy)
{
    const BlockPtr block = registered("x");
    BlockSet taken = registry.getRegisteredBlocks();
    taken.clear();

    EXPECT_EQ(registry.getRegisteredBlocks(), BlockSet{block});
}

TEST_F(StreamOutBlockRegistryTest, ListOfBlocksHasRoomAtLoadFactor1)
{
    for (int i = 0; i < 100; ++i) {
        registered(std::to_string(i));
    }
    const BlockSet blocks = registry.getRegisteredBlocks();

    EXPECT_EQ(blocks.size(), 100U);
    EXPECT_EQ(blocks.max_load_factor(), 1.0F);
    EXPECT_GE(blocks.bucket_count(), blocks.size());
}

TEST_F(StreamOutBlockRegistryTest, KeepsAContextThatItsOwnerDrops)
{
    const std::weak_ptr<Block> block = registered("x");
    EXPECT_FALSE(block.expired());

    registry.unregisterBlock(registry.getBlockForBlockId("x"));
    EXPECT_TRUE(block.expired());
}

TEST_F(StreamOutBlockRegistryTest, TwoRegistriesKnowNothingOfEachOther)
{
    const StreamOutBlockRegistry other;
    registered("x");

    EXPECT_FALSE(other.isBlockAlreadyRegistered("x"));
}

// An identifier that is refused.

TEST_F(StreamOutBlockRegistryTest, RegisteringWithoutIdentifierThrowsAndLeavesTheMutexFree)
{
    const auto block = std::make_shared<Block>("x");
    block->refuseIdentifier();

    EXPECT_THROW(registry.registerBlock(block), std::runtime_error);
    EXPECT_EQ(registry.getRegisteredBlocks(), BlockSet{block});
    EXPECT_FALSE(registry.isBlockAlreadyRegistered("x"));
}

TEST_F(StreamOutBlockRegistryTest, UnregisteringWithoutIdentifierThrowsAndLeavesTheMutexFree)
{
    const std::shared_ptr<Block> block = registered("x");
    block->refuseIdentifier();

    EXPECT_THROW(registry.unregisterBlock(block), std::runtime_error);
    EXPECT_TRUE(registry.getRegisteredBlocks().empty());
    EXPECT_EQ(registry.getBlockForBlockId("x"), block);
}

// Contexts that call the registry from their destructors.

TEST_F(StreamOutBlockRegistryTest, ContextThatEndsWithItsUnregistrationMayCallBack)
{
    std::optional<bool> stillKnown;
    registered("x")->atEnd([&] { stillKnown = registry.isBlockAlreadyRegistered("x"); });
    registry.unregisterBlock(registry.getBlockForBlockId("x"));

    EXPECT_EQ(stillKnown, false);
}

TEST_F(StreamOutBlockRegistryTest, ContextThatEndsWithAStrangersUnregistrationMayCallBack)
{
    std::optional<std::size_t> listed;
    {
        // Listed no more, and held by the entry of its old identifier alone.
        const std::shared_ptr<Block> renamed = registered("x");
        renamed->atEnd([&] { listed = registry.getRegisteredBlocks().size(); });
        renamed->rename("y");
        registry.unregisterBlock(renamed);
    }
    ASSERT_FALSE(listed);
    registry.unregisterBlock(std::make_shared<Block>("x"));

    EXPECT_EQ(listed, 0U);
}

TEST_F(StreamOutBlockRegistryTest, ContextThatEndsWithALookUpMayCallBack)
{
    std::optional<bool> stillKnown;
    registered("x")->atEnd([&] { stillKnown = registry.isBlockAlreadyRegistered("x"); });
    BlockPtr found = registry.getBlockForBlockId("x");
    registry.unregisterBlock(found);
    ASSERT_FALSE(stillKnown);
    found.reset();

    EXPECT_EQ(stillKnown, false);
}

TEST_F(StreamOutBlockRegistryTest, ContextThatEndsAsItsRegistrationFailsMayCallBack)
{
    std::optional<bool> known;
    {
        auto block = std::make_shared<Block>("x");
        block->refuseIdentifier();
        block->atEnd([&] { known = registry.isBlockAlreadyRegistered("x"); });
        EXPECT_THROW(registry.registerBlock(block), std::runtime_error);
        EXPECT_THROW(registry.unregisterBlock(std::move(block)), std::runtime_error);
    }

    EXPECT_EQ(known, false);
}

TEST(StreamOutBlockRegistryEnd, ContextsThatEndWithTheRegistryMayCallBack)
{
    std::vector<std::size_t> listed;
    {
        StreamOutBlockRegistry registry;
        for (const char* id : {"x", "y"}) {
            auto block = std::make_shared<Block>(id);
            block->atEnd([&] {
                registry.unregisterBlock(std::make_shared<Block>("x"));
                listed.push_back(registry.getRegisteredBlocks().size());
            });
            registry.registerBlock(block);
        }
    }

    EXPECT_EQ(listed, (std::vector<std::size_t>{0, 0}));
}

TEST(StreamOutBlockRegistryEnd, RegistryLetsItsContextsGo)
{
    std::weak_ptr<StreamOutBlockContext> last;
    {
        StreamOutBlockRegistry registry;
        const auto block = std::make_shared<Block>("x");
        last = block;
        registry.registerBlock(block);
    }

    EXPECT_TRUE(last.expired());
}

}  // namespace
}  // namespace streamout
