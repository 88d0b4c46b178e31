#ifndef ZM_PYTHON_SCRIPT_ARGUMENTS_HPP
#define ZM_PYTHON_SCRIPT_ARGUMENTS_HPP

#include "host/Exceptions.hpp"
#include "python/Conversion.hpp"
#include "reference_host/values/Value.hpp"

#include <pybind11/pybind11.h>

#include <functional>
#include <string>
#include <vector>

namespace zmhost {

/// Who is called: for errors.
struct Callee {
    std::string name;                        ///< "Zelmar.HMI.InstrumentedSignals.get"
    std::vector<zmsvMessageArgument> parts;  ///< class and method, or the function
};

/// Python arguments for one call. One that is nothing to the host is the same host error as one of a
/// wrong type, with the place of it.
class CallArguments {
public:
    CallArguments(const pybind11::tuple& arguments, const std::function<Callee()>& callee);
    const std::vector<const nvArray*>& pointers() const noexcept { return m_pointers; }

private:
    std::vector<Argument> m_arguments;
    std::vector<const nvArray*> m_pointers;
};

/// None for no results, the result when it is one, a tuple of more.
pybind11::object resultsToPython(std::vector<reference_host::OwnedValue> results);

}  // namespace zmhost

#endif
