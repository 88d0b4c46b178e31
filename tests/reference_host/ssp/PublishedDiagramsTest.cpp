#include "reference_host/ssp/ModelFile.hpp"
#include "tests/reference_host/model/DiagramTest.hpp"

#include <filesystem>

using reference_host::Block;
using reference_host::Model;
using reference_host::OpenModels;
using reference_host::PortKind;

namespace {

struct Diagram {
    const char* file;
    const char16_t* model;
    std::size_t blocks;
    std::size_t outputs;
    std::size_t connectors;
    std::size_t connections;
};

std::ostream& operator<<(std::ostream& out, const Diagram& diagram)
{
    return out << diagram.file;
}

class PublishedDiagramsTest : public DiagramTest, public testing::WithParamInterface<Diagram> {
protected:
    static std::shared_ptr<Model> open()
    {
        return reference_host::openModel(std::filesystem::path(ZM_PUBLISHED_DIAGRAMS) / GetParam().file);
    }

    void SetUp() override
    {
        if (!std::filesystem::is_directory(ZM_PUBLISHED_DIAGRAMS)) {
            GTEST_SKIP() << "the published diagrams are not here: " << ZM_PUBLISHED_DIAGRAMS;
        }
    }
};

TEST_P(PublishedDiagramsTest, OpensWithEverythingInIt)
{
    const auto model = open();
    std::size_t outputs = 0;
    std::size_t connectors = 0;
    for (const Block* block : model->blocks()) {
        outputs += block->ports(PortKind::Output).size();
        connectors += block->ports(PortKind::Output).size() + block->ports(PortKind::Input).size() +
                      block->ports(PortKind::Other).size();
    }
    EXPECT_EQ(model->name(), GetParam().model);
    EXPECT_EQ(model->blockCount(), GetParam().blocks);
    EXPECT_EQ(outputs, GetParam().outputs);
    EXPECT_EQ(connectors, GetParam().connectors);
    EXPECT_EQ(model->root().connections().size(), GetParam().connections);
    OpenModels::close(model->name());
}

TEST_P(PublishedDiagramsTest, EveryBlockIsFoundByPathZidAndHandle)
{
    const auto model = open();
    for (Block* block : model->blocks()) {
        EXPECT_EQ(OpenModels::findByPath(block->path()), block);
        EXPECT_EQ(OpenModels::findByZid(block->zid()), block);
        EXPECT_EQ(OpenModels::findByHandle(block->handle()), block);
    }
    OpenModels::close(model->name());
}

INSTANTIATE_TEST_SUITE_P(Published, PublishedDiagramsTest,
                         testing::Values(Diagram{"crane-demo.ssd", u"cse-instance", 2, 9, 18, 9},
                                         Diagram{"delay-system.ssd", u"ssp_explicit_fmi2", 10, 12, 83, 9},
                                         Diagram{"dp-ship.ssd", u"cse-instance", 5, 26, 58, 26},
                                         Diagram{"house.ssd", u"cse-instance", 7, 8, 21, 13},
                                         Diagram{"linear-transformation.ssd", u"test-linear-transformation",
                                                 2, 1, 3, 1},
                                         Diagram{"quarter-truck.ssd", u"cse-instance", 3, 4, 8, 4}),
                         [](const testing::TestParamInfo<Diagram>& instance) {
                             std::string name = std::filesystem::path(instance.param.file).stem().string();
                             std::erase(name, '-');
                             return name;
                         });

}  // namespace
