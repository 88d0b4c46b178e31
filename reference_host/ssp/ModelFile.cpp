#include "reference_host/ssp/ModelFile.hpp"

#include "host/Text.hpp"
#include "reference_host/calls/Warnings.hpp"
#include "reference_host/classes/BuiltInClasses.hpp"
#include "reference_host/classes/ObjectAccess.hpp"
#include "reference_host/model/DiagramErrors.hpp"
#include "reference_host/model/EditHistory.hpp"
#include "reference_host/model/OpenModels.hpp"
#include "reference_host/observers/CollectionAccess.hpp"
#include "reference_host/observers/SignalRebinding.hpp"
#include "reference_host/observers/SignalRecords.hpp"
#include "reference_host/ssp/Archive.hpp"
#include "reference_host/ssp/AtomicFile.hpp"
#include "reference_host/ssp/FileErrors.hpp"
#include "reference_host/ssp/SsdReader.hpp"
#include "reference_host/ssp/SsdWriter.hpp"
#include "reference_host/ssp/ToolData.hpp"
#include "reference_host/ssp/ValueJson.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <fstream>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace reference_host {

/// The file that a model was read from; saving the model starts from it.
struct ModelSource {
    SsdSource description;
    std::unique_ptr<const Archive> archive;  ///< null if the description was a file of its own
};

namespace {

// The entries of an archive. SSP names the first; the folder is ours, named as SSP wants it of a tool.
constexpr const char* descriptionEntry = "SystemStructure.ssd";
constexpr const char* toolDataEntry = "extra/com.zelmar.hmi/model.json";
constexpr const char* signalsEntry = "extra/com.zelmar.hmi/signals.json";
constexpr const char* clientsEntry = "extra/com.zelmar.hmi/clients.json";

/// Tells the progress of a known number of steps.
class Steps {
public:
    Steps(const FileProgress& progress, std::size_t total) : m_progress(progress), m_total(total) {}

