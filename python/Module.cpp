#include "python/Bindings.hpp"
#include "python/Edge.hpp"
#include "python/HostThread.hpp"
#include "python/ScriptFunctions.hpp"
#include "python/ValueHandle.hpp"
#include "reference_host/classes/ClassSystem.hpp"
#include "reference_host/classes/Instance.hpp"
#include "reference_host/classes/RecordClass.hpp"
#include "reference_host/model/OpenModels.hpp"
#include "reference_host/observers/AlignedPaths.hpp"
#include "reference_host/observers/ObserverFunctions.hpp"
#include "reference_host/support/Ledger.hpp"

#include <dlfcn.h>

#include <exception>

namespace py = pybind11;

namespace {

/// Opens a library and calls its entry point, both as any host does. It stays loaded for good.
void loadLibrary(const std::string& path, const std::string& entryPoint)
{
    void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        throw py::import_error(dlerror());  // NOLINT(concurrency-mt-unsafe): the host is single-threaded
    }
    void* entry = dlsym(library, entryPoint.c_str());
    if (entry == nullptr) {
        throw py::import_error(path + " has no entry point \"" + entryPoint + "\"");
    }
    zmhost::atEdge([&] { reinterpret_cast<void (*)()>(entry)(); });
}

/// Ends objects that scripts have tied into rings, then the registered classes. Instances that native code
/// has left open keep them from it; the ledger then lists both.
void endClasses() noexcept
{
    try {
        reference_host::endRecordValues();
        reference_host::Instance::endLibraryData();
        reference_host::ClassSystem::reset();
    } catch (const std::exception&) {
        return;
    }
}

/// Releases everything that scripts have left behind, so that the ledger reports only native code's leaks.
/// Returns the exit code.
int shutDown(int exitCode)
{
    zmhost::removeScriptFunctions();
    zmhost::ValueHandle::releaseAll();
    reference_host::OpenModels::closeAll();
    endClasses();
    return reference_host::Ledger::close(exitCode);
}

}  // namespace

PYBIND11_MODULE(_zmhost, module)
{
    module.doc() = "The reference host, as the package zmhost uses it.";
    zmhost::registerErrors();
    zmhost::bindValues(module);
    zmhost::bindArrayBuffers(module);
    zmhost::bindClasses(module);
    zmhost::bindCalls(module);
    zmhost::bindDiagram(module);
    zmhost::bindEditor(module);
    zmhost::bindFiles(module);
    zmhost::bindReports(module);
    zmhost::bindRecorder(module);
    zmhost::bindSimulation(module);
    zmhost::bindLive(module);
    module.def("load_library", loadLibrary, py::arg("path"), py::arg("entry_point"));
    zmhost::bindToHostThread(module);
    module.def("shut_down", shutDown, py::arg("exit_code"));  // from wherever Python ends
    zmhost::Edge::listenToWarnings();
    reference_host::installDiagramFunctions();
    zmhost::makeHostFunctionsInterruptible();
}
