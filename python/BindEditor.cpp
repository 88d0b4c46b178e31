#include "editor/ObserversParameter.hpp"
#include "editor/SignalEditor.hpp"
#include "python/Bindings.hpp"
#include "python/Conversion.hpp"
#include "python/DiagramReferences.hpp"
#include "python/Edge.hpp"
#include "python/PythonText.hpp"
#include "reference_host/drawing/DiagramDrawing.hpp"
#include "reference_host/model/EditHistory.hpp"
#include "reference_host/model/EditorEvents.hpp"
#include "reference_host/model/OpenModels.hpp"
#include "reference_host/observers/ObserverFunctions.hpp"

#include <pybind11/stl.h>
#include <pybind11/stl/filesystem.h>

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <utility>

namespace py = pybind11;

namespace zmhost {

using reference_host::BlockKind;
using reference_host::EditHistory;
using reference_host::EditorEvent;
using reference_host::EditorEvents;
using reference_host::Model;
using reference_host::OpenModels;
using reference_host::PortKind;

using ModelPtr = std::shared_ptr<Model>;

namespace {

/// Adds a method to a class that is bound already, or puts it in another one's place.
template <class Function, class... Extra>
void addMethod(const py::object& type, const char* name, Function&& function, const Extra&... extra)
{
    type.attr(name) =
        py::cpp_function(std::forward<Function>(function), py::name(name), py::is_method(type), extra...);
}

template <class Get, class Set>
void addProperty(const py::object& type, const char* name, Get get, Set set, const char* doc)
{
    type.attr(name) = py::module_::import("builtins")
                          .attr("property")(py::cpp_function(get, py::is_method(type)),
                                            py::cpp_function(set, py::is_method(type)), py::none(), doc);
}

EditHistory& historyOf(const BlockReference& block)
{
    return block.model->history();
}

BlockKind kindNamed(const std::string& kind)
{
    if (kind != "component" && kind != "system") {
        throw py::value_error("a block is a \"component\" or a \"system\", not " + kind);
    }
    return kind == "system" ? BlockKind::System : BlockKind::Component;
}

void renameModel(const ModelPtr& model, const Text& name)
{
    atEdge([&] {
        if (OpenModels::find(model->name()) == model) {
            model->history().renameModel(name.value);
        } else {
            OpenModels::rename(model->name(), name.value);  // says that it is not open
        }
    });
}

void extendModel(const py::object& model)
{
    addMethod(model, "rename", renameModel, py::arg("name"),
              "Gives an open model another name; full paths, ZIDs and observers follow.");
    addMethod(
        model, "undo", [](const ModelPtr& self) { return atEdge([&] { return self->history().undo(); }); },
        "Takes back the last edit; False when there is none.");
    addMethod(
        model, "redo", [](const ModelPtr& self) { return atEdge([&] { return self->history().redo(); }); },
        "Does once more what was taken back; False when there is nothing.");
    addMethod(
        model, "draw",
        [](const ModelPtr& self, const std::filesystem::path& file) {
            atEdge([&] { reference_host::drawDiagram(*self, file); });
        },
        py::arg("path"), "Draws the diagram into an .svg, .png or .pdf file, with badges.");
    addProperty(
        model, "observers",
        [](const ModelPtr& self) { return atEdge([&] { return toPython(self->observers()); }); },
        [](const ModelPtr& self, const py::object& value) {
            const Argument observers(value);
            atEdge([&] { editor::storeObservers(*self, observers.get()); });
        },
        "The pair of instrumented signals and streaming clients, or None.");
}

void extendBlock(const py::object& block)
{
    addMethod(
        block, "add",
        [](const BlockReference& self, const Text& name, const std::string& kind) {
            return atEdge([&] {
                return BlockReference{self.model,
                                      &historyOf(self).addBlock(*self.block, name.value, kindNamed(kind))};
            });
        },
        py::arg("name"), py::arg("kind") = "component", "Adds a block to a system.");
    addMethod(
        block, "delete",
        [](const BlockReference& self) { atEdge([&] { historyOf(self).deleteBlock(*self.block); }); },
        "Deletes the block with all that is in it.");
    addMethod(
        block, "rename",
        [](const BlockReference& self, const Text& name) {
            atEdge([&] { historyOf(self).renameBlock(*self.block, name.value); });
        },
        py::arg("name"));
    addMethod(
        block, "move_to",
        [](const BlockReference& self, const BlockReference& system) {
            atEdge([&] { historyOf(self).moveBlock(*self.block, *system.block); });
        },
        py::arg("system"), "Puts the block at the end of another system of its model.");
    addMethod(
        block, "add_output",
        [](const BlockReference& self, const Text& name, std::size_t number) {
            const std::size_t last = self->ports(PortKind::Output).size() + 1;
            atEdge([&] { historyOf(self).addOutput(*self.block, name.value, number == 0 ? last : number); });
        },
        py::arg("name"), py::arg("number") = 0,
        "Adds an output port with that number; 0: behind the others.");
    addMethod(
        block, "delete_output",
        [](const BlockReference& self, std::size_t number) {
            atEdge([&] { historyOf(self).deleteOutput(*self.block, number); });
        },
        py::arg("number"), "Deletes an output port and the connections at it.");
    addMethod(
        block, "reorder_outputs",
        [](const BlockReference& self, const std::vector<int>& newNumbers) {
            atEdge([&] { historyOf(self).reorderOutputs(*self.block, newNumbers); });
        },
        py::arg("new_numbers"), "Gives port k the number that stands at place k of the list.");
    addMethod(
        block, "set_parameter",
        [](const BlockReference& self, const Text& name, const Text& value) {
            atEdge([&] { historyOf(self).setParameter(*self.block, name.value, value.value); });
        },
        py::arg("name"), py::arg("value"));
    addMethod(
        block, "parameters",
        [](const BlockReference& self) {
            py::dict all;
            for (const auto& [name, value] : self->parameters()) {
                all[textToPython(name)] = textToPython(value);
            }
            return all;
        },
        "What the block is set to, by name.");
}

/// Closed explicitly or with its last reference, because it holds host values.
class ScriptEditor {
public:
    explicit ScriptEditor(ModelPtr model) : m_editor(std::make_unique<editor::SignalEditor>(std::move(model)))
    {
    }
    editor::SignalEditor* operator->() const
    {
        if (m_editor == nullptr) {
            throw py::value_error("the editor is closed");
        }
        return m_editor.get();
    }
    void close() { m_editor.reset(); }

private:
    std::unique_ptr<editor::SignalEditor> m_editor;
};

std::vector<Text> textsOf(const std::vector<std::u16string>& texts)
{
    std::vector<Text> all;
    for (const std::u16string& text : texts) {
        all.push_back(Text{text});
    }
    return all;
}

void bindSignalEditor(py::module_& module)
{
    using Source = editor::SignalEditor::Source;
    py::class_<Source>(module, "Source", "One observed port, as the host function getObservedPorts gives it.")
        .def_readonly("name", &Source::name, "UUID of the signal.")
        .def_readonly("handle", &Source::handle, "Run-time handle of the block; 0.0 when it is gone.")
        .def_readonly("number1", &Source::number1, "Output port; 0 for a chart object.")
        .def_readonly("number2", &Source::number2, "Logical port.")
        .def_readonly("number3", &Source::number3, "Place of the signal in the collection.")
        .def_readonly("flag1", &Source::flag1, "Whether the port or chart object exists.")
        .def_readonly("flag2", &Source::flag2, "Whether a streaming client observes the signal.")
        .def_readonly("flag3", &Source::flag3, "Whether it is a chart object.")
        .def_property_readonly(
            "text1", [](const Source& self) { return Text{self.text1}; }, "Path of the block.")
        .def_property_readonly(
            "text2", [](const Source& self) { return Text{self.text2}; }, "What to call it.");

    using Observer = editor::SignalEditor::Observer;
    py::class_<Observer>(module, "Observer", "One streaming client with the signal that it observes.")
        .def_readonly("uuid", &Observer::uuid, "UUID of the client.")
        .def_property_readonly(
            "path", [](const Observer& self) { return textsOf(self.path); },
            "Paths of the client and of the observed block as the diagram has them now.")
        .def_readonly("port", &Observer::port, "Observed output port; 0 for none.")
        .def_readonly("decimation", &Observer::decimation)
        .def_readonly("max_points", &Observer::maxPoints);

    py::class_<ScriptEditor>(module, "SignalEditor")
        .def(py::init<ModelPtr>(), py::arg("model"))
        .def("close", &ScriptEditor::close, "Ends the editor, which follows no more edits.")
        .def(
            "rebind",
            [](const ScriptEditor& self, bool removeUnbound) {
                atEdge([&] { self->rebind(removeUnbound); });
            },
            py::arg("remove_unbound") = false, "Binds the signals to the diagram as it is now.")
        .def(
            "redraw", [](const ScriptEditor& self) { atEdge([&] { self->redraw(); }); },
            "Draws the ports anew and caches those that are observed.")
        .def(
            "is_observed",
            [](const ScriptEditor& self, const PortReference& port) {
                return port.kind == PortKind::Output &&
                       atEdge([&] { return self->isDrawnPortObserved(*port.block.block, port.index + 1); });
            },
            py::arg("port"), "Whether the port was observed at the last redraw and nothing has changed.")
        .def(
            "observed_ports",
            [](const ScriptEditor& self, const std::string& system, const std::string& domainType,
               bool everyDepth, bool goneToo) {
                return atEdge([&] { return self->observedPorts(system, domainType, everyDepth, goneToo); });
            },
            py::arg("system") = "", py::arg("domain_type") = "", py::arg("every_depth") = true,
            py::arg("gone_too") = false, "What is observed in the open model.")
        .def(
            "badged_blocks",
            [](const ScriptEditor& self) {
                std::vector<BlockReference> blocks;
                for (const double handle : atEdge([&] { return self->badgedBlocks(); })) {
                    if (const auto block = reference(self->model(), self->model()->findByHandle(handle))) {
                        blocks.push_back(*block);
                    }
                }
                return blocks;
            },
            "The blocks that carry a badge.")
        .def(
            "observers", [](const ScriptEditor& self) { return atEdge([&] { return self->observers(); }); },
            "The model's streaming clients, aligned with the diagram as it is now.");
}

}  // namespace

void bindEditor(py::module_& module)
{
    bindSignalEditor(module);
    extendModel(module.attr("Model"));
    extendBlock(module.attr("Block"));
    module.def(
        "take_editor_events",
        [] {
            std::vector<std::pair<Text, Text>> events;
            for (EditorEvent& event : EditorEvents::take()) {
                events.emplace_back(Text{std::move(event.name)}, Text{std::move(event.blockPath)});
            }
            return events;
        },
        "What the library has told the host about blocks, (event, path); forgotten thereby.");
    reference_host::installObserverFunctions();
    reference_host::installEditorFunctions();
}

}  // namespace zmhost
