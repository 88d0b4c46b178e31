#include "hmi/SourceKeys.hpp"

#include "hmi/Numbers.hpp"
#include "hmi/SignalSpecification.hpp"
#include "host/Text.hpp"

#include <numeric>

namespace zm_hmi {

namespace {

constexpr std::string_view componentSeparator = "$$";

template <class Integer>
Integer readAs(const void* bytes) noexcept
{
    Integer value = 0;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

// Four UTF-16 units in one number are ASCII when none has a bit beyond the lowest seven.
constexpr bool areAscii(std::uint64_t units) noexcept
{
    return (units & 0xff80ff80ff80ff80U) == 0;
}

// The low bytes of four UTF-16 units, side by side.
constexpr std::uint64_t narrowed(std::uint64_t units) noexcept
{
    units = (units | units >> 8) & 0x0000ffff0000ffffU;
    return (units | units >> 16) & 0x00000000ffffffffU;
}

// Text that is not well-formed is converted by the host, which alone decides what becomes of it.
void appendText(KeyHash& hash, const std::u16string& text)
{
    if (!hash.appendWellFormed(text)) {
        hash.append(toUtf8(text));
    }
}

}  // namespace

// ---- hashing in pieces --------------------------------------------------------------------------

// The loops work on a copy of the hash: the compiler keeps it in registers.

void KeyHash::append(std::string_view bytes) noexcept
{
    KeyHash hash = *this;
    while (bytes.size() >= 4) {
        hash.appendPacked(readAs<std::uint32_t>(bytes.data()), 4);
        bytes.remove_prefix(4);
    }
    for (const char byte : bytes) {
        hash.appendPacked(static_cast<unsigned char>(byte), 1);
    }
    *this = hash;
}

bool KeyHash::appendWellFormed(std::u16string_view text) noexcept
{
    KeyHash hash = *this;
    std::size_t position = 0;
    while (position < text.size()) {
        if (position + 4 <= text.size()) {
            const auto units = readAs<std::uint64_t>(text.data() + position);
            if (areAscii(units)) {
                hash.appendPacked(narrowed(units), 4);
                position += 4;
                continue;
            }
        }
        if (!hash.appendUnit(text, position)) {
            return false;
        }
    }
    *this = hash;
    return true;
}

// Appends the character at the position, which may be of two units, and goes on behind it.
inline bool KeyHash::appendUnit(std::u16string_view text, std::size_t& position) noexcept
{
    const auto tail = [](std::uint32_t bits) { return 0x80U | (bits & 0x3fU); };
    const std::uint32_t unit = text[position++];
    if (unit < 0x80) {
        appendPacked(unit, 1);
    } else if (unit < 0x800) {
        appendPacked((0xc0U | unit >> 6) | tail(unit) << 8, 2);
    } else if (unit < 0xd800 || unit > 0xdfff) {
        appendPacked((0xe0U | unit >> 12) | tail(unit >> 6) << 8 | tail(unit) << 16, 3);
    } else {
        const std::uint32_t low = position < text.size() ? text[position] : 0U;
        if (unit > 0xdbff || low < 0xdc00 || low > 0xdfff) {
            return false;
        }
        ++position;
        const std::uint32_t point = 0x10000U + ((unit - 0xd800U) << 10) + (low - 0xdc00U);
        appendPacked(
            (0xf0U | point >> 18) | tail(point >> 12) << 8 | tail(point >> 6) << 16 | tail(point) << 24, 4);
    }
    return true;
}

// ---- keys ---------------------------------------------------------------------------------------

ModelKeyPrefix::ModelKeyPrefix(const std::u16string& modelName) noexcept
{
    if (!modelName.empty()) {
        m_isUsable = m_hash.appendWellFormed(modelName);
        m_hash.append("/");
    }
}

namespace {

std::size_t nonCachedKey(KeyHash hash, const std::u16string& blockPath, const std::u16string& subPath,
                         int outputPortIndex, int logicalPortIndex)
{
    appendText(hash, blockPath);
    hash.append(componentSeparator);
    appendText(hash, subPath);
    hash.append(componentSeparator);
    hash.append(NumberText::decimal(logicalPortIndex >= 1 ? logicalPortIndex : outputPortIndex).view());
    return hash.value();
}

}  // namespace

std::size_t nonCachedKey(const ModelKeyPrefix& prefix, const std::u16string& blockPath,
                         const std::u16string& subPath, int outputPortIndex, int logicalPortIndex)
{
    return nonCachedKey(prefix.hash(), blockPath, subPath, outputPortIndex, logicalPortIndex);
}

std::size_t SignalSpecification::getSourceKeyCached() const
{
    return getCachedInfoHash(CachedBlockHandle_, CachedPortIdx_);
}

std::size_t SignalSpecification::getSourceKeyNonCached(const std::u16string& modelName) const
{
    return getNonCachedInfoHash(BlockPath_, SubPath_, OutputPortIndex_, LogicalPortIndex_, modelName);
}

std::size_t SignalSpecification::getCachedInfoHash(double blockHandle, int portIndex)
{
    KeyHash hash;
    hash.append(NumberText::significant17(blockHandle).view());
    hash.append(componentSeparator);
    hash.append(NumberText::decimal(portIndex).view());
    return hash.value();
}

std::size_t SignalSpecification::getNonCachedInfoHash(const std::u16string& blockPath,
                                                      const std::u16string& subPath, int outputPortIndex,
                                                      int logicalPortIndex, const std::u16string& modelName)
{
    KeyHash hash;
    if (!modelName.empty()) {
        appendText(hash, modelName);
        hash.append("/");
    }
    return nonCachedKey(hash, blockPath, subPath, outputPortIndex, logicalPortIndex);
}

std::size_t SignalSpecification::getInfoHashFromStringList(std::list<std::string> parts)
{
    return std::accumulate(parts.begin(), parts.end(), KeyHash(),
                           [](KeyHash hash, const std::string& part) {
                               hash.append(part);
                               return hash;
                           })
        .value();
}

}  // namespace zm_hmi
