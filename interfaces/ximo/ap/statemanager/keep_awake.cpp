#include "ximo/ap/statemanager/keep_awake.h"

#include "base/mutex.h"
#include "base/signals.h"
#include "tarq/com/exception.h"
#include "ximo/ap/statemanager/state_management_alive_interface_proxy.h"
#include "ximo/ap/statemanager/state_management_com_alive_interface_proxy.h"
#include "ximo/ap/statemanager/state_management_cwu_interface_proxy.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

namespace ximo::ap::statemanager {

using ara::com::FindServiceHandle;
using ara::com::InstanceSpecifier;
using ara::com::ServiceHandleContainer;

namespace {

/// A limit of any length: the clock has no time that lies behind its end.
std::chrono::steady_clock::time_point end_of(std::chrono::milliseconds limit) {
    constexpr std::chrono::hours k_longest(24 * 3'650);
    return std::chrono::steady_clock::now() + std::min<std::chrono::milliseconds>(limit, k_longest);
}

}  // namespace

/// What is common to the three services: who waits, who is told, and the limit's thread.
class Keep_awake::Hold {
 public:
    explicit Hold(Options options) : options_(std::move(options)) {}
    virtual ~Hold() = default;
    Hold(Hold const&) = delete;
    Hold& operator=(Hold const&) = delete;

    void begin() {
        begin_lookup();
        if (options_.limit > std::chrono::milliseconds::zero()) {
            start_limit();
        }
    }

    void end() {
        {
            base::Lock_guard const lock(mutex_);
            is_ending_ = true;
            changed_.notify_all();
        }
        if (limit_.joinable()) {
            limit_.join();
        }
        end_lookup();
    }

    bool is_held() {
        base::Lock_guard const lock(mutex_);
        return is_held_;
    }

    bool await(std::chrono::milliseconds limit) {
        auto const end = end_of(limit);
        base::Lock_guard const lock(mutex_);
        while (!is_held_ && changed_.wait_until(mutex_, end) == std::cv_status::no_timeout) {
        }
        return is_held_;
    }

 protected:
    virtual void begin_lookup() = 0;
    virtual void end_lookup() = 0;  ///< and releases; may be repeated

    void set_held(bool is_held) {
        {
            base::Lock_guard const lock(mutex_);
            if (std::exchange(is_held_, is_held) == is_held) {
                return;
            }
            changed_.notify_all();
        }
        if (options_.on_change) {
            options_.on_change(is_held);
        }
    }

 private:
    void start_limit() {
        base::All_signals_blocked const blocked;  // signals are the application's
        try {
            limit_ = std::thread([this] { end_in_time(); });
        } catch (std::system_error const&) {
            end_lookup();
            throw;
        }
    }

    void end_in_time() {
        auto const end = end_of(options_.limit);
        {
            base::Lock_guard const lock(mutex_);
            while (!is_ending_ && changed_.wait_until(mutex_, end) == std::cv_status::no_timeout) {
            }
        }
        end_lookup();
    }

    Options const options_;
    base::Mutex mutex_;
    std::condition_variable_any changed_;
    bool is_held_ GUARDED_BY(mutex_) = false;
    bool is_ending_ GUARDED_BY(mutex_) = false;
    std::thread limit_;
};

namespace {

/// A request of one service. Reports come one after the other; none comes once the lookup has been stopped.
template <class Proxy>
class Hold_of : public Keep_awake::Hold {
 public:
    using Call = std::function<ximo::com::Future<void>(Proxy&)>;

    Hold_of(std::string const& instance, Call request, Call release, Keep_awake::Options options)
        : Hold(std::move(options)), instance_(instance), request_(std::move(request)), release_(std::move(release)) {}

 private:
    void begin_lookup() override {
        lookup_ = Proxy::StartFindService([this](ServiceHandleContainer const& found) { follow(found); }, instance_);
    }

    // With each report the way is made anew: it leads to the server that was found last. What fails here is reported
    // once more.
    void follow(ServiceHandleContainer const& found) {
        if (found.empty()) {
            set_held(false);
            return;
        }
        try {
            proxy_ = std::make_unique<Proxy>(found.back());
            request_(*proxy_).get();
        } catch (tarq::com::Infrastructure_exception const&) {
            set_held(false);
            throw;
        }
        set_held(true);
    }

    void end_lookup() override {
        Proxy::StopFindService(*lookup_);
        if (auto const proxy = std::move(proxy_)) {
            try {
                release_(*proxy).get();
            } catch (tarq::com::Infrastructure_exception const&) {
                // A state manager that can't be reached is asked for nothing any more.
            }
        }
        set_held(false);
    }

    InstanceSpecifier const instance_;
    Call const request_;
    Call const release_;
    std::optional<FindServiceHandle> lookup_;
    std::unique_ptr<Proxy> proxy_;
};

template <class Proxy, class Request, class Release>
std::unique_ptr<Keep_awake::Hold> hold(std::string const& instance, Keep_awake::Options options, Request request,
                                       Release release) {
    return std::make_unique<Hold_of<Proxy>>(instance, std::move(request), std::move(release), std::move(options));
}

}  // namespace

Keep_awake::Keep_awake(std::string const& instance, Ecu_alive /*what*/, Options options)
    : hold_(hold<proxy::StateManagementAliveInterfaceProxy>(
          instance, std::move(options), [](auto& way) { return way.RequestAlive(); },
          [](auto& way) { return way.ReleaseAlive(); })) {
    hold_->begin();
}

Keep_awake::Keep_awake(std::string const& instance, Com_alive what, Options options)
    : hold_(hold<proxy::StateManagementComAliveInterfaceProxy>(
          instance, std::move(options),
          [what](auto& way) { return way.RequestComAlive(what.cab_bits, what.ac_number); },
          [what](auto& way) { return way.ReleaseComAlive(what.cab_bits); })) {
    hold_->begin();
}

Keep_awake::Keep_awake(std::string const& instance, Car_wake_up what, Options options)
    : hold_(hold<proxy::StateManagementCWUInterfaceProxy>(
          instance, std::move(options), [what](auto& way) { return way.RequestCarWakeUp(what.ac_number); },
          [](auto& way) { return way.ReleaseCarWakeUp(); })) {
    hold_->begin();
}

Keep_awake::Keep_awake(std::string const& instance, Ecu_alive what) : Keep_awake(instance, what, Options()) {}
Keep_awake::Keep_awake(std::string const& instance, Com_alive what)
    : Keep_awake(instance, std::move(what), Options()) {}
Keep_awake::Keep_awake(std::string const& instance, Car_wake_up what) : Keep_awake(instance, what, Options()) {}

Keep_awake::~Keep_awake() {
    hold_->end();
}

bool Keep_awake::is_held() const {
    return hold_->is_held();
}

bool Keep_awake::await(std::chrono::milliseconds limit) const {
    return hold_->await(limit);
}

}  // namespace ximo::ap::statemanager
