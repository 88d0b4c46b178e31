#include "python/Bindings.hpp"
#include "python/Edge.hpp"
#include "reference_host/model/OpenModels.hpp"
#include "reference_host/ssp/ModelFile.hpp"

#include <pybind11/stl.h>
#include <pybind11/stl/filesystem.h>

#include <cstddef>
#include <filesystem>
#include <memory>
#include <utility>

namespace py = pybind11;

namespace zmhost {

using reference_host::FileProgress;
using reference_host::Model;
using reference_host::OpenModels;

namespace {

/// Calls a script's function before each step. An exception that it raises, and Ctrl-C, ends the work and
/// reaches the script.
FileProgress progressFor(py::function told)
{
    return [told = std::move(told)](const char* step, std::size_t done, std::size_t total) {
        try {
            if (PyErr_CheckSignals() != 0) {
                throw py::error_already_set();
            }
            told(step, done, total);
        } catch (const py::error_already_set& raised) {
            Edge::current()->interrupt(raised.value());
            throw zmsvException({"zmhost:files", "Interrupted"}, "the work on a file was interrupted");
        }
    };
}

/// A warning that Python's filters turn into an error must not leave a model open that no variable refers to.
std::shared_ptr<Model> openModel(const std::filesystem::path& file, const py::function& progress)
{
    std::shared_ptr<Model> opened;
    try {
        return atEdge([&] { return opened = reference_host::openModel(file, progressFor(progress)); });
    } catch (...) {  // whatever kept the script from getting the model
        if (opened && OpenModels::find(opened->name()) == opened) {
            OpenModels::close(opened->name());
        }
        throw;
    }
}

}  // namespace

void bindFiles(py::module_& module)
{
    module.def("open_model", openModel, py::arg("path"), py::arg("progress"), "Opens an .ssd or .ssp file.");
    module.def(
        "save_model",
        [](const std::shared_ptr<Model>& model, const std::filesystem::path& file,
           const py::function& progress) {
            atEdge([&] { reference_host::saveModel(*model, file, progressFor(progress)); });
        },
        py::arg("model").none(false), py::arg("path"), py::arg("progress"),
        "Saves an open model as an .ssp file.");
}

}  // namespace zmhost
