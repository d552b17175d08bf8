#include "simulation/trace_check.h"
#include "simulation/trace_life.h"
#include "simulation/trace_words.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

namespace simulation {

namespace {

using testing::HasSubstr;

/// The lives in the kept trace: the beginning of a tour of the virtual vehicle, logged by the real daemon and cut in
/// the middle of a message. tests/unit/trace/traces/make has made it.
std::vector<Trace_life> kept_lives() {
    std::ifstream file(KEPT_TRACE, std::ios::binary);
    return lives_of(std::string(std::istreambuf_iterator<char>(file), {})).lives;
}

Trace_verdict verdict_on(Trace_life const& life) {
    return check(life, configuration_in(kept_lives().front()));
}

std::size_t place_of(Trace_life const& life, std::string const& words, std::string const& argument) {
    std::size_t place = 0;
    while (life.at(place).arguments.front() != words || life.at(place).arguments.back() != argument) {
        ++place;
    }
    return place;
}

TEST(A_kept_trace, Lives_of_the_real_daemon_agree_with_the_simulated_one_also_the_one_that_is_cut) {
    auto const lives = kept_lives();
    ASSERT_EQ(lives.size(), 2U);
    for (auto const& life : lives) {
        auto const verdict = check(life, configuration_in(life));
        EXPECT_EQ(verdict.kind, Trace_verdict::Kind::agrees) << verdict.text;
        EXPECT_GT(verdict.steps, 100U);
    }
}

TEST(A_kept_trace, A_transition_into_another_state_is_found_with_both_sides) {
    auto life = kept_lives().front();
    auto const place = place_of(life, "AP_StateManger transition from", "Post Run");
    life[place].arguments.back() = "Preparing";
    auto const verdict = verdict_on(life);
    EXPECT_EQ(verdict.kind, Trace_verdict::Kind::disagrees);
    EXPECT_THAT(verdict.text, HasSubstr("trace:     AP_StateManger transition from NM Controlled  to  Preparing\n"));
    EXPECT_THAT(verdict.text, HasSubstr("simulated: AP_StateManger transition from NM Controlled  to  Post Run"));
}

TEST(A_kept_trace, A_transition_that_is_missing_is_found) {
    auto life = kept_lives().front();
    auto const place = place_of(life, "AP_StateManger transition from", "Post Run");
    life.erase(life.begin() + static_cast<std::ptrdiff_t>(place));
    EXPECT_EQ(verdict_on(life).kind, Trace_verdict::Kind::disagrees);
}

TEST(A_kept_trace, A_client_that_was_not_asked_in_its_turn_is_found) {
    auto life = kept_lives().front();
    auto const place = place_of(life, "Requesting ", " mode for client applications");
    life[place].arguments.back() = " mode for DEM";
    EXPECT_EQ(verdict_on(life).kind, Trace_verdict::Kind::disagrees);
}

/// Calls for the ECU, written before they wait for the mutex that the call at the place has: this many applications'.
Trace_life with_calls_in_another(Trace_life life, std::size_t count) {
    auto const begins = [](char const* words) {
        return [=](dlt::Message const& message) { return says(message, words); };
    };
    auto const call = std::find_if(life.begin(), life.end(), begins("State_manager::ecu_alive_request: "));
    auto const other = std::find_if(call, life.end(), begins("State_manager::handle_com_alive_request("));
    if (other == life.end()) {
        throw std::logic_error("the trace has no such lines");
    }
    auto const message = *call;
    life.insert(other + 1, count, message);
    return life;
}

// More of them than there are orders to try.
TEST(A_kept_trace, Calls_for_the_ecu_may_be_told_in_the_middle_of_another_call) {
    auto const verdict = verdict_on(with_calls_in_another(kept_lives().front(), 250));
    EXPECT_EQ(verdict.kind, Trace_verdict::Kind::agrees) << verdict.text;
}

/// What calls for the ECU released although "2" keeps it alive, right after the transition of that number into Post
/// Run, and another application's call before it.
Trace_life with_a_release_that_nobody_explains(Trace_life life, int transition) {
    auto place = life.begin();
    for (; transition > 0; ++place) {
        bool const is_it = says(*place, "AP_StateManger transition from") && place->arguments.back() == "Post Run";
        transition -= is_it ? 1 : 0;
    }
    auto call = *std::find_if(life.begin(), life.end(), [](dlt::Message const& message) {
        return says(message, "State_manager::ecu_alive_request: ");
    });
    call.arguments[1] = "1";
    call.ticks = place->ticks;
    auto release = call;
    release.arguments = {"State_manager::ecu_alive_release network"};
    life.insert(place, {call, release});
    return life;
}

// Which of two calls had the mutex first no trace tells, within a second: "2" called 0.74 s before the first.
TEST(A_kept_trace, What_calls_at_once_released_is_not_judged_and_what_one_call_did_is) {
    auto const life = kept_lives().front();
    EXPECT_EQ(verdict_on(with_a_release_that_nobody_explains(life, 1)).kind, Trace_verdict::Kind::undecidable);
    EXPECT_EQ(verdict_on(with_a_release_that_nobody_explains(life, 2)).kind, Trace_verdict::Kind::disagrees);
}

TEST(A_kept_trace, Other_bits_of_the_network_are_found) {
    auto life = kept_lives().front();
    auto const place = place_of(life, "State_manager::set_user_data(", ")");
    life[place].arguments[1] = "40 00 00 00 00 00 ";
    EXPECT_EQ(verdict_on(life).kind, Trace_verdict::Kind::disagrees);
}

TEST(A_kept_trace, Other_settings_are_found) {
    auto const life = kept_lives().front();
    auto configuration = configuration_in(life);
    auto const place = configuration.find("\"StateManagerNMUsage\":true");
    ASSERT_NE(place, std::string::npos);
    configuration.replace(place, 26, "\"StateManagerNMUsage\":false");
    EXPECT_EQ(check(life, configuration).kind, Trace_verdict::Kind::disagrees);
}

TEST(A_kept_trace, What_a_neighbour_did_that_is_not_simulated_ends_the_judgement) {
    auto life = kept_lives().front();
    constexpr int k_warning = 3;
    life[life.size() / 2].level = k_warning;
    life[life.size() / 2].arguments = {"infrastructure exception", "The service did not answer in time"};
    auto const verdict = verdict_on(life);
    EXPECT_EQ(verdict.kind, Trace_verdict::Kind::undecidable);
    EXPECT_THAT(verdict.text, HasSubstr("infrastructure exception"));
}

TEST(A_kept_trace, A_life_without_its_start_is_not_judged) {
    auto life = kept_lives().front();
    life.erase(life.begin(), life.begin() + 10);
    EXPECT_EQ(verdict_on(life).kind, Trace_verdict::Kind::undecidable);
    EXPECT_THAT(verdict_on(life).text, HasSubstr("the middle of a life"));
}

TEST(A_kept_trace, A_log_without_the_drivers_cycles_is_not_judged) {
    Trace_life told;
    constexpr int k_info = 4;
    auto const whole = kept_lives().front();
    std::copy_if(whole.begin(), whole.end(), std::back_inserter(told),
                 [](dlt::Message const& message) { return message.level <= k_info; });
    EXPECT_EQ(verdict_on(told).kind, Trace_verdict::Kind::undecidable);
    EXPECT_THAT(verdict_on(told).text, HasSubstr("debug"));
    EXPECT_EQ(configuration_in(told), "");
}

/// The first life in another kept trace, of a story of the virtual vehicle.
Trace_life kept_life(char const* name) {
    std::ifstream file(std::string(KEPT_STORIES "/") + name, std::ios::binary);
    return lives_of(std::string(std::istreambuf_iterator<char>(file), {})).lives.front();
}

// Keys come fast, and the server's thread has its turn some of the driver's cycles later.
TEST(A_kept_trace, May_tell_late_that_a_group_without_clients_is_through) {
    auto life = kept_life("nobody_there.dlt");
    auto const verdict = check_as_told(life);
    EXPECT_EQ(verdict.kind, Trace_verdict::Kind::agrees) << verdict.text;

    auto const told = std::find_if(life.begin(), life.end(), [](dlt::Message const& message) {
        return says(message, "Received application client completion notification for ");
    });
    ASSERT_NE(told, life.end());
    life.erase(told);
    EXPECT_EQ(check_as_told(life).kind, Trace_verdict::Kind::disagrees);
}

/// With cycles of the driver, this long in all, in which nothing happens before a client's time-out is told.
Trace_life with_cycles_before_time_out(std::uint32_t count, std::uint32_t ticks) {
    auto life = kept_life("silent_application.dlt");
    auto const told = std::find_if(life.begin(), life.end(), [](dlt::Message const& message) {
        return says(message, "calling callback after some clients timed out");
    });
    if (told == life.end() || !begins_wait(*(told - 1)) || !ends_wait(*(told - 4))) {
        throw std::logic_error("the trace has no such lines");
    }
    Trace_life const cycle(told - 4, told);
    auto place = told - life.begin();
    for (std::uint32_t number = 1; number <= count; ++number) {
        for (auto message : cycle) {
            message.ticks = life[static_cast<std::size_t>(place)].ticks.value_or(0) + number * ticks / count;
            life.insert(life.begin() + place, message);
            ++place;
        }
    }
    return life;
}

TEST(A_kept_trace, May_tell_a_time_out_some_cycles_late_and_no_later) {
    constexpr std::uint32_t k_second = 10'000;
    auto const verdict = check_as_told(with_cycles_before_time_out(2, k_second / 5));
    EXPECT_EQ(verdict.kind, Trace_verdict::Kind::agrees) << verdict.text;
    EXPECT_EQ(check_as_told(with_cycles_before_time_out(30, 3 * k_second)).kind, Trace_verdict::Kind::disagrees);
}

// A daemon that is told to stop before its driver begins goes on.
TEST(A_kept_trace, May_tell_of_a_signal_that_comes_too_early) {
    auto const verdict = check_as_told(kept_life("early_signal.dlt"));
    EXPECT_EQ(verdict.kind, Trace_verdict::Kind::agrees) << verdict.text;
}

/// On the first life, had it told another value of a setting.
Trace_verdict verdict_where_trace_tells(std::string const& setting, std::string const& value) {
    auto life = kept_lives().front();
    auto const is_told = [&](dlt::Message const& message) {
        return message.arguments.size() == 4 && message.arguments[1] == setting;
    };
    auto const message = std::find_if(life.begin(), life.end(), is_told);
    if (message == life.end()) {
        throw std::logic_error("the trace does not tell " + setting);
    }
    message->arguments[3] = value;
    return check_as_told(life);
}

TEST(A_kept_trace, A_configuration_in_it_that_cannot_be_used_ends_the_judgement_of_its_life_alone) {
    struct Told {
        char const* setting;
        char const* value;
        char const* why;
    };
    for (auto const& told :
         {Told{"AliveSupervisionInstanceId", "\xff", "a text in it is not UTF-8"},
          Told{"KnockOutTimer", "soon",
               "the daemon refuses the configuration: State_manager_json_parser: Incorrect key type:  type must be "
               "number, but is string"}}) {
        auto const verdict = verdict_where_trace_tells(told.setting, told.value);
        EXPECT_EQ(verdict.kind, Trace_verdict::Kind::undecidable);
        EXPECT_EQ(verdict.text, std::string("the configuration in the trace can't be used: ") + told.why);
    }
    EXPECT_EQ(check_as_told(kept_lives().back()).kind, Trace_verdict::Kind::agrees);
}

std::string kept_bytes() {
    std::ifstream file(KEPT_TRACE, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(A_kept_trace, Blames_no_daemon_for_bytes_that_are_missing_or_none_of_a_message) {
    constexpr std::size_t k_bytes = 500;
    constexpr std::size_t k_stride = 2477;
    auto const bytes = kept_bytes();
    std::string const zeros(k_bytes, '\0');
    for (auto at = k_stride; at + k_bytes < bytes.size(); at += k_stride) {
        for (auto const& after : {bytes.substr(at), bytes.substr(at + k_bytes)}) {
            auto const found = lives_of(bytes.substr(0, at) + zeros + after);
            ASSERT_TRUE(found.first_gap) << at;
            EXPECT_THAT(*found.first_gap, testing::AllOf(testing::Ge(at - k_bytes), testing::Le(at + k_bytes))) << at;
            EXPECT_THAT(found.strange_bytes, testing::Ge(k_bytes / 2)) << at;
            std::size_t damaged = 0;
            for (auto const& life : found.lives) {
                auto const verdict = check_as_told(life);
                EXPECT_NE(verdict.kind, Trace_verdict::Kind::disagrees) << at << verdict.text;
                damaged += verdict.kind == Trace_verdict::Kind::undecidable ? 1 : 0;
            }
            EXPECT_LE(damaged, 1U) << at;
        }
    }
}

TEST(A_kept_trace, Tells_from_where_on_it_is_damaged) {
    auto const bytes = kept_bytes();
    auto const found = lives_of(bytes.substr(0, 50000) + std::string(500, '\0') + bytes.substr(50000));
    EXPECT_EQ(text_of(check_as_told(found.lives.front())),
              "not decidable after 145 steps: the trace is damaged at byte " + std::to_string(*found.first_gap));
    EXPECT_EQ(check_as_told(found.lives.back()).kind, Trace_verdict::Kind::agrees);
    auto const cut = lives_of(bytes.substr(0, 30000));
    EXPECT_EQ(check_as_told(cut.lives.front()).kind, Trace_verdict::Kind::agrees);
    EXPECT_EQ(*cut.first_gap + cut.strange_bytes, 30000U);
    auto const begun = lives_of("what a file began with" + bytes);
    EXPECT_EQ(begun.first_gap, 0U);
    EXPECT_EQ(check_as_told(begun.lives.front()).kind, Trace_verdict::Kind::agrees);
}

TEST(A_kept_trace, A_file_that_is_no_trace_is_refused_with_the_reason) {
    EXPECT_THROW(lives_of(""), std::runtime_error);
    EXPECT_THROW(lives_of("no trace"), std::runtime_error);
}

/// What becomes of every fourth step of the kept life, spoilt in one way.
struct Spoilt {
    std::size_t made{0};
    std::size_t found{0};
};

template <class Spoil>
Spoilt spoilt(Spoil const& spoil) {
    constexpr std::size_t k_stride = 4;
    auto const life = kept_lives().front();
    auto const configuration = configuration_in(life);
    Spoilt result;
    std::size_t steps = 0;
    for (std::size_t place = 0; place < life.size(); ++place) {
        if (carries_step(life[place]) && steps++ % k_stride == 0) {
            auto other = life;
            spoil(other, place);
            ++result.made;
            result.found += check(other, configuration).kind == Trace_verdict::Kind::disagrees ? 1U : 0U;
        }
    }
    return result;
}

TEST(A_kept_trace, A_step_that_is_missing_is_found_nearly_always) {
    auto const result = spoilt(
        [](Trace_life& life, std::size_t place) { life.erase(life.begin() + static_cast<std::ptrdiff_t>(place)); });
    EXPECT_EQ(result.made, 49U);
    EXPECT_GE(result.found, 48U);
}

// Not that of a client that comes in another state: it may.
TEST(A_kept_trace, A_step_with_another_word_is_found_nearly_always) {
    auto const result = spoilt([](Trace_life& life, std::size_t place) { life[place].arguments.back() += "another"; });
    EXPECT_EQ(result.made, 49U);
    EXPECT_GE(result.found, 48U);
}

// The step and the next one that is another. Two threads' have no order to keep, nor have two clients that come.
TEST(A_kept_trace, Steps_that_are_exchanged_are_found_mostly) {
    auto const result = spoilt([](Trace_life& life, std::size_t place) {
        auto other = place + 1;
        while (other < life.size() && (!carries_step(life[other]) || life[other].arguments == life[place].arguments)) {
            ++other;
        }
        if (other < life.size()) {
            std::swap(life[place], life[other]);
        }
    });
    EXPECT_EQ(result.made, 49U);
    EXPECT_GE(result.found, 38U);
}

}  // namespace

}  // namespace simulation
