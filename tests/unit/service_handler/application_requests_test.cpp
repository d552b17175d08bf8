// What applications ask for in any order, before, during and after suspends, against a model made of sets.

#include "ara/log/argument_decoder.h"
#include "requests_model.h"
#include "service_handler_fixture.h"

#include <algorithm>
#include <random>
#include <string>

namespace ximo::ap::statemanager {
namespace {

struct Network_settings {
    char const* name;
    Bits default_pattern;
    bool cab_area_sent;

    friend std::ostream& operator<<(std::ostream& out, Network_settings const& settings) {
        return out << settings.name;
    }
};

class Application_requests_in_any_order : public Service_handler_test,
                                          public testing::WithParamInterface<Network_settings> {
 protected:
    Application_requests_in_any_order() {
        configuration.set_nm_request_pattern(bytes(GetParam().default_pattern, 4));
        config::Nm_user_data_config layout;
        layout.cab_bits_enabled = GetParam().cab_area_sent;
        configuration.set_nm_user_data_config(layout);
        build_and_find();
        network->meanwhile = [this] {
            EXPECT_EQ(sut->apps_keep_com_alive(), model.keeps_com_alive()) << "while the network is asked";
        };
    }

    unsigned below(unsigned end) { return static_cast<unsigned>(random()) % end; }

    Bits some_bits(std::size_t size) {
        Bits bits;
        for (auto count = below(4); count > 0 && size > 0; --count) {
            bits.insert(below(2) == 0 ? 16 % static_cast<unsigned>(8 * size) : below(static_cast<unsigned>(8 * size)));
        }
        return bits;
    }

    // The model first: what it knows is true while the network is asked.
    void step() {
        auto const listener = below(2) == 0 ? "radio" : "phone";
        auto const waker = below(2) == 0 ? "radio" : "alarm";
        auto const keeper = below(2) == 0 ? "door" : "roof";
        std::size_t const size = below(6);
        auto const bits = some_bits(size);
        auto const ac = static_cast<std::uint8_t>(below(19));
        switch (below(8)) {
            case 0:
            case 1:
                model.request_com_alive(listener, bits, size, ac);
                com_alive(listener).RequestComAlive(bytes(bits, size), ac).get();
                break;
            case 2:
                model.release_com_alive(listener, bits, size);
                com_alive(listener).ReleaseComAlive(bytes(bits, size)).get();
                break;
            case 3:
                model.release_com_alive(listener, bits | all(), 5);
                com_alive(listener).ReleaseComAlive(bytes(all(), 5)).get();
                break;
            case 4:
                model.request_cwu(waker, ac);
                cwu(waker).RequestCarWakeUp(ac).get();
                break;
            case 5:
                model.release_cwu(waker);
                cwu(waker).ReleaseCarWakeUp().get();
                break;
            case 6:
                call_ecu_alive(keeper, below(3) == 0);
                break;
            default:
                stand_by_or_go_on();
        }
    }

    static Bits all() {
        Bits bits;
        for (unsigned bit = 0; bit < 40; ++bit) {
            bits.insert(bit);
        }
        return bits;
    }

    void call_ecu_alive(std::string const& keeper, bool request) {
        if (request) {
            model.request_ecu_alive(keeper);
            ecu_alive(keeper).RequestAlive().get();
        } else {
            model.release_ecu_alive(keeper);
            ecu_alive(keeper).ReleaseAlive().get();
        }
    }

    void stand_by_or_go_on() {
        if (std::exchange(suspended, !suspended)) {
            model.end_standby();
            sut->end_standby();
        } else {
            model.standby();
            sut->standby();
        }
    }

    /// What was told, without the bits' own account of it.
    std::vector<std::string> lines() {
        std::vector<std::string> lines;
        for (auto const& message : told()) {
            lines.push_back(ara::log::to_text(message.arguments));
        }
        auto const is_of_the_bits = [](std::string const& line) {
            return line.rfind("Applying", 0) == 0 || line.rfind("Releasing AC", 0) == 0 || line.rfind("CWU", 0) == 0;
        };
        lines.erase(std::remove_if(lines.begin(), lines.end(), is_of_the_bits), lines.end());
        return lines;
    }

    Requests_model model{GetParam().default_pattern, GetParam().cab_area_sent};
    std::mt19937 random{1};
    bool suspended{false};
};

TEST_P(Application_requests_in_any_order, Ask_the_network_for_what_sets_say) {
    for (int number = 0; number < 1500; ++number) {
        forget();
        model.actions.clear();
        model.told.clear();
        step();
        ASSERT_EQ(actions, model.actions) << "step " << number;
        ASSERT_EQ(lines(), model.told) << "step " << number;
        ASSERT_EQ(sut->apps_keep_com_alive(), model.keeps_com_alive()) << "step " << number;
        ASSERT_EQ(sut->apps_keep_ecu_alive(), model.keeps_ecu_alive()) << "step " << number;
        ASSERT_EQ(sut->is_network_in_use(), model.keeps_com_alive() || model.keeps_ecu_alive());
    }
}

INSTANTIATE_TEST_SUITE_P(Settings, Application_requests_in_any_order,
                         testing::Values(Network_settings{"One_bit", {0}, false},
                                         Network_settings{"With_the_CAB_area", {0, 5, 31}, true},
                                         Network_settings{"Without_a_default_pattern", {}, false},
                                         Network_settings{"With_the_bit_of_an_ECU_that_is_alive", {3, 16}, true}),
                         [](auto const& instance) { return std::string(instance.param.name); });

class Application_request : public Service_handler_test {};

TEST_F(Application_request, Goes_to_the_network_and_into_the_user_data) {
    build_and_find();

    com_alive("radio").RequestComAlive({0x02, 0x80}, 9).get();

    EXPECT_THAT(actions, ElementsAre("request 02 80 00 00 ", "user data 80 00 01 "));
    EXPECT_THAT(log.messages(),
                ElementsAre(logged(LogLevel::kInfo, "State_manager::handle_com_alive_request(", "radio", ", ", "02 80 ",
                                   ", ", 9U, ")"),
                            logged(LogLevel::kInfo, "Applying user data bits size: ", 4U, " at offset ", 1U),
                            logged(LogLevel::kInfo, "Applying user data bits size: ", 4U, " at offset ", 3U),
                            logged(LogLevel::kInfo, "State_manager::request_network(", "02 80 00 00 ", ")"),
                            logged(LogLevel::kInfo, "State_manager::set_user_data(", "80 00 01 ", ")")));
}

TEST_F(Application_request, Of_a_default_pattern_that_is_shorter_says_nothing_about_the_other_bits) {
    configuration.set_nm_request_pattern({0x01});
    build_and_find();
    com_alive("radio").RequestComAlive({0x03, 0x03}, 0).get();

    com_alive("radio").ReleaseComAlive({0x03, 0x03}).get();

    EXPECT_THAT(actions, Contains("release 02 03 00 00 "));
}

TEST_F(Application_request, To_let_the_ECU_sleep_is_a_detail) {
    build_and_find();

    ecu_alive("door").ReleaseAlive().get();
    sut->standby();

    EXPECT_THAT(log.messages(LogLevel::kDebug),
                ElementsAre(logged(LogLevel::kDebug, "State_manager::ecu_alive_release: ", "door"),
                            logged(LogLevel::kDebug, "State_manager::ecu_alive_release: ", "Standby call")));
}

}  // namespace
}  // namespace ximo::ap::statemanager
