#ifndef ZM_CONTRACT_THINGS_HPP
#define ZM_CONTRACT_THINGS_HPP

#include "contract/TestClasses.hpp"
#include "host/HostCall.hpp"

#include <functional>

/// A namespace "Contract" with one class "Thing", described as a library does it. A check sets up what it
/// needs and calls `add` once; what it adds stays for the life of its process.
namespace contract {

struct Things {
    test_classes::NamespaceScript home;
    test_classes::ClassScript thing;
    std::vector<test_classes::Method> methods;
    std::function<void(nvcos::COSClass&)> members;  ///< adds properties and the like
    std::function<void(test_classes::Call&)> construct;

    void add();
    int alive() const { return thing.allocated - thing.deallocated; }
};

/// The one of this process.
Things& things();

/// An instance of "Contract.Thing", made by its constructor.
OwnedArray makeThing();

/// Adds a property that is read and written through these functions.
void addProperty(nvcos::COSClass& cosClass, const char* name, const char* type,
                 test_classes::PropertyScript& script);

}  // namespace contract

#endif
