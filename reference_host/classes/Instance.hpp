#ifndef ZM_REFERENCE_HOST_CLASSES_INSTANCE_HPP
#define ZM_REFERENCE_HOST_CLASSES_INSTANCE_HPP

#include "host/ClassObjects.hpp"

#include <cstddef>

namespace reference_host {

class RegisteredClass;

/// One object of a class: a count and the native data that the class made for it. The class outlives
/// its instances. When the last reference goes, the class is asked to end the data.
class Instance final : public nvcos::COSInterface {
public:
    /// A new instance with native data; the constructor method has not run.
    static nvcos::COSInterfacePtr create(RegisteredClass& cosClass);

    /// Every instance that crosses the boundary is one of ours.
    static Instance& of(const nvcos::COSInterface& instance);

    void addReference() noexcept override;
    void releaseReference() noexcept override;

    RegisteredClass& cosClass() const noexcept { return m_class; }
    void* data() const noexcept { return m_data; }

private:
    explicit Instance(RegisteredClass& cosClass);
    ~Instance() override;

    void allocate();
    void deallocate() noexcept;

    RegisteredClass& m_class;
    void* m_data = nullptr;
    bool m_hasData = false;
    std::size_t m_references = 0;
};

}  // namespace reference_host

#endif
