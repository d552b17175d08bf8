#include "tarq/com/runtime/component_singleton.h"

#include "ara/com/binding.h"
#include "ara/com/dds/dds_binding.h"
#include "base/mutex.h"

#include <memory>

namespace tarq::com::runtime {

namespace {

/// The binding, for as long as there is a runtime object.
struct Runtime {
    base::Mutex mutex;
    int objects GUARDED_BY(mutex){0};
};

Runtime& runtime() {
    static Runtime instance;
    return instance;
}

void begin() {
    base::Lock_guard const lock(runtime().mutex);
    if (runtime().objects == 0) {
        ara::com::use_binding(ara::com::dds::make_binding());
    }
    ++runtime().objects;
}

// Null while others are left.
std::shared_ptr<ara::com::Binding> end() {
    base::Lock_guard const lock(runtime().mutex);
    return --runtime().objects == 0 ? ara::com::use_binding(nullptr) : nullptr;
}

}  // namespace

Component_singleton::Component_singleton(bool /*monitored*/, std::string const& /*name*/) {
    begin();
}

// Others may hold the binding, too, and even on its own threads, so its end does not wait for the last reference.
Component_singleton::~Component_singleton() {
    if (auto const binding = end()) {
        binding->shut_down();
    }
}

}  // namespace tarq::com::runtime
