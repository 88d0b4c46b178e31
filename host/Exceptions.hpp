#ifndef ZM_HOST_EXCEPTIONS_HPP
#define ZM_HOST_EXCEPTIONS_HPP

#include "host/Conventions.hpp"

#include <cstdint>
#include <exception>
#include <string>
#include <variant>
#include <vector>

/// An argument of a message; catalogs refer to them by position.
using zmsvMessageArgument = std::variant<std::uint64_t, std::int64_t, double, std::string>;

/// Names one message of one catalog, with the arguments that its text takes.
class ZM_HOST_API zmsvMessageId {
public:
    zmsvMessageId(std::string catalog, std::string key, std::vector<zmsvMessageArgument> arguments = {});
    zmsvMessageId(const zmsvMessageId&);
    zmsvMessageId(zmsvMessageId&&) noexcept;
    zmsvMessageId& operator=(const zmsvMessageId&);
    zmsvMessageId& operator=(zmsvMessageId&&) noexcept;
    ~zmsvMessageId();

    const std::string& catalog() const noexcept { return m_catalog; }
    const std::string& key() const noexcept { return m_key; }
    const std::vector<zmsvMessageArgument>& arguments() const noexcept { return m_arguments; }

private:
    std::string m_catalog;
    std::string m_key;
    std::vector<zmsvMessageArgument> m_arguments;
};

/// A host error in flight. `what()` is its text, UTF-8, as the message catalog words it.
class ZM_HOST_API zmsvException : public std::exception {
public:
    zmsvException(zmsvMessageId id, std::string text);
    zmsvException(const zmsvException&);
    zmsvException& operator=(const zmsvException&);
    ~zmsvException() override;

    /// [borrowed] [no-throw] The text, null-terminated UTF-8.
    const char* what() const noexcept override;
    const zmsvMessageId& id() const noexcept { return m_id; }

private:
    zmsvMessageId m_id;
    std::string m_text;
};

/// Memory is short.
class ZM_HOST_API zmsvOutOfMemoryException : public std::exception {
public:
    zmsvOutOfMemoryException();
    zmsvOutOfMemoryException(const zmsvOutOfMemoryException&);
    zmsvOutOfMemoryException& operator=(const zmsvOutOfMemoryException&);
    ~zmsvOutOfMemoryException() override;

    /// [borrowed] [no-throw] The text, null-terminated UTF-8.
    const char* what() const noexcept override;
};

/// [throws] Throws `zmsvOutOfMemoryException`.
[[noreturn]] ZM_HOST_API void zmsvThrowOutOfMemory();

#endif
