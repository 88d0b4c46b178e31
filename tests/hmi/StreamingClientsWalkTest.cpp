#include "hmi/HMIEngineUtils.hpp"
#include "hmi/InstrumentedSignals.hpp"
#include "hmi/ModelObservers.hpp"
#include "hmi/StreamingClients.hpp"
#include "hmi_foundation/bindings/StreamingClientsCOSClassInfo.hpp"
#include "host/Text.hpp"
#include "reference_host/classes/BuiltInClasses.hpp"
#include "reference_host/classes/ClassReflection.hpp"
#include "reference_host/classes/ObjectAccess.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"
#include "tests/hmi/ClientsTest.hpp"
#include "tests/hmi/SignalValues.hpp"
#include "tests/hmi_foundation/bindings/RecordingClass.hpp"
#include "tests/support/OperationWalk.hpp"

#include <algorithm>
#include <array>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// Every operation of the streaming clients, of their records, of the model observers and of the editor's
// queries, with every failure inside.

namespace zm_hmi {
namespace {

namespace rh = reference_host;
using nvcos::COSValue;
using operation_walk::Operation;

const std::u16string longName = u"a model name that does not fit in place";

ClientValues walkedClient(const std::string& uuid)
{
    ClientValues values = distinctClient();
    values.uuid = uuid + " of a length that does not fit in place";
    values.sourceModel = u"plant";
    return values;
}

/// A collection of two clients, a record of its own, and what the operations take and fill.
struct Subject {
    rh::OwnedValue object = rh::ObjectAccess::construct("Zelmar.HMI.StreamingClients");
    zm_hmi_foundation::RecordingClass hostClass;
    zm_hmi_foundation::StreamingClientsCOSClassInfo info;
    SignalClientPtr record = makeClient(walkedClient("record"));
    SignalClientPtr same = makeClient(walkedClient("record"));
    rh::OwnedValue clientObject = makeClientObject(walkedClient("object"));
    rh::OwnedValue stored = makePersistedClients({walkedClient("stored 1"), walkedClient("stored 2")});
    rh::OwnedValue pair = rh::ObjectAccess::construct("Zelmar.HMI.ModelObservers");
    rh::OwnedValue model = rh::makeText(u"plant");
    std::vector<SignalClientPtr> observers{3};
    std::vector<InstrumentedSignals::Source> sources{3};
    std::set<double> handles{7.0};
    std::vector<std::u16string> path{u"former"};
    std::u16string subPath = u"former";

    /// A method call with arguments that were made before: only failures inside the call are of interest.
    struct Call {
        const nvcos::COSMethodInfo* method;
        std::vector<COSValue> inputs;
    };
    std::map<std::string, Call, std::less<>> calls;

    Subject()
    {
        info.initializeClass(&hostClass, nullptr);
        hostClass.data = &clients();
        const COSValue self = object.get();
        const COSValue client = clientObject.get();
        prepare("StreamingClients", {longName});
        prepare("add", {self, client});
        prepare("set", {self, std::uint32_t{2}, client});
        prepare("remove", {self, std::uint32_t{1}});
        prepare("get", {self, std::uint32_t{2}});
        clients().setModelName(u"plant");
        clients().add(makeClient(walkedClient("first")));
        clients().add(makeClient(walkedClient("second")));
    }

    StreamingClients& clients() const { return *StreamingClients::getFromNVArray(object.get()); }

    std::string names() const
    {
        return toUtf8(clients().getModelName()) + "|" + toUtf8(clients().getSyncedModelName()) + "\n";
    }
    std::string state() const
    {
        std::ostringstream text;
        text << names();
        for (std::size_t i = 0; i < clients().getCount(); ++i) {
            text << valuesOf(*clients().get(i)) << '\n';
        }
        text << valuesOf(*record) << '\n'
             << observers.size() << ' ' << sources.size() << ' ' << handles.size();
        text << ' ' << path.size() << ' ' << toUtf8(subPath);
        return text.str();
    }
    void checkLookups(const std::string& /*where*/) const {}

