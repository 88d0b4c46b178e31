#pragma once

#include "reference_host/Export.hpp"
#include "reference_host/model/Model.hpp"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace reference_host {

/// The effect of an edit, an undo or a redo on the diagram. Undoing the addition of a block and deleting it
/// are the same kind of change.
enum class ChangeKind {
    BlockAppeared,
    BlockVanished,
    BlockRenamed,
    BlockMoved,
    OutputsChanged,
    ModelRenamed,
    ParameterChanged
};

/// A change that has just been made to a diagram.
struct DiagramChange {
    ChangeKind kind;
    Model* model;
    Block* block = nullptr;       ///< null when the model was renamed
    std::u16string formerPath{};  ///< the full path of the block, or the name of the model, before
    /// For changed outputs: at old number - 1 the new number, or 0 for a port that was deleted.
    std::vector<int> newNumbers{};
    std::uint64_t edit = 0;  ///< the unique number of the edit that was done, undone or redone
};

/// The edits of one model, in order, with undo and redo. Each edit is checked first: a refused edit changes
/// nothing. A new edit discards the edits that could be redone.
///
/// Undo brings back identity: numbers, ZIDs, handles, the order of blocks and ports, connections. Ports
/// count from 1. A refused edit is a host error: "InvalidBlock" for the outermost system and for a block that
/// is not part of the diagram, "InvalidPort", "InvalidPortOrder", and the errors of `Model`.
/// Main thread only.
class ZM_REFHOST_API EditHistory {
public:
    explicit EditHistory(Model& model) : m_model(model) {}
    EditHistory(const EditHistory&) = delete;
    EditHistory& operator=(const EditHistory&) = delete;
    ~EditHistory() = default;

    Block& addBlock(Block& system, std::u16string name, BlockKind kind);
    void deleteBlock(Block& block);
    void renameBlock(Block& block, const std::u16string& name);
    void moveBlock(Block& block, Block& system);

    /// Inserts an output port that gets this number; the number after the last appends it.
    void addOutput(Block& block, std::u16string name, std::size_t number);

    /// Deletes an output port, and the connections at it.
    void deleteOutput(Block& block, std::size_t number);

    /// Gives every output port another number: at old number - 1 the new one.
    void reorderOutputs(Block& block, const std::vector<int>& newNumbers);

    /// Renames the model; an open one as `OpenModels::renameWithObservers`.
    void renameModel(const std::u16string& name);

    void setParameter(Block& block, const std::u16string& name, std::u16string value);

    /// Undoes the last edit, or redoes the last undone one; false if there is none.
    bool undo();
    bool redo();
    std::size_t undoCount() const noexcept { return m_done; }
    std::size_t redoCount() const noexcept { return m_steps.size() - m_done; }

    /// Listeners are called after every edit, undo and redo, in the order of their registration. An exception
    /// from a listener is rethrown after all listeners ran; the edit is kept. An edit that a listener makes
    /// is announced after all listeners ran for the previous one, so a listener may see a newer diagram than
    /// the change describes.
    using Listener = std::function<void(const DiagramChange&)>;
    std::uint64_t addListener(Listener listener);
    void removeListener(std::uint64_t id);

private:
    /// One direction of an edit.
    struct Turn {
        std::function<void()> work;
        ChangeKind kind;
        std::vector<int> newNumbers{};
    };
    struct Step {
        std::uint64_t edit;
        Block* block;
        Turn forth;
        Turn back;
    };

    void perform(Block* block, Turn forth, Turn back);
    void record(Block* block, Turn forth, Turn back, std::u16string formerPath);
    void run(const Step& step, const Turn& turn, std::size_t done);
    std::u16string pathOf(const Block* block) const;
    void tell(DiagramChange change);
    void checkBlock(const Block& block) const;
    void changeOutputs(Block& block, std::vector<Port> after, std::vector<int> newNumbers,
                       std::vector<int> oldNumbers);

    Model& m_model;
    std::vector<Step> m_steps;
    std::size_t m_done = 0;
    std::uint64_t m_lastEdit = 0;
    std::uint64_t m_lastListener = 0;
    std::map<std::uint64_t, Listener> m_listeners;
    std::deque<DiagramChange> m_untold;
};

}  // namespace reference_host
