#include "hmi/InstrumentedSignals.hpp"

#include "host/Exceptions.hpp"
#include "host/Text.hpp"
#include "reference_host/classes/ObjectAccess.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "tests/hmi/LibraryTest.hpp"
#include "tests/hmi/LiteralSignals.hpp"
#include "tests/hmi/RebindingAccess.hpp"
#include "tests/hmi/SignalValues.hpp"
#include "tests/support/OperationWalk.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

// Every operation of the signals collection and of its records, with every failure that can happen inside.

namespace zm_hmi {
namespace {

namespace rh = reference_host;
using operation_walk::Failure;

zmPort* port(std::size_t address)
{
    return reinterpret_cast<zmPort*>(address);  // never looked into
}

const std::vector<double> handlePool = {0.0, 1.5, 2.5, 3.5, 9.0};
const std::vector<int> portPool = {0, 1, 2, 3, 7};
const std::vector<std::u16string> pathPool = {u"A", u"B", u"C\xd800", u"New"};

/// A collection with bound, unbound and chart elements, a path that only the host can convert, and a filled
/// port cache. Beside it, what the operations need.
struct Subject {
    Subject();
    std::string state();
    void checkLookups(const std::string& where);

    bool isInStep = true;  // the port map with the elements
    InstrumentedSignals signals;
    InstrumentedSignals other;  // of the chart difference
    SignalSpecificationPtr port = makeSignal(
        {.uuid = "new", .blockPath = u"New", .outputPort = 3, .cachedHandle = 3.5, .cachedPort = 3});
    SignalSpecificationPtr illFormed = makeSignal({.blockPath = u"New\xdc00", .outputPort = 1});
    SignalSpecificationPtr chart = makeSignal(stateValues("8", u"5", u"Child"));
    rh::OwnedValue persisted =
        makePersisted({portValues(u"L1", 1), portValues(u"L2\xd800", 2), stateValues("9", u"3", u"Leaf")});
    rh::OwnedValue specObject = makeSignalObject(distinctValues());
    // Made here, because what an operation is given is not to fail.
    std::vector<zmPort*> ports = {zm_hmi::port(2), zm_hmi::port(3)};
    std::u16string longName = u"a name that is not short";
    std::u16string pathA = u"plant/A";
    std::u16string pathC = u"plant/C\xd800";
    std::vector<InstrumentedSignals::PortNumbers> blocks = {{1.5, u"plant/A", "plant:1", {2, 1}},
                                                            {7.5, u"plant/B", "plant:2", {1, 3}}};
    rh::OwnedValue collection = rh::ObjectAccess::construct("Zelmar.HMI.InstrumentedSignals");
};

Subject::Subject()
{
    signals.setModelName(u"plant");
    signals.add(makeSignal({.uuid = "u1",
                            .blockPath = u"A",
                            .zid = "1",
                            .outputPort = 1,
                            .cachedHandle = 1.5,
                            .cachedPort = 1}));
    signals.add(makeSignal({.blockPath = u"B", .zid = "2", .outputPort = 2, .excludeForSave = true}));
    signals.add(makeSignal({.blockPath = u"C\xd800", .outputPort = 1}));
    signals.add(makeSignal(stateValues("7", u"3", u"Self")));
    signals.add(makeSignal(stateValues("7", u"0", u"Data")));
    signals.add(
        makeSignal({.blockPath = u"A", .zid = "1", .outputPort = 2, .cachedHandle = 1.5, .cachedPort = 2}));
    signals.add(makeSignal({.zid = "4",
                            .domainType = u"kw_data",
                            .domainParams = {{u"KZID", u"3"}, {u"Activity", u"Leaf"}},
                            .outputPort = 1}));
    other.add(makeSignal(stateValues("7", u"3", u"Child")));
    signals.cacheZMPorts({zm_hmi::port(1)});
}

std::string Subject::state()
{
    std::ostringstream text;
    text << "model of " << signals.getModelName().size() << "\n";
    for (std::size_t i = 0; i < signals.getCount(); ++i) {
        const SignalSpecificationPtr record = signals.get(i);
        text << valuesOf(*record) << " held " << record.use_count() << "\n";
    }
    text << "spare held " << port.use_count() << illFormed.use_count() << chart.use_count() << "\n";
    text << "cached port " << signals.isZMPortObserved(zm_hmi::port(1))
         << signals.isZMPortObserved(zm_hmi::port(2)) << ", any " << signals.isAnyPortObserved()
         << "\nby handle ";
    for (const double handle : handlePool) {
        for (const int number : portPool) {
            text << signals.isPortObserved(handle, number);
        }
    }
    text << "\nby path ";
    for (const std::u16string& path : pathPool) {
        for (const int number : {1, 2, 3}) {
            text << signals.isPortObserved(99.0, path, u"", number, 0, 0);
        }
    }
    text << "\ncharts ";
    for (const char16_t* zid : {u"4", u"7", u"8", u"9"}) {
        for (const double kzid : {0.0, 3.0, 5.0}) {
            text << signals.isAnyKWActivityObserved(zid, kzid);
            for (const char16_t* activity : {u"Self", u"Child", u"Leaf", u"Data"}) {
                text << signals.isKWActivityObserved(zid, kzid, activity);
            }
        }
    }
    return text.str();
}

// The operations below leave the port map in step with the elements, so that a literal list of the elements
// answers the same.
void Subject::checkLookups(const std::string& where)
{
    if (!isInStep) {
        return;
    }
    LiteralSignals literal;
    literal.setModelName(signals.getModelName());
    for (std::size_t i = 0; i < signals.getCount(); ++i) {
        literal.add(std::make_shared<SignalValues>(valuesOf(*signals.get(i))));
    }
    EXPECT_EQ(signals.isAnyPortObserved(), literal.isAnyPortObserved()) << where;
    for (const double handle : handlePool) {
        for (const int number : portPool) {
            EXPECT_EQ(signals.isPortObserved(handle, number), literal.isPortObserved(handle, number))
                << where << ": " << handle << ", " << number;
        }
    }
    for (const std::u16string& path : pathPool) {
        for (const int number : {1, 2, 3}) {
            EXPECT_EQ(signals.isPortObserved(99.0, path, u"", number, 0, 0),
                      literal.isPortObserved(99.0, path, u"", number, 0, 0, {}))
                << where << ": path, " << number;
        }
    }
}

std::unique_ptr<Subject> makeSubject()
{
    return std::make_unique<Subject>();
}

std::unique_ptr<Subject> makeSubjectWithIllFormedName()
{
    auto subject = makeSubject();
    subject->signals.setModelName(u"pl\xd800nt");
    subject->signals.updateObservedPortMap();
    subject->signals.cacheZMPorts({port(1)});
    return subject;
}

template <class Action>
std::function<std::string(Subject&)> running(Action action)
{
    return [action](Subject& subject) {
        if constexpr (std::is_void_v<decltype(action(subject))>) {
            action(subject);
            return std::string();
        } else {
            std::ostringstream text;
            text << action(subject);
            return text.str();
        }
    };
}

/// The error of an index that is too large is a result like any other.
template <class Action>
std::function<std::string(Subject&)> refusing(Action action)
{
    return [action](Subject& subject) -> std::string {
        try {
            action(subject);
        } catch (const zmsvException& error) {
            if (error.id().key() != "InvalidElementIndex") {
                throw;
            }
            return error.what();
        }
        return "not refused";
    };
}

void acceptAnything(Subject& /*subject*/, const std::string& /*result*/) {}

using Row = operation_walk::Operation<Subject>;
using Rows = std::vector<Row>;

Rows elementRows()
{
    return {
        {"add a port", running([](Subject& s) { s.signals.add(s.port); })},
        {"add a port that the host converts", running([](Subject& s) { s.signals.add(s.illFormed); })},
        {"add a chart", running([](Subject& s) { s.signals.add(s.chart); })},
        {"add an element again", running([](Subject& s) { s.signals.add(s.signals.get(0)); })},
        {"insert a port", running([](Subject& s) { s.signals.insert(1, s.port); })},
        {"insert a chart", running([](Subject& s) { s.signals.insert(0, s.chart); })},
        {"set a port to a port", running([](Subject& s) { s.signals.set(0, s.port); })},
        {"set a port to itself", running([](Subject& s) { s.signals.set(0, s.signals.get(0)); })},
        {"set a port to one that the host converts",
         running([](Subject& s) { s.signals.set(2, s.illFormed); })},
        {"set a port to a chart", running([](Subject& s) { s.signals.set(1, s.chart); })},
        {"set a chart to a port", running([](Subject& s) { s.signals.set(3, s.port); })},
        {"remove a port", running([](Subject& s) { s.signals.remove(0); })},
        {"remove a port that the host converts", running([](Subject& s) { s.signals.remove(2); })},
        {"remove a chart", running([](Subject& s) { s.signals.remove(3); })},
        {"remove by record", running([](Subject& s) { s.signals.remove(*s.signals.get(2)); })},
        {"remove an unknown record", running([](Subject& s) { s.signals.remove(*s.port); })},
        {"get past the end", refusing([](Subject& s) { s.signals.get(7); })},
        {"insert past the end", refusing([](Subject& s) { s.signals.insert(8, s.port); })},
        {"set past the end", refusing([](Subject& s) { s.signals.set(7, s.port); })},
        {"remove past the end", refusing([](Subject& s) { s.signals.remove(7); })},
        {"compare", running([](Subject& s) { return s.signals.isEqual(&s.other); })},
    };
}

Rows portRows()
{
    return {
        {"rebuild", running([](Subject& s) { s.signals.updateObservedPortMap(); })},
        {"enter", running([](Subject& s) { s.signals.addToObservedPortMap(s.signals.get(2)); })},
        {"query that binds",
         running([](Subject& s) { return s.signals.isPortObserved(9.0, u"B", u"", 2, 7, 0); })},
        {"query that binds what the host converts",
         running([](Subject& s) { return s.signals.isPortObserved(9.0, u"C\xd800", u"", 1, 7, 0); })},
        {"query by handle", running([](Subject& s) { return s.signals.isPortObserved(1.5, 2); })},
        {"query by record", running([](Subject& s) { return s.signals.isPortObserved(s.illFormed.get()); })},
        {.name = "cache ports",
         .run = running([](Subject& s) { s.signals.cacheZMPorts(s.ports); }),
         .isExported = true},
        {.name = "ask for a cached port",
         .run = running([](Subject& s) { return s.signals.isZMPortObserved(port(1)); }),
         .isExported = true},
    };
}

Rows chartRows()
{
    return {
        {"enter a chart", running([](Subject& s) { s.signals.addToObservedKWObjectCache(s.chart); })},
        {"remove a chart",
         running([](Subject& s) { s.signals.removeFromObservedKWObject(s.signals.get(3)); })},
        {"enter an activity",
         running([](Subject& s) { s.signals.addToObservedKWActivity("8", "5", "Leaf"); })},
        {"remove an activity",
         running([](Subject& s) { s.signals.removeObservedKWActivity("7", "3", "Self"); })},
        {"ask for an activity",
         running([](Subject& s) { return s.signals.isKWActivityObserved(u"plant:7", 3.0, u"Self"); })},
        {"ask for any activity",
         running([](Subject& s) { return s.signals.isAnyKWActivityObserved(u"plant:7", 4.0); })},
        {.name = "chart difference",
         .run = running([](Subject& s) { return s.signals.setDifference_kw(&s.other).size(); }),
         .isExported = true},
    };
}

Row renumbering(const char* name, double handle, std::u16string Subject::*path, const char* zid,
                const std::vector<int>& numbers)
{
    return {.name = name,
            .run = running([handle, path, zid = std::string(zid), numbers](Subject& s) {
                s.signals.renumberPorts(handle, s.*path, zid, numbers);
            }),
            .isExported = true};
}

Rows renumberingRows()
{
    return {
        renumbering("swap two ports", 1.5, &Subject::pathA, "plant:1", {2, 1}),
        renumbering("delete a port and move another", 1.5, &Subject::pathA, "plant:1", {0, 1}),
        renumbering("delete the first of three", 1.5, &Subject::pathA, "plant:1", {0, 1, 2}),
        renumbering("renumber a path that the host converts", 7.5, &Subject::pathC, "", {5}),
        renumbering("delete a chart", 7.5, &Subject::longName, "plant:4", {0}),
        {.name = "renumber several blocks",
         .run = running([](Subject& s) { s.signals.renumberPorts(s.blocks); }),
         .isExported = true},
    };
}

Rows hostFormRows()
{
    return {
        {"set the model name", running([](Subject& s) {
             s.isInStep = false;  // entries keep the keys of the old name
             s.signals.setModelName(s.longName);
         })},
        {.name = "save",
         .run =
             running([](Subject& s) { return nvGetNumberOfElements(s.signals.getPersistenceData().get()); }),
         .isForShortMemory = false},
        {.name = "load",
         .run = running([](Subject& s) { s.signals.setFromPersistenceData(s.persisted.get()); }),
         // The elements are added one by one, and those before the failure stay: checkLookups sees that each
         // is fully entered.
         .afterException = [](Subject& s, const std::string&) { EXPECT_LT(s.signals.getCount(), 10U); },
         .afterFallback = acceptAnything,
         .canBeRetried = false},
        {"copy all", running([](Subject& s) {
             return InstrumentedSignals::getFromNVArray(s.signals.copy(false).get())->getCount();
         })},
        {"copy for saving", running([](Subject& s) {
             return InstrumentedSignals::getFromNVArray(s.signals.copy(true).get())->getCount();
         })},
        {"find the collection", running([](Subject& s) {
             return InstrumentedSignals::isValidType(s.collection.get()) &&
                    InstrumentedSignals::getFromNVArray(s.collection.get()) != nullptr;
         })},
        {.name = "rebind",
         .run = running([](Subject& s) {
             RebindingAccess::pending(*InstrumentedSignals::getFromNVArray(s.collection.get())) = true;
             InstrumentedSignals::applyRebindingRules(s.collection.get(), true);
         }),
         .isExported = true,
         .afterException =
             [](Subject& s, const std::string&) {
                 EXPECT_FALSE(
                     RebindingAccess::pending(*InstrumentedSignals::getFromNVArray(s.collection.get())));
             }},
    };
}

Rows recordRows()
{
    return {
        {.name = "read a persisted record",
         .run = running([](Subject& s) { return valuesOf(SignalSpecification(s.persisted.get(), 2, u"")); }),
         .afterFallback = acceptAnything},
        {.name = "read an object",
         .run = running(
             [](Subject& s) { return valuesOf(SignalSpecification(s.specObject.get(), 0, u"plant")); }),
         .afterFallback = acceptAnything},
        {"clone", running([](Subject& s) {
             return valuesOf(*std::unique_ptr<SignalSpecification>(s.port->clone()));
         })},
        {"make from a port", running([](Subject&) {
             const std::unique_ptr<SignalSpecification> made(SignalSpecification::createSigSpecFromPort(
                 u"plant/a block with a long name", "plant:5", 1, 0, 2.5, u"plant", true));
             return toUtf8(made->getBlockPath());
         })},
        {.name = "make an object",
         .run = running([](Subject& s) { return s.port->getNVCOSObject(u"plant", false) != nullptr; }),
         .afterFallback = acceptAnything,
         .isForShortMemory = false},
        {.name = "make a struct",
         .run = running([](Subject& s) { return s.port->getNVCOSObject(u"plant", true) != nullptr; }),
         .afterFallback = acceptAnything},
        {.name = "ask for the aligned path",
         .run = running([](Subject& s) { return toUtf8(s.port->getAlignedBlockPath(u"plant")); }),
         .afterFallback = acceptAnything,
         .isForShortMemory = false},
        {"UUID of a block port", running([](Subject&) {
             return SignalSpecification::getUUIDFromBlockHandle(1, 1234567890.5, true).size();
         })},
        {"enter a UUID", running([](Subject&) {
             SignalSpecification::addToBlockHandleUUIDmap(2, 1234567890.5, "a text that is not short enough");
         })},
    };
}

class SignalsWalk : public LibraryTest {
protected:
    SignalsWalk() : m_rebinding("applyRebindingRules", [](rh::HostFunctionCall& /*call*/) {}) {}
    void TearDown() override { SignalSpecification::getBlockUUIDmap().clear(); }

