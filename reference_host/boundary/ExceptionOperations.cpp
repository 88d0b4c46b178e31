#include "host/Exceptions.hpp"

#include "reference_host/calls/BoundaryCall.hpp"

#include <utility>

zmsvMessageId::zmsvMessageId(std::string catalog, std::string key, std::vector<zmsvMessageArgument> arguments)
    : m_catalog(std::move(catalog)), m_key(std::move(key)), m_arguments(std::move(arguments))
{
}

/// Copies without copying a `std::variant`: one whose copy fails for lack of memory is destroyed with an
/// invalid index (g++ 12).
static std::vector<zmsvMessageArgument> copied(const std::vector<zmsvMessageArgument>& arguments)
{
    std::vector<zmsvMessageArgument> copies;
    copies.reserve(arguments.size());
    for (const zmsvMessageArgument& argument : arguments) {
        std::visit([&](auto content) { copies.emplace_back(std::move(content)); }, argument);
    }
    return copies;
}

zmsvMessageId::zmsvMessageId(const zmsvMessageId& other)
    : m_catalog(other.m_catalog), m_key(other.m_key), m_arguments(copied(other.m_arguments))
{
}

zmsvMessageId::zmsvMessageId(zmsvMessageId&&) noexcept = default;
zmsvMessageId& zmsvMessageId::operator=(const zmsvMessageId& other)
{
    return *this = zmsvMessageId(other);
}

zmsvMessageId& zmsvMessageId::operator=(zmsvMessageId&&) noexcept = default;
zmsvMessageId::~zmsvMessageId() = default;

zmsvException::zmsvException(zmsvMessageId id, std::string text)
    : m_id(std::move(id)), m_text(std::move(text))
{
}

zmsvException::zmsvException(const zmsvException&) = default;
zmsvException& zmsvException::operator=(const zmsvException&) = default;
zmsvException::~zmsvException() = default;

const char* zmsvException::what() const noexcept
{
    return m_text.c_str();
}

zmsvOutOfMemoryException::zmsvOutOfMemoryException() = default;
zmsvOutOfMemoryException::zmsvOutOfMemoryException(const zmsvOutOfMemoryException&) = default;
zmsvOutOfMemoryException& zmsvOutOfMemoryException::operator=(const zmsvOutOfMemoryException&) = default;
zmsvOutOfMemoryException::~zmsvOutOfMemoryException() = default;

const char* zmsvOutOfMemoryException::what() const noexcept
{
    return "out of memory";
}

void zmsvThrowOutOfMemory()
{
    const reference_host::BoundaryCall call(
        reference_host::Operation{"zmsvThrowOutOfMemory", reference_host::CanFail::Never});
    throw zmsvOutOfMemoryException();
}
