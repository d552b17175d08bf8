#include "statemanager/services/dsa_interface.h"

#include "service_test.h"
#include "support/temporary_directory.h"
#include "ximo/ap/statemanager/dsa_interface_proxy.h"

#include <atomic>
#include <chrono>
#include <stdexcept>
#include <thread>

namespace ximo::ap::statemanager::services {
namespace {

using ara::log::LogLevel;
using test_support::logged;
using testing::StrEq;

constexpr char const* k_dsa_service = "ximo::ap::statemanager::DSAInterface";

/// Notes the requests; `meanwhile` runs inside of each.
class Noting_writer : public smw::Shared_memory_reboot {
 public:
    explicit Noting_writer(std::vector<std::string>& requests)
        : Shared_memory_reboot("/dev/null"), requests_(requests) {}
    ~Noting_writer() override { at_the_end(); }
    Noting_writer(Noting_writer const&) = delete;
    Noting_writer& operator=(Noting_writer const&) = delete;
    void restart_vm() override { note("vm"); }
    void restart_m3() override { note("m3"); }

    std::function<void()> meanwhile{[] {}};
    std::function<void()> at_the_end{[] {}};

 private:
    void note(char const* request) {
        requests_.emplace_back(request);
        meanwhile();
    }

    std::vector<std::string>& requests_;
};

class Dsa_interface_test : public testing::Test {
 protected:
    Dsa_interface& build() {
        auto made = std::make_unique<Noting_writer>(requests);
        writer = made.get();
        sut = std::make_unique<Dsa_interface>(std::move(made));
        return *sut;
    }

    test_support::Fake_binding binding;
    test_support::Log_capture log;
    std::vector<std::string> requests;
    Noting_writer* writer{nullptr};
    std::unique_ptr<Dsa_interface> sut;
};

struct Restart_case {
    std::uint8_t type;
    LogLevel level;
    char const* text;
    std::vector<std::string> requests;
};

class Restart_type : public Dsa_interface_test, public testing::WithParamInterface<Restart_case> {};

TEST_P(Restart_type, Is_logged_and_acted_on_and_always_answered_with_success) {
    EXPECT_TRUE(succeeded(build().RequestRestart(GetParam().type)));

    EXPECT_EQ(requests, GetParam().requests);
    EXPECT_THAT(log.messages(), ElementsAre(logged(GetParam().level, GetParam().text)));
}

constexpr char const* k_unknown = "DSA received unknown RestartType !";

INSTANTIATE_TEST_SUITE_P(
    Table, Restart_type,
    testing::Values(Restart_case{1, LogLevel::kInfo, "RequestDiagnosticRestart for own VM", {"vm"}},
                    Restart_case{2, LogLevel::kInfo, "Received unused RequestDiagnosticRestart = 2 (no action) ", {}},
                    Restart_case{3, LogLevel::kInfo, "Received unused RequestDiagnosticRestart = 3 (no action)", {}},
                    Restart_case{4, LogLevel::kInfo, "Received unused RequestDiagnosticRestart = 4 (no action)", {}},
                    Restart_case{5, LogLevel::kInfo, "RequestDiagnosticRestart for M3", {"m3"}},
                    Restart_case{0, LogLevel::kWarn, k_unknown, {}}, Restart_case{6, LogLevel::kWarn, k_unknown, {}},
                    Restart_case{255, LogLevel::kWarn, k_unknown, {}}),
    [](testing::TestParamInfo<Restart_case> const& test) { return "type_" + std::to_string(test.param.type); });

TEST_F(Dsa_interface_test, Logs_a_restart_before_it_asks_for_it) {
    std::size_t logged_at_request = 0;
    build();
    writer->meanwhile = [&] { logged_at_request += log.messages().size(); };

    sut->RequestRestart(1);
    EXPECT_EQ(logged_at_request, 1U);
    sut->RequestRestart(5);
    EXPECT_EQ(logged_at_request, 3U);
}

// While one is inside, another one calls, and has every opportunity to log or to come in.
TEST_F(Dsa_interface_test, Logs_and_asks_for_one_restart_after_the_other) {
    for (std::uint8_t const first : {std::uint8_t{1}, std::uint8_t{5}}) {
        auto const second = static_cast<std::uint8_t>(6 - first);
        build();
        requests.clear();
        log.clear();
        std::atomic<bool> calls{false};
        std::thread other;
        writer->meanwhile = [&] {
            if (requests.size() > 1) {
                return;
            }
            other = std::thread([&] {
                calls = true;
                sut->RequestRestart(second);
            });
            auto const patience = std::chrono::milliseconds(50);
            auto end = std::chrono::steady_clock::time_point::max();
            while (log.messages().size() == 1 && std::chrono::steady_clock::now() < end) {
                if (calls && end == std::chrono::steady_clock::time_point::max()) {
                    end = std::chrono::steady_clock::now() + patience;
                }
                std::this_thread::yield();
            }
            EXPECT_EQ(log.messages().size(), 1U);
        };

        sut->RequestRestart(first);
        other.join();

        EXPECT_EQ(requests.size(), 2U);
    }
}

TEST_F(Dsa_interface_test, Passes_a_failure_of_the_writer_on_and_serves_the_next_request) {
    build();
    writer->meanwhile = [] { throw std::runtime_error("no hypervisor"); };
    EXPECT_THROW(sut->RequestRestart(1), std::runtime_error);
    EXPECT_THROW(sut->RequestRestart(5), std::runtime_error);

    writer->meanwhile = [] {};
    EXPECT_TRUE(succeeded(sut->RequestRestart(1)));
}

TEST_F(Dsa_interface_test, Writes_its_words_into_the_control_file) {
    test_support::Temporary_directory const directory;
    Dsa_interface on_file(directory.file("command_request"));

    on_file.RequestRestart(1);
    EXPECT_THAT(directory.read("command_request"), StrEq("restartao"));
    on_file.RequestRestart(5);
    EXPECT_THAT(directory.read("command_request"), StrEq("restartaorestartm3"));
}

TEST_F(Dsa_interface_test, Answers_each_call_with_its_own_promise) {
    struct : Dsa_interface {
        using Dsa_interface::Dsa_interface;
        ximo::com::Future<void> promise_get_future() override {
            ++answered;
            return Dsa_interface::promise_get_future();
        }
        int answered{0};
    } noting(std::string("/dev/null"));

    for (std::uint8_t type = 0; type <= 6; ++type) {
        EXPECT_TRUE(succeeded(noting.RequestRestart(type)));
        EXPECT_EQ(noting.answered, type + 1);
    }
}

TEST_F(Dsa_interface_test, Serves_clients_of_its_one_instance) {
    build().OfferService();
    EXPECT_TRUE(binding.is_offered(k_dsa_service, "DSA_Interface"));

    client<proxy::DSAInterfaceProxy>(k_dsa_service, "DSA_Interface").RequestRestart(5).get();

    EXPECT_THAT(requests, ElementsAre("m3"));
}

TEST_F(Dsa_interface_test, Withdraws_its_offer_at_the_end_before_its_writer_goes) {
    build().OfferService();
    bool offered_at_the_end = true;
    writer->at_the_end = [&] { offered_at_the_end = binding.is_offered(k_dsa_service, "DSA_Interface"); };

    sut.reset();

    EXPECT_FALSE(offered_at_the_end);
}

}  // namespace
}  // namespace ximo::ap::statemanager::services
