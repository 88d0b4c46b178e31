#pragma once

#include "host/ClassDescriptors.hpp"
#include "reference_host/Export.hpp"
#include "reference_host/values/Value.hpp"

#include <cstddef>
#include <string>
#include <vector>

namespace reference_host {

/// Access to classes and their objects for host code and scripts: construct, call, read, assign.
///
/// Arguments are borrowed, results owned. Arguments are converted to the types that the method's
/// signature declares; a wrong type, one too few or one too many is a host error that names class,
/// method and argument (1-based, the object not counted). Exceptions of a method pass through; if it could
/// not use a value that it was given, the text gets the argument or property in front.
///
/// An instance method is one whose first declared input has the type of its own class; the object is
/// passed there. Every other method is static: it can be called on the class and on an object, and the
/// object is not passed. The method named like its class is the constructor and only `construct`
/// reaches it.
///
/// Class names are full names. Main thread only.
class ZM_REFHOST_API ObjectAccess {
public:
    ObjectAccess() = delete;

    using Arguments = std::vector<const nvArray*>;
    using Results = std::vector<OwnedValue>;

    /// Asks for as many outputs as the method declares.
    static constexpr int AllOutputs = -1;

    /// A 1-by-1 object. A class without a constructor takes no arguments.
    static OwnedValue construct(const std::string& className, const Arguments& arguments = {});

    /// Calls a method of a 1-by-1 object. Asking for more outputs than are declared is a host error;
    /// those not asked for are freed. One result for each output asked for: null where the method gave
    /// none, the empty value where it gave a null object.
    static Results callMethod(const nvArray* object, const std::string& method,
                              const Arguments& arguments = {}, int outputCount = AllOutputs);

    /// Calls a static method of a class.
    static Results callStatic(const std::string& className, const std::string& method,
                              const Arguments& arguments = {}, int outputCount = AllOutputs);

    /// The value of a property of object `index` (0-based); null when the property has none.
    static OwnedValue getProperty(const nvArray* object, const std::string& property, std::size_t index = 0);

    /// Assigns a copy of a value, whatever the property's access code is. Callers that act for a script check
    /// the code first (`ClassReflection`).
    static void setProperty(nvArray* object, const std::string& property, const nvArray* value,
                            std::size_t index = 0);

    /// An N-by-1 object array that refers to these instances; 0-by-0 for none. An instance of another
    /// class is a host error.
    static OwnedValue makeObjectArray(const std::string& className,
                                      const std::vector<nvcos::COSInterfacePtr>& instances);
};

}  // namespace reference_host
