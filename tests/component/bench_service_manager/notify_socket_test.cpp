#include "bench/json_lines/clock.h"
#include "managed_fixture.h"

#include <cstdlib>
#include <filesystem>

#include <sys/socket.h>
#include <systemd/sd-daemon.h>
#include <unistd.h>

namespace bench::service_manager {
namespace {

using nlohmann::json;
using namespace std::chrono_literals;

class Notify_socket_test : public Managed_fixture {
 protected:
    // Reports as a service does.
    void notify(char const* text) const {
        ::setenv("NOTIFY_SOCKET", notify_path().c_str(), 1);
        EXPECT_GT(sd_notify(1, text), 0);
    }
};

TEST_F(Notify_socket_test, A_report_is_told_with_its_sender_and_time) {
    std::int64_t const before = monotonic_ns();
    notify("READY=1\nSTATUS=all well");
    json const event = sut.await_event("notify");
    EXPECT_EQ(event["pid"], ::getpid());
    EXPECT_EQ(event["variables"], (json{{"READY", "1"}, {"STATUS", "all well"}}));
    EXPECT_GE(event["t"].get<std::int64_t>(), before);
    EXPECT_LE(event["t"].get<std::int64_t>(), monotonic_ns());
}

TEST_F(Notify_socket_test, Ready_stopping_and_watchdog_beats_are_counted) {
    notify("READY=1");
    notify("WATCHDOG=1");
    notify("WATCHDOG=1");
    notify("STOPPING=1");
    json const stopping = sut.await_event("notify", {{"variables", {{"STOPPING", "1"}}}});
    json const list = sut.command({{"do", "list"}});
    EXPECT_EQ(list["ready"], 1);
    EXPECT_EQ(list["watchdog"], 2);
    EXPECT_EQ(list["stopping"], 1);
    EXPECT_LT(list["last_watchdog"], stopping["t"]);
}

}  // namespace
}  // namespace bench::service_manager
