#ifndef ZM_TESTS_RECORDER_RECORDER_TEST_HPP
#define ZM_TESTS_RECORDER_RECORDER_TEST_HPP

#include "host/Exceptions.hpp"
#include "host/Text.hpp"
#include "recorder/FileRecordingBlock.hpp"
#include "recorder/RecordedTable.hpp"
#include "recorder/VariableRecordingBlock.hpp"
#include "reference_host/model/Model.hpp"
#include "tests/support/HostTest.hpp"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <string>

namespace recorder {

/// A small plant, a folder of the test's own, and a workspace.
class RecorderTest : public reference_host::HostTest {
protected:
    RecorderTest()
    {
        using reference_host::BlockKind;
        using reference_host::PortKind;
        reference_host::Block& klima = m_model.add(m_model.root(), u"Klima", BlockKind::System);
        m_air = &m_model.add(klima, u"Luft", BlockKind::Component);
        m_air->addPort(PortKind::Output, u"Temperatur");
        m_air->addPort(PortKind::Output, u"CO₂");
        m_pump = &m_model.add(m_model.root(), u"ポンプ", BlockKind::Component);
        m_pump->addPort(PortKind::Output, u"流量");
        m_pump->addPort(PortKind::Output, u"A");
        m_pump->addPort(PortKind::Output, u"A");
        std::string pattern = (std::filesystem::temp_directory_path() / "recorder-XXXXXX").string();
        m_folder = mkdtemp(pattern.data());
    }
    ~RecorderTest() override { std::filesystem::remove_all(m_folder); }
    RecorderTest(const RecorderTest&) = delete;
    RecorderTest& operator=(const RecorderTest&) = delete;

    OutputPort temperature() const { return {m_air, 0}; }
    OutputPort carbonDioxide() const { return {m_air, 1}; }

    std::string pathOf(const std::string& name) const { return (m_folder / name).string(); }

    static std::string contentOf(const std::filesystem::path& path)
    {
        std::ifstream in(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }

    std::shared_ptr<FileRecordingBlock> intoFile(const OutputPort& port, const std::string& name,
                                                 const streamout::FilePropertiesMap& properties = {}) const
    {
        return std::make_shared<FileRecordingBlock>(port, toUtf16(pathOf(name).c_str()), "", properties);
    }

    std::shared_ptr<VariableRecordingBlock> intoVariable(const OutputPort& port, const std::u16string& name,
                                                         const std::string& decimation = "",
                                                         const std::string& maxPoints = "",
                                                         const std::string& format = "array")
    {
        return std::make_shared<VariableRecordingBlock>(
            port, VariableRecordingBlock::makeContext(port, name, format, decimation, maxPoints),
            [this](const std::u16string& variable, reference_host::OwnedValue value) {
                m_workspace[variable] = std::move(value);
            });
    }

    reference_host::Model m_model{u"Gewächshaus"};
    reference_host::Block* m_air = nullptr;
    reference_host::Block* m_pump = nullptr;
    std::filesystem::path m_folder;
    std::map<std::u16string, reference_host::OwnedValue> m_workspace;
};

/// The text of the recorder's host error with that key; a test failure when the work throws none.
inline std::string errorText(const char* key, const std::function<void()>& work)
{
    try {
        work();
    } catch (const zmsvException& error) {
        EXPECT_EQ(error.id().catalog(), "recorder:errors");
        EXPECT_EQ(error.id().key(), key);
        return error.what();
    }
    ADD_FAILURE() << "expected the host error " << key;
    return "";
}

}  // namespace recorder

#endif
