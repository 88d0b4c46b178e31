#include "python/PythonText.hpp"

#include <bit>

namespace py = pybind11;

namespace zmhost {

py::str textToPython(std::u16string_view text)
{
    int byteOrder = std::endian::native == std::endian::little ? -1 : 1;
    PyObject* result = PyUnicode_DecodeUTF16(reinterpret_cast<const char*>(text.data()),
                                             static_cast<Py_ssize_t>(text.size() * sizeof(char16_t)),
                                             "surrogatepass", &byteOrder);
    if (result == nullptr) {
        throw py::error_already_set();
    }
    return py::reinterpret_steal<py::str>(result);
}

std::u16string textFromPython(py::handle text)
{
    constexpr Py_UCS4 firstSupplementary = 0x10000;
    const Py_ssize_t length = PyUnicode_GET_LENGTH(text.ptr());
    std::u16string result;
    result.reserve(static_cast<std::size_t>(length));
    for (Py_ssize_t i = 0; i < length; ++i) {
        const Py_UCS4 codePoint = PyUnicode_READ_CHAR(text.ptr(), i);
        if (codePoint < firstSupplementary) {
            result.push_back(static_cast<char16_t>(codePoint));
        } else {
            const Py_UCS4 offset = codePoint - firstSupplementary;
            result.push_back(static_cast<char16_t>(0xD800 + (offset >> 10U)));
            result.push_back(static_cast<char16_t>(0xDC00 + (offset & 0x3FFU)));
        }
    }
    return result;
}

}  // namespace zmhost
