#include "host/Exceptions.hpp"
#include "reference_host/ssp/SsdReader.hpp"
#include "reference_host/ssp/SsdWriter.hpp"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

using reference_host::Block;
using reference_host::BlockKind;
using reference_host::Model;
using reference_host::PortKind;
using reference_host::readSsd;
using reference_host::SsdLimits;
using reference_host::SsdSource;
using reference_host::writeSsd;

namespace {

/// The model of a document; null when it is refused.
std::unique_ptr<Model> read(const std::string& document, std::size_t depth)
{
    const SsdLimits limits{.bytes = std::size_t{1} << 20U, .depth = depth};
    try {
        return readSsd(document, "fuzz.ssd", limits).model;
    } catch (const zmsvException&) {
        return nullptr;
    }
}

void require(bool holds)
{
    if (!holds) {
        std::abort();
    }
}

/// Edits the diagram in all the ways that a description tells; false when a name is taken.
bool edit(Model& model)
{
    const auto blocks = model.blocks();
    try {
        Block& added = model.add(model.root(), u"\u00E4 <new>", BlockKind::System);
        added.addPort(PortKind::Output, u"y");
        if (!blocks.empty()) {
            model.rename(*blocks.front(), u"\"renamed\"\n");
            model.move(*blocks.front(), added);
            model.remove(*blocks.back());
        }
        return true;
    } catch (const zmsvException&) {
        return false;
    }
}

}  // namespace

/// Every document gives a model or is refused. A model without edits gives the document back; with edits, a
/// document that holds them.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string document(reinterpret_cast<const char*>(data), size);
    const std::unique_ptr<Model> model = read(document, 64);
    if (model == nullptr) {
        return 0;
    }
    const SsdSource source{document, model->blocks()};
    require(writeSsd(*model, source) == document);
    if (edit(*model)) {
        const std::string edited = writeSsd(*model, source);
        require(writeSsd(*model, source) == edited);
        const std::unique_ptr<Model> again = read(edited, SsdLimits().depth);
        require(again != nullptr && again->blockCount() == model->blockCount());
        require(writeSsd(*again, {edited, again->blocks()}) == edited);
    }
    return 0;
}
