#include "simulation/PortValues.hpp"

#include "reference_host/support/TextConversion.hpp"
#include "simulation/SimulationErrors.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>
#include <utility>

namespace simulation {

using reference_host::Block;
using reference_host::ChangeKind;
using reference_host::PortKind;

namespace {

void requirePlace(const Place& place, const reference_host::Model& model, const std::string& source)
{
    const std::string path = reference_host::utf8FromUtf16(place.block->path());
    if (&place.block->model() != &model) {
        throw simulationError("OtherModel", {source, path, reference_host::utf8FromUtf16(model.name())});
    }
    if (place.item) {
        const reference_host::Chart* chart = place.block->chart();
        if (chart == nullptr || chart->find(place.item->object) == nullptr) {
            throw simulationError("NoChartObject", {source, path, std::uint64_t{place.item->object}});
        }
    } else if (place.port >= place.block->ports(PortKind::Output).size()) {
        throw simulationError("NoOutputPort", {source, path, std::uint64_t{place.port + 1}});
    }
}

}  // namespace

std::string placeName(const Place& place)
{
    if (!place.item) {
        return portName({place.block, place.port});
    }
    return reference_host::utf8FromUtf16(place.block->path()) + "::" + std::to_string(place.item->object) +
           ':' + place.item->activity;
}

PortValues::Key PortValues::keyOf(const Place& place)
{
    return place.item ? Key{place.block, place.item->object, true, place.item->activity}
                      : Key{place.block, place.port, false, std::string()};
}

void PortValues::set(std::size_t source, const std::vector<SourcePort>& ports,
                     const reference_host::Model& model,
                     const std::function<std::string(std::size_t)>& sourceName)
{
    std::vector<std::vector<Entry>> bySource = m_bySource;
    std::vector<Entry>& entries = bySource[source];
    entries.resize(std::min(entries.size(), ports.size()));
    std::set<Key> own;
    for (std::size_t i = 0; i < ports.size(); ++i) {
        if (i < entries.size()) {  // the place is followed in here
            entries[i].port.layout = ports[i].layout;
            entries[i].port.allowsNaN = ports[i].allowsNaN;
        } else {
            requirePlace(ports[i].place, model, sourceName(source));
            entries.push_back({ports[i], source});
        }
        const Place& place = entries[i].port.place;
        const Entry* other = find(place);
        const bool isTaken = other != nullptr && other->source != source;
        if (!entries[i].isGone && (isTaken || !own.insert(keyOf(place)).second)) {
            throw simulationError(
                "TwoSources",
                {placeName(place), sourceName(isTaken ? other->source : source), sourceName(source)});
        }
    }
    place(std::move(bySource));
}

/// Gives every entry its offset, and takes on the values of the places that stay.
void PortValues::place(std::vector<std::vector<Entry>> bySource)
{
    std::vector<double> values;
    for (std::vector<Entry>& entries : bySource) {
        for (Entry& entry : entries) {
            const Entry* before = find(entry.port.place);
            const std::size_t width = entry.port.layout.width;
            if (before != nullptr && before->port.layout == entry.port.layout) {
                const auto first = m_values.begin() + static_cast<std::ptrdiff_t>(before->offset);
                entry.offset = values.size();
                values.insert(values.end(), first, first + static_cast<std::ptrdiff_t>(width));
            } else {
                entry.offset = values.size();
                values.insert(values.end(), width, std::numeric_limits<double>::quiet_NaN());
            }
        }
    }
    m_bySource = std::move(bySource);
    m_values = std::move(values);
    for (std::size_t i = 0; i < m_bySource.size(); ++i) {
        m_allAllowNaN[i] = std::all_of(m_bySource[i].begin(), m_bySource[i].end(),
                                       [](const Entry& entry) { return entry.port.allowsNaN; });
    }
    rebuildIndex();
}

std::span<double> PortValues::of(std::size_t source) noexcept
{
    const std::vector<Entry>& entries = m_bySource[source];
    if (entries.empty()) {
        return {};
    }
    const std::size_t first = entries.front().offset;
    return std::span(m_values).subspan(first,
                                       entries.back().offset + entries.back().port.layout.width - first);
}

const PortValues::Entry* PortValues::find(const Place& place) const
{
    const auto found = m_index.find(keyOf(place));
    return found == m_index.end() ? nullptr : found->second;
}

const PortValues::Entry* PortValues::findNaN(std::size_t source) const
{
    if (m_allAllowNaN[source]) {
        return nullptr;
    }
    for (const Entry& entry : m_bySource[source]) {
        const auto first = m_values.begin() + static_cast<std::ptrdiff_t>(entry.offset);
        if (!entry.port.allowsNaN &&
            std::any_of(first, first + static_cast<std::ptrdiff_t>(entry.port.layout.width),
                        [](double value) { return std::isnan(value); })) {
            return &entry;
        }
    }
    return nullptr;
}

bool followEdit(Place& place, const reference_host::DiagramChange& change)
{
    const bool concerns = change.kind == ChangeKind::OutputsChanged && place.block == change.block &&
                          !place.item && place.port < change.newNumbers.size();
    const int number = concerns ? change.newNumbers[place.port] : static_cast<int>(place.port) + 1;
    if (number != 0) {
        place.port = static_cast<std::size_t>(number) - 1;
    }
    return number == 0;
}

void PortValues::follow(const reference_host::DiagramChange& change)
{
    for (std::vector<Entry>& entries : m_bySource) {
        for (Entry& entry : entries) {
            if (entry.isGone) {
                entry.isGone = entry.goneWith != change.edit;  // back with the undo of that very edit
            } else if (followEdit(entry.port.place, change)) {
                entry.isGone = true;
                entry.goneWith = change.edit;
            }
        }
    }
    rebuildIndex();
}

void PortValues::rebuildIndex()
{
    m_index.clear();
    for (const std::vector<Entry>& entries : m_bySource) {
        for (const Entry& entry : entries) {
            if (!entry.isGone) {
                m_index.emplace(keyOf(entry.port.place), &entry);
            }
        }
    }
}

}  // namespace simulation
