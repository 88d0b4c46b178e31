#ifndef ZM_PYTHON_PYTHON_TEXT_HPP
#define ZM_PYTHON_PYTHON_TEXT_HPP

#include <pybind11/pybind11.h>

#include <string>
#include <string_view>

namespace zmhost {

// Python text holds code points, host text UTF-16. Every text crosses both ways, unpaired surrogates
// included.

pybind11::str textToPython(std::u16string_view text);

/// REQUIRES: `text` is a Python `str`.
std::u16string textFromPython(pybind11::handle text);

}  // namespace zmhost

/// Lets bound functions take and return `zmhost::Text` where a script passes a `str`.
namespace zmhost {

struct Text {
    std::u16string value;
};

}  // namespace zmhost

namespace pybind11::detail {

template <>
struct type_caster<zmhost::Text> {
    PYBIND11_TYPE_CASTER(zmhost::Text, const_name("str"));

    bool load(handle source, bool /*convert*/)
    {
        if (!PyUnicode_Check(source.ptr())) {
            return false;
        }
        value.value = zmhost::textFromPython(source);
        return true;
    }
    static handle cast(const zmhost::Text& source, return_value_policy /*policy*/, handle /*parent*/)
    {
        return zmhost::textToPython(source.value).release();
    }
};

}  // namespace pybind11::detail

#endif
