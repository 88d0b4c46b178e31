#include "NotImplemented.hpp"
#include "host/Text.hpp"

#include <utility>

// The operations of host/Text.hpp. Written by contract/generate.py; yours to change.

zmsvTextConverter::~zmsvTextConverter() = default;
zmsvTextConverter::zmsvTextConverter() = default;
std::unique_ptr<const zmsvTextConverter> makeTextConverter(const char* /*encodingName*/)
{
    throwNotImplemented("makeTextConverter");
}

std::string toUtf8(const std::u16string& /*text*/)
{
    throwNotImplemented("toUtf8");
}

std::string toUtf8(const std::u16string& /*text*/, const zmsvTextConverter& /*converter*/)
{
    throwNotImplemented("toUtf8+converter");
}

std::u16string toUtf16(const char* /*text*/)
{
    throwNotImplemented("toUtf16");
}

std::u16string extractFileName(const std::u16string& /*path*/)
{
    throwNotImplemented("extractFileName");
}

std::u16string makeNativeForm(const std::u16string& /*path*/, bool /*normalize*/)
{
    throwNotImplemented("makeNativeForm");
}
