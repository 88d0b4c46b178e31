#include "python/ScriptArguments.hpp"

#include <cstdint>
#include <utility>

namespace py = pybind11;

namespace zmhost {

namespace {

[[noreturn]] void throwWrongArgument(Callee callee, std::size_t position, const std::string& why)
{
    callee.parts.emplace_back(std::uint64_t{position});
    throw zmsvException({"reference_host:classes", "WrongArgument", std::move(callee.parts)},
                        callee.name + ": argument " + std::to_string(position) + " cannot be passed: " + why);
}

}  // namespace

CallArguments::CallArguments(const py::tuple& arguments, const std::function<Callee()>& callee)
{
    m_arguments.reserve(arguments.size());
    m_pointers.reserve(arguments.size());
    for (const py::handle argument : arguments) {
        try {
            m_pointers.push_back(m_arguments.emplace_back(argument).get());
        } catch (const NoHostValue& why) {
            throwWrongArgument(callee(), m_pointers.size() + 1, why.what());
        }
    }
}

py::object resultsToPython(std::vector<reference_host::OwnedValue> results)
{
    if (results.empty()) {
        return py::none();
    }
    if (results.size() == 1) {
        return toPython(std::move(results.front()));
    }
    py::tuple all(results.size());
    for (std::size_t i = 0; i < results.size(); ++i) {
        all[i] = toPython(std::move(results[i]));
    }
    return all;
}

}  // namespace zmhost
