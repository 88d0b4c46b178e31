#include "python/Bindings.hpp"
#include "reference_host/calls/Faults.hpp"
#include "reference_host/calls/Journal.hpp"
#include "reference_host/calls/Warnings.hpp"
#include "reference_host/support/Ledger.hpp"
#include "reference_host/values/Value.hpp"

#include <pybind11/stl.h>

#include <iostream>

namespace py = pybind11;

namespace zmhost {

using reference_host::FaultKind;
using reference_host::Faults;
using reference_host::Journal;
using reference_host::JournalEntry;
using reference_host::Ledger;
using reference_host::Warning;
using reference_host::Warnings;

namespace {

void bindWarnings(py::module_& module)
{
    py::class_<Warning>(module, "ReportedWarning", "A warning that the host has shown.")
        .def_readonly("text", &Warning::text)
        .def_property_readonly("catalog", [](const Warning& self) { return self.id.catalog(); })
        .def_property_readonly("key", [](const Warning& self) { return self.id.key(); })
        .def_property_readonly("arguments",
                               [](const Warning& self) { return py::tuple(py::cast(self.id.arguments())); })
        .def("__repr__", [](const Warning& self) {
            return py::str("<host warning {}:{}: {}>").format(self.id.catalog(), self.id.key(), self.text);
        });
    module.def("reported_warnings", &Warnings::reported);
    module.def("take_warnings", &Warnings::take);
}

void bindLedger(py::module_& module)
{
    py::class_<Ledger::Snapshot>(module, "LedgerSnapshot", "A moment in what the host has open.")
        .def("opened_since", &Ledger::openSince,
             "One line for each thing that was opened after this moment and is open still.");
    module.def("ledger_snapshot", &Ledger::snapshot);
    module.def("ledger_report", &Ledger::report);
    module.def("live_values", &reference_host::liveValues);
    module.def("misuses", &Ledger::misuses);
}

void bindJournal(py::module_& module)
{
    py::class_<JournalEntry>(module, "JournalEntry", "One operation that crossed the boundary.")
        .def_readonly("depth", &JournalEntry::depth)
        .def_readonly("operation", &JournalEntry::operation)
        .def_readonly("arguments", &JournalEntry::arguments)
        .def_readonly("result", &JournalEntry::result)
        .def("__str__", &JournalEntry::text)
        .def("__repr__", &JournalEntry::text);
    module.def("start_journal", &Journal::startRecording);
    module.def("stop_journal", &Journal::stopRecording);
    module.def("journal_entries", &Journal::entries);
    module.def(
        "log_host_calls", [](bool on) { Journal::streamTo(on ? &std::cerr : nullptr); }, py::arg("on"));
}

void bindFaults(py::module_& module)
{
    py::enum_<FaultKind>(module, "FaultKind", "How an operation is told to fail.")
        .value("OutOfMemory", FaultKind::OutOfMemory)
        .value("HostException", FaultKind::HostException)
        .value("Diagnostic", FaultKind::Diagnostic)
        .value("Null", FaultKind::Null);
    module.attr("any_operation") = Faults::anyOperation;
    module.def("arm_fault", &Faults::arm, py::arg("operation"), py::arg("kind"), py::arg("nth"));
    module.def("disarm_fault", &Faults::disarm);
    module.def("fault_has_fired", &Faults::hasFired);
}

}  // namespace

void bindReports(py::module_& module)
{
    bindWarnings(module);
    bindLedger(module);
    bindJournal(module);
    bindFaults(module);
}

}  // namespace zmhost
