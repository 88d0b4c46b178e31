#pragma once

#include "host/ClassObjects.hpp"
#include "reference_host/Export.hpp"

#include <cstddef>
#include <string>

namespace reference_host {

class RegisteredClass;

/// One object of a class: a reference count, and the native data that the class allocated for it. The class
/// outlives its instances. When the last reference is released, the class deallocates the data.
class Instance final : public nvcos::COSInterface {
public:
    /// A new instance with native data; the constructor method has not run.
    static nvcos::COSInterfacePtr create(RegisteredClass& cosClass);

    /// REQUIRES: an instance of this host, as all instances are that cross the boundary.
    static Instance& of(const nvcos::COSInterface& instance);

    /// Has the classes of libraries end the native data of their instances, for the end of a program: data
    /// that refers to its own instance keeps it alive. Instances that are referenced afterwards have no data.
    static ZM_REFHOST_API void endLibraryData() noexcept;

    void addReference() noexcept override;
    void releaseReference() noexcept override;

    RegisteredClass& cosClass() const noexcept { return m_class; }
    void* data() const noexcept { return m_data; }

private:
    explicit Instance(RegisteredClass& cosClass);
    ~Instance() override;

    void allocate();
    void deallocate() noexcept;

    static inline Instance* m_first = nullptr;  // the list of all instances

    RegisteredClass& m_class;
    Instance* m_next = m_first;
    Instance* m_previous = nullptr;
    void* m_data = nullptr;
    bool m_hasData = false;
    std::size_t m_references = 0;
};

/// The instance at `index` of an array of class objects. A host error if the value is of another class,
/// null, or too short.
const nvcos::COSInterfacePtr& objectElement(const nvArray* value, std::size_t index);

}  // namespace reference_host

namespace nvcos {
std::string describeArgument(const COSInterface* instance);
std::string describeArgument(const COSInterfacePtr& instance);
}  // namespace nvcos