    static void walkAll(const Rows& rows,
                        const std::vector<std::unique_ptr<Subject> (*)()>& makers = {makeSubject})
    {
        std::size_t failures = 0;
        for (const Row& row : rows) {
            for (const Failure& failure : operation_walk::everyFailure()) {
                for (const auto make : makers) {
                    failures += operation_walk::walk<Subject>(row, failure, make);
                }
            }
        }
        EXPECT_GT(failures, rows.size());
    }

private:
    rh::ScopedHostFunction m_rebinding;
};

TEST_F(SignalsWalk, Elements)
{
    walkAll(elementRows(), {makeSubject, makeSubjectWithIllFormedName});
}

TEST_F(SignalsWalk, Ports)
{
    walkAll(portRows(), {makeSubject, makeSubjectWithIllFormedName});
}

TEST_F(SignalsWalk, Charts)
{
    walkAll(chartRows(), {makeSubject, makeSubjectWithIllFormedName});
}

TEST_F(SignalsWalk, Renumbering)
{
    walkAll(renumberingRows(), {makeSubject, makeSubjectWithIllFormedName});
}

TEST_F(SignalsWalk, HostForms)
{
    walkAll(hostFormRows());
}

TEST_F(SignalsWalk, Records)
{
    walkAll(recordRows());
}

}  // namespace
}  // namespace zm_hmi
