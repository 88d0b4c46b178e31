#include "python/Bindings.hpp"
#include "python/Conversion.hpp"
#include "python/DiagramReferences.hpp"
#include "python/Edge.hpp"
#include "python/PythonText.hpp"
#include "recorder/FileRecordingBlock.hpp"
#include "recorder/Replay.hpp"
#include "recorder/VariableRecordingBlock.hpp"

#include <pybind11/functional.h>
#include <pybind11/stl.h>
#include <pybind11/stl/filesystem.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace py = pybind11;

namespace zmhost {

using recorder::FileRecordingBlock;
using recorder::RecordedTable;
using recorder::RecordingBlock;
using recorder::VariableRecordingBlock;
using reference_host::Model;
using reference_host::PortKind;

namespace {

/// Lets Ctrl-C through. The recorder calls this from loops of its own, with nothing of the library's
/// underneath, and stops its blocks on the way out.
void checkSignals()
{
    if (PyErr_CheckSignals() != 0) {
        throw py::error_already_set();
    }
}

recorder::OutputPort outputPort(const PortReference& port)
{
    if (port.kind != PortKind::Output) {
        throw py::value_error("signals come out of output ports; this is an input");
    }
    return {port.block.block, port.index};
}

/// Settings are texts in the host; scripts may give numbers.
std::string settingText(const py::object& setting)
{
    return py::str(setting);
}

streamout::FilePropertiesMap fileProperties(const std::map<std::string, py::object>& properties)
{
    streamout::FilePropertiesMap result;
    for (const auto& [name, value] : properties) {
        if (PyUnicode_Check(value.ptr())) {
            result.emplace(name, textFromPython(value));
        } else {
            const double number = PyFloat_AsDouble(value.ptr());
            if (PyErr_Occurred() != nullptr) {
                throw py::error_already_set();
            }
            result.emplace(name, number);
        }
    }
    return result;
}

std::shared_ptr<FileRecordingBlock> makeFileRecording(const PortReference& port, const Text& path,
                                                      const py::object& decimation,
                                                      const py::object& maxPoints, const std::string& domain,
                                                      const std::map<std::string, py::object>& properties)
{
    return atEdge([&] {
        auto block = std::make_shared<FileRecordingBlock>(outputPort(port), path.value, domain,
                                                          fileProperties(properties));
        block->context().setDecimation(settingText(decimation));
        block->context().setMaxPoints(settingText(maxPoints));
        return block;
    });
}

/// Script variables are kept in `zmhost.workspace`.
void setVariable(const std::u16string& name, reference_host::OwnedValue value)
{
    const py::object workspace = py::module_::import("zmhost._recording").attr("workspace");
    workspace[textToPython(name)] = toPython(std::move(value));
}

std::shared_ptr<VariableRecordingBlock> makeVariableRecording(const PortReference& port, const Text& name,
                                                              const std::string& format,
                                                              const py::object& decimation,
                                                              const py::object& maxPoints)
{
    return atEdge([&] {
        return std::make_shared<VariableRecordingBlock>(
            outputPort(port),
            VariableRecordingBlock::makeContext(outputPort(port), name.value, format, settingText(decimation),
                                                settingText(maxPoints)),
            setVariable);
    });
}

RecordedTable makeTable(std::vector<double> times, const std::vector<std::string>& headers,
                        std::vector<std::vector<double>> columns)
{
    std::vector<RecordedTable::Column> result;
    for (std::size_t i = 0; i < headers.size(); ++i) {
        result.push_back({headers[i], std::move(columns.at(i))});
    }
    return atEdge([&] { return RecordedTable("the table", std::move(times), std::move(result)); });
}

void replay(const std::shared_ptr<Model>& model, const RecordedTable& table,
            const recorder::RecordingBlocks& blocks, const std::optional<py::function>& step)
{
    if (std::find(blocks.begin(), blocks.end(), nullptr) != blocks.end()) {
        throw py::type_error("None is no recording");
    }
    atEdge([&] {
        recorder::replay(*model, table, blocks, [&](double time) {
            checkSignals();
            if (step) {
                (*step)(time);
            }
        });
    });
}

std::vector<std::shared_ptr<RecordingBlock>> activeRecordings()
{
    std::vector<std::shared_ptr<RecordingBlock>> recordings;
    for (const auto& block : recorder::activeBlocks().getRegisteredBlocks()) {
        if (auto recording = std::dynamic_pointer_cast<RecordingBlock>(block)) {
            recordings.push_back(std::move(recording));
        }
    }
    std::sort(recordings.begin(), recordings.end(),
              [](const auto& left, const auto& right) { return left->getBlockId() < right->getBlockId(); });
    return recordings;
}

void bindRecording(py::module_& module)
{
    py::class_<RecordingBlock, std::shared_ptr<RecordingBlock>>(module, "Recording",
                                                                "A block that records one port.")
        .def_property_readonly("block_id", &RecordingBlock::getBlockId)
        .def_property_readonly("target", &RecordingBlock::target, "Where it records to, in words.")
        .def_property_readonly(
            "port_name", [](const RecordingBlock& self) { return recorder::portName(self.port()); },
            "The port as tables name it: block path, ':' and the port's name.")
        .def("__repr__", [](const RecordingBlock& self) {
            return py::str("<recording of {!r} into {}>")
                .format(recorder::portName(self.port()), self.target());
        });
}

void bindFileRecording(py::module_& module)
{
    py::class_<FileRecordingBlock, RecordingBlock, std::shared_ptr<FileRecordingBlock>>(
        module, "FileRecording", "Records a port into a column of a CSV file.")
        .def(py::init(&makeFileRecording), py::keep_alive<1, 2>(), py::arg("port"), py::arg("path"),
             py::arg("decimation"), py::arg("max_points"), py::arg("domain"), py::arg("properties"))
        .def_property_readonly(
            "path", [](FileRecordingBlock& self) { return Text{self.context().getFullFilePath()}; })
        .def_property_readonly("file_name",
                               [](FileRecordingBlock& self) { return Text{self.context().getFileName()}; })
        .def_property_readonly("source_id",
                               [](FileRecordingBlock& self) { return self.context().getSourceID(); })
        .def_property_readonly("domain",
                               [](FileRecordingBlock& self) { return self.context().getLoggingDomain(); })
        .def_property(
            "decimation", [](FileRecordingBlock& self) { return self.context().getDecimation(); },
            [](FileRecordingBlock& self, const py::object& text) {
                self.context().setDecimation(settingText(text));
            })
        .def_property(
            "max_points", [](FileRecordingBlock& self) { return self.context().getMaxPoints(); },
            [](FileRecordingBlock& self, const py::object& text) {
                self.context().setMaxPoints(settingText(text));
            });
}

void bindVariableRecording(py::module_& module)
{
    using Block = VariableRecordingBlock;
    py::class_<Block, RecordingBlock, std::shared_ptr<Block>>(module, "VariableRecording",
                                                              "Records a port into a script variable.")
        .def(py::init(&makeVariableRecording), py::keep_alive<1, 2>(), py::arg("port"), py::arg("name"),
             py::arg("format"), py::arg("decimation"), py::arg("max_points"))
        .def_property_readonly("name",
                               [](const Block& self) { return Text{self.context().getVariableName()}; })
        .def_property_readonly("format", [](const Block& self) { return self.context().getFormat(); })
        .def_property_readonly("source_id", [](const Block& self) { return self.context().getSourceID(); })
        .def_property_readonly("decimation", [](const Block& self) { return self.context().getDecimation(); })
        .def_property_readonly("max_points", [](const Block& self) { return self.context().getMaxPoints(); })
        .def_property_readonly(
            "value", [](const Block& self) { return toPython(self.value()); },
            "What was recorded so far in the run that is under way, in the shape of the variable.");
}

void bindTable(py::module_& module)
{
    py::class_<RecordedTable>(module, "RecordedTable", "What a simulation gave, row by row.")
        .def(py::init(&makeTable), py::arg("times"), py::arg("headers"), py::arg("columns"))
        .def_static(
            "read",
            [](const std::filesystem::path& file) {
                return atEdge([&] { return RecordedTable::read(file, checkSignals); });
            },
            py::arg("path"))
        .def_property_readonly("times", &RecordedTable::times)
        .def_property_readonly(
            "columns",
            [](const RecordedTable& self) {
                py::dict columns;
                for (const RecordedTable::Column& column : self.columns()) {
                    columns[py::str(column.header)] = column.values;
                }
                return columns;
            },
            "The values by the names of their ports.")
        .def("__len__", [](const RecordedTable& self) { return self.times().size(); })
        .def("__repr__", [](const RecordedTable& self) {
            return py::str("<recorded table {!r}: {} rows, {} ports>")
                .format(self.source(), self.times().size(), self.columns().size());
        });
}

}  // namespace

void bindRecorder(py::module_& module)
{
    bindRecording(module);
    bindFileRecording(module);
    bindVariableRecording(module);
    bindTable(module);
    module.def("replay", replay, py::arg("model").none(false), py::arg("table"), py::arg("recordings"),
               py::arg("step"));
    module.def(
        "recorded_port_name", [](const PortReference& port) { return recorder::portName(outputPort(port)); },
        py::arg("port"), "The port as tables name it.");
    module.def("active_recordings", activeRecordings, "The recordings of the replays that run now.");
}

}  // namespace zmhost
