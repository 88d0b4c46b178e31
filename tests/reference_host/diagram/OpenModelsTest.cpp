#include "reference_host/diagram/OpenModels.hpp"

#include "tests/reference_host/diagram/DiagramTest.hpp"

#include <unistd.h>
#include <filesystem>
#include <fstream>

using reference_host::Block;
using reference_host::BlockKind;
using reference_host::Model;
using reference_host::OpenModels;
using reference_host::Warning;
using reference_host::Warnings;

namespace {

class OpenModelsTest : public DiagramTest {
protected:
    void SetUp() override
    {
        m_folder = std::filesystem::temp_directory_path() / ("zm_open_models_" + std::to_string(::getpid()));
        std::filesystem::create_directory(m_folder);
    }
    void TearDown() override
    {
        std::filesystem::remove_all(m_folder);
        DiagramTest::TearDown();
    }

    std::filesystem::path write(const std::string& name, const std::string& content) const
    {
        std::ofstream(m_folder / name, std::ios::binary) << content;
        return m_folder / name;
    }

    static std::shared_ptr<Model> addModel(const std::u16string& name)
    {
        auto model = std::make_shared<Model>(name);
        model->add(model->root(), u"A", BlockKind::Component);
        OpenModels::add(model);
        return model;
    }

    std::filesystem::path m_folder;
};

TEST_F(OpenModelsTest, OpenedModelIsFoundByName)
{
    const auto model = OpenModels::open(write("a.ssd", elements("<ssd:Component name='A'/>")));
    EXPECT_EQ(OpenModels::find(u"plant"), model);
    EXPECT_EQ(model->blockCount(), 1U);
    OpenModels::close(u"plant");
}

TEST_F(OpenModelsTest, FileWithANameOutsideAsciiIsOpened)
{
    OpenModels::open(write("Gewächshaus 𠮷.ssd", system("")));
    OpenModels::close(u"plant");
}

TEST_F(OpenModelsTest, MissingFileIsUnreadable)
{
    const std::filesystem::path file = m_folder / "missing.ssd";
    const auto error = hostError("UnreadableFile", [&] { OpenModels::open(file); });
    EXPECT_EQ(error->what(), file.string() + ": No such file or directory");
}

TEST_F(OpenModelsTest, FolderIsUnreadable)
{
    const auto error = hostError("UnreadableFile", [&] { OpenModels::open(m_folder); });
    EXPECT_EQ(error->what(), m_folder.string() + ": Is a directory");
}

TEST_F(OpenModelsTest, RefusedFileOpensNothing)
{
    const std::filesystem::path file = write("bad.ssd", system("<"));
    const auto error = hostError("InvalidDiagram", [&] { OpenModels::open(file); });
    EXPECT_EQ(std::get<std::string>(error->id().arguments().front()), file.string());
    EXPECT_TRUE(OpenModels::all().empty());
}

TEST_F(OpenModelsTest, OneModelOfANameIsOpen)
{
    const std::filesystem::path file = write("a.ssd", system(""));
    const auto first = OpenModels::open(file);
    const auto error = hostError("ModelAlreadyOpen", [&] { OpenModels::open(file); });
    EXPECT_STREQ(error->what(), "A model named \"plant\" is open already.");
    EXPECT_EQ(OpenModels::find(u"plant"), first);
    OpenModels::close(u"plant");
}

TEST_F(OpenModelsTest, DanglingConnectionsAreHostWarnings)
{
    const std::filesystem::path file = write(
        "a.ssd",
        system("<ssd:Connections><ssd:Connection startElement='No' endElement='No'/></ssd:Connections>"));
    OpenModels::open(file);
    const std::vector<Warning> warnings = Warnings::take();
    ASSERT_EQ(warnings.size(), 2U);
    EXPECT_EQ(warnings[0].id.catalog(), "reference_host:diagram");
    EXPECT_EQ(warnings[0].id.key(), "DanglingConnection");
    EXPECT_EQ(warnings[0].text,
              file.string() + ":3: A connection ends at \"No\", which \"plant\" does not hold.");
    OpenModels::close(u"plant");
}

TEST_F(OpenModelsTest, ModelThatIsNotOpenedWarnsOfNothing)
{
    addModel(u"plant");
    const std::filesystem::path file = write(
        "a.ssd",
        system("<ssd:Connections><ssd:Connection startElement='No' endElement='No'/></ssd:Connections>"));
    hostError("ModelAlreadyOpen", [&] { OpenModels::open(file); });
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
