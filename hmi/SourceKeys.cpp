#include "hmi/SourceKeys.hpp"

#include "hmi/Numbers.hpp"
#include "hmi/SignalSpecification.hpp"
#include "host/Text.hpp"

#include <cstring>
#include <numeric>
#include <string_view>

namespace zm_hmi {

namespace {

template <class Integer>
Integer readAs(const void* text) noexcept
{
    Integer value = 0;
    std::memcpy(&value, text, sizeof value);
    return value;
}

// Groups of UTF-16 units are handled as one number, the first unit lowest.

// Four units that are all ASCII have no bit beyond the lowest seven.
constexpr bool areAscii(std::uint64_t units) noexcept
{
    return (units & 0xff80ff80ff80ff80U) == 0;
}

// Their UTF-8 form: the low bytes, side by side.
constexpr std::uint32_t narrowed(std::uint64_t units) noexcept
{
    units = (units | units >> 8) & 0x0000ffff0000ffffU;
    return static_cast<std::uint32_t>(units | units >> 16);
}

// Whether two units both have two bytes in UTF-8: 0x80 to 0x7ff.
constexpr bool areTwoBytesEach(std::uint32_t units) noexcept
{
    return (units & 0xf800f800U) == 0 && ((units + 0x7f807f80U) & 0x80008000U) == 0x80008000U;
}

// Their UTF-8 form.
constexpr std::uint32_t inTwoBytesEach(std::uint32_t units) noexcept
{
    return 0x80c080c0U | (units >> 6 & 0x001f001fU) | (units & 0x003f003fU) << 8;
}

// ---- hashing in pieces --------------------------------------------------------------------------

// UTF-16 text is converted in place. Conversion by the host and hashing take four times as long. The loops
// work on a copy of the hash, and the functions are inlined by force, so that the compiler keeps the hash in
// registers: that takes a third of the time of a key of 46 bytes away.

[[gnu::always_inline]] inline void append(KeyHash& target, std::string_view bytes) noexcept
{
    KeyHash hash = target;
    for (; bytes.size() >= 4; bytes.remove_prefix(4)) {
        hash.append(readAs<std::uint32_t>(bytes.data()));
    }
    for (const char byte : bytes) {
        hash.append(static_cast<unsigned char>(byte), 1);
    }
    target = hash;
}

void appendSeparator(KeyHash& hash) noexcept
{
    hash.append(0x2424, 2);  // "$$"
}

void appendSlash(KeyHash& hash) noexcept
{
    hash.append(0x2f, 1);  // "/"
}

void appendDecimal(KeyHash& hash, int number) noexcept
{
    if (number >= 0 && number < 10) {
        hash.append(static_cast<unsigned>('0' + number), 1);
    } else {
        append(hash, NumberText::decimal(number).view());
    }
}

// Appends one character, which may be of two units, and moves behind it.
[[gnu::always_inline]] inline bool appendCharacter(KeyHash& hash, const char16_t*& next,
                                                   const char16_t* end) noexcept
{
    const auto tail = [](std::uint32_t bits) { return 0x80U | (bits & 0x3fU); };
    const std::uint32_t unit = *next++;
    if (unit < 0x80) {
        hash.append(unit, 1);
    } else if (unit < 0x800) {
        hash.append((0xc0U | unit >> 6) | tail(unit) << 8, 2);
    } else if (unit < 0xd800 || unit > 0xdfff) {
        hash.append((0xe0U | unit >> 12) | tail(unit >> 6) << 8 | tail(unit) << 16, 3);
    } else {
        const std::uint32_t low = next != end ? *next : 0U;
        if (unit > 0xdbff || low < 0xdc00 || low > 0xdfff) {
            return false;
        }
        ++next;
        const std::uint32_t point = 0x10000U + ((unit - 0xd800U) << 10) + (low - 0xdc00U);
        hash.append((0xf0U | point >> 18) | tail(point >> 12) << 8 | tail(point >> 6) << 16 |
                    tail(point) << 24);
    }
    return true;
}

[[gnu::always_inline]] inline bool appendWellFormed(KeyHash& target, std::u16string_view text) noexcept
{
    KeyHash hash = target;
    const char16_t* unit = text.data();
    const char16_t* const end = unit + text.size();
    while (end - unit >= 4) {
        const auto units = readAs<std::uint64_t>(unit);
        if (areAscii(units)) {
            hash.append(narrowed(units));
            unit += 4;
        } else if (areTwoBytesEach(static_cast<std::uint32_t>(units))) {
            hash.append(inTwoBytesEach(static_cast<std::uint32_t>(units)));
            unit += 2;
        } else if (!appendCharacter(hash, unit, end)) {
            return false;
        }
    }
    while (unit != end) {
        if (!appendCharacter(hash, unit, end)) {
            return false;
        }
    }
    target = hash;
    return true;
}

}  // namespace

// ---- keys ---------------------------------------------------------------------------------------

ModelKeyPrefix::ModelKeyPrefix(const std::u16string& modelName) noexcept
{
    if (!modelName.empty()) {
        m_isUsable = appendWellFormed(m_hash, modelName);
        appendSlash(m_hash);
    }
}

namespace {

// Text that is not well-formed is converted by the host, which alone decides what becomes of it.
[[gnu::always_inline]] inline void appendText(KeyHash& hash, const std::u16string& text)
{
    if (!appendWellFormed(hash, text)) {
        append(hash, toUtf8(text));
    }
}

[[gnu::always_inline]] inline std::size_t nonCachedKey(KeyHash hash, const std::u16string& blockPath,
                                                       const std::u16string& subPath, int outputPortIndex,
                                                       int logicalPortIndex)
{
    appendText(hash, blockPath);
    appendSeparator(hash);
    appendText(hash, subPath);
    appendSeparator(hash);
    appendDecimal(hash, logicalPortIndex >= 1 ? logicalPortIndex : outputPortIndex);
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
    append(hash, NumberText::significant17(blockHandle).view());
    appendSeparator(hash);
    appendDecimal(hash, portIndex);
    return hash.value();
}

std::size_t SignalSpecification::getNonCachedInfoHash(const std::u16string& blockPath,
                                                      const std::u16string& subPath, int outputPortIndex,
                                                      int logicalPortIndex, const std::u16string& modelName)
{
    KeyHash hash;
    if (!modelName.empty()) {
        appendText(hash, modelName);
        appendSlash(hash);
    }
    return nonCachedKey(hash, blockPath, subPath, outputPortIndex, logicalPortIndex);
}

std::size_t SignalSpecification::getInfoHashFromStringList(std::list<std::string> parts)
{
    return std::accumulate(parts.begin(), parts.end(), KeyHash(),
                           [](KeyHash hash, const std::string& part) {
                               append(hash, part);
                               return hash;
                           })
        .value();
}

}  // namespace zm_hmi
