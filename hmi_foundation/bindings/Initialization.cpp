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

void addClass(COSNamespace* cosNamespace, std::unique_ptr<nvcos::COSClassInfo> info)
{
    cosNamespace->addClass(info.get(), 0, 2);
    static_cast<void>(info.release());
}

void addInnerNamespace(COSNamespace* cosNamespace, std::unique_ptr<nvcos::COSNamespaceInfo> info)
{
    cosNamespace->addInnerNamespace(info.get());
    static_cast<void>(info.release());
}

// The order is fixed: the clients refer to the signals.
void addClasses(COSNamespace* cosNamespace)
{
    addClass(cosNamespace, std::make_unique<zm_hmi_foundation::InstrumentedSignalsCOSClassInfo>());
    addClass(cosNamespace, std::make_unique<zm_hmi_foundation::StreamingClientsCOSClassInfo>());
}

/// One way of registering: its flag and its pair of namespace infos. `Entry` tells the ways apart.
template <class Entry>
class Registration {
public:
    static void run()
    {
        // Set before anything can fail: a failed registration is not tried again.
        if (std::exchange(m_done, true)) {
            return;
        }
        COSNamespace* outer = findNamespace("Zelmar");
        if (outer == nullptr) {
            auto info = std::make_unique<ZELMARNVCOSNamespaceInfo>();
            COSNamespace::addNamespace(info.get());
            static_cast<void>(info.release());
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
        void defineContents(COSNamespace* cosNamespace) override { addClasses(cosNamespace); }
    };

    class ZELMARNVCOSNamespaceInfo final : public nvcos::COSNamespaceInfo, public HostAllocated {
    public:
        const char* getName() const noexcept override { return "Zelmar"; }
        void defineContents(COSNamespace* cosNamespace) override
        {
            addInnerNamespace(cosNamespace, std::make_unique<HMINVCOSNamespaceInfo>());
        }
    };

    static inline bool m_done = false;
};

struct ModuleEntry;
struct TestEntry;

}  // namespace

void NVInitialize_zm_hmi_foundation()
{
    Registration<ModuleEntry>::run();
}

void NVTerminate_zm_hmi_foundation() {}

void zm_hmi::testAPI::addStreamingClientNVCOSNamespace()
{
    Registration<TestEntry>::run();
}
