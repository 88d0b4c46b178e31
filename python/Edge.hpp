#ifndef ZM_PYTHON_EDGE_HPP
#define ZM_PYTHON_EDGE_HPP

#include "reference_host/calls/Warnings.hpp"

#include <pybind11/pybind11.h>

#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

/// The edge where Python calls the host. Python exceptions do not unwind native code: warnings and interrupts
/// that occur inside a call are kept and delivered when the call has returned.
namespace zmhost {

/// A host error that a script's own function raised. At the edge the script gets its exception back.
class ScriptError : public zmsvException {
public:
    ScriptError(zmsvMessageId id, const std::string& text, pybind11::object cause)
        : zmsvException(std::move(id), text), m_cause(std::move(cause))
    {
    }
    const pybind11::object& cause() const noexcept { return m_cause; }

private:
    pybind11::object m_cause;
};

/// One native call under way. Calls nest where a script's function is called back. All are on the host's
/// thread: see HostThread.hpp.
class Edge {
public:
    Edge() : m_outer(std::exchange(s_current, this)) {}
    Edge(const Edge&) = delete;
    Edge& operator=(const Edge&) = delete;
    ~Edge() { s_current = m_outer; }

    /// The innermost call; null outside of all.
    static Edge* current() noexcept { return s_current; }

    /// Has host warnings kept by the call during which they are reported.
    static void listenToWarnings();

    /// Keeps an exception that is no error (Ctrl-C, `sys.exit`) for the end of the call.
    void interrupt(pybind11::object exception) { m_interrupt = std::move(exception); }
    bool isInterrupted() const noexcept { return static_cast<bool>(m_interrupt); }
    const pybind11::object& interruption() const noexcept { return m_interrupt; }

    /// Issues the kept warnings, then throws the interrupt if there is one, else the failure, else a warning
    /// that Python's filters turned into an error.
    void close(const std::exception_ptr& failure);

private:
    void deliver(const pybind11::object& error);

    static inline Edge* s_current = nullptr;

    Edge* m_outer;
    std::vector<reference_host::Warning> m_warnings;
    pybind11::object m_interrupt;
};

/// Runs a native call for Python and gives its result.
template <class Body>
std::invoke_result_t<Body&> atEdge(Body&& body)
{
    using Result = std::invoke_result_t<Body&>;
    Edge edge;
    std::exception_ptr failure;
    if constexpr (std::is_void_v<Result>) {
        try {
            body();
        } catch (...) {  // whatever it is, the warnings come first
            failure = std::current_exception();
        }
        edge.close(failure);
    } else {
        std::optional<Result> result;
        try {
            result.emplace(body());
        } catch (...) {  // as above
            failure = std::current_exception();
        }
        edge.close(failure);
        return std::move(*result);
    }
}

/// Has pybind11 turn host errors that are thrown outside of `atEdge` into Python's, too.
void registerErrors();

}  // namespace zmhost

#endif
