#ifndef ZM_PYTHON_SCRIPT_FUNCTIONS_HPP
#define ZM_PYTHON_SCRIPT_FUNCTIONS_HPP

#include <pybind11/pybind11.h>

#include <string>

/// Host functions that scripts define. The inputs become Python objects as Conversion.hpp says; the
/// result is the first output, a tuple the first few, and None leaves an output unset. An exception of the
/// function becomes a host error; Ctrl-C and the like stop the call that the script made (see `Edge`).
namespace zmhost {

/// A name that is defined already is a host error unless `replace` is given.
void defineScriptFunction(const std::string& name, pybind11::function function, bool replace);

/// Takes a script's function away, and puts back the one that it replaced. False when scripts have not
/// defined the name.
bool removeScriptFunction(const std::string& name);

/// Lets Ctrl-C through in the host functions that there are now: long native work, such as saving, calls
/// them again and again.
void makeHostFunctionsInterruptible();

/// For the end of the program.
void removeScriptFunctions();

}  // namespace zmhost

#endif
