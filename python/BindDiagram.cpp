#include "python/Bindings.hpp"
#include "python/DiagramReferences.hpp"
#include "python/Edge.hpp"
#include "python/PythonText.hpp"
#include "reference_host/model/OpenModels.hpp"
#include "simulation/PortNames.hpp"

#include <pybind11/stl.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace py = pybind11;

namespace zmhost {

using reference_host::Block;
using reference_host::BlockKind;
using reference_host::ChartObject;
using reference_host::ChartObjectKind;
using reference_host::Model;
using reference_host::OpenModels;
using reference_host::PortKind;

using ModelPtr = std::shared_ptr<Model>;

namespace {

bool isOpen(const ModelPtr& model)
{
    return OpenModels::find(model->name()) == model;
}

void closeModel(const ModelPtr& model)
{
    if (isOpen(model)) {
        OpenModels::close(model->name());
    }
}

std::vector<PortReference> outputPortsOf(const ModelPtr& model)
{
    std::vector<PortReference> ports;
    for (Block* block : model->blocks()) {
        addPorts(ports, {model, block}, PortKind::Output);
    }
    return ports;
}

std::vector<ChartReference> chartsOf(const ModelPtr& model)
{
    std::vector<ChartReference> charts;
    for (Block* block : model->blocks()) {
        if (block->chart() != nullptr) {
            charts.push_back({{model, block}});
        }
    }
    return charts;
}

/// The block of a path without or with the model name in front; null when there is none.
Block* findBlock(const Model& model, const std::u16string& path)
{
    if (Block* block = model.findByPath(path)) {
        return block;
    }
    const std::u16string prefix = model.name() + u"/";
    return path.starts_with(prefix) ? model.findByPath(path.substr(prefix.size())) : nullptr;
}

BlockReference blockAt(const ModelPtr& model, const Text& path)
{
    Block* block = findBlock(*model, path.value);
    if (block == nullptr) {
        PyErr_SetObject(PyExc_KeyError,
                        py::str("model {!r} has no block {!r}").format(Text{model->name()}, path).ptr());
        throw py::error_already_set();
    }
    return {model, block};
}

PortReference outputPortAt(const ModelPtr& model, const std::string& name)
{
    const simulation::PortSearch found = simulation::findPort(*model, name);
    if (!found.port) {
        PyErr_SetObject(PyExc_KeyError, py::str("model {!r} has no output port {!r}: {}")
                                            .format(Text{model->name()}, name, found.reason)
                                            .ptr());
        throw py::error_already_set();
    }
    return {{model, const_cast<Block*>(found.port->block)}, PortKind::Output, found.port->index};
}

py::str modelRepr(const ModelPtr& model)
{
    return py::str("<model {!r}: {} blocks, {} output ports{}>")
        .format(Text{model->name()}, model->blockCount(), outputPortsOf(model).size(),
                isOpen(model) ? "" : ", closed");
}

void bindModel(py::class_<Model, ModelPtr>& model)
{
    model
        .def_property_readonly(
            "name", [](const Model& self) { return Text{self.name()}; },
            "The name of the outermost system, with which full paths and ZIDs begin.")
        .def_property_readonly("is_open", isOpen)
        .def_property_readonly(
            "root",
            [](const ModelPtr& self) {
                return BlockReference{self, &self->root()};
            },
            "The outermost system.")
        .def_property_readonly(
            "blocks", [](const ModelPtr& self) { return references(self, self->blocks()); },
            "Every block, a system before what it holds.")
        .def_property_readonly("output_ports", outputPortsOf, "The output ports of all blocks.")
        .def_property_readonly("charts", chartsOf)
        .def("__len__", &Model::blockCount)
        .def("__getitem__", blockAt, py::arg("path"),
             "The block of a path, with or without the model name in front: model[\"Controller/Limiter\"].")
        .def("__contains__",
             [](const Model& self, const Text& path) { return findBlock(self, path.value) != nullptr; })
        .def("port", outputPortAt, py::arg("name"),
             "The output port that \"Klima/Luftvolumen:Temperatur\" or \"Klima/Luftvolumen:1\" names: block "
             "path,"
             " colon, and the port's name or its number from 1.")
        .def(
            "find_by_zid",
            [](const ModelPtr& self, const std::string& zid) {
                return reference(self, self->findByZid(zid));
            },
            py::arg("zid"), "The block of a ZID, full or relative; None when there is none.")
        .def(
            "find_by_handle",
            [](const ModelPtr& self, double handle) { return reference(self, self->findByHandle(handle)); },
            py::arg("handle"), "The block of a run-time handle; None when there is none.")
        .def(
            "rename",
            [](const Model& self, const Text& name) {
                atEdge([&] { OpenModels::rename(self.name(), name.value); });
            },
            py::arg("name"), "Gives an open model another name; full paths and ZIDs follow.")
        .def("close", closeModel, "Ends the use of the name. What is held of the model stays usable.")
        .def("__enter__", [](const ModelPtr& self) { return self; })
        .def("__exit__", [](const ModelPtr& self, const py::args&) { closeModel(self); })
        .def("__repr__", modelRepr);
}

void bindBlock(py::class_<BlockReference>& block)
{
    block.def_property_readonly("name", [](const BlockReference& self) { return Text{self->name()}; })
        .def_property_readonly(
            "path", [](const BlockReference& self) { return Text{self->path()}; },
            "The path with the model name in front, as it is now.")
        .def_property_readonly("kind",
                               [](const BlockReference& self) {
                                   return self->kind() == BlockKind::System ? "system" : "component";
                               })
        .def_property_readonly(
            "zid", [](const BlockReference& self) { return self->zid(); },
            "The model name, ':' and the block's number, which no edit changes.")
        .def_property_readonly("number", [](const BlockReference& self) { return self->number(); })
        .def_property_readonly(
            "handle", [](const BlockReference& self) { return self->handle(); }, "The run-time handle.")
        .def_property_readonly("model", [](const BlockReference& self) { return self.model; })
        .def_property_readonly(
            "parent", [](const BlockReference& self) { return reference(self.model, self->parent()); },
            "The system around the block; None for the outermost one.")
        .def_property_readonly("children", childrenOf, "The blocks of a system.")
        .def_property_readonly("outputs",
                               [](const BlockReference& self) { return portsOf(self, PortKind::Output); })
        .def_property_readonly("inputs",
                               [](const BlockReference& self) { return portsOf(self, PortKind::Input); })
        .def_property_readonly("connections", connectionsOf, "The connections inside a system.")
        .def_property_readonly("chart", chartOf, "The chart that the block carries, or None.")
        .def(
            "add_chart",
            [](const BlockReference& self, const Text& name) {
                return atEdge([&] {
                    self->addChart(name.value);
                    return ChartReference{self};
                });
            },
            py::arg("name"), "Gives the block a chart; it may carry one.")
        .def(
            "rename",
            [](const BlockReference& self, const Text& name) {
                atEdge([&] { self.model->rename(*self.block, name.value); });
            },
            py::arg("name"))
        .def(
            "move_to",
            [](const BlockReference& self, const BlockReference& system) {
                atEdge([&] { self.model->move(*self.block, *system.block); });
            },
            py::arg("system"), "Puts the block at the end of another system of its model.")
        .def(
            "__eq__",
            [](const BlockReference& self, const BlockReference& other) { return self.block == other.block; },
            py::is_operator())
        .def("__hash__", [](const BlockReference& self) { return std::hash<const Block*>()(self.block); })
        .def("__repr__", [](const BlockReference& self) {
            return py::str("<{} {!r}, ZID {!r}, {} output ports>")
                .format(self->kind() == BlockKind::System ? "system" : "component", Text{self->path()},
                        self->zid(), self->ports(PortKind::Output).size());
        });
}

void bindPort(py::class_<PortReference>& port)
{
    port.def_property_readonly("block", [](const PortReference& self) { return self.block; })
        .def_property_readonly(
            "index", [](const PortReference& self) { return self.index + 1; },
            "The number of the port among those of its kind, from 1.")
        .def_property_readonly("name", [](const PortReference& self) { return Text{self.port().name}; })
        .def_property_readonly(
            "kind",
            [](const PortReference& self) { return self.kind == PortKind::Output ? "output" : "input"; })
        .def(
            "__eq__",
            [](const PortReference& self, const PortReference& other) {
                return self.block.block == other.block.block && self.kind == other.kind &&
                       self.index == other.index;
            },
            py::is_operator())
        .def("__hash__",
             [](const PortReference& self) {
                 return py::hash(py::make_tuple(reinterpret_cast<std::uintptr_t>(self.block.block),
                                                self.index, self.kind == PortKind::Output));
             })
        .def("__repr__", [](const PortReference& self) {
            return py::str("<{} port {} {!r} of {!r}>")
                .format(self.kind == PortKind::Output ? "output" : "input", self.index + 1,
                        Text{self.port().name}, Text{self.block->path()});
        });
}

void bindConnections(py::module_& module)
{
    py::class_<ConnectionEnd>(module, "ConnectionEnd")
        .def_readonly("element", &ConnectionEnd::element, "The block, the enclosing system, or None.")
        .def_property_readonly("connector", [](const ConnectionEnd& self) { return Text{self.connector}; })
        .def("__repr__", [](const ConnectionEnd& self) {
            return py::str("{}.{}").format(Text{self.elementName}, Text{self.connector});
        });
    py::class_<Connection>(module, "Connection")
        .def_readonly("start", &Connection::start)
        .def_readonly("end", &Connection::end)
        .def("__repr__", [](const Connection& self) {
            return py::str("<connection {!r} -> {!r}>").format(self.start, self.end);
        });
}

const char* chartKindName(const ChartObject& object)
{
    switch (object.kind) {
        case ChartObjectKind::Chart:
            return "chart";
        case ChartObjectKind::State:
            return "state";
        default:
            return "data";
    }
}

void bindChartObject(py::module_& module)
{
    py::class_<ChartObject>(module, "ChartObject")
        .def_property_readonly("kind", chartKindName)
        .def_readonly("kzid", &ChartObject::kzid, "The number within the chart; 0 is the chart itself.")
        .def_readonly("parent", &ChartObject::parent, "The number of the state or chart around it.")
        .def_property_readonly("name", [](const ChartObject& self) { return Text{self.name}; })
        .def_property_readonly(
            "domain_type",
            [](const ChartObject& self) { return Text{reference_host::chartDomainType(self.kind)}; },
            "What the domain type of a signal on it is.")
        .def("__repr__", [](const ChartObject& self) {
            return py::str("<{} {} {!r}>").format(chartKindName(self), self.kzid, Text{self.name});
        });
}

void bindChart(py::class_<ChartReference>& chart)
{
    chart.def_property_readonly("name", [](const ChartReference& self) { return Text{self->name()}; })
        .def_property_readonly("block", [](const ChartReference& self) { return self.block; })
        .def_property_readonly(
            "objects", [](const ChartReference& self) { return self->objects(); },
            "The chart itself, then its states and data by number.")
        .def(
            "add_state",
            [](const ChartReference& self, const Text& name, std::uint32_t parent) {
                return atEdge([&] { return self->addState(name.value, parent); });
            },
            py::arg("name"), py::arg("parent") = 0, "Adds a state inside the chart or a state; its number.")
        .def(
            "add_data",
            [](const ChartReference& self, const Text& name, std::uint32_t parent) {
                return atEdge([&] { return self->addData(name.value, parent); });
            },
            py::arg("name"), py::arg("parent") = 0, "As add_state, for an item of data.")
        .def("__repr__", [](const ChartReference& self) {
            return py::str("<chart {!r} of {!r}: {} objects>")
                .format(Text{self->name()}, Text{self.block->path()}, self->objects().size());
        });
}

}  // namespace

void bindDiagram(py::module_& module)
{
    // All classes first: signatures in the documentation name each other.
    py::class_<Model, ModelPtr> model(module, "Model", "An open diagram.");
    py::class_<BlockReference> block(module, "Block", "A component, or a system with blocks of its own.");
    py::class_<PortReference> port(module, "Port", "An input or output of a block.");
    py::class_<ChartReference> chart(module, "Chart", "A state chart, carried by one block.");
    bindConnections(module);
    bindChartObject(module);
    bindModel(model);
    bindBlock(block);
    bindPort(port);
    bindChart(chart);
    module.def("models", &OpenModels::all, "The open models by name.");
}

}  // namespace zmhost
