#include "reference_host/diagram/OpenModels.hpp"

#include "host/Text.hpp"
#include "reference_host/calls/Warnings.hpp"
#include "reference_host/diagram/DiagramErrors.hpp"
#include "reference_host/diagram/SsdReader.hpp"

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <system_error>
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

SsdDocument readFile(const std::filesystem::path& file, const std::string& name)
{
    errno = 0;
    std::ifstream in(file, std::ios::binary);
    std::error_code error(errno, std::generic_category());
    if (in && std::filesystem::is_directory(file)) {
        error = std::make_error_code(std::errc::is_a_directory);
    } else if (in) {
        return readSsd(in, name);
    }
    throw diagramError("UnreadableFile", {name, error.message()});
}

}  // namespace

std::shared_ptr<Model> OpenModels::open(const std::filesystem::path& file)
{
    const std::string name = toUtf8(toUtf16(file.c_str()));  // well-formed, whatever the file system holds
    SsdDocument document = readFile(file, name);
    std::shared_ptr<Model> model = std::move(document.model);
    add(model);
    for (const SsdWarning& warning : document.warnings) {
        const zmsvException shown = diagramError("DanglingConnection", {name, warning.line, warning.reason});
        Warnings::report({shown.id(), shown.what()});
    }
    return model;
}

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
