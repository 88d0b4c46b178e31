#include "streamout/StreamOutBlockRegistry.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <map>
#include <random>
#include <set>
#include <thread>
#include <vector>

namespace streamout {
namespace {

constexpr std::size_t threadCount = 8;
constexpr std::size_t operationsPerThread = 125'000;
constexpr std::size_t blocksPerGroup = 16;
constexpr std::size_t idsPerGroup = 6;

enum class Change : std::uint8_t { Register, Unregister };

/// The change that this thread is asking for.
thread_local Change changeInProgress = Change::Register;

class Block;
struct Entry {
    Change change;
    const Block* block;
};

/// The changes in the order in which they took place. It takes no lock of its own: the registry asks a
/// context for its identifier while it holds its mutex, once a change, and that alone guards the journal.
using Journal = std::vector<Entry>;

class Block : public StreamOutBlockContext {
public:
    Block(std::string id, Journal& journal) : m_id(std::move(id)), m_journal(journal) {}

    std::string getBlockId() const override
    {
        m_journal.push_back({changeInProgress, this});
        return m_id;
    }

    const std::string& id() const { return m_id; }

private:
    std::string m_id;
    Journal& m_journal;
};

using BlockPtr = std::shared_ptr<Block>;

/// The expected content of a registry, computed by one thread.
class Model {
public:
    void apply(Change change, const Block* block)
    {
        if (change == Change::Register) {
            m_listed.insert(block);
            m_byId.emplace(block->id(), block);
        } else {
            m_listed.erase(block);
            m_byId.erase(block->id());
        }
    }

    bool isListed(const Block* block) const { return m_listed.contains(block); }
    const std::set<const StreamOutBlockContext*>& listed() const { return m_listed; }
    const Block* find(const std::string& id) const
    {
        const auto entry = m_byId.find(id);
        return entry == m_byId.end() ? nullptr : entry->second;
    }

private:
    std::set<const StreamOutBlockContext*> m_listed;
    std::map<std::string, const Block*> m_byId;
};

/// Contexts that share a few identifiers among them.
std::vector<BlockPtr> makeGroup(const std::string& name, Journal& journal)
{
    std::vector<BlockPtr> group;
    for (std::size_t i = 0; i < blocksPerGroup; ++i) {
        group.push_back(std::make_shared<Block>(name + std::to_string(i % idsPerGroup), journal));
    }
    return group;
}

std::set<const StreamOutBlockContext*> addresses(
    const std::unordered_set<std::shared_ptr<StreamOutBlockContext>>& blocks)
{
    std::set<const StreamOutBlockContext*> result;
    for (const auto& block : blocks) {
        result.insert(block.get());
    }
    return result;
}

/// One thread's random work on a group of its own, whose every answer it can foretell, and on a group
/// that all threads share.
class Worker {
public:
    Worker(StreamOutBlockRegistry& registry, const std::vector<BlockPtr>& own,
           const std::vector<BlockPtr>& shared, unsigned seed)
        : m_registry(registry), m_own(own), m_shared(shared), m_random(seed)
    {
    }

    void run()
    {
        for (std::size_t i = 0; i < operationsPerThread; ++i) {
            step();
        }
    }

    std::size_t wrongAnswers() const { return m_wrongAnswers; }

private:
    void step()
    {
        const bool own = pick(2) == 0;
        const BlockPtr& block = (own ? m_own : m_shared)[pick(blocksPerGroup)];
        switch (pick(16)) {
            case 0:
                return list(*block, own);
            case 1:
            case 2:
            case 3:
                return find(block->id(), own);
            case 4:
            case 5:
            case 6:
                return ask(block->id(), own);
            case 7:
            case 8:
            case 9:
            case 10:
                return change(Change::Unregister, block, own);
            default:
                return change(Change::Register, block, own);
        }
    }

    void change(Change change, const BlockPtr& block, bool own)
    {
        changeInProgress = change;
        if (change == Change::Register) {
            m_registry.registerBlock(block);
        } else {
            m_registry.unregisterBlock(block);
        }
        if (own) {
            m_model.apply(change, block.get());
        }
    }

    void find(const std::string& id, bool own)
    {
        const auto found = m_registry.getBlockForBlockId(id);
        if (own) {
            expect(found.get() == m_model.find(id));
        } else {
            expect(found == nullptr || dynamic_cast<const Block&>(*found).id() == id);
        }
    }

