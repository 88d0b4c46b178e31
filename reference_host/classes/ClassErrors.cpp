#include "reference_host/classes/ClassErrors.hpp"

#include <array>

namespace reference_host {

namespace {

using Message = CatalogMessage;

constexpr std::array messages{
    // names
    Message{"BadName", "\"{0}\" cannot be the name of a {1}"},
    Message{"NoName", "a {0} without a name was added"},
    Message{"NoName:member", "a {0} of class {1} has no name"},
    Message{"DuplicateName", "\"{0}\" is defined already in namespace {1}"},
    Message{"DuplicateName:top", "there is a namespace \"{0}\" already"},
    Message{"DuplicateMember", "class {0} has a member \"{1}\" already; a second, a {2}, was added"},
    Message{"UnknownNamespace", "there is no namespace \"{0}\""},
    Message{"UnknownClass", "there is no class \"{0}\""},
    Message{"UnknownMethod", "class {0} has no method \"{1}\""},
    Message{"UnknownProperty", "class {0} has no property \"{1}\""},
    Message{"UnknownType", "the type \"{0}\" is not registered"},
    Message{"UnknownType:null", "a type was asked for without a name"},
    // descriptors of a library
    Message{"BadAccess", "property {0}.{1} has the unknown access code {2}"},
    Message{"BadOptionalInputs", "{0} optional inputs in a signature of {1}"},
    Message{"NoSignature", "method {0}.{1} has no signature"},
    Message{"NullType", "property {0}.{1} has no type"},
    Message{"NullType:input", "input {0} of a signature has no type"},
    Message{"NullType:output", "output {0} of a signature has no type"},
    // objects
    Message{"BadIndex", "{0}: object {1} of {2}"},
    Message{"InstancesLive", "the class system cannot be reset while instances live: {0}."},
    Message{"MixedClasses", "an array of {0} cannot hold an instance of {1}"},
    Message{"NoObject", "{0}: expected objects of a class, got {1}"},
    Message{"NoObject:method", "\"{0}\" was called on {1}, which is not one object of a class"},
    Message{"NoObject:null", "{0}: there is no instance to refer to"},
    Message{"NoObject:static", "{0}.{1} is called on an object of the class, not on the class"},
    Message{"ConstructorCalled", "\"{1}\" is the constructor of class {0} and not a method of its objects"},
    Message{"ObjectReplaced", "the constructor {0}.{1} replaced its object by another value"},
    // arguments, outputs and values
    Message{"TooFewArguments", "{0}.{1}: argument {2} is missing ({3})"},
    Message{"TooManyArguments", "{0}.{1}: argument {2} is one too many: at most {3} can be given"},
    Message{"TooManyArguments:none", "{0}: argument {2} is one too many: the class has no constructor"},
    Message{"WrongArgument", "{0}.{1}: argument {2} {3}"},
    Message{"WrongArgument:function", "{0} takes {1}"},
    Message{"TooManyOutputs", "{0}.{1} gives {2} output(s), not {3}"},
    Message{"TooManyOutputs:constructor", "{0} gives 1 output, not {1}"},
    Message{"BadOutputCount", "{0}.{1} says that it gives {2} outputs; it declares {3}"},
    Message{"WrongValue", "{0}.{1} {2}"},
};

}  // namespace

void throwClassError(const char* key, MessageArguments arguments, MessageArguments details)
{
    static const ErrorCatalog catalog(classCatalog, messages);
    throw catalog.error(key, std::move(arguments), std::move(details));
}

}  // namespace reference_host
