#include "hmi/BlockPortUUIDs.hpp"

#include "hmi/Numbers.hpp"

#include <boost/uuid/random_generator.hpp>
#include <boost/uuid/uuid_io.hpp>

#include <utility>

namespace zm_hmi {

namespace {

/// The process's source of new UUIDs. Opens "/dev/urandom" when the library is loaded; where that
/// fails, loading fails (Boost's entropy error leaves the static initialisation).
struct SigSpecUUIDGenerator {
    static boost::uuids::random_generator s_rndGenerator;
};

boost::uuids::random_generator SigSpecUUIDGenerator::s_rndGenerator;

std::string keyOf(int port, double blockHandle)
{
    std::string key(NumberText::decimal(port).view());
    key += '-';
    key += NumberText::fixed6(blockHandle).view();
    return key;
}

}  // namespace

std::string BlockPortUUIDs::makeUUID()
{
    return boost::uuids::to_string(SigSpecUUIDGenerator::s_rndGenerator());
}

bool BlockPortUUIDs::contains(int port, double blockHandle) const
{
    return m_uuids.contains(keyOf(port, blockHandle));
}

void BlockPortUUIDs::assign(int port, double blockHandle, const std::string& uuid)
{
    m_uuids.insert_or_assign(keyOf(port, blockHandle), uuid);
}

std::string BlockPortUUIDs::findOrMake(int port, double blockHandle)
{
    std::string key = keyOf(port, blockHandle);
    const auto found = m_uuids.find(key);
    if (found != m_uuids.end()) {
        return found->second;
    }
    std::string uuid = makeUUID();
    m_uuids.emplace(std::move(key), uuid);
    return uuid;
}

}  // namespace zm_hmi
