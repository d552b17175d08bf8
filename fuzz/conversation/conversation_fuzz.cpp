// Whole conversations of several clients with one server, which lives through all runs: whatever they do, a client that
// behaves is served after it, everybody who has gone is forgotten, and no request is lost, completes twice or with
// an outcome that does not fit to its results.
#include "client_state_notifier/client_states_impl.h"
#include "require.h"
#include "script.h"
#include "utilities/files.h"
#include "utilities/messages.h"
#include "utilities/protocol.h"

#include <algorithm>
#include <atomic>
#include <future>
#include <thread>

#include <sys/socket.h>

namespace {

using client_state_notifier::Callback_status;
using client_state_notifier::Client_results;
using client_state_notifier::Client_states_impl;
using client_state_notifier::Component_client_return_type;
using fuzz::require;
using utilities::Type_length_value;

constexpr std::chrono::seconds k_patience{5};

void check(Callback_status status, Client_results const& results) {
    bool const all_succeeded = std::all_of(results.begin(), results.end(), [](auto const& result) {
        return result.second == Component_client_return_type::succeeded;
    });
    require(status == Callback_status::succeeded || status == Callback_status::failed ||
            status == Callback_status::timed_out);
    require(status == Callback_status::timed_out || all_succeeded == (status == Callback_status::succeeded));
}

/// The server, and a client that does what it is asked.
class World {
 public:
    World() : good_(AF_UNIX, SOCK_STREAM, 0) {
        auto const never = utilities::socket_pair();
        require(good_.try_connect(utilities::create_unix_address(path_), never.first));
        utilities::send_type_length_values(
            good_, {Type_length_value("component_client_v1"), Type_length_value("good"), Type_length_value("kOn")});
        std::thread([this] { obey(); }).detach();  // until the process ends
    }

    void play(std::uint8_t const* data, std::size_t size) {
        newest_.reset();
        fuzz::Script(path_, data, size, [this](auto who, auto const& state) { ask(who, state); }).play();
        require_that_the_newest_request_is_not_lost();
        require_service();
        require_that_all_others_are_forgotten();
    }

 private:
    void obey() const {
        for (;;) {
            auto const asked = utilities::receive_type_length_values(good_);
            utilities::send_type_length_values(good_, {asked.at(0), asked.at(1), Type_length_value(0U)});
        }
    }

    void ask(std::uint8_t who, std::string const& state) {
        auto const completed = std::make_shared<std::atomic<bool>>(false);
        server_.request_state_change(
            state, [who](auto const& name) { return name.size() % 2 == who % 2; },
            [completed](auto status, auto const& results) {
                require(!completed->exchange(true));
                check(status, results);
            },
            std::chrono::seconds(who / 128));
        newest_ = who < 128 ? completed : nullptr;  // whose time is over at once
    }

    void require_that_the_newest_request_is_not_lost() const {
        auto const deadline = std::chrono::steady_clock::now() + k_patience;
        while (newest_ && !*newest_) {
            require(std::chrono::steady_clock::now() < deadline);
            std::this_thread::yield();
        }
    }

    void require_service() {
        std::promise<Callback_status> promise;
        server_.request_state_change(
            "kOn", [](auto const& name) { return name == "good"; },
            [&promise](auto status, auto const& /*results*/) { promise.set_value(status); }, k_patience);
        auto outcome = promise.get_future();
        require(outcome.wait_for(2 * k_patience) == std::future_status::ready);
        require(outcome.get() == Callback_status::succeeded);
    }

    void require_that_all_others_are_forgotten() const {
        auto const deadline = std::chrono::steady_clock::now() + k_patience;
        while (server_.get_connected_clients().size() != 1) {
            require(std::chrono::steady_clock::now() < deadline);
            std::this_thread::yield();
        }
    }

    std::string path_{utilities::get_static_tmp_dir() + "/socket"};
    Client_states_impl server_{"kOn", [](auto const&, auto, auto const&) {}, path_};
    utilities::Socket good_;
    std::shared_ptr<std::atomic<bool>> newest_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    static auto* const world = new World;  // never ends: the process does
    world->play(data, size);
    return 0;
}
