#include "tests/editor/EditorTest.hpp"

#include "hmi_foundation/Initialization.hpp"
#include "host/Text.hpp"
#include "reference_host/classes/BuiltInClasses.hpp"
#include "reference_host/classes/ClassReflection.hpp"
#include "reference_host/classes/ObjectAccess.hpp"
#include "reference_host/model/OpenModels.hpp"
#include "reference_host/observers/AlignedPaths.hpp"
#include "reference_host/observers/ObserverFunctions.hpp"
#include "reference_host/values/Value.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"

namespace editor {

namespace rh = reference_host;
using rh::Block;
using rh::BlockKind;
using rh::ObjectAccess;
using rh::OwnedValue;
using rh::PortKind;

namespace {

void set(const OwnedValue& object, const char* property, const OwnedValue& value)
{
    ObjectAccess::setProperty(object.get(), property, value.get());
}

void appendText(std::string& text, const nvArray* value)
{
    if (rh::isStruct(value)) {
        for (std::size_t i = 0; i < rh::elementCount(value); ++i) {
            for (const std::string& name : rh::fieldNames(value)) {
                text += name + '=';
                appendText(text, rh::field(value, i, name.c_str()));
                text += ';';
            }
            text += '\n';
        }
    } else if (rh::className(value) == "char") {
        text += rh::utf8Text(value);
    } else {
        text += rh::isEmpty(value) ? "[]" : std::to_string(rh::scalar(value));
    }
}

}  // namespace

std::string plain(const std::u16string& text)
{
    return toUtf8(text);
}

EditorTest::EditorTest() = default;

EditorTest::~EditorTest()
{
    rh::OpenModels::closeAll();
}

void EditorTest::SetUp()
{
    NVInitialize_zm_hmi_foundation();
    for (const char* name :
         {rh::signalsClass, "Zelmar.HMI.StreamingClients", "Zelmar.HMI.SignalSpecification",
          "Zelmar.HMI.SignalClient", rh::modelObserversClass, "Zelmar.HMI.InterfaceMgr"}) {
        rh::describeClass(name);
    }
    rh::installDiagramFunctions();
    rh::installObserverFunctions();
    rh::installEditorFunctions();
    HostTest::SetUp();

    model = std::make_shared<rh::Model>(u"plant");
    Block& controller = model->add(root(), u"Controller", BlockKind::System);
    controller.addPort(PortKind::Output, u"status");
    model->add(controller, u"Gain", BlockKind::Component)
        .setPorts(PortKind::Output, {{u"y"}, {u"z"}, {u"w"}});
    Block& tank = model->add(root(), u"Tank", BlockKind::Component);
    tank.setPorts(PortKind::Output, {{u"level"}, {u"flow"}});
    tank.addChart(u"Filling").addState(u"Full");
    rh::OpenModels::add(model);

    const OwnedValue name = rh::makeText(u"plant");
    signals = ObjectAccess::construct(rh::signalsClass, {name.get()});
    clients = ObjectAccess::construct("Zelmar.HMI.StreamingClients", {name.get()});
    const auto observers = ObjectAccess::callStatic(rh::modelObserversClass, "createFromSignalsAndClients",
                                                    {signals.get(), clients.get()});
    model->setObservers(observers.front().get());
}

void EditorTest::addSignal(const Block& block, std::size_t number)
{
    const OwnedValue handle = rh::makeDouble(block.handle());
    const OwnedValue port = rh::makeNumber(static_cast<double>(number), nvClassID::UInt32);
    const auto uuid = ObjectAccess::callStatic(rh::signalsClass, "getUUIDForBlock",
                                               {handle.get(), port.get(), rh::makeLogical(true).get()});
    const OwnedValue signal = ObjectAccess::construct("Zelmar.HMI.SignalSpecification");
    set(signal, "UUID", uuid.front());
    set(signal, "BlockPath_", rh::makeText(block.path()));
    set(signal, "ZID_", rh::makeText(block.zid()));
    set(signal, "OutputPortIndex_", rh::makeDouble(static_cast<double>(number)));
    set(signal, "CachedBlockHandle_", handle);
    set(signal, "CachedPortIdx_", rh::makeDouble(static_cast<double>(number)));
    ObjectAccess::callMethod(signals.get(), "add", {signal.get()});
}

void EditorTest::addSignal(const std::u16string& path, const std::string& zid, double number,
                           const std::u16string& name)
{
    const OwnedValue signal = ObjectAccess::construct("Zelmar.HMI.SignalSpecification");
    set(signal, "UUID", rh::makeText("id-" + std::to_string(records().size())));
    set(signal, "BlockPath_", rh::makeText(path));
    set(signal, "ZID_", rh::makeText(zid));
    set(signal, "SignalName_", rh::makeText(name));
    set(signal, "OutputPortIndex_", rh::makeDouble(number));
    ObjectAccess::callMethod(signals.get(), "add", {signal.get()});
}

void EditorTest::addActivity(const Block& block, const std::u16string& kzid)
{
    OwnedValue params = rh::makeStruct(rh::Dimensions(1, 1), {"KZID", "Activity"});
    rh::setField(params.get(), 0, "KZID", rh::makeText(kzid));
    rh::setField(params.get(), 0, "Activity", rh::makeText(u"Self"));
    const OwnedValue signal = ObjectAccess::construct("Zelmar.HMI.SignalSpecification");
    set(signal, "UUID", rh::makeText("chart-" + std::to_string(records().size())));
    set(signal, "BlockPath_", rh::makeText(block.path()));
    set(signal, "ZID_", rh::makeText(block.zid()));
    set(signal, "DomainType_", rh::makeText(u"kw_state"));
    set(signal, "DomainParams_", params);
    ObjectAccess::callMethod(signals.get(), "add", {signal.get()});
}

void EditorTest::addClient(std::size_t index)
{
    const OwnedValue client = ObjectAccess::construct("Zelmar.HMI.SignalClient");
    set(client, "SignalUUID_", rh::makeText(records().at(index).uuid));
    ObjectAccess::callMethod(clients.get(), "add", {client.get()});
}

std::vector<rh::SignalRecord> EditorTest::records() const
{
    return rh::readSignals(signals.get());
}

std::string EditorTest::persisted() const
{
    std::string text;
    appendText(text, ObjectAccess::getProperty(signals.get(), "Persistence").get());
    return text;
}

bool EditorTest::isObserved(const Block& block, std::size_t number) const
{
    const OwnedValue handle = rh::makeDouble(block.handle());
    const OwnedValue port = rh::makeNumber(static_cast<double>(number), nvClassID::Int32);
    return rh::isTrueScalar(
        ObjectAccess::callMethod(signals.get(), "isGivenPortObserved", {handle.get(), port.get()})
            .front()
            .get());
}

std::vector<std::string> EditorTest::places() const
{
    std::vector<std::string> all;
    for (const rh::SignalRecord& signal : records()) {
        all.push_back(plain(signal.path) + ' ' + std::to_string(signal.outputPort));
    }
    return all;
}

}  // namespace editor
