#ifndef ARA_COM_NAMED_LOOKUP_H
#define ARA_COM_NAMED_LOOKUP_H

#include "ara/com/binding.h"
#include "base/mutex.h"

#include <memory>

namespace ara::com {

/// What the handler of a lookup stops the lookup by: it may run before whoever started the lookup has been given it.
class Named_lookup : public Lookup {
 public:
    void stop() override {
        std::shared_ptr<Lookup> lookup;
        {
            base::Lock_guard const lock(mutex_);
            is_stopped_ = true;
            lookup = lookup_.lock();
        }
        if (lookup) {
            lookup->stop();
        }
    }

    /// Names the lookup, which is stopped here when its handler has asked for that already.
    void name(std::shared_ptr<Lookup> const& lookup) {
        bool is_stopped = false;
        {
            base::Lock_guard const lock(mutex_);
            lookup_ = lookup;
            is_stopped = is_stopped_;
        }
        if (is_stopped) {
            lookup->stop();
        }
    }

    bool is_stopped() {
        base::Lock_guard const lock(mutex_);
        return is_stopped_;
    }

 private:
    base::Mutex mutex_;
    std::weak_ptr<Lookup> lookup_ GUARDED_BY(mutex_);  // which keeps its handler, which keeps this
    bool is_stopped_ GUARDED_BY(mutex_) = false;
};

}  // namespace ara::com

#endif
