#include "reference_host/calls/CallArguments.hpp"

#include "reference_host/calls/Diagnostic.hpp"
#include "reference_host/support/MessageCatalog.hpp"
#include "reference_host/support/QuotedText.hpp"
#include "reference_host/support/TextConversion.hpp"
#include "reference_host/values/Value.hpp"

namespace reference_host {

namespace {

/// [first, second]; `describeItem` is called with 0 to count - 1.
template <class DescribeItem>
std::string bracketed(std::size_t count, DescribeItem describeItem)
{
    std::string result = "[";
    for (std::size_t i = 0; i < count; ++i) {
        result += (i == 0 ? "" : ", ") + describeItem(i);
    }
    return result + "]";
}

}  // namespace

std::string describeArgument(const nvArray* value)
{
    return describeWithSerial(value);
}

std::string describeArgument(const zmsvDiagnostic* diagnostic)
{
    return describeDiagnostic(diagnostic);
}

std::string describeArgument(const zmsvMessageId& id)
{
    std::string result = id.catalog() + ":" + id.key();
    for (const zmsvMessageArgument& argument : id.arguments()) {
        result += " " + argumentText(argument);
    }
    return result;
}

std::string describeArgument(const char* text)
{
    return text != nullptr ? quotedText(text) : "null";
}

std::string describeArgument(std::string_view text)
{
    return quotedText(text);
}

std::string describeArgument(std::u16string_view text)
{
    return quotedText(utf8FromUtf16(text));
}

std::string describeArgument(const std::vector<std::string>& texts)
{
    return bracketed(texts.size(), [&](std::size_t i) { return quotedText(texts[i]); });
}

std::string describeArgument(const SizeList& list)
{
    return bracketed(list.sizes != nullptr ? list.count : 0,
                     [&](std::size_t i) { return std::to_string(list.sizes[i]); });
}

std::string describeArgument(const NameList& list)
{
    return bracketed(list.names != nullptr ? list.count : 0,
                     [&](std::size_t i) { return describeArgument(list.names[i]); });
}

std::string describeArgument(const ValueList& list)
{
    const bool isEmpty = list.values == nullptr || list.count <= 0;
    return bracketed(isEmpty ? 0 : static_cast<std::size_t>(list.count),
                     [&](std::size_t i) { return describeWithSerial(list.values[i]); });
}

std::string describeArgument(const void* address)
{
    return address != nullptr ? "an address" : "null";
}

std::string describeArgument(double number)
{
    return numberText(number);
}

std::string describeArgument(bool flag)
{
    return flag ? "true" : "false";
}

}  // namespace reference_host
