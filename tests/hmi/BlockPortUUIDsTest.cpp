#include "hmi/SignalSpecification.hpp"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>
#include <boost/uuid/entropy_error.hpp>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

namespace zm_hmi {
namespace {

using Record = SignalSpecification;

constexpr bool withMap = true;
constexpr bool withoutMap = false;

/// The map lives as long as the process; every test begins with an empty one.
class BlockPortUUIDs : public testing::Test {
protected:
    void SetUp() override { Record::getBlockUUIDmap().clear(); }
    void TearDown() override { Record::getBlockUUIDmap().clear(); }
};

// ---- the map ------------------------------------------------------------------------------------

TEST_F(BlockPortUUIDs, WithoutTheMapEveryUUIDIsNewAndNoneIsKept)
{
    const std::string one = Record::getUUIDFromBlockHandle(1, 12.5, withoutMap);
    const std::string other = Record::getUUIDFromBlockHandle(1, 12.5, withoutMap);
    EXPECT_NE(one, other);
    EXPECT_TRUE(Record::getBlockUUIDmap().empty());
    EXPECT_FALSE(Record::isInBlockHandleUUIDmap(1, 12.5));
}

TEST_F(BlockPortUUIDs, WithoutTheMapAStoredUUIDIsNotRead)
{
    Record::addToBlockHandleUUIDmap(1, 12.5, "stored");
    EXPECT_NE(Record::getUUIDFromBlockHandle(1, 12.5, withoutMap), "stored");
}

TEST_F(BlockPortUUIDs, WithTheMapAPortKeepsItsFirstUUID)
{
    const std::string first = Record::getUUIDFromBlockHandle(1, 12.5, withMap);
    EXPECT_EQ(Record::getUUIDFromBlockHandle(1, 12.5, withMap), first);
    EXPECT_TRUE(Record::isInBlockHandleUUIDmap(1, 12.5));
    EXPECT_EQ(Record::getBlockUUIDmap().size(), 1U);
}

TEST_F(BlockPortUUIDs, KeyIsPortThenHandleWithSixDecimals)
{
    Record::addToBlockHandleUUIDmap(1, 12.5, "a");
    Record::addToBlockHandleUUIDmap(-2, -0.25, "b");
    EXPECT_TRUE(Record::getBlockUUIDmap().contains("1-12.500000"));
    EXPECT_TRUE(Record::getBlockUUIDmap().contains("-2--0.250000"));
}

TEST_F(BlockPortUUIDs, HandlesThatAgreeToSixDecimalsShareAnEntry)
{
    const std::string uuid = Record::getUUIDFromBlockHandle(1, 12.5, withMap);
    EXPECT_TRUE(Record::isInBlockHandleUUIDmap(1, 12.5000001));
    EXPECT_EQ(Record::getUUIDFromBlockHandle(1, 12.5000001, withMap), uuid);
}

TEST_F(BlockPortUUIDs, PortsOfOneHandleDoNotShareAnEntry)
{
    const std::string uuid = Record::getUUIDFromBlockHandle(1, 12.5, withMap);
    EXPECT_FALSE(Record::isInBlockHandleUUIDmap(2, 12.5));
    EXPECT_NE(Record::getUUIDFromBlockHandle(2, 12.5, withMap), uuid);
}

TEST_F(BlockPortUUIDs, AddingReplacesTheUUID)
{
    Record::addToBlockHandleUUIDmap(1, 12.5, "one");
    Record::addToBlockHandleUUIDmap(1, 12.5, "other");
    EXPECT_EQ(Record::getUUIDFromBlockHandle(1, 12.5, withMap), "other");
    EXPECT_EQ(Record::getBlockUUIDmap().size(), 1U);
}

TEST_F(BlockPortUUIDs, AStoredEmptyTextIsAnEntry)
{
    Record::addToBlockHandleUUIDmap(1, 12.5, "");
    EXPECT_TRUE(Record::isInBlockHandleUUIDmap(1, 12.5));
    EXPECT_EQ(Record::getUUIDFromBlockHandle(1, 12.5, withMap), "");
}

TEST_F(BlockPortUUIDs, AskingLeavesNoEntry)
{
    EXPECT_FALSE(Record::isInBlockHandleUUIDmap(1, 12.5));
    EXPECT_TRUE(Record::getBlockUUIDmap().empty());
}

TEST_F(BlockPortUUIDs, MapIsGivenByReference)
{
    Record::getBlockUUIDmap()["3-4.000000"] = "placed";
    EXPECT_EQ(Record::getUUIDFromBlockHandle(3, 4.0, withMap), "placed");
    EXPECT_EQ(Record::getBlockUUIDmap().max_load_factor(), 1.0F);
}

TEST_F(BlockPortUUIDs, AHugeHandleIsAnEntryLikeAnyOther)
{
    const std::string uuid = Record::getUUIDFromBlockHandle(1, -1.7976931348623157e308, withMap);
    EXPECT_EQ(Record::getUUIDFromBlockHandle(1, -1.7976931348623157e308, withMap), uuid);
}

RC_GTEST_FIXTURE_PROP(BlockPortUUIDs, KeyIsWhatToStringWrites, (int port, double handle))
{
    Record::addToBlockHandleUUIDmap(port, handle, "x");
    RC_ASSERT(Record::getBlockUUIDmap().count(std::to_string(port) + "-" + std::to_string(handle)) == 1U);
}

// ---- new UUIDs ----------------------------------------------------------------------------------

TEST_F(BlockPortUUIDs, EveryUUIDIsLowerCaseVersionFour)
{
    const std::regex form("[0-9a-f]{8}-[0-9a-f]{4}-4[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}");
    std::set<std::string> made;
    for (int i = 0; i < 1000; ++i) {
        const std::string uuid = Record::getUUIDFromBlockHandle(1, 1.0, withoutMap);
        EXPECT_TRUE(std::regex_match(uuid, form)) << uuid;
        EXPECT_TRUE(made.insert(uuid).second) << uuid;
    }
}

/// Stands in for the random device behind the open descriptor; the device comes back at the end.
class RandomDeviceStandIn {
public:
    /// Packets: one read gets at most one of them.
    RandomDeviceStandIn() : m_descriptor(deviceDescriptor()), m_device(dup(m_descriptor))
    {
        EXPECT_EQ(socketpair(AF_UNIX, SOCK_SEQPACKET, 0, m_ends), 0);
        EXPECT_NE(dup2(m_ends[0], m_descriptor), -1);
    }
    RandomDeviceStandIn(const RandomDeviceStandIn&) = delete;
    RandomDeviceStandIn& operator=(const RandomDeviceStandIn&) = delete;
    ~RandomDeviceStandIn()
    {
        dup2(m_device, m_descriptor);
        for (const int descriptor : {m_device, m_ends[0], m_ends[1]}) {
            close(descriptor);
        }
    }