    std::string call(std::string_view name) const
    {
        const Call& prepared = calls.find(name)->second;
        COSValue output;
        if (name == "StreamingClients") {
            output = object.get();
        }
        int outputCount = 1;
        prepared.method->invoke(nullptr, outputCount, &output, static_cast<int>(prepared.inputs.size()),
                                prepared.inputs.data());
        nvArray** value = std::get_if<nvArray*>(&output);
        if (value == nullptr || *value == object.get()) {
            return "nothing";
        }
        return OwnedArray(*value) ? "value" : "null";
    }

private:
    void prepare(const char* name, std::vector<COSValue> inputs)
    {
        calls.emplace(name, Call{&hostClass.method(name), std::move(inputs)});
    }
};

std::function<std::string(Subject&)> method(const char* name)
{
    return [name](Subject& subject) { return subject.call(name); };
}

std::function<std::string(Subject&)> action(std::function<void(Subject&)> body)
{
    return [body = std::move(body)](Subject& subject) {
        body(subject);
        return std::string();
    };
}

/// The collection keeps its names; each client has the old name or the new one.
void expectNamesOfBefore(Subject& subject, const std::string& before)
{
    EXPECT_EQ(before.substr(0, before.find('\n') + 1), subject.names());
}

/// Each element before the failing one is entered completely.
void expectFirstElementsOnly(Subject& subject, const std::string& /*before*/)
{
    const std::size_t count = subject.clients().getCount();
    ASSERT_GE(count, 2U);
    ASSERT_LT(count, 4U);
    if (count == 3) {
        EXPECT_EQ(valuesOf(*subject.clients().get(2)), walkedClient("stored 1"));
    }
}

void expectNoSourcesOrAll(Subject& subject, const std::string& /*result*/)
{
    EXPECT_TRUE(subject.sources.empty() || subject.sources.size() == 2U);
}

void expectNoPathOrAll(Subject& subject, const std::string& /*result*/)
{
    EXPECT_TRUE(subject.path.empty() || subject.path.size() == 3U || subject.path.front() == u"former");
    EXPECT_EQ(subject.path.empty(), subject.subPath.empty());
}

OwnedArray emptyElement()
{
    constexpr std::array<std::size_t, 2> scalar = {1, 1};
    return OwnedArray(nvCreateStructArray(scalar.size(), scalar.data(), SignalClient::getNumStructFields(),
                                          SignalClient::getStructFields()));
}

std::string isOrNot(bool answer)
{
    return answer ? "is" : "is not";
}

std::string split(Subject& subject)
{
    const ModelObservers observers(subject.pair.get());
    nvArray* signals = nullptr;
    nvArray* clients = nullptr;
    observers.getSignalsAndClients(signals, clients);
    const OwnedArray first(signals);
    const OwnedArray second(clients);
    return "split";
}

std::vector<Operation<Subject>> methodsAndProperties()
{
    return {
        {.name = "StreamingClients.StreamingClients",
         .run = method("StreamingClients"),
         .isExported = true,
         .afterException = expectNamesOfBefore},
        {.name = "StreamingClients.add", .run = method("add"), .isExported = true},
        {.name = "StreamingClients.set", .run = method("set"), .isExported = true},
        {.name = "StreamingClients.remove", .run = method("remove"), .isExported = true},
        {.name = "StreamingClients.get", .run = method("get"), .isExported = true},
        {.name = "StreamingClients.Model",
         .run = action([](Subject& subject) {
             nvcos::COSPropInfo& property = *subject.hostClass.properties[0];
             property.setValue(nullptr, std::u16string(u"tank"));
             property.getValue(nullptr);
         }),
         .isExported = true,
         .afterException =
             [](Subject& subject, const std::string&) {
                 const std::u16string& name = subject.clients().getModelName();
                 EXPECT_TRUE(name == u"plant" || name == u"tank");
             }},
        {.name = "StreamingClients.Count",
         .run = action([](Subject& subject) { subject.hostClass.properties[1]->getValue(nullptr); }),
         .isExported = true},
        {.name = "StreamingClients.Persistence",
         .run = action([](Subject& subject) {
             nvcos::COSPropInfo& property = *subject.hostClass.properties[2];
             const nvcos::COSValue value = property.getValue(nullptr);
             property.releaseValue(nullptr, value);
         }),
         .isExported = true},
    };
}

std::vector<Operation<Subject>> collectionFunctions()
{
    return {
        {.name = "StreamingClients::setModelName",
         .run = action([](Subject& subject) { subject.clients().setModelName(longName); }),
         .isExported = true,
         .afterException = expectNamesOfBefore},
        {.name = "StreamingClients::setFromPersistenceData",
         .run =
             action([](Subject& subject) { subject.clients().setFromPersistenceData(subject.stored.get()); }),
         .isExported = true,
         .afterException = expectFirstElementsOnly,
         .canBeRetried = false},  // the elements that were read would be there twice
        {.name = "StreamingClients::getPersistenceData",
         .run = action([](Subject& subject) { subject.clients().getPersistenceData(); }),
         .isExported = true},
        {.name = "StreamingClients::copy",
         .run = action([](Subject& subject) { subject.clients().copy(); }),
         .isExported = true},
        {.name = "StreamingClients::isEqual",
         .run = [](Subject& subject) { return isOrNot(subject.clients().isEqual(&subject.clients())); },
         .isExported = true,
         .afterFallback = [](Subject&, const std::string&) {}},
        {.name = "StreamingClients::add",
         .run = action([](Subject& subject) { subject.clients().add(subject.record); }),
         .isExported = true},
        {.name = "StreamingClients::set",
         .run = action([](Subject& subject) { subject.clients().set(0, subject.record); }),
         .isExported = true},
        {.name = "StreamingClients::remove",
         .run = action([](Subject& subject) { subject.clients().remove(0); }),
         .isExported = true},
        {.name = "StreamingClients::getShared",
         .run = action([](Subject& subject) { subject.clients().getShared(1); }),
         .isExported = true},
        {.name = "StreamingClients::isValidType",
         .run = [](Subject& subject) { return isOrNot(StreamingClients::isValidType(subject.object.get())); },
         .isExported = true},
        {.name = "StreamingClients::getFromNVArray",
         .run = action([](Subject& subject) { StreamingClients::getFromNVArray(subject.object.get()); }),
         .isExported = true},
        {.name = "StreamingClients::getAlignedObservers",
         .run = action([](Subject& subject) {
             StreamingClients::getAlignedObservers(subject.object.get(), subject.observers);
         }),
         .isExported = true,
         // Cleared first; observers that were read before the failing one are there.
         .afterException = [](Subject& subject,
                              const std::string&) { EXPECT_LT(subject.observers.size(), 2U); },
         .afterFallback = [](Subject& subject,
                             const std::string&) { EXPECT_NE(subject.observers.size(), 3U); }},
        {.name = "StreamingClients::handleModelRename",
         .run = action([](Subject& subject) { StreamingClients::handleModelRename(subject.object.get()); }),
         .isExported = true},
        {.name = "StreamingClients::validateAndRemoveUnused",
         .run = action(
             [](Subject& subject) { StreamingClients::validateAndRemoveUnused(subject.object.get()); }),
         .isExported = true},
    };
}

std::vector<Operation<Subject>> recordFunctions()
{
    return {
        {.name = "SignalClient::SignalClient",
         .run = action([](Subject& subject) {
             const SignalClient fromObject(subject.clientObject.get(), 0, u"plant");
             const SignalClient fromStruct(subject.stored.get(), 1, u"plant");
         }),
         .isExported = true},
        {.name = "SignalClient::clone",
         .run = action(
             [](Subject& subject) { const std::unique_ptr<SignalClient> made(subject.record->clone()); }),
         .isExported = true},
        {.name = "SignalClient::isEqual",
         .run = [](Subject& subject) { return isOrNot(subject.record->isEqual(subject.same.get())); },
         .isExported = true,
         .afterFallback = [](Subject&, const std::string&) {}},
        {.name = "SignalClient::isDeprecatedObserver",
         .run = [](Subject& subject) { return isOrNot(subject.record->isDeprecatedObserver()); },
         .isExported = true},
        {.name = "SignalClient::createStructData",
         .run = action(
             [](Subject& subject) { subject.record->createStructData(emptyElement().get(), 0, longName); }),
         .isExported = true},
        {.name = "SignalClient::getPersistenceData",
         .run = action([](Subject& subject) { subject.record->getPersistenceData(emptyElement().get(), 0); }),
         .isExported = true},
        {.name = "SignalClient::setFromPersistentData",
         .run =
             action([](Subject& subject) { subject.record->setFromPersistentData(subject.stored.get(), 1); }),
         .isExported = true,
         .afterFallback = [](Subject&, const std::string&) {}},
        {.name = "SignalClient::setFromNVCOS",
         .run = action(
             [](Subject& subject) { subject.record->setFromNVCOS(subject.clientObject.get(), longName); }),
         .isExported = true,
         .afterFallback = [](Subject&, const std::string&) {}},
        {.name = "SignalClient::setObserverParams",
         .run = action([](Subject& subject) { subject.record->setObserverParams(subject.model.get()); }),
         .isExported = true,
         .afterFallback = [](Subject&, const std::string&) {}},
        {.name = "SignalClient::getNVCOSObject",
         .run = action([](Subject& subject) { subject.record->getNVCOSObject(longName); }),
         .isExported = true},
        {.name = "SignalClient::stripModelName",
         .run = action([](Subject& subject) {
             subject.record->stripModelName(subject.record->getModelPath().front());
         }),
         .isExported = true},
        {.name = "SignalClient::renameModel",
         .run = action([](Subject& subject) { subject.record->renameModel(u"plant", longName); }),
         .isExported = true,
         .afterFallback = [](Subject&, const std::string&) {}},
        {.name = "SignalClient::getSignalSpecification",
         .run = action([](Subject& subject) { subject.record->getSignalSpecification(longName); }),
         .isExported = true},
        {.name = "SignalClient::getAlignedPortIndex",
         .run = action([](Subject& subject) { subject.record->getAlignedPortIndex(longName); }),
         .isExported = true},
        {.name = "SignalClient::getDecimation",
         .run = action([](Subject& subject) { subject.record->getDecimation(longName); }),
         .isExported = true},
        {.name = "SignalClient::getMaxPoints",
         .run = action([](Subject& subject) { subject.record->getMaxPoints(longName); }),
         .isExported = true},
        {.name = "SignalClient::getAlignedBlockPath",
         .run = action([](Subject& subject) {
             subject.record->getAlignedBlockPath(longName, subject.path, subject.subPath);
         }),
         .isExported = true,
         .afterException = expectNoPathOrAll,
         .afterFallback = expectNoPathOrAll},
    };
}

std::vector<Operation<Subject>> otherFunctions()
{
    return {
        {.name = "ModelObservers::ModelObservers", .run = split, .isExported = true},
        {.name = "ModelObservers::getSignalsAndClients", .run = split, .isExported = true},
        {.name = "ModelObservers::validateDataFormat",
         .run = action([](Subject& subject) { ModelObservers::validateDataFormat(subject.pair.get()); }),
         .isExported = true},
        {.name = "ModelObservers::createFromSignalsAndClients",
         .run = action([](Subject& subject) {
             OwnedArray(ModelObservers::createFromSignalsAndClients(nullptr, subject.object.get()));
         }),
         .isExported = true},
        {.name = "InstrumentedSignals::getObservedPorts",
         .run = action([](Subject& subject) {
             InstrumentedSignals::getObservedPorts(subject.model.get(), "a text that does not fit in place",
                                                   "", subject.sources, true, false);
         }),
         .isExported = true,
         .afterFallback = expectNoSourcesOrAll},
        {.name = "InstrumentedSignals::getPortsWithBadges",
         .run = action([](Subject& subject) {
             InstrumentedSignals::getPortsWithBadges(subject.model.get(), subject.handles);
         }),
         .isExported = true},
        {.name = "HMIEngineUtils::updateParamsForBlock",
         .run = action([](Subject&) { HMIEngineUtils::updateParamsForBlock(longName); }),
         .isExported = true},
    };
}

/// After these the collection, the record or the list of observers holds other values.
const std::set<std::string> keepingOperations = {
    "StreamingClients.add",
    "StreamingClients.set",
    "StreamingClients.StreamingClients",
    "StreamingClients.Model",
    "StreamingClients::setModelName",
    "StreamingClients::setFromPersistenceData",
    "StreamingClients::getAlignedObservers",
    "SignalClient::setFromPersistentData",
    "SignalClient::setFromNVCOS",
    "SignalClient::setObserverParams",
    "SignalClient::renameModel",
};

/// For these a null from the host means that a field or property is missing: a record then has an empty
/// member, and parameters without the field "ModelName" stay as they are.
const std::set<std::string> acceptingNull = {
    "StreamingClients.add",   "StreamingClients.set",           "StreamingClients.StreamingClients",
    "StreamingClients.Model", "StreamingClients::setModelName", "StreamingClients::setFromPersistenceData",
};

std::vector<Operation<Subject>> everyOperation()
{
    std::vector<Operation<Subject>> all = methodsAndProperties();
    for (auto* part : {collectionFunctions, recordFunctions, otherFunctions}) {
        std::ranges::move(part(), std::back_inserter(all));
    }
    for (Operation<Subject>& operation : all) {
        operation.keepsValues = keepingOperations.contains(operation.name);
        if (acceptingNull.contains(operation.name)) {
            operation.afterFallback = [](Subject&, const std::string&) {};
        }
    }
    return all;
}

class StreamingClientsWalk : public ClientsTest, public testing::WithParamInterface<std::size_t> {
private:
    static void giveClients(rh::HostFunctionCall& call)
    {
        std::vector<nvcos::COSInterfacePtr> instances;
        for (const char* uuid : {"a", "b"}) {
            instances.push_back(rh::objects(makeClientObject(clientNamed(uuid)).get()).front());
        }
        call.setOutput(0, rh::ObjectAccess::makeObjectArray("Zelmar.HMI.SignalClient", instances));
    }
    static void givePorts(rh::HostFunctionCall& call)
    {
        for (std::size_t i = 0; i < 10; ++i) {
            const bool isText = i == 0 || i == 7 || i == 9;
            rh::OwnedValue column = isText ? rh::makeCells(rh::Dimensions(2, 1))
                                           : rh::makeNumeric(rh::Dimensions(2, 1), nvClassID::Double);
            call.setOutput(i, std::move(column));
        }
    }

