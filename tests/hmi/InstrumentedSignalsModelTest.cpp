#include "hmi/InstrumentedSignals.hpp"

#include "host/Text.hpp"
#include "tests/hmi/LibraryTest.hpp"
#include "tests/hmi/LiteralSignals.hpp"
#include "tests/hmi/SignalValues.hpp"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace zm_hmi {
namespace {

/// One random number a choice; the step picks from its small pools with them.
class Choices {
public:
    explicit Choices(const std::vector<std::size_t>& numbers) : m_numbers(numbers) {}

    std::size_t below(std::size_t bound) { return m_numbers[m_next++ % m_numbers.size()] % bound; }

    template <class Type>
    Type of(const std::vector<Type>& pool)
    {
        return pool[below(pool.size())];
    }

private:
    const std::vector<std::size_t>& m_numbers;
    std::size_t m_next = 0;
};

// Small pools, so that the same ports come up again and again; two paths have the same key and one has the
// key 0, and so has one handle with one port. The last four paths have the keys of handles: 281070 port
// 1, 2.5 port 1, 0.0 port 0, -0.0 port 0. One path is not well-formed.
const std::vector<std::u16string> pathPool = {
    u"A",       u"m/A",          u"Gain",         u"zsvaRe0ZzMma", u"M73TK7FOsLMa",
    u"A\xd800", u"XNfIbdwOACHD", u"UFTxm7I8a3Yd", u"5OA3BRH26Ril", u"7Jr74jka0MVr"};
const std::vector<std::u16string> subPathPool = {u"", u"", u"x"};
const std::vector<std::u16string> modelPool = {u"", u"", u"m"};
const std::vector<int> portPool = {1, 1, 1, 0, 2};
const std::vector<int> logicalPool = {0, 0, 1, 2, -1};
const std::vector<double> handlePool = {
    0.0, 1.5, 2.5, -0.0, 281070.0, std::numeric_limits<double>::quiet_NaN(), 1.6122492007444271};
const std::vector<int> cachedPortPool = {0, 0, 1, 2, 2145007537};
const std::vector<std::string> zidPool = {"1", "12", "m:1"};
const std::vector<std::u16string> kzidPool = {u"2", u"12", u"0.5"};
const std::vector<double> kzidNumberPool = {2.0, 12.0, 0.5};
const std::vector<std::u16string> activityPool = {u"Self", u"Child", u"Leaf", u"Data", u"Entry"};

SignalValues anySignal(Choices& choose)
{
    SignalValues values = {.blockPath = choose.of(pathPool),
                           .zid = choose.of(zidPool),
                           .subPath = choose.of(subPathPool),
                           .outputPort = choose.of(portPool),
                           .logicalPort = choose.of(logicalPool),
                           .cachedHandle = choose.of(handlePool),
                           .cachedPort = choose.of(cachedPortPool)};
    if (choose.below(3) == 0) {
        values.domainType = u"kw_state";
        values.domainParams = {{u"KZID", choose.of(kzidPool)}, {u"Activity", choose.of(activityPool)}};
    }
    return values;
}

zmPort* port(std::size_t address)
{
    return reinterpret_cast<zmPort*>(address);  // never looked into
}

/// The collection and its literal reading, kept in step.
class SideBySide {
public:
    void step(Choices& choose);
    void compare();

private:
    struct Twin {
        SignalSpecificationPtr record;
        LiteralSignals::Record values;
    };

    Twin make(const SignalValues& values)
    {
        m_twins.push_back({makeSignal(values), std::make_shared<SignalValues>(values)});
        return m_twins.back();
    }

    /// Mostly a new one, at times one that was in use before.
    Twin newOrUsed(Choices& choose)
    {
        const bool isNew = m_twins.empty() || choose.below(4) != 0;
        return isNew ? make(anySignal(choose)) : m_twins[choose.below(m_twins.size())];
    }

    void changeElements(Choices& choose);
    void changeLookups(Choices& choose);
    void ask(Choices& choose);
    LiteralSignals::Record boundOf(const std::vector<LiteralSignals::Record>& candidates,
                                   int portNumber) const;
    const Twin& twinOf(const LiteralSignals::Record& values) const;

