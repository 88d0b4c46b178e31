#include "python/ScriptSource.hpp"

#include "python/PythonText.hpp"
#include "reference_host/support/TextConversion.hpp"
#include "simulation/SimulationErrors.hpp"

#include <algorithm>
#include <utility>

namespace py = pybind11;

namespace zmhost {

using reference_host::Block;
using reference_host::PortKind;
using reference_host::utf8FromUtf16;
using simulation::Place;
using simulation::ValueLayout;
using simulation::ValueLeaf;

namespace {

bool isMapping(py::handle value)
{
    return PyDict_Check(value.ptr()) ||
           (PyMapping_Check(value.ptr()) != 0 && py::hasattr(value, "items") && py::hasattr(value, "keys"));
}

[[noreturn]] void refuse(py::handle value, const std::string& what)
{
    const std::string text = what + ": {!r} is not a number, a sequence of numbers, or a mapping of them";
    throw py::type_error(std::string(py::str(text).format(value)));
}

/// One number; what Python cannot make a float or complex of is refused.
void appendNumber(std::vector<std::pair<double, double>>& numbers, bool& isComplex, py::handle value,
                  const std::string& what)
{
    if (PyComplex_Check(value.ptr()) ||
        (!PyFloat_Check(value.ptr()) && !PyLong_Check(value.ptr()) && py::hasattr(value, "__complex__") &&
         py::hasattr(value, "imag") && !py::hasattr(value, "is_integer"))) {
        const Py_complex number = PyComplex_AsCComplex(value.ptr());
        isComplex = true;
        numbers.emplace_back(number.real, number.imag);
        return;
    }
    const double number = PyUnicode_Check(value.ptr()) ? -1.0 : PyFloat_AsDouble(value.ptr());
    if (number == -1.0 && (PyErr_Occurred() != nullptr || PyUnicode_Check(value.ptr()))) {
        PyErr_Clear();
        refuse(value, what);
    }
    numbers.emplace_back(number, 0.0);
}

py::object flattened(py::handle value)
{
    if (py::hasattr(value, "ravel") && py::hasattr(value, "tolist")) {
        return value.attr("ravel")(py::arg("order") = "F").attr("tolist")();
    }
    return py::reinterpret_borrow<py::object>(value);
}

bool isSequence(py::handle value)
{
    return PySequence_Check(value.ptr()) != 0 && !PyUnicode_Check(value.ptr()) &&
           !PyBytes_Check(value.ptr()) && PySequence_Size(value.ptr()) >= 0;
}

void appendLeaf(ScriptValue& result, const std::string& path, py::handle value, const std::string& what)
{
    std::vector<std::pair<double, double>> numbers;
    bool isComplex = false;
    const py::object flat = flattened(value);
    if (isSequence(flat)) {
        for (const py::handle each : flat) {
            appendNumber(numbers, isComplex, each, what);
        }
    } else {
        PyErr_Clear();  // of a sequence without a length
        appendNumber(numbers, isComplex, flat, what);
    }
    result.layout.addLeaf(path, numbers.size(), isComplex);
    for (const auto& [real, imaginary] : numbers) {
        result.values.push_back(real);
        if (isComplex) {
            result.values.push_back(imaginary);
        }
    }
}

void appendBus(ScriptValue& result, const std::string& path, py::handle bus, const std::string& what)
{
    for (const py::handle item : bus.attr("items")()) {
        const py::tuple pair = py::reinterpret_borrow<py::tuple>(item);
        const std::string name = path + std::string(py::str(pair[0]));
        if (isMapping(pair[1])) {
            appendBus(result, name + '.', pair[1], what);
        } else {
            appendLeaf(result, name, pair[1], what + ", leaf \"" + name + '"');
        }
    }
}

py::object elementToPython(const ValueLeaf& leaf, const double* values, std::size_t element)
{
    const double* const first = values + leaf.offset + element * (leaf.isComplex ? 2 : 1);
    return leaf.isComplex ? py::reinterpret_steal<py::object>(PyComplex_FromDoubles(first[0], first[1]))
                          : py::reinterpret_steal<py::object>(PyFloat_FromDouble(*first));
}

py::object leafToPython(const ValueLeaf& leaf, const double* values)
{
    if (leaf.elementCount == 1) {
        return elementToPython(leaf, values, 0);
    }
    py::list elements;
    for (std::size_t i = 0; i < leaf.elementCount; ++i) {
        elements.append(elementToPython(leaf, values, i));
    }
    return elements;
}

/// A complex place that gets a real number stays complex.
void widen(ScriptValue& value, const ValueLayout& layout)
{
    const bool isOneNumber = value.layout == ValueLayout();
    if (isOneNumber && layout == ValueLayout::numbers(1, true)) {
        value = {layout, {value.values[0], 0.0}};
    }
}

}  // namespace

ScriptValue scriptValue(py::handle value, const std::string& what)
{
    ScriptValue result{ValueLayout{{}, 0}, {}};
    if (isMapping(value)) {
        appendBus(result, "", value, what);
    } else {
        appendLeaf(result, "", value, what);
    }
    if (result.values.empty()) {
        throw py::value_error(what + ": the value is empty");
    }
    return result;
}

py::object valueToPython(const ValueLayout& layout, const double* values)
{
    if (layout.leaves.size() == 1 && layout.leaves.front().path.empty()) {
        return leafToPython(layout.leaves.front(), values);
    }
    py::dict bus;
    for (const ValueLeaf& leaf : layout.leaves) {
        py::dict inner = bus;
        std::string_view rest = leaf.path;
        for (std::size_t dot = rest.find('.'); dot != std::string_view::npos; dot = rest.find('.')) {
            const py::str name(std::string(rest.substr(0, dot)));
            if (!inner.contains(name)) {
                inner[name] = py::dict();
            }
            inner = inner[name];
            rest.remove_prefix(dot + 1);
        }
        inner[py::str(std::string(rest))] = leafToPython(leaf, values);
    }
    return bus;
}

ScriptSource::ScriptSource(std::shared_ptr<reference_host::Model> model, std::optional<BlockReference> block,
                           py::function function, bool takesInputs, bool allowsNaN)
    : m_model(std::move(model)),
      m_block(std::move(block)),
      m_function(std::move(function)),
      m_takesInputs(takesInputs),
      m_allowsNaN(allowsNaN)
{
    const py::object known = py::getattr(m_function, "__qualname__", py::repr(m_function));
    m_name = "the function " + std::string(py::str(known));
    if (m_block) {
        m_name += " of \"" + utf8FromUtf16((*m_block)->path()) + '"';
    }
    if (!m_takesInputs) {
        return;
    }
    const auto add = [this](const Block& each, const std::string& prefix) {
        for (std::size_t i = 0; i < each.ports(PortKind::Input).size(); ++i) {
            m_inputs.push_back({&each, i});
            m_inputNames.emplace_back(prefix + utf8FromUtf16(each.ports(PortKind::Input)[i].name));
        }
    };
    if (m_block) {
        add(*m_block->block, "");
        return;
    }
    const std::size_t modelPart = m_model->name().size() + 1;
    for (const Block* each : m_model->blocks()) {
        add(*each, utf8FromUtf16(each->path().substr(modelPart)) + ':');
    }
}

ScriptSource::~ScriptSource() = default;

void ScriptSource::advance(double time, const simulation::InputValues& inputs)
{
    if (!m_function) {
        throw simulation::simulationError("Ended", {});
    }
    const py::object function = m_function;  // a run that is stopped inside lets go of it
    try {
        take(m_takesInputs ? function(time, inputDict(inputs)) : function(time));
    } catch (py::error_already_set& error) {
        // On its way through native code the exception keeps only what it holds itself.
        if (error.value() && error.trace()) {
            PyException_SetTraceback(error.value().ptr(), error.trace().ptr());
        }
        throw;
    }
}

void ScriptSource::write(std::span<double> values)
{
    auto place = values.begin();
    for (const std::vector<double>& each : m_values) {
        place = std::copy(each.begin(), each.end(), place);
    }
}

void ScriptSource::stop() noexcept
{
    m_function = py::object();  // which may well refer to the run
    m_keys = py::dict();
}

py::dict ScriptSource::inputDict(const simulation::InputValues& inputs) const
{
    py::dict values;
    for (std::size_t i = 0; i < m_inputs.size(); ++i) {
        if (const double* const value = inputs.values(i)) {
            values[m_inputNames[i]] = valueToPython(inputs.layout(i), value);
        }
    }
    return values;
}

void ScriptSource::take(py::handle result)
{
    if (result.is_none()) {
        return;
    }
    const bool isOneOutput = m_block && (*m_block)->ports(PortKind::Output).size() == 1;
    if (isMapping(result)) {
        for (const py::handle item : result.attr("items")()) {
            const py::tuple pair = py::reinterpret_borrow<py::tuple>(item);
            takeValue(placeOf(pair[0]), pair[1]);
        }
    } else if (isOneOutput) {
        takeValue(placeOf(py::int_(1)), result);
    } else {
        throw py::type_error(m_name + " must return a mapping of values by output port, not " +
                             std::string(py::repr(result)));
    }
}

void ScriptSource::takeValue(std::size_t place, py::handle value)
{
    if (PyFloat_CheckExact(value.ptr()) && m_values[place].size() == 1) {
        m_values[place][0] = PyFloat_AS_DOUBLE(value.ptr());
        return;
    }
    ScriptValue taken =
        scriptValue(value, m_name + ", port \"" + simulation::placeName(m_ports[place].place) + '"');
    widen(taken, m_ports[place].layout);
    if (taken.layout != m_ports[place].layout) {
        m_ports[place].layout = std::move(taken.layout);
        ++m_revision;
    }
    m_values[place] = std::move(taken.values);
}

/// The number of a place, a new one where the function names it for the first time.
std::size_t ScriptSource::placeOf(py::handle key)
{
    if (m_keys.contains(key)) {
        return py::cast<std::size_t>(m_keys[key]);
    }
    const Place place = resolve(key);
    const auto found =
        std::find_if(m_ports.begin(), m_ports.end(), [&](const auto& port) { return port.place == place; });
    const auto number = static_cast<std::size_t>(found - m_ports.begin());
    if (found == m_ports.end()) {
        m_ports.push_back({place, {}, m_allowsNaN});
        m_values.emplace_back(1, 0.0);
        ++m_revision;
    }
    m_keys[key] = number;
    return number;
}

Place ScriptSource::resolve(py::handle key) const
{
    if (py::isinstance<PortReference>(key)) {
        const auto& port = py::cast<const PortReference&>(key);
        if (port.kind != PortKind::Output) {
            throw simulation::simulationError(
                "UnknownPort", {m_name, std::string(py::repr(key)), std::string("it is an input")});
        }
        return {port.block.block, port.index, {}};
    }
    if (py::isinstance<py::tuple>(key) && py::len(key) == 3) {
        const auto parts = py::reinterpret_borrow<py::tuple>(key);
        return {py::cast<BlockReference>(parts[0]).block, 0,
                simulation::ChartItem{py::cast<std::uint32_t>(parts[1]), py::cast<std::string>(parts[2])}};
    }
    std::string name = py::str(key);
    if (m_block) {
        name = utf8FromUtf16((*m_block)->path()) + ':' + name;
    }
    const simulation::PortSearch search = simulation::findPort(*m_model, name);
    if (!search.port) {
        throw simulation::simulationError("UnknownPort", {m_name, name, std::string(search.reason)});
    }
    return {search.port->block, search.port->index, {}};
}

}  // namespace zmhost
