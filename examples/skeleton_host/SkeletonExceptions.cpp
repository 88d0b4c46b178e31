#include "NotImplemented.hpp"
#include "host/Exceptions.hpp"

#include <utility>

// The operations of host/Exceptions.hpp. Written by contract/generate.py; yours to change.

zmsvMessageId::zmsvMessageId(std::string /*catalog*/, std::string /*key*/,
                             std::vector<zmsvMessageArgument> /*arguments*/)
{
    throwNotImplemented("zmsvMessageId::zmsvMessageId");
}

zmsvMessageId::zmsvMessageId(const zmsvMessageId& /*a0*/)
{
    throwNotImplemented("zmsvMessageId::copy");
}

zmsvMessageId::zmsvMessageId(zmsvMessageId&& /*a0*/) noexcept
{
    abortNotImplemented("zmsvMessageId::move");
}

zmsvMessageId& zmsvMessageId::operator=(const zmsvMessageId& /*a0*/)
{
    throwNotImplemented("zmsvMessageId::copy-assignment");
}

zmsvMessageId& zmsvMessageId::operator=(zmsvMessageId&& /*a0*/) noexcept
{
    abortNotImplemented("zmsvMessageId::move-assignment");
}

zmsvMessageId::~zmsvMessageId()
{
    abortNotImplemented("zmsvMessageId::~zmsvMessageId");
}

zmsvException::zmsvException(zmsvMessageId id, std::string text)
    : m_id(std::move(id)), m_text(std::move(text))
{
    throwNotImplemented("zmsvException::zmsvException");
}

zmsvException::zmsvException(const zmsvException& a0) : std::exception(a0), m_id(a0.m_id), m_text(a0.m_text)
{
    throwNotImplemented("zmsvException::copy");
}

zmsvException& zmsvException::operator=(const zmsvException& /*a0*/)
{
    throwNotImplemented("zmsvException::copy-assignment");
}

zmsvException::~zmsvException()
{
    abortNotImplemented("zmsvException::~zmsvException");
}

const char* zmsvException::what() const noexcept
{
    abortNotImplemented("zmsvException::what");
}

zmsvOutOfMemoryException::zmsvOutOfMemoryException()
{
    throwNotImplemented("zmsvOutOfMemoryException::zmsvOutOfMemoryException");
}

zmsvOutOfMemoryException::zmsvOutOfMemoryException(const zmsvOutOfMemoryException& /*a0*/)
{
    throwNotImplemented("zmsvOutOfMemoryException::copy");
}

zmsvOutOfMemoryException& zmsvOutOfMemoryException::operator=(const zmsvOutOfMemoryException& /*a0*/)
{
    throwNotImplemented("zmsvOutOfMemoryException::copy-assignment");
}

zmsvOutOfMemoryException::~zmsvOutOfMemoryException()
{
    abortNotImplemented("zmsvOutOfMemoryException::~zmsvOutOfMemoryException");
}

const char* zmsvOutOfMemoryException::what() const noexcept
{
    abortNotImplemented("zmsvOutOfMemoryException::what");
}

void zmsvThrowOutOfMemory()
{
    throwNotImplemented("zmsvThrowOutOfMemory");
}
