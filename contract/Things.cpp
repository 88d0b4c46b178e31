#include "contract/Things.hpp"

#include <utility>

namespace contract {

Things& things()
{
    // Never destroyed: the host keeps the descriptors that refer to it.
    static auto* const all = new Things;
    return *all;
}

void Things::add()
{
    thing.initialize = [this](nvcos::COSClass& cosClass) {
        const auto body = [this](test_classes::Call& call) {
            call.outputCount = 1;
            if (construct) {
                construct(call);
            }
        };
        test_classes::addMethod(cosClass, {"Thing", {"any"}, {"Contract.Thing"}, 1, body});
        for (const test_classes::Method& method : methods) {
            test_classes::addMethod(cosClass, method);
        }
        if (members) {
            members(cosClass);
        }
    };
    home.define = [this](nvcos::COSNamespace& space) { test_classes::addClass(space, "Thing", thing); };
    test_classes::addNamespace("Contract", home);
}

OwnedArray makeThing()
{
    return std::move(callHost<1>("Contract.Thing")[0]);
}

void addProperty(nvcos::COSClass& cosClass, const char* name, const char* type,
                 test_classes::PropertyScript& script)
{
    test_classes::addProperty(cosClass, name, type, &script);
}

}  // namespace contract
