#include "reference_host/observers/AlignedPaths.hpp"

#include "host/Text.hpp"
#include "reference_host/classes/ObjectAccess.hpp"
#include "reference_host/model/DiagramErrors.hpp"
#include "reference_host/model/OpenModels.hpp"
#include "reference_host/observers/CollectionAccess.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"

#include <memory>
#include <vector>

namespace reference_host {

namespace {

constexpr const char* signalClass = "Zelmar.HMI.SignalSpecification";

Block* findByAnyZid(const std::string& zid, const std::u16string& path)
{
    if (zid.find(':') != std::string::npos) {
        return OpenModels::findByZid(zid);
    }
    const std::shared_ptr<Model> model = OpenModels::find(path.substr(0, path.find(u'/')));
    return model == nullptr ? nullptr : model->findByZid(zid);
}

void setTexts(nvArray* object, const char* property, const std::vector<std::u16string>& texts)
{
    const OwnedValue cells = makeCells(Dimensions(1, texts.size()));
    for (std::size_t i = 0; i < texts.size(); ++i) {
        setCell(cells.get(), i, makeText(texts[i]));
    }
    ObjectAccess::setProperty(object, property, cells.get());
}

void align(nvArray* client)
{
    const std::size_t parts = elementCount(ObjectAccess::getProperty(client, "ModelPath_").get());
    std::vector<std::u16string> path;
    std::vector<std::u16string> zids;
    for (std::size_t i = 0; i < parts; ++i) {
        path.push_back(textInCells(client, "ModelPath_", i));
        zids.push_back(textInCells(client, "ModelPathZID_", i));
        if (const Block* block = alignedBlock(toUtf8(zids.back()), path.back())) {
            path.back() = block->path();
            zids.back() = toUtf16(block->zid().c_str());
        }
    }
    setTexts(client, "ModelPath_", path);
    setTexts(client, "ModelPathZID_", zids);
}

}  // namespace

std::u16string alignedBlockPath(const std::string& zid, const std::u16string& path)
{
    const Block* block = alignedBlock(zid, path);
    if (block == nullptr) {
        throw diagramError("UnknownBlock", {toUtf8(path), zid});
    }
    return block->path();
}

Block* alignedBlock(const std::string& zid, const std::u16string& path)
{
    Block* block = findByAnyZid(zid, path);
    return block != nullptr ? block : OpenModels::findByPath(path);
}

void getAlignedBlockPath(HostFunctionCall& call)
{
    const bool isSignal = call.inputs().size() == 1 && isOfClass(call.input(0), signalClass) &&
                          elementCount(call.input(0)) == 1;
    if (!isSignal) {
        throw diagramError("InvalidSignal", {call.functionName(), std::string(signalClass)});
    }
    const nvArray* signal = call.input(0);
    call.setOutput(0,
                   makeText(alignedBlockPath(toUtf8(textOf(signal, "ZID_")), textOf(signal, "BlockPath_"))));
}

void getAlignedObservers(HostFunctionCall& call)
{
    const nvArray* clients = requireClients(call.functionName(), call.input(0));
    modelOf(clients);
    std::vector<nvcos::COSInterfacePtr> aligned;
    for (std::size_t i = 0; i < elementsIn(clients); ++i) {
        if (const OwnedValue client = elementAt(clients, i)) {
            align(client.get());
            aligned.push_back(objects(client.get()).front());
        }
    }
    call.setOutput(0, ObjectAccess::makeObjectArray("Zelmar.HMI.SignalClient", aligned));
}

}  // namespace reference_host
