#pragma once

#include "reference_host/Export.hpp"
#include "reference_host/model/Block.hpp"
#include "reference_host/values/Value.hpp"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace reference_host {

class EditHistory;
struct ModelSource;

/// A diagram: an outermost system, which has the model's name, and the blocks in it at every depth.
/// Look-ups cost a hash look-up (by path: one a path component), whatever the size of the model.
///
/// A name is any text that is not empty and has no "/" and no ":", which separate paths and ZIDs. The blocks
/// of a system have different names. Another name is a host error ("InvalidName", "DuplicateName") and
/// changes nothing. Main thread only.
class ZM_REFHOST_API Model {
public:
    explicit Model(std::u16string name);
    Model(const Model&) = delete;
    Model& operator=(const Model&) = delete;
    ~Model();

    const std::u16string& name() const noexcept { return m_root.name(); }
    Block& root() noexcept { return m_root; }
    const Block& root() const noexcept { return m_root; }

    /// The number of blocks at every depth, the outermost system not counted.
    std::size_t blockCount() const noexcept { return m_byNumber.size(); }

    /// Every block in document order, a system before its contents.
    std::vector<Block*> blocks() const;

    /// Adds a block at the end of a system of this model and gives it its ZID and handle. A component
    /// as its system is a host error ("InvalidSystem").
    Block& add(Block& system, std::u16string name, BlockKind kind);

    /// Gives a block another name. ZID and handle stay. A block of another model, and the outermost
    /// system, is a host error ("InvalidBlock"), here and below.
    void rename(Block& block, std::u16string name);

    /// Moves a block with its contents to the end of another system of this model, or before the child at a
    /// position. ZIDs and handles stay; the connections that the block had in
    /// its old system are removed. A component as the system is a host error ("InvalidSystem"), a system
    /// inside the block too ("InvalidMove").
    void move(Block& block, Block& system);
    void move(Block& block, Block& system, std::size_t position);

    /// Removes a block from the diagram, with its contents and its connections: no look-up finds it, and
    /// every other operation refuses it.
    void remove(Block& block);

    /// Puts a removed block back into its former system, before the child at the position, with its number
    /// and handle. Connections are not restored.
    void restore(Block& block, std::size_t position);

    /// Whether the block is part of the diagram, the outermost system not counted.
    bool holds(const Block& block) const;

    /// The largest number that a block was given.
    std::uint32_t lastNumber() const noexcept { return m_lastNumber; }

    /// Gives the blocks the numbers that a file has kept, one for each of `blocks()` in that order. A 0, a
    /// number given twice or one above the last is a host error ("InvalidNumber"); nothing has changed then.
    /// REQUIRES: no block was edited and no ZID was read yet.
    void setNumbers(const std::vector<std::uint32_t>& numbers, std::uint32_t lastNumber);

    /// The file that the model was read from, for saving it again; null for other models.
    const std::shared_ptr<const ModelSource>& source() const noexcept { return m_source; }
    void setSource(std::shared_ptr<const ModelSource> source) noexcept { m_source = std::move(source); }

    /// The edits of the model that can be undone.
    EditHistory& history() const noexcept { return *m_history; }

    /// The block of a path without the model name ("Controller/Limiter"); null when there is none.
    Block* findByPath(std::u16string_view path) const;

    /// The block of a ZID, in full ("plant:12") or relative ("12"); null when there is none, or when
    /// the ZID names another model.
    Block* findByZid(std::string_view zid) const;

    Block* findByNumber(std::uint32_t number) const;
    Block* findByHandle(double handle) const;

    /// The observers parameter: one object of class "Zelmar.HMI.ModelObservers", the pair of the model's
    /// instrumented signals and its streaming clients; null when it is not set. Closing the model clears it.
    OwnedValue observers() const;

    /// Sets the parameter to a copy, which refers to the same pair; null and an empty value clear it. A
    /// value that is not of one element is the host error "SignalObserversSetParamNonScalar", one of
    /// another class "SignalObserversSetParamInvalidType"; nothing has changed then.
    void setObservers(const nvArray* value);

private:
    friend class EditHistory;
    friend class OpenModels;
    void setName(std::u16string name);  // an open model is renamed by OpenModels, which knows the others

    Block m_root;
    std::uint32_t m_lastNumber = 0;
    std::unordered_map<std::uint32_t, Block*> m_byNumber;
    std::unordered_map<double, Block*> m_byHandle;
    std::vector<std::unique_ptr<Block>> m_removed;
    std::shared_ptr<const ModelSource> m_source;
    OwnedValue m_observers;
    std::unique_ptr<EditHistory> m_history;
};

}  // namespace reference_host
