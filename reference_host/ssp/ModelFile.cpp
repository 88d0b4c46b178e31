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
#include "reference_host/ssp/RecordJson.hpp"
#include "reference_host/ssp/SsdReader.hpp"
#include "reference_host/ssp/SsdWriter.hpp"
#include "reference_host/ssp/ToolData.hpp"
#include "reference_host/support/FileReading.hpp"
#include "reference_host/support/QuotedText.hpp"
#include "reference_host/values/ValueMaking.hpp"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
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

constexpr std::size_t maximumDescription = std::size_t{128} << 20U;
constexpr std::size_t maximumOwnEntry = std::size_t{512} << 20U;

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

// ---- opening ----------------------------------------------------------------------------------------

std::string readFile(const std::filesystem::path& file)
{
    try {
        return readRegularFile(file, ArchiveLimits().packedBytes);
    } catch (const std::runtime_error& reason) {
        throw fileError("UnreadableFile", {shown(file), std::string(reason.what())});
    }
}

bool isArchive(const std::filesystem::path& file, const std::string& bytes)
{
    return hasExtension(file, ".ssp") || bytes.starts_with("PK\x03\x04");
}

std::shared_ptr<ModelSource> readSource(const std::filesystem::path& file)
{
    auto source = std::make_shared<ModelSource>();
    std::string bytes = readFile(file);
    if (!isArchive(file, bytes)) {
        source->description.text = std::move(bytes);
        return source;
    }
    source->archive = inArchive(file, [&bytes] { return std::make_unique<const Archive>(std::move(bytes)); });
    source->description.text = inEntry(file, descriptionEntry, [&source] {
        return source->archive->read(descriptionEntry, maximumDescription);
    });
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
                          const char* className, std::span<const RecordField> form,
                          const std::u16string& modelName)
{
    if (!archive.has(entry)) {
        return nullptr;
    }
    return inEntry(file, entry, [&] {
        const std::string json = archive.read(entry, maximumOwnEntry);
        const OwnedValue name = makeText(modelName);
        OwnedValue collection = ObjectAccess::construct(className, {name.get()});
        recordsFromJson(json, form, [&collection](const nvArray* records) {
            ObjectAccess::setProperty(collection.get(), "Persistence", records);  // which appends them
        });
        return collection;
    });
}

void readObservers(const std::filesystem::path& file, const Archive& archive, Model& model,
                   const NewPortNumbers& newNumbers, Steps& steps)
{
    steps.begin("instrumented signals");
    const OwnedValue signals =
        readCollection(file, archive, signalsEntry, signalsClass, signalFields(), model.name());
    if (signals != nullptr && !newNumbers.empty()) {
        renumberSignals(signals.get(), newNumbers);
    }
    steps.begin("streaming clients");
    const OwnedValue clients =
        readCollection(file, archive, clientsEntry, clientsClass, clientFields(), model.name());
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
        inArchive(file, [&archive] { archive.verify(); });
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

/// Other programs may have put an entry where ours have to be.
void reportObstacle(const std::filesystem::path& file, const Archive& archive)
{
    const std::string obstacle = archive.obstacleTo({toolDataEntry, signalsEntry, clientsEntry});
    if (!obstacle.empty()) {
        report(fileError("NotSavable", {shown(file), quotedText(obstacle)}));
    }
}

// ---- saving -----------------------------------------------------------------------------------------

/// A model while it is saved. Scripts run meanwhile: they are told of the progress, and the host may call
/// them. So everything that is saved is taken at once, and what they change later is not in the file; where a
/// change can be seen, saving is refused, because it is not clear which state was meant.
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

    /// The "Persistence" of the collections; null for none. The host may call scripts for it.
    OwnedValue signals() const { return persistenceOf(m_signals); }
    OwnedValue clients() const { return persistenceOf(m_clients); }

    void requireUnchanged(const std::filesystem::path& file) const
    {
        if (m_isEdited || !isOpen(*m_model) || counts() != m_counts) {
            throw fileError("UnwritableFile",
                            {shown(file), std::string("the model was changed or closed while it was saved")});
        }
    }

private:
    static OwnedValue persistenceOf(const OwnedValue& collection)
    {
        return collection ? ObjectAccess::getProperty(collection.get(), "Persistence") : nullptr;
    }

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

/// What an entry is to hold for a collection; none for no collection. Ends the value.
std::optional<std::string> recordsOf(OwnedValue persistence)
{
    return persistence ? std::optional(recordsToJson(persistence.get())) : std::nullopt;
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
    const auto add = [&](const char* entry, const auto& content) {
        changes.push_back({entry, inEntry(file, entry, content)});
    };
    steps.begin("diagram");
    OwnedValue signals = inEntry(file, signalsEntry, [&] { return saved.signals(); });
    OwnedValue clients = inEntry(file, clientsEntry, [&] { return saved.clients(); });
    add(descriptionEntry, [&] {
        return std::optional(writeSsd(model, source != nullptr ? source->description : SsdSource()));
    });
    add(toolDataEntry, [&] { return std::optional(toolDataOf(model)); });
    steps.begin("tool data");
    steps.begin("instrumented signals");
    add(signalsEntry, [&] { return recordsOf(std::move(signals)); });
    steps.begin("streaming clients");
    add(clientsEntry, [&] { return recordsOf(std::move(clients)); });
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
        changes = inEntry(file, toolDataEntry, [&] {
            return applyToolData(*model, source->archive->read(toolDataEntry, maximumOwnEntry));
        });
    }
    if (source->archive != nullptr) {
        openWithObservers(file, *source->archive, model, changes.newNumbers, steps);
    } else {
        OpenModels::add(model);
    }
    reportPassedOver(file, document.warnings, changes.leftOver);
    if (source->archive != nullptr) {
        reportObstacle(file, *source->archive);
    }
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
