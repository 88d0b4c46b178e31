#ifndef ZM_TESTS_REFERENCE_HOST_OBSERVERS_OBSERVERS_TEST_HPP
#define ZM_TESTS_REFERENCE_HOST_OBSERVERS_OBSERVERS_TEST_HPP

#include "hmi_foundation/Initialization.hpp"
#include "host/Exceptions.hpp"
#include "reference_host/calls/HostFunctions.hpp"
#include "reference_host/calls/Warnings.hpp"
#include "reference_host/classes/ClassReflection.hpp"
#include "reference_host/classes/InterfaceManager.hpp"
#include "reference_host/classes/ObjectAccess.hpp"
#include "reference_host/model/OpenModels.hpp"
#include "reference_host/observers/AlignedPaths.hpp"
#include "reference_host/observers/ObserverFunctions.hpp"
#include "reference_host/values/Value.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"
#include "tests/support/HostTest.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace reference_host {

/// An open model with a dashboard and something to observe, and the library behind its two collections,
/// loaded as any host loads it and used as scripts use it.
class ObserversTest : public HostTest {
protected:
    void SetUp() override
    {
        NVInitialize_zm_hmi_foundation();
        for (const char* name : {"InstrumentedSignals", "StreamingClients", "SignalSpecification",
                                 "SignalClient", "ModelObservers", "InterfaceMgr"}) {
            describeClass("Zelmar.HMI." + std::string(name));
        }
        installDiagramFunctions();
        installObserverFunctions();
        InterfaceManager::forgetRenames();
        HostTest::SetUp();
        m_gain.addPort(PortKind::Output, u"y1");
        m_gain.addPort(PortKind::Output, u"y2");
        OpenModels::add(m_model);
        m_signals = ObjectAccess::construct("Zelmar.HMI.InstrumentedSignals", {makeText("plant").get()});
        m_clients = ObjectAccess::construct("Zelmar.HMI.StreamingClients", {makeText("plant").get()});
    }
    void TearDown() override
    {
        OpenModels::closeAll();
        EXPECT_TRUE(Warnings::take().empty()) << "a warning was not expected";
    }

    /// A new object of a class in "Zelmar.HMI" with some of its properties set.
    using Properties = std::vector<std::pair<const char*, OwnedValue>>;
    static OwnedValue make(const std::string& simpleName, const Properties& properties)
    {
        OwnedValue object = ObjectAccess::construct("Zelmar.HMI." + simpleName);
        for (const auto& [name, value] : properties) {
            ObjectAccess::setProperty(object.get(), name, value.get());
        }
        return object;
    }

    static OwnedValue makeCell(const std::u16string& text)
    {
        OwnedValue cells = makeCells(Dimensions(1, 1));
        setCell(cells.get(), 0, makeText(text));
        return cells;
    }

    /// Instruments an output port of a block.
    void addSignal(const Block& block, int port, const char* uuid) const
    {
        Properties properties;
        properties.emplace_back("UUID", makeText(uuid));
        properties.emplace_back("BlockPath_", makeText(block.path()));
        properties.emplace_back("ZID_", makeText(block.zid()));
        properties.emplace_back("OutputPortIndex_", makeDouble(port));
        properties.emplace_back("BindingRule_", makeText("same-name"));
        ObjectAccess::callMethod(m_signals.get(), "add", {make("SignalSpecification", properties).get()});
    }

    /// A client on a block of the dashboard; none for null.
    static OwnedValue makeClient(const Block* block, const char* uuid, const char* signalUUID)
    {
        Properties properties;
        properties.emplace_back("UUID", makeText(uuid));
        properties.emplace_back("SignalUUID_", makeText(signalUUID));
        properties.emplace_back("SourceModel_", makeText("plant"));
        if (block != nullptr) {
            properties.emplace_back("ModelPath_", makeCell(block->path()));
            properties.emplace_back("ModelPathZID_", makeCell(toWide(block->zid())));
        }
        return make("SignalClient", properties);
    }
    void addClient(const Block* block, const char* uuid, const char* signalUUID) const
    {
        ObjectAccess::callMethod(m_clients.get(), "add", {makeClient(block, uuid, signalUUID).get()});
    }

    static std::u16string toWide(const std::string& ascii) { return {ascii.begin(), ascii.end()}; }

    /// Sets the model's observers to the pair of these collections.
    void setObservers() const
    {
        const ObjectAccess::Results pair = ObjectAccess::callStatic(
            "Zelmar.HMI.ModelObservers", "createFromSignalsAndClients", {m_signals.get(), m_clients.get()});
        m_model->setObservers(pair.front().get());
    }

    static OwnedValue property(const OwnedValue& object, const char* name)
    {
        return ObjectAccess::getProperty(object.get(), name);
    }
    static std::string read(const OwnedValue& object, const char* name)
    {
        return describe(property(object, name).get());
    }
    static OwnedValue element(const OwnedValue& collection, int index)
    {
        return std::move(
            ObjectAccess::callMethod(collection.get(), "get", {makeDouble(index).get()}).front());
    }

    /// The text in the first cell of a property.
    static std::string firstText(const OwnedValue& object, const char* name)
    {
        const OwnedValue cells = property(object, name);
        return isEmpty(cells.get()) ? "" : utf8Text(cell(cells.get(), 0));
    }

    /// The UUIDs of the clients, in order.
    std::vector<std::string> clientUUIDs() const
    {
        std::vector<std::string> uuids;
        const auto count = scalarInteger(property(m_clients, "Count").get());
        for (int i = 1; i <= count; ++i) {
            uuids.push_back(utf8Text(property(element(m_clients, i), "UUID").get()));
        }
        return uuids;
    }

    /// Runs what must end in a host error; returns its key.
    static std::string hostError(const std::function<void()>& work)
    {
        try {
            work();
        } catch (const zmsvException& error) {
            return error.id().key();
        }
        ADD_FAILURE() << "expected a host error";
        return {};
    }

    std::shared_ptr<Model> m_model = std::make_shared<Model>(u"plant");
    Block& m_panel = m_model->add(m_model->root(), u"Panel", BlockKind::System);
    Block& m_gauge = m_model->add(m_panel, u"Gauge", BlockKind::Component);
    Block& m_lamp = m_model->add(m_panel, u"Lamp", BlockKind::Component);
    Block& m_gain = m_model->add(m_model->root(), u"Gain", BlockKind::Component);
    OwnedValue m_signals;
    OwnedValue m_clients;
};

}  // namespace reference_host

#endif