    void provide(const std::string& bytes) const
    {
        EXPECT_EQ(write(m_ends[1], bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    }

    /// Reads fail with EISDIR from now on.
    void breakReads() const
    {
        const int directory = open("/", O_RDONLY | O_CLOEXEC);
        EXPECT_NE(dup2(directory, m_descriptor), -1);
        close(directory);
    }

    /// How many bytes nobody has read yet.
    std::size_t unread() const
    {
        std::size_t count = 0;
        char bytes[64];
        for (ssize_t got = 0; (got = recv(m_ends[0], bytes, sizeof bytes, MSG_DONTWAIT)) > 0;) {
            count += static_cast<std::size_t>(got);
        }
        return count;
    }

    int writeEnd() const { return m_ends[1]; }

    /// The one open descriptor of the device.
    static int deviceDescriptor()
    {
        std::vector<int> found;
        for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
            std::error_code gone;
            if (std::filesystem::read_symlink(entry, gone) == "/dev/urandom") {
                found.push_back(std::stoi(entry.path().filename()));
            }
        }
        EXPECT_EQ(found.size(), 1U);
        return found.empty() ? -1 : found.front();
    }

private:
    int m_descriptor;
    int m_device;
    int m_ends[2]{-1, -1};
};

const std::string sixteenBytes = "\x01\x23\x45\x67\x89\xab\xcd\xef\xfe\xdc\xba\x98\x76\x54\x32\x10";
const std::string asUUID = "01234567-89ab-4def-bedc-ba9876543210";

TEST_F(BlockPortUUIDs, DeviceIsOpenFromTheStartForReadingAndNotInherited)
{
    const int descriptor = RandomDeviceStandIn::deviceDescriptor();
    EXPECT_EQ(fcntl(descriptor, F_GETFL) & O_ACCMODE, O_RDONLY);
    EXPECT_NE(fcntl(descriptor, F_GETFD) & FD_CLOEXEC, 0);
}

TEST_F(BlockPortUUIDs, BytesOfTheDeviceBecomeTheTextWithVersionAndVariantSet)
{
    const RandomDeviceStandIn device;
    device.provide(sixteenBytes);
    EXPECT_EQ(Record::getUUIDFromBlockHandle(1, 1.0, withoutMap), asUUID);
    device.provide(std::string(16, '\xff'));
    EXPECT_EQ(Record::getUUIDFromBlockHandle(1, 1.0, withoutMap), "ffffffff-ffff-4fff-bfff-ffffffffffff");
    device.provide(std::string(16, '\0'));
    EXPECT_EQ(Record::getUUIDFromBlockHandle(1, 1.0, withoutMap), "00000000-0000-4000-8000-000000000000");
}

TEST_F(BlockPortUUIDs, NothingIsReadAhead)
{
    const RandomDeviceStandIn device;
    device.provide(sixteenBytes);
    device.provide(sixteenBytes);
    Record::getUUIDFromBlockHandle(1, 1.0, withoutMap);
    EXPECT_EQ(device.unread(), 16U);
}

TEST_F(BlockPortUUIDs, AShortReadIsContinued)
{
    const RandomDeviceStandIn device;
    device.provide(sixteenBytes.substr(0, 10));
    device.provide(sixteenBytes.substr(10, 1));
    device.provide(sixteenBytes.substr(11));
    EXPECT_EQ(Record::getUUIDFromBlockHandle(1, 1.0, withoutMap), asUUID);
}

int interruptedDevice = -1;

// Runs within the waiting read, which is therefore interrupted before it finds the bytes.
void provideOnSignal(int /*signal*/)
{
    if (write(interruptedDevice, sixteenBytes.data(), sixteenBytes.size()) < 0) {
        std::abort();
    }
}

TEST_F(BlockPortUUIDs, AnInterruptedReadIsTriedAgain)
{
    const RandomDeviceStandIn device;
    interruptedDevice = device.writeEnd();
    struct sigaction provide = {};
    provide.sa_handler = provideOnSignal;  // without SA_RESTART: the read comes back with EINTR
    struct sigaction former = {};
    ASSERT_EQ(sigaction(SIGALRM, &provide, &former), 0);
    const itimerval soon = {{0, 0}, {0, 20000}};
    ASSERT_EQ(setitimer(ITIMER_REAL, &soon, nullptr), 0);

    EXPECT_EQ(Record::getUUIDFromBlockHandle(1, 1.0, withoutMap), asUUID);
    sigaction(SIGALRM, &former, nullptr);
}

TEST_F(BlockPortUUIDs, AFailingReadThrowsAndLeavesNoEntry)
{
    const RandomDeviceStandIn device;
    device.breakReads();
    try {
        Record::getUUIDFromBlockHandle(1, 12.5, withMap);
        FAIL() << "nothing was thrown";
    } catch (const boost::uuids::entropy_error& error) {
        EXPECT_STREQ(error.what(), "read");
        EXPECT_EQ(error.errcode(), EISDIR);
    }
    EXPECT_TRUE(Record::getBlockUUIDmap().empty());
}

TEST_F(BlockPortUUIDs, AFailingReadLeavesARecordForAPortUnmade)
{
    const RandomDeviceStandIn device;
    device.breakReads();
    EXPECT_THROW(Record::createSigSpecFromPort(u"A", "1", 1, 0, 12.5, u"", false), std::runtime_error);
    EXPECT_TRUE(Record::getBlockUUIDmap().empty());
}

TEST_F(BlockPortUUIDs, AStoredUUIDNeedsNoDevice)
{
    Record::addToBlockHandleUUIDmap(1, 12.5, "stored");
    const RandomDeviceStandIn device;
    device.breakReads();
    EXPECT_EQ(Record::getUUIDFromBlockHandle(1, 12.5, withMap), "stored");
}

// ---- records for ports ----------------------------------------------------------------------------

using RecordPtr = std::unique_ptr<Record>;

RecordPtr makePort(int outputPort, double handle)
{
    return RecordPtr(Record::createSigSpecFromPort(u"m/A", "m:1", outputPort, 0, handle, u"m", false));
}

TEST_F(BlockPortUUIDs, RecordsForAnUnknownPortGetDifferentUUIDsAndEnterNone)
{
    EXPECT_NE(makePort(1, 12.5)->getUUID(), makePort(1, 12.5)->getUUID());
    EXPECT_TRUE(Record::getBlockUUIDmap().empty());
}

TEST_F(BlockPortUUIDs, RecordsForAKnownPortGetItsUUID)
{
    Record::addToBlockHandleUUIDmap(1, 12.5, "stored");
    EXPECT_EQ(makePort(1, 12.5)->getUUID(), "stored");
    EXPECT_EQ(makePort(1, 12.5)->getUUID(), "stored");
    EXPECT_NE(makePort(2, 12.5)->getUUID(), "stored");
}

TEST_F(BlockPortUUIDs, RecordsForAKnownPortGetItsEmptyText)
{
    Record::addToBlockHandleUUIDmap(1, 12.5, "");
    EXPECT_EQ(makePort(1, 12.5)->getUUID(), "");
}

}  // namespace
}  // namespace zm_hmi
