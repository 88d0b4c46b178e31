#include "reference_host/model/Chart.hpp"

#include "host/Text.hpp"
#include "reference_host/model/DiagramErrors.hpp"
#include "reference_host/support/ChangeCount.hpp"

#include <utility>

namespace reference_host {

namespace {

void checkName(const std::u16string& name)
{
    if (name.empty()) {
        throw diagramError("InvalidName", {std::string(), std::string("is empty")});
    }
}

}  // namespace

const char16_t* chartDomainType(ChartObjectKind kind) noexcept
{
    switch (kind) {
        case ChartObjectKind::Chart:
            return u"kw_chart";
        case ChartObjectKind::State:
            return u"kw_state";
        case ChartObjectKind::Data:
            break;
    }
    return u"kw_data";
}

Chart::Chart(std::u16string name)
{
    checkName(name);
    m_objects.push_back({ChartObjectKind::Chart, 0, 0, std::move(name)});
}

std::uint32_t Chart::addState(std::u16string name, std::uint32_t parent)
{
    return add(ChartObjectKind::State, std::move(name), parent);
}

std::uint32_t Chart::addData(std::u16string name, std::uint32_t parent)
{
    return add(ChartObjectKind::Data, std::move(name), parent);
}

const ChartObject* Chart::find(std::uint32_t kzid) const noexcept
{
    return kzid < m_objects.size() ? &m_objects[kzid] : nullptr;
}

std::uint32_t Chart::add(ChartObjectKind kind, std::u16string name, std::uint32_t parent)
{
    checkName(name);
    const ChartObject* around = find(parent);
    if (around == nullptr || around->kind == ChartObjectKind::Data) {
        throw diagramError("InvalidChartParent", {std::uint64_t{parent}, toUtf8(name)});
    }
    const auto kzid = static_cast<std::uint32_t>(m_objects.size());
    m_objects.push_back({kind, kzid, parent, std::move(name)});
    ChangeCount::diagramChanged();
    return kzid;
}

}  // namespace reference_host
