#include "reference_host/model/OpenModels.hpp"

#include "host/Text.hpp"
#include "reference_host/model/DiagramErrors.hpp"

#include <algorithm>
#include <utility>

namespace reference_host {

namespace {

using Models = std::unordered_map<std::u16string, std::shared_ptr<Model>>;

Models& models()
{
    static Models open;
    return open;
}

Models::iterator findOpen(const std::u16string& name)
{
    const auto found = models().find(name);
    if (found == models().end()) {
        throw diagramError("ModelNotOpen", {toUtf8(name)});
    }
    return found;
}

void checkFree(const std::u16string& name)
{
    if (models().contains(name)) {
        throw diagramError("ModelAlreadyOpen", {toUtf8(name)});
    }
}

/// Constant-initialised, so that it can be set at load.
constinit OpenModels::Renaming renamingSet = nullptr;

}  // namespace

void OpenModels::add(std::shared_ptr<Model> model)
{
    checkFree(model->name());
    std::u16string name = model->name();
    models().emplace(std::move(name), std::move(model));
}

void OpenModels::close(const std::u16string& name)
{
    const auto found = findOpen(name);
    found->second->setObservers(nullptr);
    models().erase(found);
}

void OpenModels::closeAll() noexcept
{
    for (const auto& entry : models()) {
        entry.second->m_observers.reset();
    }
    models().clear();
}

void OpenModels::rename(const std::u16string& oldName, const std::u16string& newName)
{
    const auto found = findOpen(oldName);
    if (newName == oldName) {
        return;
    }
    checkFree(newName);
    found->second->setName(newName);
    auto entry = models().extract(found);
    entry.key() = newName;
    models().insert(std::move(entry));
}

bool OpenModels::setRenaming(Renaming renaming) noexcept
{
    renamingSet = renaming;
    return true;
}

void OpenModels::renameWithObservers(const std::u16string& oldName, const std::u16string& newName)
{
    if (renamingSet != nullptr) {
        renamingSet(oldName, newName);
    } else {
        rename(oldName, newName);
    }
}

std::shared_ptr<Model> OpenModels::find(const std::u16string& name)
{
    const auto found = models().find(name);
    return found == models().end() ? nullptr : found->second;
}

std::vector<std::shared_ptr<Model>> OpenModels::all()
{
    std::vector<std::shared_ptr<Model>> open;
    for (const auto& entry : models()) {
        open.push_back(entry.second);
    }
    std::sort(open.begin(), open.end(), [](const auto& a, const auto& b) { return a->name() < b->name(); });
    return open;
}

Block* OpenModels::findByPath(std::u16string_view path)
{
    const std::size_t separator = path.find(u'/');
    const std::shared_ptr<Model> model = find(std::u16string(path.substr(0, separator)));
    return model == nullptr || separator == std::u16string_view::npos
               ? nullptr
               : model->findByPath(path.substr(separator + 1));
}

Block* OpenModels::findByZid(std::string_view zid)
{
    const std::string modelName(zid.substr(0, zid.find(':')));
    const std::shared_ptr<Model> model = find(toUtf16(modelName.c_str()));
    return model == nullptr ? nullptr : model->findByZid(zid);
}

Block* OpenModels::findByHandle(double handle)
{
    for (const auto& entry : models()) {
        if (Block* block = entry.second->findByHandle(handle)) {
            return block;
        }
    }
    return nullptr;
}

}  // namespace reference_host
