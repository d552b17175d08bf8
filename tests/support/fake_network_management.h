#ifndef TESTS_SUPPORT_FAKE_NETWORK_MANAGEMENT_H
#define TESTS_SUPPORT_FAKE_NETWORK_MANAGEMENT_H

#include "base/mutex.h"
#include "statemanager/nm/bit_vector.h"
#include "statemanager/service_handler/nm_interface_abstract.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace test_support {

/// Network management that is found and reports when a test says so, and notes in order what it is asked for:
/// "callback", "search", "request 00 01 ", "release ", "user data 80 00 ".
class Fake_network_management : public ximo::ap::statemanager::Nm_interface_abstract {
 public:
    /// `actions` outlives this object.
    explicit Fake_network_management(std::vector<std::string>& actions) : actions_(actions) {}
    ~Fake_network_management() override {
        at_the_end();
        note("gone");
    }

    // What the network does.
    void be_found() { on_services_found_(); }
    void report(ximo::ap::statemanager::Bit_vector const& state) { network_state_updated_(state); }

    /// Runs inside of each request, release and change of user data.
    std::function<void()> meanwhile{[] {}};

    /// Runs when the search starts, which fails with what this throws.
    std::function<void()> at_the_search{[] {}};

    /// Runs while this object goes.
    std::function<void()> at_the_end{[] {}};

    void release_network(std::vector<std::uint8_t> const& bits) override { ask("release ", bits); }
    void request_network(std::vector<std::uint8_t> const& bits) override { ask("request ", bits); }
    void set_user_data(std::vector<std::uint8_t> const& data) override { ask("user data ", data); }
    void start_find_services(std::function<void()> const& on_services_found) override {
        note("search");
        at_the_search();
        on_services_found_ = on_services_found;
    }
    void set_network_state_updated_func(std::function<void(std::vector<std::uint8_t> const&)> const& func) override {
        note("callback");
        network_state_updated_ = func;
    }

 private:
    void ask(char const* what, std::vector<std::uint8_t> const& bits) {
        note(what + ximo::ap::statemanager::bitvector2str(bits));
        meanwhile();
    }
    void note(std::string const& action) {
        base::Lock_guard const lock(mutex_);
        actions_.push_back(action);
    }

    base::Mutex mutex_;
    std::vector<std::string>& actions_ GUARDED_BY(mutex_);
    std::function<void()> on_services_found_;
    std::function<void(std::vector<std::uint8_t> const&)> network_state_updated_;
};

}  // namespace test_support

#endif
