#ifndef TESTS_SYSTEM_VEHICLE_STATUS_MACHINE_H
#define TESTS_SYSTEM_VEHICLE_STATUS_MACHINE_H

#include "network_machine.h"
#include "status/layout.h"
#include "support/test_client.h"
#include "tool.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace bench::vehicle {

/// A machine whose daemon is asked through its page alone, as ap_statectl does it.
class Status_page : public Network_story {
 protected:
    Status_page() {
        options.clients.clear();
        std::filesystem::remove_all(k_directory);  // the pages of stories before
    }

    void TearDown() override {
        finish();
        std::filesystem::remove_all(k_directory);
        std::filesystem::remove_all("/run/adaptive/ara_SM");
    }

    static nlohmann::json told(std::string const& subcommand, std::vector<std::string> words = {}) {
        words.insert(words.begin(), {subcommand, "--json"});
        return nlohmann::json::parse(statectl(words).output);
    }

    /// What the tool tells as soon as it is so; what it told last when it does not become so.
    nlohmann::json told_when(std::string const& subcommand, std::function<bool(nlohmann::json const&)> const& is_so) {
        auto const end = std::chrono::steady_clock::now() + Machine::k_patience;
        auto page = told(subcommand);
        while (!is_so(page)) {
            if (std::chrono::steady_clock::now() > end) {
                ADD_FAILURE() << page.dump(2);
                break;
            }
            machine->watch(std::chrono::milliseconds(10));
            page = told(subcommand);
        }
        return page;
    }

    /// The sentence of a reason or trouble, once the tool gives it.
    std::string why(std::string const& code) {
        std::string sentence;
        told_when("why", [&](nlohmann::json const& page) {
            for (auto const* const list : {"reasons", "troubles"}) {
                for (auto const& reason : page.at(list)) {
                    if (reason.at("code") == code) {
                        sentence = reason.at("text");
                    }
                }
            }
            return !sentence.empty();
        });
        return sentence;
    }

    bool is_in(std::string const& state) { return statectl({"wait", state, "--for", "20"}).status == 0; }

    test_support::Test_client client(std::string const& name) {
        test_support::Test_client connected{utilities::get_socket_path(), name, "kOn"};
        told_when("clients", [&](nlohmann::json const& page) {
            return std::any_of(page.at("clients").begin(), page.at("clients").end(),
                               [&](nlohmann::json const& other) { return other.at("name") == name; });
        });
        return connected;
    }

    void kill() {
        machine->signal_daemon(SIGKILL);
        machine->await_end();
    }

    static constexpr char const* k_directory = "/run/adaptive/status";
};

}  // namespace bench::vehicle

#endif