    void begin(const char* step)
    {
        if (m_progress) {
            m_progress(step, m_done, m_total);
        }
        ++m_done;
    }

private:
    const FileProgress& m_progress;
    std::size_t m_done = 0;
    std::size_t m_total;
};

/// Well-formed text, whatever the file system holds.
std::string shown(const std::filesystem::path& file)
{
    return toUtf8(toUtf16(file.c_str()));
}

bool hasExtension(const std::filesystem::path& file, std::string_view wanted)
{
    std::string extension = file.extension();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return extension == wanted;
}

/// Puts file and entry in front of whatever a host error says of an entry's contents.
template <class Work>
auto inEntry(const std::filesystem::path& file, const char* entry, const Work& work)
{
    try {
        return work();
    } catch (const zmsvException& reason) {
        throw fileError("InvalidFile", {shown(file), std::string(entry), std::string(reason.what())});
    }
}

/// The same of an archive as a whole; its refusals name the entry.
template <class Work>
auto inArchive(const std::filesystem::path& file, const Work& work)
{
    try {
        return work();
    } catch (const zmsvException& reason) {
        throw fileError("InvalidArchiveFile", {shown(file), std::string(reason.what())});
    }
}

bool isOpen(const Model& model)
{
    return OpenModels::find(model.name()).get() == &model;
}

/// The elements of all struct arrays without fields in a value, which may be any number and are nothing in
/// its text; not counted on past the limit.
std::size_t elementsNotInText(const nvArray* value, std::size_t limit)
{
    if (value == nullptr) {
        return 0;
    }
    const bool isCell = value->valueClass == ValueClass::Cell;
    const bool isStruct =
        value->valueClass == ValueClass::Struct || value->valueClass == ValueClass::StructObject;
    const std::size_t fields = isStruct ? fieldNames(value).size() : 0;
    if (isStruct && fields == 0) {
        return elementCount(value);
    }
    const std::size_t count = isStruct || isCell ? elementCount(value) : 0;
    std::size_t sum = 0;
    for (std::size_t i = 0; i < count && sum <= limit; ++i) {
        if (isCell) {
            sum += elementsNotInText(cell(value, i), limit);
        }
        for (std::size_t number = 0; number < fields && sum <= limit; ++number) {
            sum += elementsNotInText(numberedField(value, i, number), limit);
        }
    }
    return sum;
}

/// A file of a few bytes must not make a collection of any size.
void requireElementsInText(const nvArray* persistence, const std::string& json)
{
    const std::size_t limit = json.size() + 65536;
    if (elementsNotInText(persistence, limit) > limit) {
        throw fileError("JsonUnexpected", {std::string("/"), std::string("elements with fields")});
    }
}

// ---- opening ----------------------------------------------------------------------------------------

std::string readFile(const std::filesystem::path& file, std::size_t limit)
{
    errno = 0;
    std::ifstream in(file, std::ios::binary);
    std::error_code error(errno, std::generic_category());
    const std::uintmax_t size = in ? std::filesystem::file_size(file, error) : 0;
    if (!in || error) {
        throw fileError("UnreadableFile", {shown(file), error.message()});
    }
    if (size > limit) {
        throw fileError("FileTooLarge", {shown(file), std::uint64_t{size}, std::uint64_t{limit}});
    }
    std::string bytes(size, '\0');
    in.read(bytes.data(), static_cast<std::streamsize>(size));
    if (static_cast<std::uintmax_t>(in.gcount()) != size) {
        throw fileError("UnreadableFile", {shown(file), std::string("it ended while it was read")});
    }
    return bytes;
}

bool isArchive(const std::filesystem::path& file, const std::string& bytes)
{
    return hasExtension(file, ".ssp") || bytes.starts_with("PK\x03\x04");
}

std::shared_ptr<ModelSource> readSource(const std::filesystem::path& file)
{
    auto source = std::make_shared<ModelSource>();
    std::string bytes = readFile(file, ArchiveLimits().packedBytes);
    if (!isArchive(file, bytes)) {
        source->description.text = std::move(bytes);
        return source;
    }
    source->archive = inArchive(file, [&bytes] { return std::make_unique<const Archive>(std::move(bytes)); });
    source->description.text =
        inEntry(file, descriptionEntry, [&source] { return source->archive->read(descriptionEntry); });
    return source;
}

SsdDocument readDescription(const std::filesystem::path& file, const ModelSource& source)
{
    const std::string name = source.archive ? shown(file) + ": " + descriptionEntry : shown(file);
    return readSsd(source.description.text, name);
}

/// A collection of the class that has loaded the "Persistence" which the archive keeps; null when the
/// archive keeps none.
OwnedValue readCollection(const std::filesystem::path& file, const Archive& archive, const char* entry,
                          const char* className, const std::u16string& modelName)
{
    if (!archive.has(entry)) {
        return nullptr;
    }
    return inEntry(file, entry, [&] {
        const std::string json = archive.read(entry);
        const OwnedValue persistence = valueFromJson(json);
        requireElementsInText(persistence.get(), json);
        const OwnedValue name = makeText(modelName);
        OwnedValue collection = ObjectAccess::construct(className, {name.get()});
        ObjectAccess::setProperty(collection.get(), "Persistence", persistence.get());
        return collection;
    });
}

void readObservers(const std::filesystem::path& file, const Archive& archive, Model& model,
                   const NewPortNumbers& newNumbers, Steps& steps)
{
    steps.begin("instrumented signals");
    const OwnedValue signals = readCollection(file, archive, signalsEntry, signalsClass, model.name());
    if (signals != nullptr && !newNumbers.empty()) {
        renumberSignals(signals.get(), newNumbers);
    }
    steps.begin("streaming clients");
    const OwnedValue clients = readCollection(file, archive, clientsEntry, clientsClass, model.name());
    if (signals == nullptr && clients == nullptr) {
        return;
    }
    const OwnedValue none = makeEmptyValue();
    const ObjectAccess::Results observers = ObjectAccess::callStatic(
        modelObserversClass, "createFromSignalsAndClients",
        {signals ? signals.get() : none.get(), clients ? clients.get() : none.get()});
    model.setObservers(observers.front().get());
}

/// Adds the model to the open ones, with its observers. Scripts run meanwhile; one that closes the model, or
/// gives it another name, has ended the opening.
void openWithObservers(const std::filesystem::path& file, const Archive& archive,
                       const std::shared_ptr<Model>& model, const NewPortNumbers& newNumbers, Steps& steps)
{
    const std::u16string name = model->name();
    OpenModels::add(model);
    try {
        readObservers(file, archive, *model, newNumbers, steps);
        if (OpenModels::find(name) != model) {
            throw diagramError("ModelNotOpen", {toUtf8(name)});
        }
    } catch (...) {  // whatever it is, a half-open model is worse
        model->setObservers(nullptr);
        if (isOpen(*model)) {
            OpenModels::close(model->name());
        }
        throw;
    }
}

void report(const zmsvException& warning)
{
    Warnings::report({warning.id(), warning.what()});
}

void reportPassedOver(const std::filesystem::path& file, const std::vector<SsdWarning>& inDescription,
                      const std::vector<std::string>& inToolData)
{
    for (const SsdWarning& warning : inDescription) {
        report(diagramError("DanglingConnection", {shown(file), warning.line, warning.reason}));
    }
    for (const std::string& leftOver : inToolData) {
        report(fileError("LeftOver", {shown(file), std::string(toolDataEntry), leftOver}));
    }
}

// ---- saving -----------------------------------------------------------------------------------------

/// A model while it is saved. Scripts run meanwhile: they hear of the progress, and the host asks them. What
/// they edit may be in one entry and not in the other.
class SavedModel {
public:
    explicit SavedModel(const std::shared_ptr<const Model>& model)
        : m_model(model),
          m_signals(modelSignals(*model)),
          m_clients(modelClients(*model)),
          m_counts(counts()),
          m_listener(model->history().addListener([this](const DiagramChange&) { m_isEdited = true; }))
    {
    }
    ~SavedModel() { m_model->history().removeListener(m_listener); }
    SavedModel(const SavedModel&) = delete;
    SavedModel& operator=(const SavedModel&) = delete;

