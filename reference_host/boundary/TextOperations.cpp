#include "host/Text.hpp"

#include "reference_host/calls/BoundaryCall.hpp"
#include "reference_host/support/ErrorCatalog.hpp"
#include "reference_host/support/TextConversion.hpp"

#include <filesystem>
#include <string_view>

using namespace reference_host;

zmsvTextConverter::zmsvTextConverter() = default;
zmsvTextConverter::~zmsvTextConverter() = default;

namespace {

constexpr std::string_view utf8Name = "UTF-8";

/// The only kind of converter of this host.
class Utf8Converter final : public zmsvTextConverter {
public:
    std::string fromUtf16(const std::u16string& text) const { return utf8FromUtf16(text); }
};

std::filesystem::path pathFrom(const std::u16string& text)
{
    return {utf8FromUtf16(text)};
}

}  // namespace

std::unique_ptr<const zmsvTextConverter> makeTextConverter(const char* encodingName)
{
    return BoundaryCall({"makeTextConverter"}, encodingName).run([&] {
        requirePointer(encodingName);
        if (encodingName != utf8Name) {
            throwHostError("UnknownEncoding", {std::string(encodingName)});
        }
        return std::unique_ptr<const zmsvTextConverter>(std::make_unique<Utf8Converter>());
    });
}

std::string toUtf8(const std::u16string& text)
{
    return BoundaryCall({"toUtf8"}, text).run([&] { return utf8FromUtf16(text); });
}

std::string toUtf8(const std::u16string& text, const zmsvTextConverter& converter)
{
    return BoundaryCall({"toUtf8"}, text).run([&] {
        const auto* utf8 = dynamic_cast<const Utf8Converter*>(&converter);
        if (utf8 == nullptr) {
            throwHostError("ForeignConverter");
        }
        return utf8->fromUtf16(text);
    });
}

std::u16string toUtf16(const char* text)
{
    return BoundaryCall({"toUtf16"}, text).run([&] {
        requirePointer(text);
        return utf16FromUtf8(text);
    });
}

std::u16string extractFileName(const std::u16string& path)
{
    return BoundaryCall({"extractFileName"}, path).run([&] {
        return utf16FromUtf8(pathFrom(path).filename().string());
    });
}

std::u16string makeNativeForm(const std::u16string& path, bool normalize)
{
    return BoundaryCall({"makeNativeForm"}, path, normalize).run([&] {
        const std::filesystem::path native = pathFrom(path).make_preferred();
        return utf16FromUtf8((normalize ? native.lexically_normal() : native).string());
    });
}
