#include "reference_host/observers/AlignedPaths.hpp"

#include "host/Text.hpp"
#include "reference_host/classes/ObjectAccess.hpp"
#include "reference_host/model/DiagramErrors.hpp"
#include "reference_host/model/OpenModels.hpp"
#include "reference_host/observers/CollectionAccess.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"

#include <memory>

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

}  // namespace reference_host
