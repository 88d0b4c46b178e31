#include "reference_host/observers/AlignedPaths.hpp"
#include "reference_host/observers/ObserverFunctions.hpp"

#include "reference_host/calls/HostFunctions.hpp"
#include "reference_host/classes/ClassSystem.hpp"
#include "reference_host/classes/ObjectAccess.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"
#include "tests/reference_host/model/DiagramTest.hpp"

using reference_host::alignedBlockPath;
using reference_host::Block;
using reference_host::BlockKind;
using reference_host::ClassSystem;
using reference_host::HostFunctions;
using reference_host::Model;
using reference_host::ObjectAccess;
using reference_host::OpenModels;
using reference_host::OwnedValue;

namespace {

class AlignedBlockPathTest : public DiagramTest {
protected:
    void SetUp() override
    {
        reference_host::installDiagramFunctions();
        OpenModels::add(m_model);
    }
    void TearDown() override
    {
        OpenModels::closeAll();
        DiagramTest::TearDown();
    }

    std::shared_ptr<Model> m_model = std::make_shared<Model>(u"plant");
    Block& m_controller = m_model->add(m_model->root(), u"Controller", BlockKind::System);
    Block& m_gain = m_model->add(m_controller, u"Gain", BlockKind::Component);
};

TEST_F(AlignedBlockPathTest, FullZidLeadsToTheBlock)
{
    EXPECT_EQ(alignedBlockPath("plant:2", u"plant/Nowhere"), u"plant/Controller/Gain");
    EXPECT_EQ(alignedBlockPath("plant:2", u""), u"plant/Controller/Gain");
}

TEST_F(AlignedBlockPathTest, RelativeZidLeadsToTheBlockOfThePathsModel)
{
    EXPECT_EQ(alignedBlockPath("2", u"plant/Nowhere"), u"plant/Controller/Gain");
    hostError("UnknownBlock", [] { alignedBlockPath("2", u"other/Nowhere"); });
}

TEST_F(AlignedBlockPathTest, PathLeadsToTheBlockWithoutAZid)
{
    EXPECT_EQ(alignedBlockPath("", u"plant/Controller/Gain"), u"plant/Controller/Gain");
}

TEST_F(AlignedBlockPathTest, PathLeadsToTheBlockWhereTheZidLeadsNowhere)
{
    for (const char* zid : {"plant:99", "other:2", "99", "plant:", "x"}) {
        EXPECT_EQ(alignedBlockPath(zid, u"plant/Controller/Gain"), u"plant/Controller/Gain");
    }
}

TEST_F(AlignedBlockPathTest, ZidComesBeforeThePath)
{
    EXPECT_EQ(alignedBlockPath("plant:1", u"plant/Controller/Gain"), u"plant/Controller");
}

TEST_F(AlignedBlockPathTest, RenamedBlockIsFollowed)
{
    m_model->rename(m_gain, u"Verstärkung");
    EXPECT_EQ(alignedBlockPath("plant:2", u"plant/Controller/Gain"), u"plant/Controller/Verstärkung");
}

TEST_F(AlignedBlockPathTest, RenamedSystemIsFollowed)
{
    m_model->rename(m_controller, u"灌漑");
    EXPECT_EQ(alignedBlockPath("plant:2", u"plant/Controller/Gain"), u"plant/灌漑/Gain");
}

TEST_F(AlignedBlockPathTest, MovedBlockIsFollowed)
{
    m_model->move(m_gain, m_model->root());
    EXPECT_EQ(alignedBlockPath("plant:2", u"plant/Controller/Gain"), u"plant/Gain");
}

TEST_F(AlignedBlockPathTest, MovedBlockIsFollowedEvenWhenAnotherTookItsPlace)
{
    m_model->move(m_gain, m_model->root());
    m_model->add(m_controller, u"Gain", BlockKind::Component);
    EXPECT_EQ(alignedBlockPath("plant:2", u"plant/Controller/Gain"), u"plant/Gain");
}

TEST_F(AlignedBlockPathTest, RenamedModelIsFollowedUnderItsNewName)
{
    OpenModels::rename(u"plant", u"works");
    EXPECT_EQ(alignedBlockPath("works:2", u"works/Controller/Gain"), u"works/Controller/Gain");
    hostError("UnknownBlock", [] { alignedBlockPath("plant:2", u"plant/Controller/Gain"); });
}

TEST_F(AlignedBlockPathTest, ChartIsFoundByTheZidOfItsBlock)
{
    m_gain.addChart(u"Logic");
    EXPECT_EQ(alignedBlockPath(m_gain.zid(), u""), u"plant/Controller/Gain");
}

TEST_F(AlignedBlockPathTest, UnknownBlockIsNamed)
{
    const auto error = hostError("UnknownBlock", [] { alignedBlockPath("plant:99", u"plant/Nowhere"); });
    EXPECT_STREQ(error->what(), "No open model has the block \"plant/Nowhere\" (ZID \"plant:99\").");
}

TEST_F(AlignedBlockPathTest, ModelItselfIsNoBlock)
{
    hostError("UnknownBlock", [] { alignedBlockPath("", u"plant"); });
}

/// The same through the table of host functions, with an object of the host's class.
class GetAlignedBlockPathTest : public AlignedBlockPathTest {
protected:
    void SetUp() override
    {
        AlignedBlockPathTest::SetUp();
        ClassSystem::createContributedNamespaces();
    }
    void TearDown() override
    {
        ClassSystem::reset();
        AlignedBlockPathTest::TearDown();
    }

    static OwnedValue makeSignal(std::u16string_view zid, std::u16string_view path)
    {
        OwnedValue signal = ObjectAccess::construct("Zelmar.HMI.SignalSpecification");
        ObjectAccess::setProperty(signal.get(), "ZID_", reference_host::makeText(zid).get());
        ObjectAccess::setProperty(signal.get(), "BlockPath_", reference_host::makeText(path).get());
        return signal;
    }

    static std::u16string call(const std::vector<const nvArray*>& inputs)
    {
        return reference_host::text(HostFunctions::call("getAlignedBlockPath", inputs, 1).front().get());
    }
};

TEST_F(GetAlignedBlockPathTest, SignalIsFollowed)
{
    m_model->rename(m_gain, u"Verstärkung");
    const OwnedValue signal = makeSignal(u"plant:2", u"plant/Controller/Gain");
    EXPECT_EQ(call({signal.get()}), u"plant/Controller/Verstärkung");
}

TEST_F(GetAlignedBlockPathTest, SignalOnAnUnknownBlockIsAnError)
{
    const OwnedValue signal = makeSignal(u"", u"plant/Nowhere");
    hostError("UnknownBlock", [&] { call({signal.get()}); });
}

TEST_F(GetAlignedBlockPathTest, AnythingButOneSignalIsAnError)
{
    const OwnedValue signal = makeSignal(u"plant:2", u"");
    const OwnedValue number = reference_host::makeDouble(1.0);
    for (const std::vector<const nvArray*>& inputs :
         std::vector<std::vector<const nvArray*>>{{}, {number.get()}, {signal.get(), signal.get()}}) {
        hostError("InvalidSignal", [&] { call(inputs); });
    }
}

}  // namespace
