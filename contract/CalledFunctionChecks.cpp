#include "contract/Check.hpp"
#include "contract/Things.hpp"
#include "contract/Values.hpp"

#include <string>

// Host functions that the library calls by name (docs/host-functions.md). The two collections are the
// library's classes, which the kit does not have: it registers plain classes of the same names.

using namespace contract;

namespace {

constexpr const char* signalsClass = "Zelmar.HMI.InstrumentedSignals";
constexpr const char* clientsClass = "Zelmar.HMI.StreamingClients";

/// A class whose objects are empty collections.
class EmptyCollection final {
public:
    explicit EmptyCollection(const char* name) : m_name(name)
    {
        m_count.getValue = [](nvcos::COSInterface* /*instance*/) {
            return nvcos::COSValue(std::uint32_t{0});
        };
        m_model.getValue = [](nvcos::COSInterface* /*instance*/) {
            return nvcos::COSValue(std::u16string());
        };
        m_class.initialize = [this](nvcos::COSClass& cosClass) {
            test_classes::addProperty(cosClass, "Count", "uint32 scalar", &m_count);
            test_classes::addProperty(cosClass, "Model", "unicodeString", &m_model);
            const auto construct = [](test_classes::Call& call) { call.outputCount = 1; };
            test_classes::addMethod(cosClass,
                                    {m_name, {}, {std::string("Zelmar.HMI.") + m_name}, 0, construct});
        };
    }

    void addTo(nvcos::COSNamespace& home) { test_classes::addClass(home, m_name, m_class); }

private:
    const char* m_name;
    test_classes::ClassScript m_class;
    test_classes::PropertyScript m_count;
    test_classes::PropertyScript m_model;
};

/// The namespaces, and with them the host's own classes in them, are there once a library has been loaded.
void actAsTheLibrary()
{
    // Never destroyed: the host keeps the descriptors that refer to them.
    static auto* const signals = new EmptyCollection("InstrumentedSignals");
    static auto* const clients = new EmptyCollection("StreamingClients");
    static auto* const outer = new test_classes::NamespaceScript;
    static auto* const inner = new test_classes::NamespaceScript;
    if (test_classes::findNamespace("Zelmar") == nullptr) {
        test_classes::addNamespace("Zelmar", *outer);
    }
    if (test_classes::findNamespace("Zelmar.HMI") == nullptr) {
        test_classes::addInner(*test_classes::findNamespace("Zelmar"), "HMI", *inner);
    }
    signals->addTo(*test_classes::findNamespace("Zelmar.HMI"));
    clients->addTo(*test_classes::findNamespace("Zelmar.HMI"));
}

OwnedArray makeCollection(const char* name)
{
    return std::move(callHost<1>(name)[0]);
}

bool areEqual(const OwnedArray& left, const OwnedArray& right)
{
    return nvIsLogicalScalarTrue(callHost<1>("isequal", left.get(), right.get())[0].get());
}

OwnedArray makeSignalStruct()
{
    OwnedArray record =
        makeStruct(1, {"UUID", "BlockPath_", "ZID_", "SubPath_", "OutputPortIndex_", "LogicalPortIndex_",
                       "SignalName_", "SubSysPath_", "Decimation_", "MaxPoints_", "TargetBufferedStreaming_",
                       "IsFrameBased_", "HideInDVX_", "DomainType_", "DomainParams_", "VisualType_"});
    for (const char* name :
         {"BlockPath_", "ZID_", "SubPath_", "SignalName_", "SubSysPath_", "DomainType_", "VisualType_"}) {
        setField(record.get(), 0, name, makeText(name));
    }
    setField(record.get(), 0, "UUID", makeText("9b2f6f4e-6a34-4c1e-9b0a-0d9e3c1f2a77"));
    for (const char* name : {"OutputPortIndex_", "LogicalPortIndex_", "Decimation_", "MaxPoints_",
                             "TargetBufferedStreaming_", "IsFrameBased_", "HideInDVX_"}) {
        setField(record.get(), 0, name, makeDouble(1));
    }
    setField(record.get(), 0, "DomainParams_", makeEmpty());
    return record;
}

OwnedArray makeNumber(nvClassID classID)
{
    return OwnedArray(nvCreateNumericScalar(classID, nvComplexity::Real));
}

OwnedArray makeClientStruct()
{
    OwnedArray record = makeStruct(
        1, {"UUID", "ModelPath_", "ModelPathZID_", "SourceModel_", "SignalUUID_", "ObserverType_",
            "ObserverParams_", "UpdateRate_", "DimensionChannel_", "ObserveImaginaryPart_", "BusLeafPath_"});
    for (const char* name : {"UUID", "SourceModel_", "SignalUUID_", "ObserverType_", "BusLeafPath_"}) {
        setField(record.get(), 0, name, makeText(name));
    }
    for (const char* name : {"ModelPath_", "ModelPathZID_"}) {
        OwnedArray cells = makeCells(1);
        setCell(cells.get(), 0, makeText("plant/Tank"));
        setField(record.get(), 0, name, std::move(cells));
    }
    setField(record.get(), 0, "UpdateRate_", makeNumber(nvClassID::UInt32));
    setField(record.get(), 0, "DimensionChannel_", makeNumber(nvClassID::UInt32));
    setField(record.get(), 0, "ObserveImaginaryPart_", makeLogical(true));
    return record;
}

std::string textProperty(const OwnedArray& object, const char* name)
{
    return nvArrayToStdString(readProperty(object.get(), name).get());
}

double numberProperty(const OwnedArray& object, const char* name)
{
    return nvGetScalar(readProperty(object.get(), name).get());
}

OwnedArray makeSignal()
{
    const OwnedArray record = makeSignalStruct();
    return std::move(callHost<1>("Zelmar.HMI.SignalSpecification", record.get())[0]);
}

OwnedArray makeClient()
{
    const OwnedArray record = makeClientStruct();
    return std::move(callHost<1>("Zelmar.HMI.SignalClient", record.get())[0]);
}

OwnedArray makeObservers(const OwnedArray& signals, const OwnedArray& clients)
{
    return std::move(callHost<1>("Zelmar.HMI.ModelObservers.createFromSignalsAndClients", signals.get(),
                                 clients.get())[0]);
}

const nvcos::COSInterface* instanceOf(const OwnedArray& value)
{
    return omGetArrayElement(value.get(), 0).get();
}

}  // namespace

