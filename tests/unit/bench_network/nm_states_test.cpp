#include "nm_fixture.h"

#include <functional>
#include <map>
#include <ostream>
#include <string>

namespace bench::network {
namespace {

struct Step {
    Nm_state from;
    char const* event;
    Nm_state to;

    friend std::ostream& operator<<(std::ostream& out, Step const& step) {
        return out << name(step.from) << ", " << step.event;
    }
};

/// The table of the states' page, and what changes nothing.
class Nm_states_test : public Nm_fixture, public testing::WithParamInterface<Step> {
 protected:
    void be_in(Nm_state state) {
        if (state == Nm_state::bus_sleep) {
            return;
        }
        sut.request({1}, now);
        pass(state == Nm_state::repeat_message ? 0 : 300);
        if (state == Nm_state::ready_sleep || state == Nm_state::prepare_bus_sleep) {
            sut.release({1}, now);
        }
        pass(state == Nm_state::prepare_bus_sleep ? 400 : 0);
        ASSERT_EQ(sut.state(), state);
    }
    void happens(std::string const& event) {
        static std::map<std::string, std::function<void(Nm_states_test&)>> const events{
            {"request", [](auto& test) { test.sut.request({2}, test.now); }},
            {"release", [](auto& test) { test.sut.release({3}, test.now); }},
            {"release, 299 ms", [](auto& test) { test.sut.release({3}, test.now), test.pass(299); }},
            {"release, 300 ms", [](auto& test) { test.sut.release({3}, test.now), test.pass(300); }},
            {"release, 400 ms", [](auto& test) { test.sut.release({3}, test.now), test.pass(400); }},
            {"message",
             [](auto& test) {
                 test.hear({0, 0});
             }},
            {"repeat bit",
             [](auto& test) {
                 test.hear({0, 0}, k_repeat);
             }},
            {"repeat bit, 299 ms",
             [](auto& test) {
                 test.pass(1), test.hear({0, 0}, k_repeat), test.pass(299);
             }},
            {"repeat wanted", [](auto& test) { test.sut.want_repeat(test.now); }},
            {"199 ms", [](auto& test) { test.pass(199); }},
            {"200 ms", [](auto& test) { test.pass(200); }},
            {"300 ms", [](auto& test) { test.pass(300); }},
            {"399 ms", [](auto& test) { test.pass(399); }},
            {"399 ms, message, 399 ms",
             [](auto& test) {
                 test.pass(399), test.hear({0, 0}), test.pass(399);
             }},
            {"400 ms", [](auto& test) { test.pass(400); }},
            {"10 s", [](auto& test) { test.pass(10'000); }},
        };
        events.at(event)(*this);
    }

    static constexpr std::uint8_t k_repeat = Control_bit::partial_network | Control_bit::repeat_message;
};

TEST_P(Nm_states_test, Follow_each_other_as_the_table_says) {
    be_in(GetParam().from);
    happens(GetParam().event);
    EXPECT_STREQ(name(sut.state()), name(GetParam().to));
}

constexpr auto k_bus_sleep = Nm_state::bus_sleep;
constexpr auto k_repeat_message = Nm_state::repeat_message;
constexpr auto k_normal_operation = Nm_state::normal_operation;
constexpr auto k_ready_sleep = Nm_state::ready_sleep;
constexpr auto k_prepare_bus_sleep = Nm_state::prepare_bus_sleep;

INSTANTIATE_TEST_SUITE_P(
    Table, Nm_states_test,
    testing::Values(
        Step{k_bus_sleep, "10 s", k_bus_sleep}, Step{k_bus_sleep, "request", k_repeat_message},
        Step{k_bus_sleep, "message", k_repeat_message}, Step{k_bus_sleep, "repeat wanted", k_repeat_message},
        Step{k_repeat_message, "199 ms", k_repeat_message}, Step{k_repeat_message, "300 ms", k_normal_operation},
        Step{k_repeat_message, "release, 299 ms", k_repeat_message},
        Step{k_repeat_message, "release, 300 ms", k_ready_sleep},
        Step{k_repeat_message, "release, 400 ms", k_ready_sleep},
        Step{k_repeat_message, "repeat bit, 299 ms", k_normal_operation},
        Step{k_normal_operation, "10 s", k_normal_operation}, Step{k_normal_operation, "request", k_normal_operation},
        Step{k_normal_operation, "message", k_normal_operation}, Step{k_normal_operation, "release", k_ready_sleep},
        Step{k_normal_operation, "repeat bit", k_repeat_message},
        Step{k_normal_operation, "repeat wanted", k_repeat_message}, Step{k_ready_sleep, "message", k_ready_sleep},
        Step{k_ready_sleep, "request", k_normal_operation}, Step{k_ready_sleep, "repeat bit", k_repeat_message},
        Step{k_ready_sleep, "repeat wanted", k_repeat_message}, Step{k_ready_sleep, "399 ms", k_ready_sleep},
        Step{k_ready_sleep, "399 ms, message, 399 ms", k_ready_sleep},
        Step{k_ready_sleep, "400 ms", k_prepare_bus_sleep}, Step{k_prepare_bus_sleep, "request", k_repeat_message},
        Step{k_prepare_bus_sleep, "message", k_repeat_message},
        Step{k_prepare_bus_sleep, "repeat wanted", k_repeat_message},
        Step{k_prepare_bus_sleep, "199 ms", k_prepare_bus_sleep}, Step{k_prepare_bus_sleep, "200 ms", k_bus_sleep}));

}  // namespace
}  // namespace bench::network
