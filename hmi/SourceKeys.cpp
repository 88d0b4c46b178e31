#include "hmi/SignalSpecification.hpp"

#include "hmi/Numbers.hpp"
#include "host/Text.hpp"

#include <boost/container_hash/hash.hpp>

#include <array>
#include <memory_resource>
#include <numeric>
#include <string_view>

// A source key is the hash of a short text. Cached: handle "$$" port. Not cached: model "/" path "$$"
// sub-path "$$" port, with the model and its "/" left out when it has no name. Keys are compared only
// with keys of the same process and never saved.

namespace zm_hmi {

namespace {

constexpr std::string_view componentSeparator = "$$";

std::size_t hashOf(std::string_view text)
{
    return boost::hash_range(text.begin(), text.end());
}

/// Key text under construction; on the heap only beyond the ordinary length.
class KeyText {
public:
    KeyText() { m_text.reserve(m_storage.size() - 1); }
    KeyText& operator<<(std::string_view part)
    {
        m_text.append(part);
        return *this;
    }
    std::size_t hash() const { return hashOf(m_text); }

private:
    std::array<char, 1024> m_storage;
    std::pmr::monotonic_buffer_resource m_memory{m_storage.data(), m_storage.size()};
    std::pmr::string m_text{&m_memory};
};

}  // namespace

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
    KeyText text;
    text << NumberText::significant17(blockHandle).view() << componentSeparator
         << NumberText::decimal(portIndex).view();
    return text.hash();
}

std::size_t SignalSpecification::getNonCachedInfoHash(const std::u16string& blockPath,
                                                      const std::u16string& subPath, int outputPortIndex,
                                                      int logicalPortIndex, const std::u16string& modelName)
{
    KeyText text;
    if (!modelName.empty()) {
        text << toUtf8(modelName) << "/";
    }
    const int port = logicalPortIndex >= 1 ? logicalPortIndex : outputPortIndex;
    text << toUtf8(blockPath) << componentSeparator << toUtf8(subPath) << componentSeparator
         << NumberText::decimal(port).view();
    return text.hash();
}

std::size_t SignalSpecification::getInfoHashFromStringList(std::list<std::string> parts)
{
    return hashOf(std::accumulate(parts.begin(), parts.end(), std::string()));
}

}  // namespace zm_hmi
