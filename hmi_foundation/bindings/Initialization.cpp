#include "hmi_foundation/Initialization.hpp"

#include "hmi_foundation/bindings/InstrumentedSignalsCOSClassInfo.hpp"
#include "hmi_foundation/bindings/StreamingClientsCOSClassInfo.hpp"
#include "host/ClassDescriptors.hpp"
#include "host/Memory.hpp"

#include <memory>
#include <utility>

namespace {

using nvcos::COSNamespace;

COSNamespace* findNamespace(const char* fullName)
{
    return COSNamespace::getNamespace(nvcos::internal::makeInterned(fullName));
}

void addNamespace(std::unique_ptr<nvcos::COSNamespaceInfo> info)
{
    handOver(std::move(info), [](nvcos::COSNamespaceInfo* taken) { COSNamespace::addNamespace(taken); });
}

void addInnerNamespace(COSNamespace* cosNamespace, std::unique_ptr<nvcos::COSNamespaceInfo> info)
{
    handOver(std::move(info),
             [&](nvcos::COSNamespaceInfo* taken) { cosNamespace->addInnerNamespace(taken); });
}

void addClass(COSNamespace* cosNamespace, std::unique_ptr<nvcos::COSClassInfo> info)
{
    handOver(std::move(info), [&](nvcos::COSClassInfo* taken) { cosNamespace->addClass(taken, 0, 2); });
}

// Hosts list the classes of a namespace in the order in which they were added, and scripts rely on that
// order. Neither class needs the other to be registered.
void addClasses(COSNamespace* cosNamespace)
{
    addClass(cosNamespace, std::make_unique<zm_hmi_foundation::InstrumentedSignalsCOSClassInfo>());
    addClass(cosNamespace, std::make_unique<zm_hmi_foundation::StreamingClientsCOSClassInfo>());
}

/// The registration that belongs to one entry point, with its own flag and its own two namespace infos.
template <class Entry>
class Registration {
public:
    static void run()
    {
        // Set before anything can fail: a failed registration is not retried.
        if (std::exchange(m_done, true)) {
            return;
        }
        COSNamespace* outer = findNamespace("Zelmar");
        if (outer == nullptr) {
            addNamespace(std::make_unique<ZELMARNVCOSNamespaceInfo>());
            return;
        }
        if (COSNamespace* inner = findNamespace("Zelmar.HMI")) {
            addClasses(inner);
        } else {
            addInnerNamespace(outer, std::make_unique<HMINVCOSNamespaceInfo>());
        }
    }

private:
    class HMINVCOSNamespaceInfo final : public nvcos::COSNamespaceInfo, public HostAllocated {
    public:
        const char* getName() const noexcept override { return "HMI"; }
        void defineContents(COSNamespace* cosNamespace) override
        {
            withHostMemoryErrors([&] { addClasses(cosNamespace); });
        }
    };

    class ZELMARNVCOSNamespaceInfo final : public nvcos::COSNamespaceInfo, public HostAllocated {
    public:
        const char* getName() const noexcept override { return "Zelmar"; }
        void defineContents(COSNamespace* cosNamespace) override
        {
            withHostMemoryErrors(
                [&] { addInnerNamespace(cosNamespace, std::make_unique<HMINVCOSNamespaceInfo>()); });
        }
    };

    static inline bool m_done = false;
};

struct ModuleEntry;
struct TestEntry;

}  // namespace

void NVInitialize_zm_hmi_foundation()
{
    withHostMemoryErrors([] { Registration<ModuleEntry>::run(); });
}

void NVTerminate_zm_hmi_foundation() {}

void zm_hmi::testAPI::addStreamingClientNVCOSNamespace()
{
    withHostMemoryErrors([] { Registration<TestEntry>::run(); });
}
