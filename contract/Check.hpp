#ifndef ZM_CONTRACT_CHECK_HPP
#define ZM_CONTRACT_CHECK_HPP

#include "host/Exceptions.hpp"

#include <source_location>
#include <sstream>
#include <string>
#include <vector>

/// The contract kit: checks of what host/ promises. It knows nothing but host/ and the standard library, so
/// that it can be built with any implementation. Each check runs in a process of its own
/// (contract/Runner.hpp).
namespace contract {

/// One check. Its name in kebab case is made of its function's.
struct Check {
    std::string name;
    std::string sentence;                 ///< what is promised
    std::vector<std::string> operations;  ///< whose promise it is; the first is the one it is listed under
    void (*run)() = nullptr;
};

/// All checks, in the order in which they were added.
std::vector<Check>& checks();

/// Adds a check while the program starts. `operations` are separated by blanks; "name:" begins the name of a
/// host function that is called by name.
struct Registration {
    Registration(const char* identifier, const char* operations, const char* sentence, void (*run)());
};

/// Ends a check. Not a `std::exception`, so that no check catches it by accident.
struct Failure {
    std::string message;
};
struct Skip {
    std::string reason;
};

[[noreturn]] void fail(const std::string& message,
                       std::source_location where = std::source_location::current());
[[noreturn]] void skip(const std::string& reason);

void expectTrue(bool condition, const std::string& what,
                std::source_location where = std::source_location::current());

template <class Value>
std::string shown(const Value& value)
{
    if constexpr (requires(std::ostringstream& stream) { stream << value; }) {
        std::ostringstream stream;
        stream << value;
        return stream.str();
    } else {
        return "another value";
    }
}
std::string shown(const std::u16string& text);
std::string shown(std::nullptr_t);

template <class Actual, class Expected>
void expectEqual(const Actual& actual, const Expected& expected,
                 std::source_location where = std::source_location::current())
{
    if (!(actual == expected)) {
        fail("expected " + shown(expected) + ", got " + shown(actual), where);
    }
}

/// The body must throw a host error whose text names the operation.
template <class Body>
void expectHostError(const std::string& operation, Body body,
                     std::source_location where = std::source_location::current())
{
    try {
        body();
    } catch (const zmsvException& error) {
        const std::string text = error.what();
        expectTrue(text.find(operation) != std::string::npos,
                   "the text of the host error names " + operation + ": " + text, where);
        return;
    }
    fail("no host error from " + operation, where);
}

}  // namespace contract

/// A check: ZM_CHECK(function, "operation operation", "Sentence.") { body }
#define ZM_CHECK(identifier, operations, sentence)                                                     \
    static void identifier();                                                                          \
    static const contract::Registration registrationOf_##identifier(#identifier, operations, sentence, \
                                                                    identifier);                       \
    static void identifier()

#endif
