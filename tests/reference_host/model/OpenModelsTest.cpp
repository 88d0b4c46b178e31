#include "reference_host/model/OpenModels.hpp"

#include "tests/reference_host/model/DiagramTest.hpp"

using reference_host::Block;
using reference_host::BlockKind;
using reference_host::Model;
using reference_host::OpenModels;

namespace {

class OpenModelsTest : public DiagramTest {
protected:
    static std::shared_ptr<Model> addModel(const std::u16string& name)
    {
        auto model = std::make_shared<Model>(name);
        model->add(model->root(), u"A", BlockKind::Component);
        OpenModels::add(model);
        return model;
    }
};

TEST_F(OpenModelsTest, OpenedModelIsFoundByName)
{
    const auto model = addModel(u"plant");
    EXPECT_EQ(OpenModels::find(u"plant"), model);
    EXPECT_EQ(model->blockCount(), 1U);
    OpenModels::close(u"plant");
}

TEST_F(OpenModelsTest, OneModelOfANameIsOpen)
{
    const auto first = addModel(u"plant");
    const auto error = hostError("ModelAlreadyOpen", [] { addModel(u"plant"); });
    EXPECT_STREQ(error->what(), "A model named \"plant\" is open already.");
    EXPECT_EQ(OpenModels::find(u"plant"), first);
    OpenModels::close(u"plant");
}

TEST_F(OpenModelsTest, ClosedModelIsNotFoundAndStaysUsable)
{
    const auto model = addModel(u"plant");
    const double handle = model->blocks().front()->handle();
    OpenModels::close(u"plant");
    EXPECT_EQ(OpenModels::find(u"plant"), nullptr);
    EXPECT_EQ(OpenModels::findByHandle(handle), nullptr);
    EXPECT_EQ(model->findByHandle(handle)->path(), u"plant/A");
}

TEST_F(OpenModelsTest, ClosingWhatIsNotOpenIsAnError)
{
    const auto error = hostError("ModelNotOpen", [] { OpenModels::close(u"plant"); });
    EXPECT_STREQ(error->what(), "No model named \"plant\" is open.");
}

TEST_F(OpenModelsTest, RenamedModelTakesPathsAndZidsAlong)
{
    const auto model = addModel(u"plant");
    OpenModels::rename(u"plant", u"Gewächshaus");
    EXPECT_EQ(OpenModels::find(u"plant"), nullptr);
    EXPECT_EQ(OpenModels::find(u"Gewächshaus"), model);
    EXPECT_EQ(model->name(), u"Gewächshaus");
    EXPECT_EQ(model->blocks().front()->path(), u"Gewächshaus/A");
    EXPECT_EQ(model->blocks().front()->zid(), "Gewächshaus:1");
    OpenModels::close(u"Gewächshaus");
}

TEST_F(OpenModelsTest, RefusedModelNameChangesNothing)
{
    const auto model = addModel(u"plant");
    addModel(u"other");
    hostError("ModelAlreadyOpen", [] { OpenModels::rename(u"plant", u"other"); });
    hostError("InvalidName", [] { OpenModels::rename(u"plant", u"a/b"); });
    hostError("ModelNotOpen", [] { OpenModels::rename(u"nobody", u"somebody"); });
    EXPECT_EQ(OpenModels::find(u"plant"), model);
    EXPECT_EQ(model->name(), u"plant");
    OpenModels::close(u"plant");
    OpenModels::close(u"other");
}

TEST_F(OpenModelsTest, RenamingToTheSameNameIsNoDuplicate)
{
    addModel(u"plant");
    OpenModels::rename(u"plant", u"plant");
    OpenModels::close(u"plant");
}

TEST_F(OpenModelsTest, ModelsAreListedByName)
{
    addModel(u"b");
    addModel(u"a");
    ASSERT_EQ(OpenModels::all().size(), 2U);
    EXPECT_EQ(OpenModels::all().front()->name(), u"a");
    OpenModels::closeAll();
}

TEST_F(OpenModelsTest, BlocksAreFoundAcrossModels)
{
    addModel(u"a");
    Block* block = addModel(u"b")->blocks().front();
    EXPECT_EQ(OpenModels::findByPath(u"b/A"), block);
    EXPECT_EQ(OpenModels::findByZid("b:1"), block);
    EXPECT_EQ(OpenModels::findByHandle(block->handle()), block);
    EXPECT_EQ(OpenModels::findByPath(u"b"), nullptr);
    EXPECT_EQ(OpenModels::findByPath(u"c/A"), nullptr);
    EXPECT_EQ(OpenModels::findByPath(u""), nullptr);
    EXPECT_EQ(OpenModels::findByZid("1"), nullptr);
    EXPECT_EQ(OpenModels::findByZid("c:1"), nullptr);
    EXPECT_EQ(OpenModels::findByZid(""), nullptr);
    OpenModels::closeAll();
}

}  // namespace
