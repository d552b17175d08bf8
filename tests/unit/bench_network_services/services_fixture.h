#ifndef TESTS_UNIT_BENCH_NETWORK_SERVICES_SERVICES_FIXTURE_H
#define TESTS_UNIT_BENCH_NETWORK_SERVICES_SERVICES_FIXTURE_H

#include "bench/network/commands.h"
#include "bench/network/service_commands.h"
#include "bench/process/message_log.h"
#include "support/fake_binding.h"
#include "tarq/udpnm/interface/network_state_interface_proxy.h"
#include "tarq/udpnm/interface/user_data_interface_proxy.h"

#include <array>
#include <string>
#include <thread>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

namespace bench::network {

/// A node's services whose loop runs on a thread of its own, as far as the binding without an engine; commands go in
/// and events come out as with the process.
class Services_fixture : public testing::Test {
 protected:
    Services_fixture() {
        add_commands(commands_, player_);
        add_service_commands(commands_, services_);
        thread_ = std::thread([this] { loop_.run(); });
    }
    ~Services_fixture() override {
        ::close(input_.ends[1]);
        thread_.join();
    }

    nlohmann::json command(nlohmann::json message) {
        message["id"] = ++last_id_;
        auto const line = message.dump() + "\n";
        EXPECT_EQ(::write(input_.ends[1], line.data(), line.size()), static_cast<ssize_t>(line.size()));
        auto const answer = log_.await(
            [this](nlohmann::json const& seen) { return seen.contains("answer") && seen.at("id") == last_id_; },
            k_patience, 0);
        return answer.value_or(nlohmann::json::object());
    }

    bool await_event(std::string const& name, nlohmann::json const& members) {
        auto const fits = [&](nlohmann::json const& line) {
            return line.value("event", "") == name &&
                   std::all_of(members.items().begin(), members.items().end(), [&](auto const& member) {
                       return line.contains(member.key()) && line.at(member.key()) == member.value();
                   });
        };
        return log_.await(fits, k_patience, 0).has_value();
    }

    static constexpr char const* k_network_state = "tarq::udpnm::interface::NetworkStateInterface";
    static constexpr char const* k_user_data = "tarq::udpnm::interface::UserDataInterface";

    static ara::com::ServiceHandle handle(char const* interface_name) {
        return {interface_name, ara::com::InstanceIdentifier("NM"), "somebody"};
    }

 private:
    static constexpr std::chrono::milliseconds k_patience{5'000};

    struct Pipe {
        Pipe() { EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0); }
        std::array<int, 2> ends{};
    };

    static Network_options options() {
        Network_options options;
        auto const process = static_cast<unsigned>(::getpid());
        options.own = {127U << 24U | (process >> 8U & 0xffU) << 16U | (process & 0xffU) << 8U | 1U, 30501};
        options.request_bytes = 4;
        return options;
    }

 protected:
    test_support::Fake_binding binding;

 private:
    Pipe input_;
    Pipe output_;
    Command_table commands_;
    Control_loop loop_{input_.ends[0], output_.ends[1], commands_};
    Network_player player_{options(), loop_};
    Services services_{"NM", true, player_, loop_};
    Message_log log_{output_.ends[0]};
    std::thread thread_;
    int last_id_{0};

 protected:
    tarq::udpnm::interface::proxy::NetworkStateInterfaceProxy network_state { handle(k_network_state) };
    tarq::udpnm::interface::proxy::UserDataInterfaceProxy user_data { handle(k_user_data) };
};

}  // namespace bench::network

#endif
