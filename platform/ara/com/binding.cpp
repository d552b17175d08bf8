#include "ara/com/binding.h"

#include "base/mutex.h"
#include "tarq/com/exception.h"

#include <utility>

namespace ara::com {

namespace {

struct Current_binding {
    base::Mutex mutex;
    std::shared_ptr<Binding> binding GUARDED_BY(mutex);
};

Current_binding& current() {
    static Current_binding instance;
    return instance;
}

}  // namespace

std::shared_ptr<Binding> binding() {
    base::Lock_guard const lock(current().mutex);
    if (!current().binding) {
        throw tarq::com::Infrastructure_exception("The communication runtime does not run");
    }
    return current().binding;
}

std::shared_ptr<Binding> use_binding(std::shared_ptr<Binding> binding) {
    base::Lock_guard const lock(current().mutex);
    return std::exchange(current().binding, std::move(binding));
}

}  // namespace ara::com
