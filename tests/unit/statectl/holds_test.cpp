#include "command_line.h"
#include "status/page_file.h"
#include "status/services_status.h"
#include "support/temporary_directory.h"

#include <functional>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

namespace statectl {
namespace {

using status::Hold;

class Holds : public Command_line {
 protected:
    Holds() {
        for (auto const service : {Hold::ecu_alive, Hold::com_alive, Hold::car_wake_up}) {
            status::provided(service, {"1"});
        }
    }

    /// What `holds` prints of the page, a line each with single blanks between its words, and "held" for how long.
    std::vector<std::string> lines() {
        EXPECT_TRUE(accepts("holds --page " + path_));
        testing::internal::CaptureStdout();
        chosen();
        std::istringstream text(testing::internal::GetCapturedStdout());
        std::vector<std::string> all;
        for (std::string line; std::getline(text, line);) {
            std::istringstream words(std::regex_replace(line, std::regex(" [0-9.]+ (ms|s|min) "), " held "));
            all.emplace_back();
            for (std::string word; words >> word;) {
                all.back() += (all.back().empty() ? "" : " ") + word;
            }
        }
        return all;
    }

 private:
    test_support::Temporary_directory const directory_;
    std::string const path_{directory_.file("page")};
    status::Page_file const page_{path_, {"/nowhere.json", 100, 3, true}};
};

TEST_F(Holds, Tell_bits_with_the_service_that_they_are_held_by) {
    constexpr std::size_t k_ecu = 1, k_com = 2, k_cwu = 3;  // lines
    struct Step {
        std::function<void()> what;
        std::size_t line;
        char const* said;
    };
    for (auto const& step : {
             Step{[] { status::cwu_requested("1", 0); }, k_cwu, "\"1\" car wake-up held 1 0"},
             Step{[] { status::cwu_requested("1", 5); }, k_cwu, "\"1\" car wake-up held 2 0 AC 5"},
             Step{[] { status::ecu_requested("1"); }, k_ecu, "\"1\" ECU alive held 1 0"},
             Step{[] {}, k_com, "\"1\" COM alive - 0 0"},
             Step{[] {
                      status::com_requested("1", {0, 2}, 7);
                  },
                  k_com, "\"1\" COM alive held 1 0 CAB 00 02, AC 7"},
             Step{[] {
                      status::com_requested("1", {0, 2}, 0);
                  },
                  k_com, "\"1\" COM alive held 2 0 CAB 00 02"},
         }) {
        step.what();
        auto const said = lines();
        ASSERT_EQ(said.size(), 4U);
        EXPECT_EQ(said[0], "INSTANCE HOLDS SINCE REQUESTS RELEASES BITS");
        EXPECT_EQ(said[step.line], step.said);
    }
}

TEST_F(Holds, Tell_how_many_instances_had_no_room) {
    EXPECT_EQ(lines().back(), "\"1\" car wake-up - 0 0");
    std::vector<std::string> names;
    for (std::size_t i = 0; i <= status::k_instances; ++i) {
        names.push_back("instance " + std::to_string(i));
    }
    status::provided(Hold::ecu_alive, names);
    EXPECT_EQ(lines().back(), "2 instances had no room on the page");
}

}  // namespace
}  // namespace statectl
