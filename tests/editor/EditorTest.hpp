#ifndef ZM_TESTS_EDITOR_EDITOR_TEST_HPP
#define ZM_TESTS_EDITOR_EDITOR_TEST_HPP

#include "reference_host/model/EditHistory.hpp"
#include "reference_host/observers/SignalRecords.hpp"
#include "tests/support/HostTest.hpp"

#include <memory>
#include <string>
#include <vector>

namespace editor {

/// An open model "plant" with instrumented signals in its observers parameter:
///
///     plant/Controller        system     one output, "status"
///     plant/Controller/Gain   component  outputs "y", "z", "w"
///     plant/Tank              component  outputs "level", "flow"; carries a chart with state 1
class EditorTest : public reference_host::HostTest {
protected:
    EditorTest();
    ~EditorTest() override;
    void SetUp() override;

    reference_host::Block& root() { return model->root(); }
    reference_host::Block& at(const std::u16string& path) { return *model->findByPath(path); }
    reference_host::EditHistory& history() { return model->history(); }

    /// Adds a signal on an output port, bound to its handle; its UUID is that of the port.
    void addSignal(const reference_host::Block& block, std::size_t number);

    /// Adds a signal that knows only what it is given.
    void addSignal(const std::u16string& path, const std::string& zid, double number,
                   const std::u16string& name = {});

    /// Adds a signal on an object of a chart. It has two domain parameters.
    void addActivity(const reference_host::Block& block, const std::u16string& kzid);

    /// Makes the one at the place (from 0) observed by a streaming client.
    void addClient(std::size_t index);

    std::vector<reference_host::SignalRecord> records() const;

    /// The persisted form, every text and number of it, in order.
    std::string persisted() const;

    /// "plant/Controller/Gain 2 y/n": path, port, and whether it is observed by handle and port.
    std::vector<std::string> places() const;
    bool isObserved(const reference_host::Block& block, std::size_t number) const;

    std::shared_ptr<reference_host::Model> model;
    reference_host::OwnedValue signals;
    reference_host::OwnedValue clients;
};

std::string plain(const std::u16string& text);

}  // namespace editor

#endif
