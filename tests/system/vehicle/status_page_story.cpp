// What the daemon lets others see of itself, and what ap_statectl makes of it.

#include "network_machine.h"
#include "tool.h"

#include <chrono>
#include <thread>

namespace bench::vehicle {
namespace {

using nlohmann::json;
using testing::AllOf;
using testing::Contains;
using testing::HasSubstr;
using testing::StartsWith;

class Status_page : public Network_story {
 protected:
    void TearDown() override { std::filesystem::remove_all("/run/adaptive/status"); }
};

TEST_F(Status_page, Debug) {
    start_and_run();
    std::printf("%s", statectl({"status"}).output.c_str());
    std::printf("%s", statectl({"why"}).output.c_str());
    request("1", k_ecu_alive);
    machine->press("r");
    machine->press("n");
    ASSERT_TRUE(sees(Kind::state_word, "running"));
    std::this_thread::sleep_for(std::chrono::seconds(1));
    std::printf("%s", statectl({"status"}).output.c_str());
    std::printf("%s", statectl({"why"}).output.c_str());
    std::printf("%s", statectl({"status", "--json"}).output.c_str());
    machine->signal_daemon(SIGKILL);
    machine->await_end();
    auto o = statectl({"status"});
    std::printf("%d %s", *o.status, o.output.c_str());
}

}  // namespace
}  // namespace bench::vehicle