    void ask(const std::string& id, bool own)
    {
        const bool known = m_registry.isBlockAlreadyRegistered(id);
        expect(!own || known == (m_model.find(id) != nullptr));
    }

    void list(const Block& block, bool own)
    {
        const auto listed = addresses(m_registry.getRegisteredBlocks());
        expect(!own || listed.contains(&block) == m_model.isListed(&block));
        expect(listed.size() <= (threadCount + 1) * blocksPerGroup);
    }

    void expect(bool asForetold) { m_wrongAnswers += asForetold ? 0U : 1U; }
    std::size_t pick(std::size_t count)
    {
        return std::uniform_int_distribution<std::size_t>(0, count - 1)(m_random);
    }

    StreamOutBlockRegistry& m_registry;
    const std::vector<BlockPtr>& m_own;
    const std::vector<BlockPtr>& m_shared;
    std::mt19937 m_random;
    Model m_model;
    std::size_t m_wrongAnswers = 0;
};

/// Runs the workers, each on a thread, and waits for them.
void runTogether(std::vector<Worker>& workers)
{
    std::vector<std::thread> threads;
    threads.reserve(workers.size());
    for (Worker& worker : workers) {
        threads.emplace_back([&worker] { worker.run(); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

TEST(StreamOutBlockRegistryThreads, AMillionRandomOperationsEndAsOneThreadWouldEndThem)
{
    Journal journal;
    journal.reserve(threadCount * operationsPerThread);
    StreamOutBlockRegistry registry;
    const std::vector<BlockPtr> shared = makeGroup("shared", journal);
    std::vector<std::vector<BlockPtr>> groups{shared};
    for (std::size_t i = 0; i < threadCount; ++i) {
        groups.push_back(makeGroup("thread" + std::to_string(i) + ":", journal));
    }
    std::vector<Worker> workers;
    for (unsigned i = 0; i < threadCount; ++i) {
        workers.emplace_back(registry, groups[i + 1], shared, i);
    }

    runTogether(workers);

    for (const Worker& worker : workers) {
        EXPECT_EQ(worker.wrongAnswers(), 0U);
    }
    Model model;
    for (const Entry& entry : journal) {
        model.apply(entry.change, entry.block);
    }
    EXPECT_FALSE(model.listed().empty());
    EXPECT_EQ(addresses(registry.getRegisteredBlocks()), model.listed());
    for (const auto& group : groups) {
        for (const BlockPtr& block : group) {
            EXPECT_EQ(registry.getBlockForBlockId(block->id()).get(), model.find(block->id()));
        }
    }
}

/// A context that looks itself up when it ends.
class LookingBack : public StreamOutBlockContext {
public:
    LookingBack(const StreamOutBlockRegistry& registry, std::string id, std::atomic<std::size_t>& ended)
        : m_registry(registry), m_id(std::move(id)), m_ended(ended)
    {
    }
    LookingBack(const LookingBack&) = delete;
    LookingBack& operator=(const LookingBack&) = delete;
    ~LookingBack() override
    {
        m_registry.isBlockAlreadyRegistered(m_id);
        ++m_ended;
    }

    std::string getBlockId() const override { return m_id; }

private:
    const StreamOutBlockRegistry& m_registry;
    std::string m_id;
    std::atomic<std::size_t>& m_ended;
};

TEST(StreamOutBlockRegistryThreads, ContextsThatCallBackAtTheirEndBlockNoOtherThread)
{
    constexpr std::size_t contextsPerThread = 5'000;
    std::atomic<std::size_t> ended = 0;
    StreamOutBlockRegistry registry;
    std::vector<std::thread> threads;
    for (std::size_t thread = 0; thread < threadCount; ++thread) {
        threads.emplace_back([&] {
            for (std::size_t i = 0; i < contextsPerThread; ++i) {
                // Few identifiers: a thread often removes an entry of another one.
                const std::string id = std::to_string(i % 3);
                registry.registerBlock(std::make_shared<LookingBack>(registry, id, ended));
                for (const auto& block : registry.getRegisteredBlocks()) {
                    registry.unregisterBlock(block);
                }
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }

    EXPECT_TRUE(registry.getRegisteredBlocks().empty());
    EXPECT_EQ(ended, threadCount * contextsPerThread);
}

}  // namespace
}  // namespace streamout