    InstrumentedSignals m_signals;
    LiteralSignals m_literal;
    std::vector<Twin> m_twins;
};

void SideBySide::step(Choices& choose)
{
    switch (choose.below(3)) {
        case 0:
            changeElements(choose);
            break;
        case 1:
            changeLookups(choose);
            break;
        default:
            ask(choose);
    }
}

void SideBySide::changeElements(Choices& choose)
{
    const std::size_t count = m_signals.getCount();
    const std::size_t operation = choose.below(count == 0 ? 3 : 6);
    if (operation < 2) {
        const Twin twin = newOrUsed(choose);
        m_signals.add(twin.record);
        m_literal.add(twin.values);
    } else if (operation == 2) {
        const std::size_t index = choose.below(count + 1);
        const Twin twin = newOrUsed(choose);
        m_signals.insert(index, twin.record);
        m_literal.insert(index, twin.values);
    } else if (operation == 3) {
        const std::size_t index = choose.below(count);
        const Twin twin = newOrUsed(choose);
        m_signals.set(index, twin.record);
        m_literal.set(index, twin.values);
    } else if (operation == 4) {
        const std::size_t index = choose.below(count);
        m_signals.remove(index);
        m_literal.remove(index);
    } else {
        const Twin twin = newOrUsed(choose);
        m_signals.remove(*twin.record);
        m_literal.remove(*twin.values);
    }
}

void SideBySide::changeLookups(Choices& choose)
{
    switch (choose.below(6)) {
        case 0: {
            const std::u16string name = choose.of(modelPool);
            m_signals.setModelName(name);
            m_literal.setModelName(name);
            break;
        }
        case 1:
            m_signals.updateObservedPortMap();
            m_literal.updateObservedPortMap();
            break;
        case 2: {
            const Twin twin = newOrUsed(choose);
            m_signals.addToObservedPortMap(twin.record);
            m_literal.addToObservedPortMap(twin.values);
            break;
        }
        case 3: {
            const Twin twin = newOrUsed(choose);
            m_signals.removeFromObservedPortMap(twin.record);
            m_literal.removeFromObservedPortMap(twin.values);
            break;
        }
        case 4: {  // behind the collection's back, as renumbering does
            const Twin twin = newOrUsed(choose);
            twin.values->cachedHandle = choose.of(handlePool);
            twin.values->cachedPort = choose.of(cachedPortPool);
            twin.record->setCachedInfo(twin.values->cachedHandle, twin.values->cachedPort);
            break;
        }
        default: {
            const std::vector<zmPort*> ports(choose.below(3), port(1));
            m_signals.cacheZMPorts(ports);
            m_literal.cacheZMPorts(ports);
        }
    }
}

void SideBySide::ask(Choices& choose)
{
    const SignalValues v = anySignal(choose);
    const bool withRecord = choose.below(2) == 0;
    const bool found = withRecord ? m_signals.isPortObserved(makeSignal(v).get())
                                  : m_signals.isPortObserved(v.cachedHandle, v.blockPath, v.subPath,
                                                             v.outputPort, v.cachedPort, v.logicalPort);
    RC_ASSERT(found == m_literal.isPortObserved(
                           v.cachedHandle, v.blockPath, v.subPath, v.outputPort, v.cachedPort, v.logicalPort,
                           [&](const auto& candidates) { return boundOf(candidates, v.cachedPort); }));
}

const SideBySide::Twin& SideBySide::twinOf(const LiteralSignals::Record& values) const
{
    return *std::find_if(m_twins.begin(), m_twins.end(),
                         [&](const Twin& twin) { return twin.values == values; });
}

// Which of the candidates the collection has bound.
LiteralSignals::Record SideBySide::boundOf(const std::vector<LiteralSignals::Record>& candidates,
                                           int portNumber) const
{
    std::vector<LiteralSignals::Record> bound;
    for (const LiteralSignals::Record& candidate : candidates) {
        if (twinOf(candidate).record->getCachedPortIdx() == portNumber &&
            std::find(bound.begin(), bound.end(), candidate) == bound.end()) {
            bound.push_back(candidate);
        }
    }
    RC_ASSERT(bound.size() == 1U);
    RC_ASSERT(bound.front() == candidates.back());  // the one that was entered last
    return bound.front();
}

void SideBySide::compare()
{
    RC_ASSERT(m_signals.getCount() == m_literal.elements().size());
    for (std::size_t i = 0; i < m_signals.getCount(); ++i) {
        RC_ASSERT(m_signals.get(i) == twinOf(m_literal.elements()[i]).record);
    }
    for (const Twin& twin : m_twins) {
        const auto inList = std::count(m_literal.elements().begin(), m_literal.elements().end(), twin.values);
        const auto inMap = static_cast<long>(m_literal.entriesOf(twin.values));
        RC_ASSERT(twin.record.use_count() == 1 + inList + inMap);
        RC_ASSERT(twin.record->getCachedPortIdx() == twin.values->cachedPort);
    }
    RC_ASSERT(m_signals.isAnyPortObserved() == m_literal.isAnyPortObserved());
    RC_ASSERT(m_signals.isZMPortObserved(port(1)) == m_literal.isZMPortObserved(port(1)));
    for (const double handle : handlePool) {
        for (const int portNumber : cachedPortPool) {
            RC_ASSERT(m_signals.isPortObserved(handle, portNumber) ==
                      m_literal.isPortObserved(handle, portNumber));
        }
    }
    for (const std::string& zid : zidPool) {
        const std::u16string wideZid = toUtf16(zid.c_str());
        for (const double kzid : kzidNumberPool) {
            RC_ASSERT(m_signals.isAnyKWActivityObserved(wideZid, kzid) ==
                      m_literal.isAnyKWActivityObserved(zid, kzid));
            for (const std::u16string& activity : activityPool) {
                RC_ASSERT(m_signals.isKWActivityObserved(wideZid, kzid, activity) ==
                          m_literal.isKWActivityObserved(zid, kzid, toUtf8(activity)));
            }
        }
    }
}

class InstrumentedSignalsModel : public LibraryTest {};

RC_GTEST_FIXTURE_PROP(InstrumentedSignalsModel, AnyOperationsLeaveTheCollectionAsTheRulesSay, ())
{
    const auto numbers = rc::gen::container<std::vector<std::size_t>>(
        16, rc::gen::inRange<std::size_t>(0, std::size_t{1} << 20));
    const auto steps = *rc::gen::container<std::vector<std::vector<std::size_t>>>(numbers);
    SideBySide both;
    for (const std::vector<std::size_t>& step : steps) {
        Choices choices(step);
        both.step(choices);
        both.compare();
    }
}

}  // namespace
}  // namespace zm_hmi
