#include "bench/console/network_keys.h"
#include "bench/console/screen.h"

#include <stdexcept>

#include <gmock/gmock.h>

namespace bench::console {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::Pair;
using vehicle::Kind;

/// Remembers what its neighbours were told, or refuses.
class Told_machine : public vehicle::Machine {
 public:
    void start_daemon() override {}
    void press(std::string const& /*key*/) override {}
    void signal_daemon(int /*number*/) override {}
    void update(std::chrono::milliseconds /*limit*/) override {}
    json tell(std::string const& neighbour, json const& command) override {
        if (!refusal.empty()) {
            throw std::runtime_error(refusal);
        }
        told.emplace_back(neighbour, command);
        return {};
    }

    std::vector<std::pair<std::string, json>> told;
    std::string refusal;
};

class Network : public testing::Test {
 protected:
    Network() { hand.applications = {"1", "two words"}; }

    bool press(int key) { return handle_network_key(key, machine, view, hand); }
    std::wstring row(std::size_t number, std::size_t rows = 40) {
        Canvas canvas(rows, 100);
        draw(canvas, view, 4, hand);
        return canvas.row_text(number);
    }
    Style style_of(std::wstring const& word) {
        Canvas canvas(40, 100);
        draw(canvas, view, 4, hand);
        return canvas.at(16, canvas.row_text(16).find(word)).style;
    }

    Told_machine machine;
    Machine_view view;
    Network_hand hand;
};

TEST_F(Network, Is_shown_with_each_bit_named) {
    view.hear({1, Kind::bus, "normal operation"});
    view.hear(event_of_octets(2, Kind::network_state, {0x00, 0x00, 0x01, 0x00}));
    view.hear(event_of_octets(3, Kind::user_data, {0xc0, 0x01, 0x00}));
    view.hear({4, Kind::log, "Ecu state based on NM activity: ready sleep", 4});
    EXPECT_EQ(row(12), L"Network    normal operation     others need nothing");
    EXPECT_EQ(row(13), L"State      00 00 01 00          ECU alive");
    EXPECT_EQ(row(14), L"User data  c0 01 00             car wake-up, awake, AC 1");
    EXPECT_EQ(row(15), L"ECU        ready sleep");
}

TEST_F(Network, Shows_what_each_application_holds) {
    view.hear(event_of(1, Kind::application, {"two words", "requests", "com_alive"}));
    EXPECT_THAT(row(16), HasSubstr(L"1 ECU COM CWU"));
    EXPECT_THAT(row(16), HasSubstr(L"two words ECU COM CWU"));
    EXPECT_TRUE(view.holds("two words", "com_alive"));
    EXPECT_FALSE(view.holds("two words", "cwu"));
    EXPECT_FALSE(view.holds("1", "com_alive"));
    EXPECT_EQ(style_of(L"1 "), Style::lit) << "the chosen one";
    EXPECT_EQ(style_of(L"two"), Style::plain);
    EXPECT_EQ(style_of(L"COM"), Style::dim) << "of the first one";
    view.hear(event_of(2, Kind::application, {"1", "requests", "com_alive"}));
    EXPECT_EQ(style_of(L"COM"), Style::good);
    view.hear(event_of(3, Kind::application, {"1", "releases", "com_alive"}));
    EXPECT_EQ(style_of(L"COM"), Style::dim);
}

TEST_F(Network, Is_shown_instead_of_the_clients_on_demand_where_the_terminal_is_small) {
    view.show_clients({{"radio"}}, 0);
    EXPECT_THAT(row(12, 24), HasSubstr(L"Clients"));
    EXPECT_TRUE(press('d'));
    EXPECT_THAT(row(12, 24), HasSubstr(L"Network"));
    EXPECT_THAT(row(18, 24), HasSubstr(L"Log up to"));
    EXPECT_THAT(row(12, 25), HasSubstr(L"Clients")) << "both";
    EXPECT_THAT(row(14, 25), HasSubstr(L"Network"));
    press('d');
    EXPECT_THAT(row(12, 24), HasSubstr(L"Clients"));
}

TEST_F(Network, Is_not_shown_of_a_machine_without_one) {
    hand.applications.clear();
    EXPECT_THAT(row(12), Not(HasSubstr(L"Network")));
    EXPECT_FALSE(press('e'));
}

TEST_F(Network, Keys_let_the_chosen_application_request) {
    EXPECT_TRUE(press('e'));
    EXPECT_TRUE(press('a'));
    EXPECT_TRUE(press('m'));
    EXPECT_TRUE(press('k'));
    EXPECT_THAT(
        machine.told,
        ElementsAre(
            Pair("application 1", json{{"do", "request"}, {"what", "ecu_alive"}, {"wait_ms", 0}}),
            Pair("application two words",
                 json{{"do", "request"}, {"what", "com_alive"}, {"wait_ms", 0}, {"bits", "00 02"}, {"ac", 2}}),
            Pair("application two words", json{{"do", "request"}, {"what", "cwu"}, {"wait_ms", 0}, {"ac", 2}})));
}

TEST_F(Network, Keys_let_the_chosen_application_release_what_it_holds) {
    view.hear(event_of(1, Kind::application, {"1", "requests", "com_alive"}));
    view.hear(event_of(1, Kind::application, {"1", "requests", "cwu"}));
    press('m');
    press('k');
    EXPECT_THAT(machine.told,
                ElementsAre(Pair("application 1",
                                 json{{"do", "release"}, {"what", "com_alive"}, {"wait_ms", 0}, {"bits", "00 01"}}),
                            Pair("application 1", json{{"do", "release"}, {"what", "cwu"}, {"wait_ms", 0}})));
}

TEST_F(Network, Keys_let_the_others_need_it_and_silence_them) {
    for (int const key : {'b', 'b', 'v', 'v'}) {
        EXPECT_TRUE(press(key));
    }
    EXPECT_THAT(machine.told,
                ElementsAre(Pair("other node", json{{"do", "request"}, {"bits", "80"}}),
                            Pair("other node", json{{"do", "release"}, {"bits", "80"}}),
                            Pair("other node", json{{"do", "silence"}}), Pair("other node", json{{"do", "speak"}})));
    press('b');
    press('v');
    EXPECT_THAT(row(12), HasSubstr(L"others need it, but are silent"));
}

TEST_F(Network, Need_of_the_others_is_not_assumed_when_they_refuse) {
    machine.refusal = "no";
    EXPECT_THROW(press('b'), std::runtime_error);
    EXPECT_FALSE(hand.others_need_network);
}

}  // namespace
}  // namespace bench::console
