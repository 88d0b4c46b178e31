#include "python/ScriptFunctions.hpp"

#include "host/Exceptions.hpp"
#include "python/Conversion.hpp"
#include "python/Edge.hpp"
#include "reference_host/calls/HostFunctions.hpp"

#include <pybind11/stl.h>

#include <algorithm>
#include <map>
#include <memory>
#include <utility>
#include <vector>

namespace py = pybind11;

namespace zmhost {

using reference_host::HostFunction;
using reference_host::HostFunctionCall;
using reference_host::HostFunctions;

namespace {

constexpr const char* catalog = "zmhost:functions";

/// The text of an object, for messages. Unpaired surrogates are escaped. Throws the exception that the object
/// raises.
std::string messageText(py::handle object)
{
    const auto text = py::reinterpret_steal<py::object>(PyObject_Str(object.ptr()));
    const auto bytes = py::reinterpret_steal<py::bytes>(
        text ? PyUnicode_AsEncodedString(text.ptr(), "utf-8", "backslashreplace") : nullptr);
    if (!bytes) {
        throw py::error_already_set();
    }
    return bytes;
}

zmsvMessageArgument messageArgument(py::handle argument)
{
    if (PyFloat_Check(argument.ptr())) {
        return py::cast<double>(argument);
    }
    if (PyLong_Check(argument.ptr())) {
        int overflow = 0;
        const long long number = PyLong_AsLongLongAndOverflow(argument.ptr(), &overflow);
        if (overflow == 0 && number < 0) {
            return std::int64_t{number};
        }
        const std::uint64_t large = PyLong_AsUnsignedLongLong(argument.ptr());
        if (PyErr_Occurred() == nullptr) {
            return large;
        }
        PyErr_Clear();
    }
    return messageText(argument);
}

/// The host error that a script's `HostError` describes.
zmsvMessageId messageIdOf(const py::object& error)
{
    std::vector<zmsvMessageArgument> arguments;
    for (const py::handle argument : error.attr("arguments")) {
        arguments.push_back(messageArgument(argument));
    }
    return {messageText(error.attr("catalog")), messageText(error.attr("key")), std::move(arguments)};
}

[[noreturn]] void interrupt(const std::string& name, const py::object& exception)
{
    if (Edge* edge = Edge::current()) {
        edge->interrupt(exception);
    }
    throw zmsvException({catalog, "Interrupted", {name}}, "host function \"" + name + "\" was interrupted");
}

[[noreturn]] void throwScriptError(const std::string& name, const py::object& exception)
{
    const std::string text = messageText(exception);
    if (py::isinstance(exception, py::module_::import("zmhost._errors").attr("HostError"))) {
        throw ScriptError(messageIdOf(exception), text, exception);
    }
    const std::string type = messageText(py::type::handle_of(exception).attr("__name__"));
    throw ScriptError({catalog, type, {name, text}},
                      "host function \"" + name + "\" failed: " + type + ": " + text, exception);
}

/// Exceptions that must not become host errors of the script: `MemoryError`, and exceptions that are not
/// errors
/// (`KeyboardInterrupt`, `SystemExit`).
void passOnWhatIsNoError(const std::string& name, const py::error_already_set& raised)
{
    if (raised.matches(PyExc_MemoryError)) {
        zmsvThrowOutOfMemory();
    }
    if (!raised.matches(PyExc_Exception)) {
        interrupt(name, raised.value());
    }
}

[[noreturn]] void throwAsHostError(const std::string& name, const py::error_already_set& raised)
{
    passOnWhatIsNoError(name, raised);
    try {
        throwScriptError(name, raised.value());
    } catch (const py::error_already_set& again) {  // an exception may itself raise when it is asked
        passOnWhatIsNoError(name, again);
        const std::string type = Py_TYPE(raised.value().ptr())->tp_name;
        throw ScriptError({catalog, type, {name}},
                          "host function \"" + name + "\" failed: " + type + ", which has no text",
                          raised.value());
    }
}

void setOutputs(HostFunctionCall& call, const py::object& result)
{
    const py::tuple outputs =
        PyTuple_Check(result.ptr()) ? py::reinterpret_borrow<py::tuple>(result) : py::make_tuple(result);
    const std::size_t count = std::min(outputs.size(), call.outputCount());
    for (std::size_t i = 0; i < count; ++i) {
        const py::object output = outputs[i];
        if (output.is_none()) {
            continue;
        }
        try {
            call.setOutput(i, toHost(output));
        } catch (const NoHostValue& why) {
            throw zmsvException({catalog, "WrongOutput", {call.functionName(), std::uint64_t{i + 1}}},
                                "host function \"" + call.functionName() + "\": output " +
                                    std::to_string(i + 1) + ": " + why.what());
        }
    }
}

/// After a call was interrupted, its further calls of script functions are refused.
void stopWhenInterrupted(const std::string& name)
{
    const Edge* edge = Edge::current();
    if (edge != nullptr && edge->isInterrupted()) {
        interrupt(name, edge->interruption());
    }
}

class ScriptFunction {
public:
    explicit ScriptFunction(py::function function) : m_function(std::move(function)) {}

    void operator()(HostFunctionCall& call) const
    {
        stopWhenInterrupted(call.functionName());
        try {
            const py::tuple inputs(call.inputs().size());
            for (std::size_t i = 0; i < inputs.size(); ++i) {
                inputs[i] = toPython(call.inputs()[i]);
            }
            setOutputs(call, m_function(*inputs));
        } catch (const py::error_already_set& raised) {
            throwAsHostError(call.functionName(), raised);
        }
    }

private:
    py::function m_function;
};

/// The functions that scripts have replaced, by name; empty where the name was free.
std::map<std::string, HostFunction>& replaced()
{
    static auto& instance = *new std::map<std::string, HostFunction>;
    return instance;
}

}  // namespace

void defineScriptFunction(const std::string& name, py::function function, bool replace)
{
    if (!replace) {
        HostFunctions::define(name, ScriptFunction(std::move(function)));
        replaced().emplace(name, HostFunction());
        return;
    }
    HostFunction former = HostFunctions::replace(name, ScriptFunction(std::move(function)));
    replaced().emplace(name, std::move(former));  // a script's function that is replaced is gone for good
}

bool removeScriptFunction(const std::string& name)
{
    auto former = replaced().extract(name);
    if (former.empty()) {
        return false;
    }
    if (former.mapped()) {
        HostFunctions::replace(name, std::move(former.mapped()));
    } else {
        HostFunctions::remove(name);
    }
    return true;
}

void makeHostFunctionsInterruptible()
{
    for (const std::string& name : HostFunctions::names()) {
        auto inner = std::make_shared<HostFunction>();
        *inner = HostFunctions::replace(name, [inner](HostFunctionCall& call) {
            stopWhenInterrupted(call.functionName());
            if (PyErr_CheckSignals() != 0) {
                throwAsHostError(call.functionName(), py::error_already_set());
            }
            (*inner)(call);
        });
    }
}

void removeScriptFunctions()
{
    while (!replaced().empty()) {
        removeScriptFunction(std::string(replaced().begin()->first));
    }
}

}  // namespace zmhost
