#include "reference_host/model/Model.hpp"

#include "host/Text.hpp"
#include "reference_host/classes/BuiltInClasses.hpp"
#include "reference_host/model/DiagramErrors.hpp"
#include "reference_host/model/EditHistory.hpp"
#include "reference_host/support/ChangeCount.hpp"
#include "reference_host/support/MessageCatalog.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"

#include <algorithm>
#include <charconv>
#include <limits>
#include <utility>

namespace reference_host {

namespace {

/// Handles carry a fraction, so that one is not mistaken for a port number, a count or a ZID.
double nextHandle() noexcept
{
    static double last = 1.0 / 1024.0;
    last += 1.0;
    return last;
}

std::u16string checkedName(std::u16string name)
{
    const char* fault =
        name.empty()                              ? "is empty"
        : name.find(u'/') != std::u16string::npos ? "holds a \"/\", which parts the names of a path"
        : name.find(u':') != std::u16string::npos ? "holds a \":\", which parts model and number"
                                                  : nullptr;
    if (fault != nullptr) {
        throw diagramError("InvalidName", {toUtf8(name), std::string(fault)});
    }
    return name;
}

void checkFree(const Block& system, const std::u16string& name)
{
    if (system.child(name) != nullptr) {
        throw diagramError("DuplicateName", {toUtf8(name), toUtf8(system.path())});
    }
}

void checkSystem(const Model& model, const Block& system)
{
    const bool isThere = &system == &model.root() || model.holds(system);
    if (system.kind() != BlockKind::System || !isThere) {
        throw diagramError("InvalidSystem", {toUtf8(system.path()), toUtf8(model.name())});
    }
}

void checkBlock(const Model& model, const Block& block)
{
    if (!model.holds(block)) {
        throw diagramError("InvalidBlock", {toUtf8(block.path()), toUtf8(model.name())});
    }
}

template <class Key>
Block* lookUp(const std::unordered_map<Key, Block*>& blocks, const Key& key)
{
    const auto found = blocks.find(key);
    return found == blocks.end() ? nullptr : found->second;
}

/// The block and everything in it.
std::vector<Block*> withContents(Block& block)
{
    std::vector<Block*> all{&block};
    for (std::size_t i = 0; i < all.size(); ++i) {
        for (const std::unique_ptr<Block>& child : all[i]->children()) {
            all.push_back(child.get());
        }
    }
    return all;
}

[[noreturn]] void refuseObservers(const char* key)
{
    const zmsvMessageId id("dvx_hmi_foundation:errors", key);
    throw zmsvException(id, MessageCatalog::text(id));
}

}  // namespace

Model::Model(std::u16string name)
    : m_root(*this, nullptr, BlockKind::System, checkedName(std::move(name))),
      m_history(std::make_unique<EditHistory>(*this))
{
}

Model::~Model() = default;

std::vector<Block*> Model::blocks() const
{
    std::vector<Block*> ordered;
    ordered.reserve(blockCount());
    std::vector<Block*> pending;
    const auto putChildren = [&pending](const Block& system) {
        for (auto child = system.children().rbegin(); child != system.children().rend(); ++child) {
            pending.push_back(child->get());
        }
    };
    putChildren(m_root);
    while (!pending.empty()) {
        Block* block = pending.back();
        pending.pop_back();
        ordered.push_back(block);
        putChildren(*block);
    }
    return ordered;
}

Block& Model::add(Block& system, std::u16string name, BlockKind kind)
{
    checkSystem(*this, system);
    std::unique_ptr<Block> made(new Block(*this, &system, kind, checkedName(std::move(name))));
    checkFree(system, made->name());
    if (m_lastNumber == std::numeric_limits<std::uint32_t>::max()) {
        throw diagramError("NoNumberLeft", {toUtf8(m_root.name())});
    }
    Block& block = *made;
    block.m_number = ++m_lastNumber;
    block.m_handle = nextHandle();
    system.adopt(std::move(made), system.children().size());
    m_byNumber.emplace(block.m_number, &block);
    m_byHandle.emplace(block.m_handle, &block);
    return block;
}

void Model::rename(Block& block, std::u16string name)
{
    checkBlock(*this, block);
    name = checkedName(std::move(name));
    if (name != block.name()) {
        checkFree(*block.parent(), name);
        block.rename(std::move(name));
    }
}

void Model::move(Block& block, Block& system)
{
    if (block.parent() != &system) {
        move(block, system, system.children().size());
    }
}

void Model::move(Block& block, Block& system, std::size_t position)
{
    checkSystem(*this, system);
    checkBlock(*this, block);
    if (&block == &system || system.isInside(block)) {
        throw diagramError("InvalidMove", {toUtf8(block.path()), toUtf8(system.path())});
    }
    if (block.parent() != &system) {
        checkFree(system, block.name());
    }
    system.adopt(block.parent()->release(block), position);
}

void Model::remove(Block& block)
{
    checkBlock(*this, block);
    for (const Block* gone : withContents(block)) {
        m_byNumber.erase(gone->number());
        m_byHandle.erase(gone->handle());
    }
    m_removed.push_back(block.parent()->release(block));
}

void Model::restore(Block& block, std::size_t position)
{
    const auto removed = std::find_if(m_removed.begin(), m_removed.end(),
                                      [&block](const auto& owned) { return owned.get() == &block; });
    if (removed == m_removed.end()) {
        throw diagramError("InvalidBlock", {toUtf8(block.path()), toUtf8(name())});
    }
    Block& system = *block.parent();
    checkSystem(*this, system);
    checkFree(system, block.name());
    std::unique_ptr<Block> owned = std::move(*removed);
    m_removed.erase(removed);
    system.adopt(std::move(owned), position);
    for (Block* back : withContents(block)) {
        m_byNumber.emplace(back->number(), back);
        m_byHandle.emplace(back->handle(), back);
    }
}

void Model::setNumbers(const std::vector<std::uint32_t>& numbers, std::uint32_t lastNumber)
{
    const std::vector<Block*> ordered = blocks();
    std::unordered_map<std::uint32_t, Block*> byNumber;
    byNumber.reserve(ordered.size());
    for (std::size_t i = 0; i < ordered.size(); ++i) {
        const std::uint32_t number = numbers.at(i);
        if (number == 0 || number > lastNumber || !byNumber.emplace(number, ordered[i]).second) {
            throw diagramError("InvalidNumber", {std::uint64_t{number}, toUtf8(ordered[i]->path())});
        }
    }
    for (const auto& [number, block] : byNumber) {
        block->m_number = number;
    }
    m_byNumber = std::move(byNumber);
    m_lastNumber = lastNumber;
}

bool Model::holds(const Block& block) const
{
    return findByNumber(block.number()) == &block;
}

Block* Model::findByPath(std::u16string_view path) const
{
    const Block* system = &m_root;
    for (;;) {
        const std::size_t length = path.find(u'/');
        Block* block = system->child(path.substr(0, length));
        if (block == nullptr || length == std::u16string_view::npos) {
            return block;
        }
        system = block;
        path.remove_prefix(length + 1);
    }
}

Block* Model::findByZid(std::string_view zid) const
{
    const std::size_t separator = zid.find(':');
    if (separator != std::string_view::npos) {
        if (zid.substr(0, separator) != toUtf8(name())) {
            return nullptr;
        }
        zid.remove_prefix(separator + 1);
    }
    std::uint32_t number = 0;
    const auto [end, error] = std::from_chars(zid.data(), zid.data() + zid.size(), number);
    const bool isNumber = error == std::errc() && end == zid.data() + zid.size();
    return isNumber ? findByNumber(number) : nullptr;
}

Block* Model::findByNumber(std::uint32_t number) const
{
    return lookUp(m_byNumber, number);
}

Block* Model::findByHandle(double handle) const
{
    return lookUp(m_byHandle, handle);
}

void Model::setName(std::u16string name)
{
    m_root.rename(checkedName(std::move(name)));
}

OwnedValue Model::observers() const
{
    return copyShared(m_observers.get());
}

void Model::setObservers(const nvArray* value)
{
    ChangeCount::diagramChanged();
    if (isEmpty(value)) {
        m_observers.reset();
        return;
    }
    if (elementCount(value) != 1) {
        refuseObservers("SignalObserversSetParamNonScalar");
    }
    if (!isOfClass(value, modelObserversClass)) {
        refuseObservers("SignalObserversSetParamInvalidType");
    }
    m_observers = copyShared(value);
}

}  // namespace reference_host
