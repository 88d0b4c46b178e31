#ifndef ZM_TESTS_REFERENCE_HOST_SSP_MODEL_FILE_TEST_HPP
#define ZM_TESTS_REFERENCE_HOST_SSP_MODEL_FILE_TEST_HPP

#include "host/Text.hpp"
#include "reference_host/model/EditHistory.hpp"
#include "reference_host/ssp/Archive.hpp"
#include "reference_host/ssp/ModelFile.hpp"
#include "tests/reference_host/observers/ObserversTest.hpp"

#include <unistd.h>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace reference_host {

inline constexpr const char* toolDataEntry = "extra/com.zelmar.hmi/model.json";
inline constexpr const char* signalsEntry = "extra/com.zelmar.hmi/signals.json";
inline constexpr const char* clientsEntry = "extra/com.zelmar.hmi/clients.json";

/// A folder of its own for each test, and the observed model "plant" to save there.
class ModelFileTest : public ObserversTest {
protected:
    void SetUp() override
    {
        const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
        // In memory where that can be had: thousands of damaged files are written.
        const std::filesystem::path memory = "/dev/shm";
        m_folder = (std::filesystem::exists(memory) ? memory : std::filesystem::temp_directory_path()) /
                   ("zm_model_file_" + std::to_string(::getpid()) + "_" + test->name());
        std::filesystem::create_directory(m_folder);
        m_file = m_folder / "plant.ssp";
        ObserversTest::SetUp();
    }
    void TearDown() override
    {
        std::filesystem::remove_all(m_folder);
        ObserversTest::TearDown();
    }

    static std::string bytesOf(const std::filesystem::path& file)
    {
        std::ifstream in(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }
    std::filesystem::path write(const std::string& name, const std::string& content) const
    {
        std::ofstream(m_folder / name, std::ios::binary) << content;
        return m_folder / name;
    }

    /// A description of the model "plant", with what its System holds.
    static std::string description(const std::string& contents)
    {
        return "<ssd:SystemStructureDescription version='1.0' name='plant'"
               " xmlns:ssd='http://ssp-standard.org/SSP1/SystemStructureDescription'>\n"
               "<ssd:System name='plant'>\n" +
               contents + "</ssd:System></ssd:SystemStructureDescription>\n";
    }

    /// Writes an archive of these entries and gives its file.
    std::filesystem::path pack(const std::vector<ArchiveChange>& entries) const
    {
        return write("packed.ssp", Archive::pack(nullptr, entries));
    }

    /// Saves the model, closes it and opens it again.
    std::shared_ptr<Model> saveAndOpen() const
    {
        saveModel(*m_model, m_file);
        OpenModels::close(m_model->name());
        return openModel(m_file);
    }

    /// Everything that a diagram is, but its handles.
    static std::string describeModel(const Model& model)
    {
        std::ostringstream out;
        out << toUtf8(model.name()) << " last " << model.lastNumber() << "\n";
        describeConnections(out, model.root());
        for (const Block* block : model.blocks()) {
            out << toUtf8(block->path()) << " #" << block->number()
                << (block->kind() == BlockKind::System ? " system" : " component");
            for (const PortKind kind : {PortKind::Output, PortKind::Input, PortKind::Other}) {
                for (const Port& port : block->ports(kind)) {
                    out << " " << static_cast<int>(kind) << ":" << toUtf8(port.name);
                }
            }
            for (const auto& [name, value] : block->parameters()) {
                out << " " << toUtf8(name) << "=" << toUtf8(value);
            }
            describeChart(out, block->chart());
            out << "\n";
            describeConnections(out, *block);
        }
        return out.str();
    }

    std::filesystem::path m_folder;
    std::filesystem::path m_file;

private:
    static void describeChart(std::ostream& out, const Chart* chart)
    {
        if (chart == nullptr) {
            return;
        }
        for (const ChartObject& object : chart->objects()) {
            out << " [" << object.kzid << " in " << object.parent << " " << static_cast<int>(object.kind)
                << " " << toUtf8(object.name) << "]";
        }
    }
    static void describeConnections(std::ostream& out, const Block& system)
    {
        for (const Connection& connection : system.connections()) {
            for (const ConnectionEnd* end : {&connection.start, &connection.end}) {
                out << "  " << toUtf8(end->element != nullptr ? end->element->path() : end->elementName)
                    << "." << toUtf8(end->connector);
            }
            out << "\n";
        }
    }
};

}  // namespace reference_host

#endif
