#ifndef TESTS_COMPONENT_DEVICES_HYPERVISOR_FIXTURE_H
#define TESTS_COMPONENT_DEVICES_HYPERVISOR_FIXTURE_H

#include "base/temporary_directory.h"
#include "bench/hypervisor/fuse_requirements.h"
#include "bench/process/player.h"
#include "support/log_capture.h"

#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace devices {

using nlohmann::json;

/// The bench's hypervisor on a real mount: input devices and VM-control files as the kernel shows them.
class Hypervisor_fixture : public testing::Test {
 protected:
    void SetUp() override {
        if (std::string const missing = bench::hypervisor::missing_for_fuse(); !missing.empty()) {
            GTEST_SKIP() << missing;
        }
        hypervisor = std::make_unique<bench::Player>(
            std::vector<std::string>{BENCH_HYPERVISOR, "--devices", "0", directory.path()});
    }

    std::string input() const { return directory.file("input"); }
    std::string control_file(std::string const& name) const { return directory.file("vmctl/" + name); }

    void tell(json const& command) {
        json const answer = hypervisor->command(command);
        ASSERT_TRUE(answer.value("ok", false)) << answer;
    }

    void add_device(std::string const& name, std::vector<std::string> const& events = {"EV_SYN", "EV_KEY"}) {
        tell({{"do", "add_device"}, {"device", name}, {"events", events}});
    }

    void press(std::string const& device, std::string const& key, std::string const& type = "EV_KEY") {
        tell({{"do", "press"}, {"device", device}, {"key", key}, {"type", type}});
    }

    /// The next `count` operations of this kind on the file fail.
    void fail(std::string const& file, std::string const& operation, std::string const& error, int count = 1) {
        tell({{"do", "fault"}, {"file", file}, {"operation", operation}, {"errno", error}, {"count", count}});
    }

    /// The bytes of every write to a control file, whether it succeeded or not.
    std::vector<std::string> requests(std::string const& file) {
        json const journal = hypervisor->command({{"do", "journal"}, {"file", file}});
        std::vector<std::string> texts;
        for (json const& request : journal.at("requests")) {
            texts.push_back(request["text"]);
        }
        return texts;
    }

    base::Temporary_directory directory;
    std::unique_ptr<bench::Player> hypervisor;
    test_support::Log_capture log;
};

}  // namespace devices

#endif
