#include "hmi/StreamingClients.hpp"

#include "reference_host/classes/ObjectAccess.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "tests/hmi/ClientsTest.hpp"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>
#include <rapidcheck/state.h>

#include <memory>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

// Any sequence of operations, on the collection behind a host object and on a plain list beside it that
// follows the rules as one would write them down.

namespace zm_hmi {
namespace {

namespace rh = reference_host;

/// What the collection has to hold.
struct PlainClients {
    std::u16string modelName;
    std::u16string syncedName;
    std::vector<ClientValues> clients;
};

/// What there is: a host object with the collection behind it.
struct RealClients {
    rh::OwnedValue object = rh::ObjectAccess::construct("Zelmar.HMI.StreamingClients");

    StreamingClients& operator*() const { return *StreamingClients::getFromNVArray(object.get()); }
    StreamingClients* operator->() const { return StreamingClients::getFromNVArray(object.get()); }
};

using Operation = rc::state::Command<PlainClients, RealClients>;

std::u16string anyName()
{
    return *rc::gen::element<std::u16string>(u"", u"a", u"b", u"c");
}

ClientValues anyClient()
{
    ClientValues client = clientNamed(*rc::gen::element<std::string>("1", "2", "3"));
    client.sourceModel = anyName();
    if (*rc::gen::arbitrary<bool>()) {
        client.modelPath = {*rc::gen::element<std::u16string>(u"Pult", u"a/Pult", u"/Pult")};
        client.modelPathZID = {*rc::gen::element<std::string>("3", "a:3", ":3")};
    }
    if (*rc::gen::arbitrary<bool>()) {
        client.paramsModelName = anyName();
    }
    return client;
}

/// An index that is often, but not always, that of an element.
std::size_t anyIndex(const PlainClients& model)
{
    return *rc::gen::inRange<std::size_t>(0, model.clients.size() + 2);
}

/// The clients as they are, and what a stranger can tell of the collection.
void expectSame(const PlainClients& expected, const RealClients& real)
{
    RC_ASSERT(real->getModelName() == expected.modelName);
    RC_ASSERT(real->getSyncedModelName() == expected.syncedName);
    std::vector<ClientValues> clients;
    for (std::size_t i = 0; i < real->getCount(); ++i) {
        clients.push_back(valuesOf(*real->get(i)));
    }
    RC_ASSERT(clients == expected.clients);
}

/// An operation that changes the list by `applyTo` and then finds the collection to hold the same.
class Checked : public Operation {
public:
    void apply(PlainClients& model) const override { applyTo(model); }
    void run(const PlainClients& before, RealClients& real) const override
    {
        PlainClients expected = before;
        applyTo(expected);
        runOn(real, before);
        expectSame(expected, real);
    }

private:
    virtual void applyTo(PlainClients& model) const = 0;
    virtual void runOn(RealClients& real, const PlainClients& before) const = 0;
};

struct Add : Checked {
    ClientValues client = anyClient();

    void applyTo(PlainClients& model) const override { model.clients.push_back(client); }
    void runOn(RealClients& real, const PlainClients& /*before*/) const override
    {
        real->add(makeClient(client));
    }
    void show(std::ostream& out) const override { out << "add " << client; }
};

/// An operation on one index, which the collection has to refuse where it is past the end.
struct AtIndex : Checked {
    std::size_t index;

    explicit AtIndex(const PlainClients& model) : index(anyIndex(model)) {}

    void applyTo(PlainClients& model) const override
    {
        if (index < model.clients.size()) {
            applyAt(model);
        }
    }
    void runOn(RealClients& real, const PlainClients& before) const override
    {
        try {
            runAt(*real);
            RC_ASSERT(index < before.clients.size());
        } catch (const zmsvException& error) {
            RC_ASSERT(index >= before.clients.size());
            RC_ASSERT(error.id().key() == "InvalidElementIndex");
            RC_ASSERT(std::get<std::uint64_t>(error.id().arguments().at(0)) == before.clients.size());
        }
    }
    virtual void applyAt(PlainClients& model) const = 0;
    virtual void runAt(StreamingClients& clients) const = 0;
};

struct Set : AtIndex {
    ClientValues client = anyClient();

    using AtIndex::AtIndex;
    void applyAt(PlainClients& model) const override { model.clients[index] = client; }
    void runAt(StreamingClients& clients) const override { clients.set(index, makeClient(client)); }
    void show(std::ostream& out) const override { out << "set " << index << " " << client; }
};

struct Remove : AtIndex {
    using AtIndex::AtIndex;
    void applyAt(PlainClients& model) const override
    {
        model.clients.erase(model.clients.begin() + static_cast<std::ptrdiff_t>(index));
    }
    void runAt(StreamingClients& clients) const override { clients.remove(index); }
    void show(std::ostream& out) const override { out << "remove " << index; }
};

struct Rename : Checked {
    std::u16string name = anyName();

    void applyTo(PlainClients& model) const override
    {
        const std::u16string oldName = std::exchange(model.modelName, name);
        for (ClientValues& client : model.clients) {
            if (client.sourceModel.empty() || client.sourceModel == oldName) {
                client.sourceModel = name;
            }
            if (client.paramsModelName) {
                client.paramsModelName = name;
            }
        }
        if (oldName.empty()) {
            model.syncedName = name;
        }
    }
    void runOn(RealClients& real, const PlainClients& /*before*/) const override { real->setModelName(name); }
    void show(std::ostream& out) const override { out << "rename to " << name.size() << " characters"; }
};

struct Validate : Checked {
    void applyTo(PlainClients& model) const override { model.syncedName = model.modelName; }
    void runOn(RealClients& real, const PlainClients& /*before*/) const override
    {
        const rh::ScopedHostFunction keepAll("validateAndRemoveUnused", giveNothing);
        StreamingClients::validateAndRemoveUnused(real.object.get());
    }
    void show(std::ostream& out) const override { out << "validate"; }
};

/// Saves the collection and loads the result into it: the clients stand twice. An observer without a path
/// is saved without a model.
struct SaveAndLoad : Checked {
    void checkPreconditions(const PlainClients& model) const override { RC_PRE(model.clients.size() < 20U); }
    void applyTo(PlainClients& model) const override
    {
        const std::vector<ClientValues> saved = model.clients;
        for (ClientValues client : saved) {
            if (client.modelPath.empty()) {
                client.sourceModel.clear();
            }
            model.clients.push_back(client);
        }
    }
    void runOn(RealClients& real, const PlainClients& /*before*/) const override
    {
        real->setFromPersistenceData(real->getPersistenceData().get());
    }
    void show(std::ostream& out) const override { out << "save and load"; }
};

/// Goes on with a copy; the original is left as it was.
struct Copy : Checked {
    void applyTo(PlainClients& /*model*/) const override {}
    void runOn(RealClients& real, const PlainClients& before) const override
    {
        const OwnedArray copy = real->copy();
        RC_ASSERT(real->isEqual(StreamingClients::getFromNVArray(copy.get())));
        expectSame(before, real);
        real.object = rh::copyShared(copy.get());
    }
    void show(std::ostream& out) const override { out << "copy"; }
};

class StreamingClientsModel : public ClientsTest {};

RC_GTEST_FIXTURE_PROP(StreamingClientsModel, AnyOperationsLeaveTheCollectionAsThePlainList, ())
{
    RealClients real;
    rc::state::check(
        PlainClients(), real,
        rc::state::gen::execOneOfWithArgs<Add, Add, Set, Remove, Rename, Validate, SaveAndLoad, Copy>());
}

}  // namespace
}  // namespace zm_hmi
