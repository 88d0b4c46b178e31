#ifndef ZM_TESTS_HMI_FOUNDATION_BINDINGS_RECORDING_CLASS_HPP
#define ZM_TESTS_HMI_FOUNDATION_BINDINGS_RECORDING_CLASS_HPP

#include "host/ClassDescriptors.hpp"

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace zm_hmi_foundation {

/// A class object that keeps what a class info registers, in order, and owns it as a host does.
class RecordingClass final : public nvcos::COSClass {
public:
    RecordingClass() = default;
    ~RecordingClass() override = default;

    void addProperty(nvcos::COSPropInfo* property) override
    {
        properties.emplace_back(property);
        order.emplace_back(property->getName());
    }
    void addMethod(nvcos::COSMethodInfo* method) override
    {
        methods.emplace_back(method);
        order.emplace_back(method->getName());
    }
    void* getInstanceData(const nvcos::COSInterface* /*instance*/) const noexcept override { return data; }

    nvcos::COSMethodInfo& method(const std::string& name) const
    {
        for (const auto& candidate : methods) {
            if (candidate->getName() == name) {
                return *candidate;
            }
        }
        throw std::out_of_range(name);
    }
    nvcos::COSPropInfo& property(const std::string& name) const
    {
        for (const auto& candidate : properties) {
            if (candidate->getName() == name) {
                return *candidate;
            }
        }
        throw std::out_of_range(name);
    }

    std::vector<std::unique_ptr<nvcos::COSPropInfo>> properties;
    std::vector<std::unique_ptr<nvcos::COSMethodInfo>> methods;
    std::vector<std::string> order;
    void* data = nullptr;  ///< the native data of every instance
};

}  // namespace zm_hmi_foundation

#endif
