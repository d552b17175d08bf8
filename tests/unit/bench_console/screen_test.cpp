#include "bench/console/screen.h"

#include <string>

#include <gmock/gmock.h>

namespace bench::console {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using vehicle::Kind;

std::wstring all_text(Canvas const& canvas) {
    std::wstring text;
    for (std::size_t row = 0; row < canvas.rows(); ++row) {
        text += canvas.row_text(row) + L'\n';
    }
    return text;
}

std::wstring lit_text(Canvas const& canvas) {
    std::wstring text;
    for (std::size_t row = 0; row < canvas.rows(); ++row) {
        for (std::size_t column = 0; column < canvas.columns(); ++column) {
            if (canvas.at(row, column).style == Style::lit) {
                text += canvas.at(row, column).character;
            }
        }
    }
    return text;
}

std::wstring drawn(Machine_view const& view, int level = 4, std::size_t rows = 30, std::size_t columns = 100) {
    Canvas canvas(rows, columns);
    draw(canvas, view, level);
    return all_text(canvas);
}

TEST(Screen, Lights_the_state_whose_word_was_written_last) {
    struct Case {
        char const* word;
        wchar_t const* name;
    };
    for (auto const& [word, name] :
         {Case{"startingup", L"Starting up"}, Case{"running", L"Running"}, Case{"runnmcontrolled", L"NM Controlled"},
          Case{"postrun", L"Post Run"}, Case{"preparing", L"Preparing"}, Case{"prepared4sd", L"PreparedSD"},
          Case{"resuming", L"Resuming"}, Case{"shuttingdown", L"Shutting down"}}) {
        Machine_view view;
        view.hear({1, Kind::state_word, word});
        Canvas canvas(30, 100);
        draw(canvas, view, 4);
        EXPECT_THAT(lit_text(canvas), HasSubstr(name));
        EXPECT_EQ(lit_text(canvas).size() % 3, 0U) << "a box of three rows";
    }
}

TEST(Screen, Shows_why_a_key_did_nothing_in_place_of_the_keys) {
    Machine_view view;
    view.show_trouble("The machine is off");
    EXPECT_THAT(drawn(view), AllOf(HasSubstr(L"The machine is off"), Not(HasSubstr(L"q quit"))));
    view.show_trouble("");
    EXPECT_THAT(drawn(view), HasSubstr(L"q quit"));
}

TEST(Screen, Lights_no_state_of_a_daemon_that_has_ended) {
    Machine_view view;
    view.hear({1, Kind::state_word, "running"});
    view.hear({2, Kind::ended, "0"});
    Canvas canvas(30, 100);
    draw(canvas, view, 4);
    EXPECT_EQ(lit_text(canvas), L"");
    EXPECT_THAT(all_text(canvas), HasSubstr(L"ended, status 0"));
}

TEST(Screen, Says_which_key_starts_a_machine_that_has_ended) {
    Machine_view view;
    view.hear({1, Kind::ended, "0"});
    EXPECT_THAT(drawn(view), AllOf(HasSubstr(L"x start it again"), Not(HasSubstr(L"p suspend"))));
    EXPECT_THAT(drawn(Machine_view()), HasSubstr(L"p suspend"));
}

TEST(Screen, Shows_keys_beside_the_diagram_and_not_in_the_rows_below) {
    for (auto const key : {"n", "r", "p"}) {
        Machine_view view;
        for (auto const* const word : {"running", "runnmcontrolled", "running", "preparing"}) {
            view.hear({1, Kind::state_word, word});
        }
        for (auto const* const pressed : {"n", "r", "s", key}) {
            view.hear({2, Kind::key, pressed});
        }
        Canvas canvas(40, 100);
        draw(canvas, view, 4);
        EXPECT_EQ(canvas.row_text(11).substr(64, 1), std::wstring(1, static_cast<wchar_t>(key[0])));
        EXPECT_EQ(canvas.row_text(12).find_first_of(L"nrp", 64), std::wstring::npos) << "where the clients begin";
    }
}

TEST(Screen, Shows_the_log_up_to_its_level) {
    Machine_view view;
    view.hear({1, Kind::log, "an error", 2, "DFLT"});
    view.hear({2, Kind::log, "a detail", 6, "DFLT"});
    EXPECT_THAT(drawn(view, 4), HasSubstr(L"an error"));
    EXPECT_THAT(drawn(view, 4), Not(HasSubstr(L"a detail")));
    EXPECT_THAT(drawn(view, 6), HasSubstr(L"a detail"));
}

TEST(Screen, Shows_the_newest_messages_when_there_is_no_room_for_all) {
    Machine_view view;
    for (int number = 0; number < 100; ++number) {
        view.hear({number, Kind::log, "message " + std::to_string(number) + ".", 4, "DFLT"});
    }
    EXPECT_THAT(drawn(view), HasSubstr(L"message 99."));
    EXPECT_THAT(drawn(view), Not(HasSubstr(L"message 1.")));
}

TEST(Screen, Says_when_the_terminal_is_too_small) {
    for (auto const& [rows, columns] : {std::pair{19U, 80U}, std::pair{20U, 79U}, std::pair{1U, 1U}}) {
        Machine_view const view;
        Canvas canvas(rows, columns);
        draw(canvas, view, 4);
        EXPECT_EQ(canvas.at(0, 0).character, L'T');
    }
    EXPECT_THAT(drawn(Machine_view{}, 4, 20, 80), HasSubstr(L"q quit"));
}

vehicle::Client_status radio() {
    vehicle::Client_status client;
    client.name = "radio";
    client.is_connected = true;
    client.state = "kOn";
    return client;
}

std::wstring drawn_with(vehicle::Client_status client, std::int64_t now = 0) {
    Machine_view view;
    view.show_clients({std::move(client)}, now);
    return drawn(view);
}

TEST(Screen, Shows_each_client_with_its_manner_and_state) {
    auto client = radio();
    EXPECT_THAT(drawn_with(client), HasSubstr(L"> radio         well      kOn\n"));
    client.manner = "silent";
    client.is_connected = false;
    EXPECT_THAT(drawn_with(client), HasSubstr(L"> radio         silent    kOn       not connected\n"));
    client.is_running = false;
    EXPECT_THAT(drawn_with(client), HasSubstr(L"crashed"));
}

TEST(Screen, Shows_what_a_client_owes_and_how_long_it_has_left) {
    auto client = radio();
    client.owed = "kPrepSD";
    client.deadline = 2'400'000'000;
    EXPECT_THAT(drawn_with(client), HasSubstr(L"asked for kPrepSD, 2.4 s left"));
    EXPECT_THAT(drawn_with(client, 2'400'000'001), HasSubstr(L"asked for kPrepSD, its time is over"));
    client.deadline = 0;
    EXPECT_THAT(drawn_with(client), HasSubstr(L"asked for kPrepSD\n"));
}

TEST(Screen, Leaves_room_for_the_log_below_four_clients_in_the_smallest_terminal) {
    Machine_view view;
    view.show_clients({radio(), radio(), radio(), radio()}, 0);
    view.hear({1, Kind::log, "an error", 2, "DFLT"});
    EXPECT_THAT(drawn(view, 4, 20, 80), HasSubstr(L"an error"));
}

TEST(Screen, Shows_control_characters_as_question_marks) {
    Machine_view view;
    view.hear({1, Kind::log, "bell \a and \xff", 4, "DFLT"});
    EXPECT_THAT(drawn(view), HasSubstr(L"bell ? and ?"));
}

TEST(Machine_view, Keeps_what_matters_however_many_details_follow) {
    Machine_view view;
    view.hear({0, Kind::log, "an error", 2, "DFLT"});
    for (int number = 1; number <= 5000; ++number) {
        view.hear({number, Kind::log, "detail " + std::to_string(number), 6, "DFLT"});
    }
    ASSERT_EQ(view.log().size(), Machine_view::k_log_lines + 1);
    EXPECT_EQ(view.log().front().text, "an error");
    EXPECT_EQ(view.log()[1].text, "detail 4501");
    EXPECT_EQ(view.log().back().text, "detail 5000");
}

}  // namespace
}  // namespace bench::console
