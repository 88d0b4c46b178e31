#include "reference_host/model/Model.hpp"

#include "tests/reference_host/model/DiagramTest.hpp"

#include <limits>
#include <set>

using reference_host::Block;
using reference_host::BlockKind;
using reference_host::Model;
using reference_host::PortKind;

namespace {

class ModelTest : public DiagramTest {
protected:
    Block& component(Block& system, const std::u16string& name)
    {
        return m_model.add(system, name, BlockKind::Component);
    }
    Block& subsystem(Block& system, const std::u16string& name)
    {
        return m_model.add(system, name, BlockKind::System);
    }

    Model m_model{u"plant"};
    Block& m_root = m_model.root();
};

TEST_F(ModelTest, NewModelHasNoBlocks)
{
    EXPECT_EQ(m_model.blockCount(), 0U);
    EXPECT_TRUE(m_model.blocks().empty());
    EXPECT_EQ(m_root.path(), u"plant");
}

TEST_F(ModelTest, PathIsElementNamesUnderModelName)
{
    const Block& limiter = component(subsystem(subsystem(m_root, u"Controller"), u"Inner"), u"Limiter");
    EXPECT_EQ(limiter.path(), u"plant/Controller/Inner/Limiter");
}

TEST_F(ModelTest, BlocksAreNumberedFromOneInOrderOfAddition)
{
    EXPECT_EQ(subsystem(m_root, u"A").number(), 1U);
    EXPECT_EQ(component(m_root, u"B").number(), 2U);
    EXPECT_EQ(m_model.findByNumber(2)->zid(), "plant:2");
}

TEST_F(ModelTest, OutermostSystemHasNeitherZidNorHandle)
{
    EXPECT_EQ(m_root.zid(), "");
    EXPECT_EQ(m_root.number(), 0U);
    EXPECT_EQ(m_root.handle(), 0.0);
    EXPECT_EQ(m_model.findByHandle(0.0), nullptr);
    EXPECT_EQ(m_model.findByZid("plant:0"), nullptr);
}

TEST_F(ModelTest, HandlesAreUniqueAcrossModelsAndNeverZero)
{
    Model other(u"other");
    std::set<double> handles;
    for (const char16_t* name : {u"A", u"B", u"C"}) {
        handles.insert(component(m_root, name).handle());
        handles.insert(other.add(other.root(), name, BlockKind::Component).handle());
    }
    EXPECT_EQ(handles.size(), 6U);
    EXPECT_FALSE(handles.contains(0.0));
}

TEST_F(ModelTest, FindsByPathZidNumberAndHandle)
{
    const Block& gain = component(subsystem(m_root, u"Controller"), u"Gain");
    EXPECT_EQ(m_model.findByPath(u"Controller/Gain"), &gain);
    EXPECT_EQ(m_model.findByZid("plant:2"), &gain);
    EXPECT_EQ(m_model.findByZid("2"), &gain);
    EXPECT_EQ(m_model.findByNumber(2), &gain);
    EXPECT_EQ(m_model.findByHandle(gain.handle()), &gain);
}

TEST_F(ModelTest, PathsThatLeadNowhereFindNothing)
{
    component(subsystem(m_root, u"Controller"), u"Gain");
    for (const char16_t* path :
         {u"", u"/", u"Gain", u"controller", u"Controller/", u"/Controller", u"Controller//Gain",
          u"Controller/Gain/", u"Controller/Gain/Gain", u"plant/Controller"}) {
        EXPECT_EQ(m_model.findByPath(path), nullptr);
    }
}

TEST_F(ModelTest, ZidsThatNameNoBlockFindNothing)
{
    component(m_root, u"A");
    for (const char* zid : {"", ":", "plant", "plant:", ":1", "plant:2", "Plant:1", "plant:1 ", "plant:+1",
                            "-1", "1.0", "plant:plant:1", "99999999999999999999"}) {
        EXPECT_EQ(m_model.findByZid(zid), nullptr) << zid;
    }
}

TEST_F(ModelTest, HandlesThatAreNoBlocksFindNothing)
{
    component(m_root, u"A");
    for (const double handle : {0.0, -0.0, -1.0, 1e300, std::numeric_limits<double>::quiet_NaN()}) {
        EXPECT_EQ(m_model.findByHandle(handle), nullptr);
    }
}

TEST_F(ModelTest, BlocksComeInOrderOfTheDiagram)
{
    Block& first = subsystem(m_root, u"First");
    const Block& last = component(m_root, u"Last");
    const Block& inside = component(first, u"Inside");
    const std::vector<Block*> blocks = m_model.blocks();
    EXPECT_EQ((std::vector<const Block*>(blocks.begin(), blocks.end())),
              (std::vector<const Block*>{&first, &inside, &last}));
}

TEST_F(ModelTest, NamesThatWouldNotSurviveAsPathsAreRefused)
{
    Block& block = component(m_root, u"A");
    for (const char16_t* name : {u"", u"a/b", u"a:b", u"/", u":"}) {
        hostError("InvalidName", [&] { component(m_root, name); });
        hostError("InvalidName", [&] { m_model.rename(block, name); });
        hostError("InvalidName", [&] { const Model model(name); });
    }
    EXPECT_EQ(m_model.blockCount(), 1U);
    EXPECT_EQ(block.path(), u"plant/A");
}

TEST_F(ModelTest, RefusedNameIsNamed)
{
    const auto error = hostError("InvalidName", [&] { component(m_root, u"ß/b"); });
    EXPECT_STREQ(error->what(), "The name \"ß/b\" holds a \"/\", which parts the names of a path.");
}

TEST_F(ModelTest, NameIsTakenOncePerSystem)
{
    Block& controller = subsystem(m_root, u"A");
    component(controller, u"A");
    const auto error = hostError("DuplicateName", [&] { component(controller, u"A"); });
    EXPECT_STREQ(error->what(), "The name \"A\" is taken in \"plant/A\".");
    EXPECT_EQ(m_model.blockCount(), 2U);
}

TEST_F(ModelTest, ComponentsHoldNoBlocks)
{
    Block& gain = component(m_root, u"Gain");
    hostError("InvalidSystem", [&] { component(gain, u"A"); });
}

TEST_F(ModelTest, SystemOfAnotherModelTakesNoBlocks)
{
    Model other(u"other");
    hostError("InvalidSystem", [&] { component(other.root(), u"A"); });
}

TEST_F(ModelTest, RenamedSystemTakesItsBlocksAlong)
{
    Block& controller = subsystem(m_root, u"Controller");
    const Block& gain = component(controller, u"Gain");
    const double handle = gain.handle();
    m_model.rename(controller, u"Regler");
    EXPECT_EQ(gain.path(), u"plant/Regler/Gain");
    EXPECT_EQ(m_model.findByPath(u"Regler/Gain"), &gain);
    EXPECT_EQ(m_model.findByPath(u"Controller/Gain"), nullptr);
    EXPECT_EQ(m_model.findByZid("plant:2"), &gain);
    EXPECT_EQ(m_model.findByHandle(handle), &gain);
}

TEST_F(ModelTest, RenamingToTheSameNameIsNoDuplicate)
{
    Block& gain = component(m_root, u"Gain");
    m_model.rename(gain, u"Gain");
    EXPECT_EQ(m_model.findByPath(u"Gain"), &gain);
}

TEST_F(ModelTest, RenamingToATakenNameChangesNothing)
{
    Block& gain = component(m_root, u"Gain");
    component(m_root, u"Limiter");
    hostError("DuplicateName", [&] { m_model.rename(gain, u"Limiter"); });
    EXPECT_EQ(m_model.findByPath(u"Gain"), &gain);
}

TEST_F(ModelTest, FormerNameIsFreeAfterRename)
{
    m_model.rename(component(m_root, u"Gain"), u"Old gain");
    EXPECT_EQ(component(m_root, u"Gain").path(), u"plant/Gain");
}

TEST_F(ModelTest, OutermostSystemIsNotRenamedAsABlock)
{
    hostError("InvalidBlock", [&] { m_model.rename(m_root, u"other"); });
}

TEST_F(ModelTest, MovedBlockKeepsZidAndHandle)
{
    Block& from = subsystem(m_root, u"From");
    Block& to = subsystem(m_root, u"To");
    Block& gain = component(from, u"Gain");
    const double handle = gain.handle();
    m_model.move(gain, to);
    EXPECT_EQ(gain.path(), u"plant/To/Gain");
    EXPECT_EQ(gain.parent(), &to);
    EXPECT_EQ(m_model.findByPath(u"From/Gain"), nullptr);
    EXPECT_EQ(m_model.findByZid("3"), &gain);
    EXPECT_EQ(m_model.findByHandle(handle), &gain);
    EXPECT_EQ(m_model.blockCount(), 3U);
}

TEST_F(ModelTest, BlockMovesToTheModelItself)
{
    Block& gain = component(subsystem(m_root, u"From"), u"Gain");
    m_model.move(gain, m_root);
    EXPECT_EQ(gain.path(), u"plant/Gain");
}

TEST_F(ModelTest, MovingWithinItsSystemChangesNothing)
{
    Block& gain = component(m_root, u"Gain");
    component(m_root, u"Limiter");
    m_model.move(gain, m_root);
    EXPECT_EQ(m_model.blocks().front(), &gain);
}

TEST_F(ModelTest, SystemDoesNotMoveIntoItself)
{
    Block& outer = subsystem(m_root, u"Outer");
    Block& inner = subsystem(outer, u"Inner");
    hostError("InvalidMove", [&] { m_model.move(outer, outer); });
    hostError("InvalidMove", [&] { m_model.move(outer, inner); });
    EXPECT_EQ(inner.path(), u"plant/Outer/Inner");
}

TEST_F(ModelTest, MovingToATakenNameChangesNothing)
{
    Block& to = subsystem(m_root, u"To");
    component(to, u"Gain");
    Block& gain = component(m_root, u"Gain");
    hostError("DuplicateName", [&] { m_model.move(gain, to); });
    EXPECT_EQ(gain.path(), u"plant/Gain");
}

TEST_F(ModelTest, BlocksOfAnotherModelAreNotMovedOrRenamed)
{
    Model other(u"other");
    Block& foreign = other.add(other.root(), u"A", BlockKind::Component);
    hostError("InvalidBlock", [&] { m_model.move(foreign, m_root); });
    hostError("InvalidBlock", [&] { m_model.rename(foreign, u"B"); });
    hostError("InvalidSystem", [&] { m_model.move(component(m_root, u"A"), other.root()); });
}

TEST_F(ModelTest, MovedBlockLeavesItsConnectionsBehind)
{
    Block& to = subsystem(m_root, u"To");
    Block& gain = component(m_root, u"Gain");
    const Block& limiter = component(m_root, u"Limiter");
    m_root.addConnection({{&gain, u"", u"out"}, {&limiter, u"", u"in"}});
    m_root.addConnection({{&limiter, u"", u"out"}, {&m_root, u"", u"out"}});
    m_model.move(gain, to);
    ASSERT_EQ(m_root.connections().size(), 1U);
    EXPECT_EQ(m_root.connections().front().start.element, &limiter);
}

TEST_F(ModelTest, PortsAreKeptByKindInOrder)
{
    Block& gain = component(m_root, u"Gain");
    gain.addPort(PortKind::Output, u"y1");
    gain.addPort(PortKind::Input, u"u");
    gain.addPort(PortKind::Other, u"k");
    gain.addPort(PortKind::Output, u"y2");
    ASSERT_EQ(gain.ports(PortKind::Output).size(), 2U);
    EXPECT_EQ(gain.ports(PortKind::Output)[1].name, u"y2");
    EXPECT_EQ(gain.ports(PortKind::Input).size(), 1U);
    EXPECT_EQ(gain.ports(PortKind::Other).size(), 1U);
}

TEST_F(ModelTest, NamesOutsideTheBasicPlaneAreFoundAgain)
{
    const Block& tank = component(subsystem(m_root, u"灌漑"), u"𠮷田タンク");
    EXPECT_EQ(tank.path(), u"plant/灌漑/𠮷田タンク");
    EXPECT_EQ(m_model.findByPath(u"灌漑/𠮷田タンク"), &tank);
}

TEST_F(ModelTest, ZidOfAModelWithANameOutsideAsciiIsUtf8)
{
    Model greenhouse(u"Gewächshaus");
    const Block& fan = greenhouse.add(greenhouse.root(), u"Fan", BlockKind::Component);
    EXPECT_EQ(fan.zid(), "Gewächshaus:1");
    EXPECT_EQ(greenhouse.findByZid("Gewächshaus:1"), &fan);
}

TEST_F(ModelTest, BlocksTakeTheNumbersThatAFileHasKept)
{
    const Block& a = component(m_root, u"A");
    const Block& b = component(m_root, u"B");
    m_model.setNumbers({7, 3}, 9);
    EXPECT_EQ(m_model.findByZid("plant:7"), &a);
    EXPECT_EQ(m_model.findByNumber(3), &b);
    EXPECT_EQ(m_model.findByNumber(1), nullptr);
    EXPECT_EQ(component(m_root, u"C").number(), 10U);
}

TEST_F(ModelTest, RefusedNumbersChangeNothing)
{
    component(m_root, u"A");
    component(m_root, u"B");
    for (const std::vector<std::uint32_t>& numbers :
         {std::vector<std::uint32_t>{1, 1}, std::vector<std::uint32_t>{0, 1},
          std::vector<std::uint32_t>{1, 6}}) {
        hostError("InvalidNumber", [&] { m_model.setNumbers(numbers, 5); });
    }
    EXPECT_EQ(m_model.findByNumber(2)->path(), u"plant/B");
    EXPECT_EQ(m_model.lastNumber(), 2U);
}

}  // namespace
