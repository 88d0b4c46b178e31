#include "simulation/PortNames.hpp"

#include "reference_host/support/TextConversion.hpp"

#include <algorithm>
#include <charconv>
#include <vector>

namespace simulation {

using reference_host::Block;
using reference_host::Model;
using reference_host::Port;
using reference_host::PortKind;

namespace {

const Block* findBlock(const Model& model, std::u16string_view path)
{
    if (const Block* block = model.findByPath(path)) {
        return block;
    }
    const std::u16string modelPart = model.name() + u"/";
    return path.starts_with(modelPart) ? model.findByPath(path.substr(modelPart.size())) : nullptr;
}

std::size_t countNamed(const std::vector<Port>& ports, std::u16string_view name)
{
    return static_cast<std::size_t>(
        std::count_if(ports.begin(), ports.end(), [&](const Port& port) { return port.name == name; }));
}

/// 0 when the text is no number.
std::size_t portNumber(std::string_view text)
{
    std::size_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end ? number : 0;
}

}  // namespace

PortSearch findPort(const Model& model, std::string_view name)
{
    const std::size_t colon = name.find(':');  // no block's name holds one, a port's may
    if (colon == std::string_view::npos) {
        return {std::nullopt, "a port is named by its block's path, \":\" and its name or number"};
    }
    const Block* block = findBlock(model, reference_host::utf16FromUtf8(name.substr(0, colon)));
    if (block == nullptr) {
        return {std::nullopt, "there is no such block"};
    }
    const std::vector<Port>& ports = block->ports(PortKind::Output);
    const std::string_view portPart = name.substr(colon + 1);
    const std::u16string portText = reference_host::utf16FromUtf8(portPart);
    const std::size_t sameName = countNamed(ports, portText);
    if (sameName > 1) {
        return {std::nullopt, "several ports of the block have this name; give the port's number"};
    }
    if (sameName == 1) {
        const auto found =
            std::find_if(ports.begin(), ports.end(), [&](const Port& port) { return port.name == portText; });
        return {OutputPort{block, static_cast<std::size_t>(found - ports.begin())}, ""};
    }
    const std::size_t number = portNumber(portPart);
    if (number == 0 || number > ports.size()) {
        return {std::nullopt, "the block has no such output port"};
    }
    return {OutputPort{block, number - 1}, ""};
}

std::string portName(const OutputPort& port)
{
    const std::vector<Port>& ports = port.block->ports(PortKind::Output);
    const bool isThere = port.index < ports.size();  // or deleted meanwhile
    const std::u16string path = port.block->path();
    const std::size_t modelPart = port.block->model().name().size() + 1;
    return reference_host::utf8FromUtf16(path.substr(std::min(modelPart, path.size()))) + ':' +
           (isThere && countNamed(ports, ports[port.index].name) == 1
                ? reference_host::utf8FromUtf16(ports[port.index].name)
                : std::to_string(port.index + 1));
}

}  // namespace simulation
