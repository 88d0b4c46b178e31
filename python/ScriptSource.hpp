#ifndef ZM_PYTHON_SCRIPT_SOURCE_HPP
#define ZM_PYTHON_SCRIPT_SOURCE_HPP

#include "python/DiagramReferences.hpp"
#include "simulation/Source.hpp"

#include <pybind11/pybind11.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zmhost {

/// A Python number, sequence of numbers or mapping (a bus) as the doubles of a sample. `what` names the value
/// in errors.
struct ScriptValue {
    simulation::ValueLayout layout;
    std::vector<double> values;
};
ScriptValue scriptValue(pybind11::handle value, const std::string& what);

/// The way back: a float, complex, list of them, or a dict by leaf, nested like the bus.
pybind11::object valueToPython(const simulation::ValueLayout& layout, const double* values);

/// A Python function as a source: of one block's outputs, or of any output of the model. It is called with
/// the time and, where it takes two arguments, a dict of the values at the connected inputs: by port name for
/// a block, by "path:port" for the model. It returns a dict of values by output (its name, number, or the
/// port), for a block with one output just the value; None, and an output left out, keep the last value.
class ScriptSource : public simulation::Source {
public:
    ScriptSource(std::shared_ptr<reference_host::Model> model, std::optional<BlockReference> block,
                 pybind11::function function, bool takesInputs, bool allowsNaN);
    ~ScriptSource() override;

    std::string name() const override { return m_name; }
    std::uint64_t revision() const override { return m_revision; }
    std::vector<simulation::SourcePort> ports() const override { return m_ports; }
    std::vector<simulation::InputPort> inputs() const override { return m_inputs; }
    void advance(double time, const simulation::InputValues& inputs) override;
    void write(std::span<double> values) override;
    void stop() noexcept override;

private:
    pybind11::dict inputDict(const simulation::InputValues& inputs) const;
    void take(pybind11::handle result);
    void takeValue(std::size_t place, pybind11::handle value);
    std::size_t placeOf(pybind11::handle key);
    simulation::Place resolve(pybind11::handle key) const;

    std::shared_ptr<reference_host::Model> m_model;
    std::optional<BlockReference> m_block;
    pybind11::object m_function;
    bool m_takesInputs;
    bool m_allowsNaN;
    std::string m_name;
    std::vector<simulation::InputPort> m_inputs;
    std::vector<pybind11::str> m_inputNames;
    pybind11::dict m_keys;  // what the function calls a place, and its number
    std::vector<simulation::SourcePort> m_ports;
    std::vector<std::vector<double>> m_values;
    std::uint64_t m_revision = 0;
};

}  // namespace zmhost

#endif
