#include "bench/network/options.h"

#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace bench::network {
namespace {

using std::chrono::milliseconds;

TEST(Options_test, Everything_can_be_told) {
    auto const options =
        parse_options({"127.0.0.11", "--id", "200", "--request-bytes", "4", "--capture", "/tmp/x", "--offer", "udpnm"});
    EXPECT_EQ(options.network.id, 200);
    EXPECT_EQ(options.network.request_bytes, 4U);
    EXPECT_EQ(options.capture, "/tmp/x");
    EXPECT_EQ(options.offered, "udpnm");
    EXPECT_TRUE(options.tells_first_state);
}

TEST(Options_test, A_node_may_offer_a_state_that_it_tells_with_its_first_change) {
    auto const options = parse_options({"127.0.0.11", "--offer-silent", "udpnm"});
    EXPECT_EQ(options.offered, "udpnm");
    EXPECT_FALSE(options.tells_first_state);
}

TEST(Options_test, Every_timer_can_be_told) {
    auto const timing = parse_options({"127.0.0.11", "--cycle", "1", "--repeat-message", "2", "--timeout", "3",
                                       "--wait-bus-sleep", "4", "--reset", "5"})
                            .network.timing;
    EXPECT_EQ(timing.cycle, milliseconds(1));
    EXPECT_EQ(timing.repeat_message, milliseconds(2));
    EXPECT_EQ(timing.timeout, milliseconds(3));
    EXPECT_EQ(timing.wait_bus_sleep, milliseconds(4));
    EXPECT_EQ(timing.reset, milliseconds(5));
}

class Wrong_options_test : public testing::TestWithParam<std::vector<std::string>> {};

TEST_P(Wrong_options_test, Are_refused) {
    EXPECT_THROW(parse_options(GetParam()), std::invalid_argument);
}

using Words = std::vector<std::string>;
INSTANTIATE_TEST_SUITE_P(
    Options, Wrong_options_test,
    testing::Values(Words{}, Words{"192.168.0.1"}, Words{"0.0.0.0"}, Words{"255.255.255.255"}, Words{"localhost"},
                    Words{"127.0.0.1", "10.0.0.1"}, Words{"127.0.0.1", "--unknown"}, Words{"127.0.0.1", "--id"},
                    Words{"127.0.0.1", "--id", "256"}, Words{"127.0.0.1", "--id", "-1"},
                    Words{"127.0.0.1", "--id", "1x"}, Words{"127.0.0.1", "--id", ""}, Words{"127.0.0.1", "--port", "0"},
                    Words{"127.0.0.1", "--port", "65536"}, Words{"127.0.0.1", "--request-bytes", "0"},
                    Words{"127.0.0.1", "--request-bytes", "33"}, Words{"127.0.0.1", "--cycle", "0"},
                    Words{"127.0.0.1", "--cycle", "99999999999999999999"}));

}  // namespace
}  // namespace bench::network
