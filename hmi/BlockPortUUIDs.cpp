#include "hmi/SignalSpecification.hpp"

#include "hmi/Numbers.hpp"

#include <boost/uuid/random_generator.hpp>
#include <boost/uuid/uuid_io.hpp>

namespace zm_hmi {

namespace {

/// The process's source of new UUIDs. Opens "/dev/urandom" when the library is loaded; where that
/// fails, loading fails (Boost's entropy error leaves the static initialisation).
struct SigSpecUUIDGenerator {
    static boost::uuids::random_generator s_rndGenerator;
};

boost::uuids::random_generator SigSpecUUIDGenerator::s_rndGenerator;

// One 16-byte read from the device, version 4, RFC 4122 variant, in lower-case text.
std::string makeUUID()
{
    return boost::uuids::to_string(SigSpecUUIDGenerator::s_rndGenerator());
}

// The handle is written with six decimals here, unlike in source keys: handles that agree to six
// decimals share an entry.
std::string blockPortKey(int portIndex, double blockHandle)
{
    std::string key(NumberText::decimal(portIndex).view());
    key += '-';
    key += NumberText::fixed6(blockHandle).view();
    return key;
}

}  // namespace

std::unordered_map<std::string, std::string> SignalSpecification::m_blockUUIDmap;

bool SignalSpecification::isInBlockHandleUUIDmap(const int& portIndex, const double& blockHandle)
{
    return m_blockUUIDmap.contains(blockPortKey(portIndex, blockHandle));
}

void SignalSpecification::addToBlockHandleUUIDmap(const int& portIndex, const double& blockHandle,
                                                  const std::string& uuid)
{
    m_blockUUIDmap.insert_or_assign(blockPortKey(portIndex, blockHandle), uuid);
}

std::string SignalSpecification::getUUIDFromBlockHandle(const int& portIndex, const double& blockHandle,
                                                        const bool& useMap)
{
    if (!useMap) {
        return makeUUID();
    }
    std::string key = blockPortKey(portIndex, blockHandle);
    const auto found = m_blockUUIDmap.find(key);
    if (found != m_blockUUIDmap.end()) {
        return found->second;
    }
    // Made before it is entered: when the device fails, no empty entry stays behind.
    std::string uuid = makeUUID();
    m_blockUUIDmap.emplace(std::move(key), uuid);
    return uuid;
}

std::unordered_map<std::string, std::string>& SignalSpecification::getBlockUUIDmap()
{
    return m_blockUUIDmap;
}

}  // namespace zm_hmi
