#ifndef XIMO_AP_STATEMANAGER_KEEP_AWAKE_H
#define XIMO_AP_STATEMANAGER_KEEP_AWAKE_H

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace ximo::ap::statemanager {

/// What an application asks for (docs/services.md).
struct Ecu_alive {};
struct Com_alive {
    std::vector<std::uint8_t> cab_bits;
    std::uint8_t ac_number{0};
};
struct Car_wake_up {
    std::uint8_t ac_number{0};
};

/// Keeps the machine awake for one application from its construction to its destruction:
///
///     tarq::com::runtime::Component_singleton const communication(false, "");
///     Keep_awake const awake("navigation", Ecu_alive());
///
/// The application's instance is looked up, requested when it is offered, and requested again whenever it is offered
/// anew: a state manager that was restarted has forgotten the request. A call that fails is made again, twice a second.
/// May be used by any thread; needs the runtime object for as long as it lives.
class Keep_awake {
 public:
    struct Options {
        /// After this time the request is released as if this had gone; zero for no limit.
        std::chrono::milliseconds limit{0};
        /// Told on a thread of the library when the request begins to be held, and with false when it no longer is:
        /// nobody offers the instance, or the time is over. It does not destroy the object.
        std::function<void(bool is_held)> on_change{};
    };

    /// Throws `tarq::com::Infrastructure_exception`, `tarq::com::Invalid_argument_exception` for a name that is none,
    /// and `std::system_error` when a limit finds no thread. Whether the instance is offered shows later.
    Keep_awake(std::string const& instance, Ecu_alive what);
    Keep_awake(std::string const& instance, Ecu_alive what, Options options);
    Keep_awake(std::string const& instance, Com_alive what);
    Keep_awake(std::string const& instance, Com_alive what, Options options);
    Keep_awake(std::string const& instance, Car_wake_up what);
    Keep_awake(std::string const& instance, Car_wake_up what, Options options);

    /// Releases. Waits for a call that is under way, and for its own: up to the time of a call each (20 s).
    ~Keep_awake();
    Keep_awake(Keep_awake const&) = delete;
    Keep_awake& operator=(Keep_awake const&) = delete;

    bool is_held() const;

    /// Waits until the request is held; false when it is not within the time.
    bool await(std::chrono::milliseconds limit) const;

    class Hold;

 private:
    std::unique_ptr<Hold> const hold_;
};

}  // namespace ximo::ap::statemanager

#endif
