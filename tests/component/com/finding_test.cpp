#include "client_fixture.h"
#include "support/log_capture.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <stdexcept>
#include <thread>

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace com_test {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using test_support::logged;
using testing::ElementsAre;
using testing::IsEmpty;

using Names = std::vector<std::string>;
using Watch = Watching<Com_alive_proxy>;

// A participant that is not heard is given up after a lease of many seconds. What is faster was seen in another way.
constexpr milliseconds k_faster_than_lease{10'000};

class Finding : public Client {};

TEST_F(Finding, Nothing_is_reported_at_once_as_an_empty_list) {
    Watch sut("*");
    EXPECT_THAT(sut.reports.await_count(1), ElementsAre(IsEmpty()));
}

TEST_F(Finding, What_was_offered_before_is_found) {
    auto peer = server({"early"});
    Watch sut("*");
    sut.expect({"early"});
}

TEST_F(Finding, What_is_offered_later_is_found) {
    Watch sut("*");
    sut.expect({});
    auto peer = server({"late"});
    sut.expect({"late"});
}

TEST_F(Finding, The_first_report_of_a_second_lookup_has_what_is_known) {
    auto peer = server({"app"});
    Watch first("*");
    first.expect({"app"});
    Watch sut("*");
    EXPECT_THAT(sut.reports.await_count(1), ElementsAre(Names{"app"}));
}

TEST_F(Finding, Instances_of_several_processes_come_in_order_of_their_names) {
    auto one = server({"b", "d"});
    auto two = server({"c", "a"});
    Watch sut("*");
    sut.expect({"a", "b", "c", "d"});
}

TEST_F(Finding, One_instance_is_found_among_others) {
    auto peer = server({"a", "b", "ab"});
    Watch sut("b");
    sut.expect({"b"});
}

TEST_F(Finding, Another_instance_is_no_reason_for_a_report) {
    auto peer = server({"a"});
    Watch all("*");
    Watch sut("a");
    sut.expect({"a"});
    auto const before = sut.reports.now().size();
    peer.command({{"do", "offer"}, {"instance", "b"}});
    all.expect({"a", "b"});
    peer.command({{"do", "withdraw"}, {"instance", "a"}});
    sut.expect({});
    EXPECT_EQ(sut.reports.now().size(), before + 1) << "the other instance was reported too";
}

TEST_F(Finding, What_is_offered_by_two_processes_is_reported_twice) {
    auto one = server({"same"});
    auto two = server({"same"});
    Watch sut("*");
    sut.expect({"same", "same"});
}

TEST_F(Finding, A_withdrawal_is_reported) {
    auto peer = server({"app"});
    Watch sut("*");
    sut.expect({"app"});
    peer.command({{"do", "withdraw"}, {"instance", "app"}});
    sut.expect({});
}

TEST_F(Finding, A_killed_process_is_reported_at_once) {
    auto peer = server({"app"});
    Watch sut("*");
    sut.expect({"app"});
    auto const begin = steady_clock::now();
    peer.process().signal(SIGKILL);
    sut.expect({});
    EXPECT_LT(steady_clock::now() - begin, k_faster_than_lease);
}

TEST_F(Finding, A_process_that_stands_still_for_less_stays_found) {
    auto peer = server({"app"});
    Watch sut("*");
    sut.expect({"app"});
    peer.process().signal(SIGSTOP);
    std::this_thread::sleep_for(milliseconds(2500));
    peer.process().signal(SIGCONT);
    peer.command({{"do", "offer"}, {"instance", "other"}});
    sut.expect({"app", "other"});
    auto const reports = sut.reports.now();
    EXPECT_EQ(std::count(reports.begin() + 1, reports.end(), Names{}), 0);
}

TEST_F(Finding, A_stopped_lookup_reports_no_more) {
    Watch all("*");
    std::atomic<int> reports{0};
    Seen<int> first;
    auto const sut = Com_alive_proxy::StartFindService(
        [&](auto const&) {
            ++reports;
            first.add(1);
        },
        ara::com::InstanceSpecifier("*"));
    first.await_count(1);
    Com_alive_proxy::StopFindService(sut);
    Com_alive_proxy::StopFindService(sut);
    auto peer = server({"app"});
    all.expect({"app"});
    // What the first change would have led to has come by then.
    peer.command({{"do", "offer"}, {"instance", "other"}});
    all.expect({"app", "other"});
    EXPECT_EQ(reports, 1);
}

TEST_F(Finding, A_lookup_may_be_stopped_by_its_own_handler) {
    Watch all("*");
    std::promise<ara::com::FindServiceHandle> promise;
    auto const handle = promise.get_future().share();
    Seen<Names> reports;
    promise.set_value(Com_alive_proxy::StartFindService(
        [&reports, handle](auto const& handles) {
            Com_alive_proxy::StopFindService(handle.get());
            reports.add(names(handles));
        },
        ara::com::InstanceSpecifier("*")));
    reports.await_count(1);
    auto peer = server({"app"});
    all.expect({"app"});
    peer.command({{"do", "offer"}, {"instance", "other"}});
    all.expect({"app", "other"});
    EXPECT_THAT(reports.now(), ElementsAre(IsEmpty()));
}

TEST_F(Finding, Nobody_need_keep_the_handle_of_a_lookup) {
    auto const reports = std::make_shared<Seen<Names>>();
    Com_alive_proxy::StartFindService([reports](auto const& handles) { reports->add(names(handles)); },
                                      ara::com::InstanceSpecifier("*"));
    auto peer = server({"app"});
    EXPECT_THAT(reports->await([](auto const& all) { return !all.empty() && !all.back().empty(); }).back(),
                ElementsAre("app"));
}

TEST_F(Finding, A_handler_that_throws_gets_further_reports) {
    Seen<Names> reports;
    auto const sut = Com_alive_proxy::StartFindService(
        [&reports](auto const& handles) {
            reports.add(names(handles));
            throw std::runtime_error("on purpose");
        },
        ara::com::InstanceSpecifier("*"));
    auto peer = server({"app"});
    EXPECT_THAT(reports.await([](auto const& all) { return !all.empty() && !all.back().empty(); }).back(),
                ElementsAre("app"));
    Com_alive_proxy::StopFindService(sut);
}

TEST_F(Finding, A_handler_that_fails_for_want_of_something_gets_the_report_again) {
    test_support::Log_capture log;
    auto peer = server({"app"});
    Seen<Names> reports;
    auto const sut = Com_alive_proxy::StartFindService(
        [&reports](auto const& handles) {
            reports.add(names(handles));
            if (!handles.empty() && reports.now().size() < 4) {
                throw tarq::com::Infrastructure_exception("for want of something");
            }
        },
        ara::com::InstanceSpecifier("*"));
    EXPECT_EQ(reports.await_count(4).back(), Names{"app"});
    std::this_thread::sleep_for(milliseconds(700));
    EXPECT_EQ(reports.now().size(), 4U);
    Com_alive_proxy::StopFindService(sut);
    EXPECT_THAT(log.at_least(ara::log::LogLevel::kInfo),
                ElementsAre(logged(ara::log::LogLevel::kError, "A handler of the communication threw ",
                                   "for want of something"),
                            logged(ara::log::LogLevel::kInfo,
                                   "A handler of the communication no longer throws; failures before: ", 2U)));
}

TEST_F(Finding, A_handler_may_make_proxies_and_calls) {
    auto peer = server({"app"});
    Seen<std::string> results;
    auto const sut = Com_alive_proxy::StartFindService(
        [&results](auto const& handles) {
            for (auto const& handle : handles) {
                Com_alive_proxy proxy(handle);
                results.add(error_of(proxy.ReleaseComAlive({})));
            }
        },
        ara::com::InstanceSpecifier("*"));
    EXPECT_THAT(results.await_count(1), ElementsAre("none"));
    Com_alive_proxy::StopFindService(sut);
}

/// The place of a process among those of the machine: the port that it would have.
class Taken_place {
 public:
    explicit Taken_place(std::uint16_t index) : socket_(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(static_cast<std::uint16_t>(k_first_port + 2 * index));
        EXPECT_EQ(::bind(socket_, reinterpret_cast<sockaddr const*>(&address), sizeof address), 0);
    }
    ~Taken_place() { ::close(socket_); }
    Taken_place(Taken_place const&) = delete;
    Taken_place& operator=(Taken_place const&) = delete;

 private:
    static constexpr std::uint16_t k_first_port = 7410;
    int const socket_;
};

// By its own settings the engine has places for nine processes of a machine. Of the 61 that it is told to have it
// leaves the last one unused.
TEST_F(Finding, The_sixtieth_process_of_a_machine_is_found) {
    Watch sut("*");
    sut.expect({});
    std::vector<std::unique_ptr<Taken_place>> others;
    for (std::uint16_t index = 1; index < 59; ++index) {
        others.push_back(std::make_unique<Taken_place>(index));
    }
    auto peer = server({"app"});
    sut.expect({"app"});
}

}  // namespace
}  // namespace com_test