    const Model& model() const noexcept { return *m_model; }
    const nvArray* signals() const noexcept { return m_signals.get(); }
    const nvArray* clients() const noexcept { return m_clients.get(); }

    void requireUnchanged(const std::filesystem::path& file) const
    {
        if (m_isEdited || !isOpen(*m_model) || counts() != m_counts) {
            throw fileError("UnwritableFile",
                            {shown(file), std::string("the model was changed or closed while it was saved")});
        }
    }

private:
    std::pair<std::size_t, std::size_t> counts() const
    {
        const auto count = [](const OwnedValue& collection) {
            return collection ? elementsIn(collection.get()) : 0;
        };
        return {count(m_signals), count(m_clients)};
    }

    std::shared_ptr<const Model> m_model;
    OwnedValue m_signals;
    OwnedValue m_clients;
    std::pair<std::size_t, std::size_t> m_counts;
    bool m_isEdited = false;
    std::uint64_t m_listener;
};

/// What an entry is to hold for a collection; none for no collection.
std::optional<std::string> persistenceOf(const nvArray* collection)
{
    if (collection == nullptr) {
        return std::nullopt;
    }
    const OwnedValue persistence = ObjectAccess::getProperty(collection, "Persistence");
    std::string json = valueToJson(persistence.get());
    requireElementsInText(persistence.get(), json);  // or it could not be opened
    return json;
}

std::shared_ptr<const Model> savable(const Model& model, const std::filesystem::path& file)
{
    if (!hasExtension(file, ".ssp")) {
        throw fileError("NotAnArchiveName", {shown(file)});
    }
    if (!isOpen(model)) {
        throw diagramError("ModelNotOpen", {toUtf8(model.name())});
    }
    return OpenModels::find(model.name());
}

std::vector<ArchiveChange> changesFor(const SavedModel& saved, const std::filesystem::path& file,
                                      Steps& steps)
{
    const Model& model = saved.model();
    const ModelSource* source = model.source().get();
    std::vector<ArchiveChange> changes;
    const auto add = [&](const char* step, const char* entry, const auto& content) {
        steps.begin(step);
        changes.push_back({entry, inEntry(file, entry, content)});
    };
    add("diagram", descriptionEntry, [&] {
        return std::optional(writeSsd(model, source != nullptr ? source->description : SsdSource()));
    });
    add("tool data", toolDataEntry, [&] { return std::optional(toolDataOf(model)); });
    add("instrumented signals", signalsEntry, [&] { return persistenceOf(saved.signals()); });
    add("streaming clients", clientsEntry, [&] { return persistenceOf(saved.clients()); });
    return changes;
}

}  // namespace

std::shared_ptr<Model> openModel(const std::filesystem::path& file, const FileProgress& progress)
{
    Steps steps(progress, 5);
    steps.begin("file");
    const std::shared_ptr<ModelSource> source = readSource(file);
    steps.begin("diagram");
    SsdDocument document = readDescription(file, *source);
    std::shared_ptr<Model> model = std::move(document.model);
    source->description.blocks = model->blocks();
    model->setSource(source);
    steps.begin("tool data");
    ToolDataChanges changes;
    if (source->archive != nullptr && source->archive->has(toolDataEntry)) {
        changes = inEntry(file, toolDataEntry,
                          [&] { return applyToolData(*model, source->archive->read(toolDataEntry)); });
    }
    if (source->archive != nullptr) {
        openWithObservers(file, *source->archive, model, changes.newNumbers, steps);
    } else {
        OpenModels::add(model);
    }
    reportPassedOver(file, document.warnings, changes.leftOver);
    return model;
}

void saveModel(const Model& model, const std::filesystem::path& file, const FileProgress& progress)
{
    const SavedModel saved(savable(model, file));
    Steps steps(progress, 6);
    std::vector<ArchiveChange> changes = changesFor(saved, file, steps);
    steps.begin("archive");
    const ModelSource* source = model.source().get();
    const Archive* base = source != nullptr ? source->archive.get() : nullptr;
    const std::string bytes = inArchive(file, [&] { return Archive::pack(base, changes); });
    changes.clear();
    steps.begin("file");
    saved.requireUnchanged(file);
    writeFileAtomically(file, bytes);
}

}  // namespace reference_host