ZM_CHECK(signalIsMadeOfAStruct, "name:Zelmar.HMI.SignalSpecification",
         "A signal object is made of its struct.")
{
    actAsTheLibrary();
    const OwnedArray signal = makeSignal();
    expectTrue(nvIsA(signal.get(), "Zelmar.HMI.SignalSpecification"), "it is of the class");
    expectEqual(textProperty(signal, "UUID"), std::string("9b2f6f4e-6a34-4c1e-9b0a-0d9e3c1f2a77"));
    for (const char* name : {"BlockPath_", "ZID_", "SubPath_", "SignalName_", "SubSysPath_", "VisualType_"}) {
        expectEqual(textProperty(signal, name), std::string(name));
    }
}
ZM_CHECK(signalHasItsNumbers, "name:Zelmar.HMI.SignalSpecification",
         "A signal object has the numbers of its struct.")
{
    actAsTheLibrary();
    const OwnedArray signal = makeSignal();
    for (const char* name : {"OutputPortIndex_", "LogicalPortIndex_", "Decimation_", "MaxPoints_",
                             "TargetBufferedStreaming_", "IsFrameBased_", "HideInDVX_"}) {
        expectEqual(numberProperty(signal, name), 1.0);
    }
}
ZM_CHECK(signalHasItsFurtherProperties, "name:Zelmar.HMI.SignalSpecification",
         "What is not in the struct is assigned as a property: binding rule, cached port, exclusion.")
{
    actAsTheLibrary();
    const OwnedArray signal = makeSignal();
    nvSetProperty(signal.get(), 0, "BindingRule_", makeText("a rule").get());
    nvSetProperty(signal.get(), 0, "CachedBlockHandle_", makeDouble(12.5).get());
    nvSetProperty(signal.get(), 0, "CachedPortIdx_", makeDouble(3).get());
    nvSetProperty(signal.get(), 0, "ExcludeForSave_", makeLogical(true).get());
    expectEqual(textProperty(signal, "BindingRule_"), std::string("a rule"));
    expectEqual(numberProperty(signal, "CachedBlockHandle_"), 12.5);
    expectEqual(numberProperty(signal, "CachedPortIdx_"), 3.0);
    expectTrue(nvIsLogicalScalarTrue(readProperty(signal.get(), "ExcludeForSave_").get()), "excluded");
}
ZM_CHECK(signalHasNoCachedHandleAtFirst, "name:Zelmar.HMI.SignalSpecification",
         "A new signal has no cached handle.")
{
    actAsTheLibrary();
    expectTrue(nvIsEmpty(readProperty(makeSignal().get(), "CachedBlockHandle_").get()), "an empty value");
}
ZM_CHECK(clientIsMadeOfAStruct, "name:Zelmar.HMI.SignalClient", "A client object is made of its struct.")
{
    actAsTheLibrary();
    const OwnedArray client = makeClient();
    expectTrue(nvIsA(client.get(), "Zelmar.HMI.SignalClient"), "it is of the class");
    for (const char* name : {"UUID", "SourceModel_", "SignalUUID_", "ObserverType_", "BusLeafPath_"}) {
        expectEqual(textProperty(client, name), std::string(name));
    }
    expectEqual(numberProperty(client, "UpdateRate_"), 0.0);
    expectTrue(nvIsLogicalScalarTrue(readProperty(client.get(), "ObserveImaginaryPart_").get()), "a logical");
}
ZM_CHECK(clientHasItsPath, "name:Zelmar.HMI.SignalClient", "A client object has the cells of its paths.")
{
    actAsTheLibrary();
    const OwnedArray path = readProperty(makeClient().get(), "ModelPath_");
    expectEqual(nvGetNumberOfElements(path.get()), std::size_t{1});
    expectEqual(nvArrayToStdString(nvGetCell(path.get(), 0)), std::string("plant/Tank"));
}
ZM_CHECK(signalsAreMadeByTheirClass, "name:Zelmar.HMI.InstrumentedSignals",
         "The name of the signals' class makes an object of the registered class.")
{
    actAsTheLibrary();
    expectTrue(nvIsA(makeCollection(signalsClass).get(), signalsClass), "it is of the class");
}
ZM_CHECK(clientsAreMadeByTheirClass, "name:Zelmar.HMI.StreamingClients",
         "The name of the clients' class makes an object of the registered class.")
{
    actAsTheLibrary();
    expectTrue(nvIsA(makeCollection(clientsClass).get(), clientsClass), "it is of the class");
}
ZM_CHECK(observersAreMadeAndSplit,
         "name:Zelmar.HMI.ModelObservers.createFromSignalsAndClients name:getSignalsAndClients",
         "Observers made of two collections give these two back.")
{
    actAsTheLibrary();
    const OwnedArray signals = makeCollection(signalsClass);
    const OwnedArray clients = makeCollection(clientsClass);
    const OwnedArray observers = makeObservers(signals, clients);
    expectTrue(nvIsA(observers.get(), "Zelmar.HMI.ModelObservers"), "it is of the class");
    const auto both = callHost<2>("getSignalsAndClients", observers.get());
    expectTrue(instanceOf(both[0]) == instanceOf(signals), "the signals");
    expectTrue(instanceOf(both[1]) == instanceOf(clients), "the clients");
}
ZM_CHECK(observersMayLackACollection, "name:Zelmar.HMI.ModelObservers.createFromSignalsAndClients",
         "Observers may lack one collection, which is passed as an empty value.")
{
    actAsTheLibrary();
    const OwnedArray signals = makeCollection(signalsClass);
    const OwnedArray observers = makeObservers(signals, makeEmpty());
    const auto both = callHost<2>("getSignalsAndClients", observers.get());
    expectTrue(instanceOf(both[0]) == instanceOf(signals), "the signals");
    expectTrue(nvIsEmpty(both[1].get()), "no clients");
}
ZM_CHECK(onlyObserversAreSplit, "name:getSignalsAndClients", "A value that is no observers is a failure.")
{
    actAsTheLibrary();
    const OwnedArray number = makeDouble(1);
    expectTrue(!callHostNoThrow<2>("getSignalsAndClients", number.get()).succeeded, "a failure");
}
ZM_CHECK(equalValuesAreEqual, "name:isequal", "Values with equal contents are equal.")
{
    actAsTheLibrary();
    expectTrue(areEqual(makeDouble(1), makeDouble(1)), "numbers");
    expectTrue(areEqual(makeText("a"), makeText("a")), "texts");
    expectTrue(areEqual(makeEmpty(), makeEmpty()), "empty values");
    expectTrue(areEqual(makeClientStruct(), makeClientStruct()), "structs");
}
ZM_CHECK(differentValuesAreNotEqual, "name:isequal", "Values with different contents are not equal.")
{
    actAsTheLibrary();
    expectTrue(!areEqual(makeDouble(1), makeDouble(2)), "numbers");
    expectTrue(!areEqual(makeText("a"), makeText("b")), "texts");
    expectTrue(!areEqual(makeDouble(1), makeEmpty()), "a number and an empty value");
    expectTrue(!areEqual(makeStruct(1, {"A"}), makeStruct(1, {"B"})), "structs with other fields");
}
ZM_CHECK(managerTakesANewName, "name:Zelmar.HMI.InterfaceMgr.getInterfaceMgr name:renameModel",
         "The interface manager is told of a model's new name.")
{
    actAsTheLibrary();
    const OwnedArray manager = std::move(callHost<1>("Zelmar.HMI.InterfaceMgr.getInterfaceMgr")[0]);
    const OwnedArray input = manager ? OwnedArray(nvCreateSharedDataCopy(manager.get())) : makeEmpty();
    callHost<0>("renameModel", input.get(), makeText("old").get(), makeText("new").get());
}
ZM_CHECK(editorHearsOfEvents, "name:Zelmar.HMI.zmhmi", "The editor's event function can be called.")
{
    actAsTheLibrary();
    zmsvDiagnostic* diagnostic = nullptr;
    const OwnedArray event = makeText("block_param_change");
    const OwnedArray path = makeText("plant/Tank");
    const nvArray* inputs[] = {event.get(), path.get()};
    diagnostic = zmsvFEVAL_NoThrow(0, nullptr, 2, inputs, "Zelmar.HMI.zmhmi", true);
    if (diagnostic != nullptr) {
        zmsvThrowIExceptionFromDiagnostic(diagnostic, nullptr);
    }
}