    const rh::ScopedHostFunction m_aligned{"getAlignedObservers", giveClients};
    const rh::ScopedHostFunction m_manager{
        "Zelmar.HMI.InterfaceMgr.getInterfaceMgr",
        [](rh::HostFunctionCall& call) { call.setOutput(0, rh::makeDouble(1)); }};
    const rh::ScopedHostFunction m_rename{"renameModel", giveNothing};
    const rh::ScopedHostFunction m_validate{"validateAndRemoveUnused", giveNothing};
    const rh::ScopedHostFunction m_ports{"getObservedPorts", givePorts};
    const rh::ScopedHostFunction m_badges{
        "getPortsWithBadges", [](rh::HostFunctionCall& call) { call.setOutput(0, rh::makeDouble(9)); }};
    const rh::ScopedHostFunction m_split{"getSignalsAndClients", rh::getSignalsAndClients};
};

TEST_P(StreamingClientsWalk, CompletesOrLeavesEverythingAsItWas)
{
    const Operation<Subject> operation = everyOperation()[GetParam()];
    const auto make = [] { return std::make_unique<Subject>(); };
    make();
    for (const operation_walk::Failure& failure : operation_walk::everyFailure()) {
        operation_walk::walk<Subject>(operation, failure, make);
    }
}

INSTANTIATE_TEST_SUITE_P(Operations, StreamingClientsWalk,
                         testing::Range(std::size_t{0}, everyOperation().size()), [](const auto& test) {
                             std::string name = everyOperation()[test.param].name;
                             std::erase_if(name, [](char c) { return c == ':' || c == '.'; });
                             return name + std::to_string(test.param);
                         });

// ---- the table is complete ------------------------------------------------------------------------------

std::set<std::string> walkedNames()
{
    std::set<std::string> names;
    for (const Operation<Subject>& operation : everyOperation()) {
        names.insert(operation.name);
    }
    return names;
}

class StreamingClientsWalkTable : public ClientsTest {};

TEST_F(StreamingClientsWalkTable, HasEachRegisteredMethodAndProperty)
{
    const rh::ClassDescription description = rh::describeClass("Zelmar.HMI.StreamingClients");
    const std::set<std::string> walked = walkedNames();
    EXPECT_TRUE(walked.contains("StreamingClients." + description.constructor->name));
    for (const rh::MethodDescription& each : description.methods) {
        EXPECT_TRUE(walked.contains("StreamingClients." + each.name)) << each.name;
    }
    for (const rh::PropertyDescription& each : description.properties) {
        EXPECT_TRUE(walked.contains("StreamingClients." + each.name)) << each.name;
    }
}

/// Exported functions of the walked classes, by name, as the checked-in list has them.
std::set<std::string> exportedNames()
{
    std::ifstream list(ZM_EXPORTS);
    std::set<std::string> names;
    for (std::string line; std::getline(list, line);) {
        std::string name = line.substr(0, line.find('('));
        const bool isWalked =
            name.starts_with("zm_hmi::SignalClient::") || name.starts_with("zm_hmi::StreamingClients::") ||
            name.starts_with("zm_hmi::ModelObservers::") || name.starts_with("zm_hmi::HMIEngineUtils::");
        if (isWalked && name.find('~') == std::string::npos) {
            names.insert(name.substr(std::string("zm_hmi::").size()));
        }
    }
    return names;
}

TEST_F(StreamingClientsWalkTable, HasEachExportedFunction)
{
    // These cannot fail; the last two are parts of `isEqual` and of the reading of a record.
    const std::set<std::string> withoutFailure = {
        "SignalClient::getStructFields", "SignalClient::getNumStructFields", "SignalClient::hasEqualMembers",
        "SignalClient::swapFields"};
    const std::set<std::string> walked = walkedNames();
    const std::set<std::string> exported = exportedNames();
    EXPECT_GT(exported.size(), 30U) << "read from " << ZM_EXPORTS;
    for (const std::string& name : exported) {
        EXPECT_TRUE(walked.contains(name) || withoutFailure.contains(name)) << name;
    }
}

}  // namespace
}  // namespace zm_hmi
