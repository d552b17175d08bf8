#include "tools/record/recorder.h"

#include "disk.h"
#include "lines.h"
#include "status/driver_status.h"
#include "status/network_status.h"
#include "status/page_writer.h"
#include "status/restart_status.h"
#include "status/server_status.h"
#include "status/services_status.h"
#include "support/temporary_directory.h"
#include "tools/page/words.h"
#include "tools/record/power_cycles.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <set>
#include <tuple>

#include <gmock/gmock.h>

namespace statectl::record {
namespace {

using testing::ElementsAre;

constexpr Number k_watchdog = 20 * k_second;

/// A page in this process, and a recorder that looks at it when it is told to.
class Following : public testing::Test {
 protected:
    Following() {
        begin_page("a");
        start();
    }
    ~Following() override { status::set_page(nullptr); }

    /// Another life's.
    void begin_page(std::string const& boot, Number number = 1) {
        page = std::make_unique<status::Page>();
        status::set_page(page.get());
        status::put(page->life.boot, boot);
        status::put(page->life.number, number);
        status::put(page->life.pid, 7U);
        status::put(page->life.started, status::now());
    }

    void start() {
        files = std::make_unique<Record_files>(path, limits);
        recorder = std::make_unique<Recorder>(*files, read_records(directory.path(), 2), k_watchdog);
    }
    void restart() {
        recorder.reset();
        files.reset();
        start();
    }

    void look() {
        auto snapshot = snapshot_of(*page, 3);
        snapshot.is_alive = true;
        look(snapshot, status::now());
    }
    /// Finds the daemon gone, so long after its last sign of life.
    void find_gone(Number silent) {
        auto snapshot = snapshot_of(*page, 3);
        snapshot.silent = silent;
        look(snapshot, status::now());
    }
    void look(Snapshot const& snapshot, Number now) {
        recorder->look(snapshot, {now, now + k_second, page->events.load()});
    }
    void run() { status::transition(0, 1, 0); }

    Records records() const { return read_records(path); }
    std::vector<std::string> endings() const {
        std::vector<std::string> texts;
        for (auto const& cycle : power_cycles(records(), {"b", {}})) {
            texts.push_back(cycle.told.ending);
        }
        return texts;
    }
    std::size_t events() const { return records().lives.at(0).events.size(); }

    test_support::Temporary_directory directory;
    std::string path{directory.path()};
    Record_limits limits;
    std::unique_ptr<status::Page> page;
    std::unique_ptr<Record_files> files;
    std::unique_ptr<Recorder> recorder;
};

TEST_F(Following, Writes_each_event_once_however_often_it_looks_or_is_started) {
    run();
    status::key_taken(4);
    for (int i = 0; i < 3; ++i) {
        look();
        look();
        EXPECT_EQ(events(), 2U);
        restart();
    }
    status::transition(1, 5, 4);
    look();
    EXPECT_EQ(events(), 3U);
    EXPECT_EQ(records().lives.size(), 1U);
    EXPECT_EQ(records().lives[0].missed, 0U);
    EXPECT_EQ(records().damaged, 0U);
}

TEST_F(Following, Counts_each_life_of_a_boot_that_it_has_not_seen_as_missed) {
    struct {
        char const* boot;
        Number number;
        Number missed;
    } const lives[]{{"a", 2, 0}, {"a", 5, 2}, {"b", 4, 0}, {"b", 1, 0}, {"b", 3, 1}};
    look();
    for (auto const& life : lives) {
        begin_page(life.boot, life.number);
        restart();
        look();
        look();
        EXPECT_EQ(records().lives.back().missed, life.missed) << life.boot << life.number;
    }
}

TEST_F(Following, Tells_an_end_once_by_how_it_came) {
    run();
    look();
    find_gone(k_second / 10);
    find_gone(k_second);
    restart();
    find_gone(k_second);
    EXPECT_THAT(endings(), ElementsAre("killed in Running"));
}

TEST_F(Following, Takes_a_long_silence_for_the_watchdog) {
    run();
    look();
    find_gone(k_watchdog);
    EXPECT_THAT(endings(), ElementsAre("watchdog in Running"));
}

TEST_F(Following, Does_not_guess_how_a_daemon_ended_that_nobody_watched) {
    run();
    find_gone(k_watchdog);
    EXPECT_THAT(endings(), ElementsAre("no farewell in Running"));
}

TEST_F(Following, Knows_that_the_watchdog_would_have_waited_longer) {
    run();
    find_gone(k_watchdog - 1);
    EXPECT_THAT(endings(), ElementsAre("killed in Running"));
}

TEST_F(Following, Knows_a_farewell_whenever_it_looks) {
    run();
    status::transition(1, 4, 5);
    status::loop_ended();
    find_gone(k_second * 1'000);
    EXPECT_THAT(endings(), ElementsAre("normal"));
}

TEST_F(Following, Tells_a_fast_end_also_of_a_daemon_that_was_stopped_on_the_way) {
    for (auto const* const asked_for : {"Running", "Shutdown"}) {
        run();
        status::transition(1, 5, 3);
        status::transition(5, 6, 3);
        status::transition(6, 4, 2);
        status::machine_state(asked_for, true);
        status::loop_ended();
        find_gone(0);
        EXPECT_THAT(endings().back(), asked_for == std::string("Running") ? "fast" : "normal");
        begin_page("b");
    }
}

TEST_F(Following, Is_left_while_the_life_goes_on) {
    run();
    look();
    recorder->leave({status::now(), k_second, 0});
    EXPECT_THAT(endings(), ElementsAre("no farewell in Running"));
    restart();
    look();
    EXPECT_THAT(endings(), ElementsAre("went down in Running"));
}

TEST_F(Following, Counts_what_had_gone_from_the_page_and_goes_on_from_there) {
    run();
    for (Number i = 0; i < status::k_events + 10; ++i) {
        status::transition(1 + i % 2, 2 - i % 2, 1);
    }
    look();
    auto const all = records();
    EXPECT_EQ(all.lives.at(0).missed + all.lives.at(0).events.size(), status::k_events + 11);
    EXPECT_GE(all.lives.at(0).missed, 11U);
    EXPECT_EQ(all.lives.at(0).state, all.lives.at(0).events.front().numbers[0]);
}

TEST_F(Following, Keeps_a_flood_from_driving_the_past_away) {
    run();
    for (int round = 0; round < 20; ++round) {
        for (Number i = 0; i < status::k_events; ++i) {
            status::key_dropped(1);
        }
        look();
    }
    status::transition(1, 5, 4);
    look();
    auto const all = records();
    EXPECT_LT(all.lines, 4'000U);
    EXPECT_EQ(all.lives.at(0).events.back().kind, static_cast<Number>(status::Event_kind::transition));
    EXPECT_EQ(all.lives.at(0).missed + all.lives.at(0).events.size(), 20 * status::k_events + 2);
}

std::vector<std::string> texts_of(std::vector<trace::Remark> const& remarks) {
    std::vector<std::string> texts;
    for (auto const& remark : remarks) {
        texts.push_back(remark.text);
    }
    return texts;
}

TEST_F(Following, Tells_once_what_the_page_only_counts) {
    run();
    status::restart_requested(1);
    status::restart_failed();
    look();
    status::restart_requested(5);
    status::restart_requested(5);
    status::call_failed(status::Network_call::set_user_data);
    for (int i = 0; i < 2; ++i) {
        look();
        restart();
    }
    status::log_lost(7);  // not told at once: the machine might lose one each cycle
    look();
    EXPECT_EQ(records().lives.at(0).counted.size(), 3U);
    status::log_lost(8);
    look();
    EXPECT_EQ(records().lives.at(0).counted.size(), 3U);
    find_gone(0);
    auto const all = records();
    EXPECT_EQ(all.damaged, 0U);
    EXPECT_EQ(all.lives.at(0).missed, 0U);
    auto const cycles = power_cycles(all, {"b", {}});
    ASSERT_EQ(cycles.size(), 1U);
    EXPECT_THAT(texts_of(cycles[0].told.requests),
                ElementsAre("diagnostics asked for a restart: this machine",
                            "diagnostics asked for a restart: the co-processor (M3), 2 times"));
    EXPECT_THAT(texts_of(cycles[0].told.troubles), ElementsAre("the word for a restart was not written",
                                                               "a call of network management failed: SetUserData",
                                                               "the log lost 7 messages", "the log lost 1 message"));
}

using Hold_since = std::tuple<std::string, std::string, double>;

TEST_F(Following, Tells_what_is_held_since_when_as_the_page_does_whatever_is_asked_for) {
    std::string const alike(63, 'n');  // a page tells 64 bytes of a name, and its event 24
    std::vector<std::string> const names{
        "nav",       "map",       alike.substr(0, 24),   alike.substr(0, 21) + "...", alike.substr(0, 25),
        alike + '1', alike + '2', std::string(128, 'm'), 'o' + std::string(127, 'm')};
    for (auto const service : {status::Hold::ecu_alive, status::Hold::com_alive, status::Hold::car_wake_up}) {
        status::provided(service, names);
    }
    std::mt19937 random(13);
    auto const any = [&](unsigned count) { return random() % count; };
    for (int i = 0; i < 400; ++i) {
        auto const& name = names[any(static_cast<unsigned>(names.size()))];
        std::vector<std::uint8_t> const bits(any(2), static_cast<std::uint8_t>(any(4)));
        switch (any(6)) {
            case 0:
                status::ecu_requested(name);
                break;
            case 1:
                status::ecu_released(name);
                break;
            case 2:
                status::com_requested(name, bits, any(20));
                break;
            case 3:
                status::com_released(name, bits);
                break;
            case 4:
                status::cwu_requested(name, any(20));
                break;
            default:
                status::cwu_released(name);
        }
        look();
        if (i % 100 == 50) {
            restart();
        }
        std::set<Hold_since> on_page;
        auto const snapshot = snapshot_of(*page, 3);
        for (auto const& instance : snapshot.instances) {
            for (std::size_t hold = 0; hold < instance.since.size(); ++hold) {
                if (instance.since[hold] != 0) {
                    on_page.insert({text_of(instance.name), hold_word(hold), seconds(instance.since[hold])});
                }
            }
        }
        std::set<Hold_since> recorded;
        auto const cycles = power_cycles(records(), {"b", {}});
        for (auto const& hold : cycles.at(0).told.holds) {
            if (!hold.end) {
                recorded.insert({hold.who, hold.what, hold.begin});
            }
        }
        ASSERT_EQ(recorded, on_page) << "after request " << i;
    }
}

TEST_F(Following, Tells_clients_apart_whose_names_are_alike_but_for_their_end) {
    std::string const alike(63, 'c');
    std::vector<std::string> const names{"radio", alike.substr(0, 40), alike + '1', alike + '2'};
    int connection = 0;
    for (auto const& name : names) {
        status::client_connected(++connection, name, "kOn");
    }
    run();
    status::transition(1, 5, 3);
    status::group_asked(status::Group::applications, "kPrepSD");
    status::request_began("kPrepSD", {});
    for (int asked = 1; asked <= connection; ++asked) {
        status::client_asked(asked);
    }
    look();
    status::client_answered(1, "kPrepSD", 0);
    status::client_answered(2, "kPrepSD", 1);
    status::client_left(3);
    status::request_ended(status::Answer::timed_out);
    look();
    restart();
    status::client_answered(4, "kPrepSD", 0);
    status::client_out_of_turn(names[2]);
    look();
    EXPECT_EQ(records().lives.at(0).missed, 0U);
    auto const cycles = power_cycles(records(), {"b", {}});
    auto const& clients = cycles.at(0).told.clients;
    std::vector<std::array<unsigned, 6>> told;
    for (auto const& name : names) {
        ASSERT_EQ(clients.count(name), 1U) << name;
        auto const& client = clients.at(name);
        told.push_back(
            {client.asked, client.succeeded, client.failed, client.late, client.dropped, client.out_of_turn});
    }
    EXPECT_EQ(clients.size(), names.size());
    EXPECT_THAT(told, ElementsAre(ElementsAre(1, 1, 0, 0, 0, 0), ElementsAre(1, 0, 1, 0, 0, 0),
                                  ElementsAre(1, 0, 0, 0, 1, 1), ElementsAre(1, 0, 0, 1, 0, 0)));
    auto const& answers = cycles[0].told.sequences.at(0).groups.at(0).answers;
    ASSERT_EQ(answers.size(), 3U);
    EXPECT_EQ(answers[2].client, names[3]);
    EXPECT_TRUE(answers[2].seconds) << "it has answered since";
}

TEST_F(Following, Tells_a_clock_that_is_set_and_dates_the_power_cycle_by_it) {
    constexpr std::int64_t k_year = 31'536'000 * std::int64_t{1'000'000'000};
    struct {
        char const* name;
        std::int64_t set_by;
        Number asleep;
        char const* told;
    } const rows[]{
        {"forwards", 50 * k_year, 0, "the clock was set forwards by 1576800000.000 s"},
        {"backwards", -k_year, 0, "the clock was set back by 31536000.000 s"},
        {"by as much as is told", 1'500'000'000, 0, "the clock was set forwards by 1.500 s"},
        {"by less", 900'000'000, 0, ""},
        {"back by less", -900'000'000, 0, ""},
        {"a sleep", 0, Number{3'600} * k_second, ""},
    };
    char boot = 'a';
    for (auto const& row : rows) {
        SCOPED_TRACE(row.name);
        begin_page(std::string(1, ++boot));
        restart();
        run();
        auto snapshot = snapshot_of(*page, 3);
        snapshot.is_alive = true;
        auto const begin = page->life.started.load();
        auto const look_at = [&](Number at, Number real, Number asleep) {
            recorder->look(snapshot, {at, real, page->events.load(), asleep});
        };
        auto const real = static_cast<Number>(60 * k_year);  // before it was set
        look_at(begin, real, 0);
        for (Number second = 1; second < 4; ++second) {
            auto const at = begin + second * k_second;
            auto const set_by = static_cast<Number>(second > 1 ? row.set_by : 0);
            auto const asleep = second > 1 ? row.asleep : 0;
            look_at(at, real + second * k_second + asleep + set_by, asleep);
        }
        auto const all = records();
        EXPECT_EQ(all.damaged, 0U);
        auto const cycles = power_cycles(all, {"", {}});
        auto const& told = cycles.back().told;
        EXPECT_EQ(texts_of(told.troubles),
                  row.told == std::string() ? std::vector<std::string>{} : std::vector<std::string>{row.told});
        if (row.told != std::string()) {
            EXPECT_EQ(told.stored_us, (60 * k_year + row.set_by) / 1'000) << "where nothing else was recorded";
        }
    }
}

TEST_F(Following, Dates_each_power_cycle_by_the_clock_although_the_machine_has_slept) {
    constexpr Number k_real = 1'700'000'000 * k_second;  // less what it goes on while the machine is awake
    Number asleep = 50 * k_second;
    auto const begin = page->life.started.load();
    auto const look_now = [&] {
        auto snapshot = snapshot_of(*page, 3);
        snapshot.is_alive = true;
        auto const now = status::now();
        recorder->look(snapshot, {now, k_real + now + asleep, page->events.load(), asleep});
    };
    std::vector<std::int64_t> real{static_cast<std::int64_t>((k_real + begin + asleep) / k_second)};
    look_now();
    run();
    look_now();
    for (auto const sleep : {Number{3'600}, Number{1'800}}) {
        status::transition(1, 5, 3);
        look_now();
        status::transition(5, 6, 3);
        asleep += sleep * k_second;  // before somebody looks
        look_now();
        status::transition(6, 7, 1);
        look_now();
        real.push_back(static_cast<std::int64_t>((k_real + status::now() + asleep) / k_second));
        status::transition(7, 1, 3);
        restart();
        look_now();
    }
    std::vector<std::int64_t> told;
    for (auto const& cycle : power_cycles(records(), {"b", {}})) {
        told.push_back(cycle.told.stored_us.value_or(0) / 1'000'000);
    }
    ASSERT_EQ(told.size(), real.size());
    for (std::size_t i = 0; i < real.size(); ++i) {
        EXPECT_NEAR(static_cast<double>(told[i]), static_cast<double>(real[i]), 5) << i;
    }
}

TEST_F(Following, Dates_a_life_by_the_clock_of_its_first_look) {
    status::put(page->life.started_real, k_second);
    auto snapshot = snapshot_of(*page, 3);
    snapshot.is_alive = true;
    auto const real = Number{1'700'000'000} * k_second;
    recorder->look(snapshot, {page->life.started + 2 * k_second, real, page->events});
    EXPECT_EQ(power_cycles(records(), {"b", {}}).at(0).told.stored_us,
              static_cast<std::int64_t>((real - 2 * k_second) / 1'000));
}

TEST_F(Following, Knows_after_a_restart_what_lies_in_older_files_or_is_not_kept_any_more) {
    std::vector<std::string> names;
    for (int i = 0; i < 50; ++i) {
        names.push_back("application_" + std::to_string(i));
    }
    status::provided(status::Hold::ecu_alive, names);
    for (auto const& row : {Record_limits{}, Record_limits{50'000, 16, 4'096}, Record_limits{20'000, 3, 4'096}}) {
        std::string const boot(1, static_cast<char>('b' + row.files));
        SCOPED_TRACE(row.file_bytes);
        limits = row;
        begin_page(boot + std::to_string(row.file_bytes));
        status::provided(status::Hold::ecu_alive, names);
        start();
        run();
        Number later = 0;
        auto const look_later = [&] {
            auto snapshot = snapshot_of(*page, 3);
            snapshot.is_alive = true;
            later += 60 * k_second;
            look(snapshot, status::now() + later);
        };
        for (int cycle = 0; cycle < (row.file_bytes > 50'000 ? 200 : 50); ++cycle) {
            for (auto const& name : names) {
                status::ecu_requested(name);
            }
            look_later();
            for (auto const& name : names) {
                status::ecu_released(name);
            }
            for (auto const state : {Number{1}, Number{5}, Number{6}, Number{7}}) {
                status::transition(state, state == 7 ? 1U : state == 1 ? 5U : state + 1, 4);
            }
            look_later();
        }
        EXPECT_GT(file_numbers(path).size(), 2U);
        auto const before = records();
        for (int i = 0; i < 2; ++i) {
            restart();
            look_later();
            auto const after = records();
            EXPECT_EQ(after.lives.back().events.size(), before.lives.back().events.size());
            EXPECT_EQ(after.lives.back().missed, before.lives.back().missed);
            EXPECT_EQ(power_cycles(after, {"", {}}).size(), power_cycles(before, {"", {}}).size());
        }
        status::key_taken(4);
        look_later();
        EXPECT_EQ(records().lives.back().events.size(), before.lives.back().events.size() + 1);
        EXPECT_EQ(records().lives.back().missed, 0U);
    }
}

TEST_F(Following, Tells_a_life_no_more_that_ended_before_those_that_the_newest_files_tell_of) {
    limits = {4'000, 16, 4'096};
    restart();
    run();
    auto const earlier = snapshot_of(*page, 3);
    look(earlier, status::now());
    auto const earlier_events = page->events.load();
    begin_page("a", 2);
    run();
    for (Number i = 0; i < 100; ++i) {
        status::transition(1 + i % 2, 2 - i % 2, 1);
        look();
    }
    auto const before = records();
    restart();
    recorder->look(earlier, {status::now(), k_second, earlier_events});
    look();
    auto const after = records();
    ASSERT_EQ(after.lives.size(), 2U);
    EXPECT_EQ(after.lives[0].events.size(), before.lives[0].events.size());
    EXPECT_EQ(after.lives[1].events.size(), before.lives[1].events.size());
    EXPECT_EQ(after.lives[1].missed, 0U);
}

TEST_F(Following, Goes_on_after_a_flood_without_what_it_has_counted_as_missed) {
    run();
    for (int round = 0; round < 5; ++round) {
        for (Number i = 0; i < status::k_events; ++i) {
            status::key_dropped(1);
        }
        look();
    }
    status::transition(1, 5, 4);
    look();
    auto const before = records();
    restart();
    look();
    auto const after = records();
    EXPECT_EQ(after.lives.at(0).events.size(), before.lives.at(0).events.size());
    EXPECT_EQ(after.lives[0].missed + after.lives[0].events.size(), 5 * status::k_events + 2);
}

TEST_F(Following, Tells_two_lives_apart_and_counts_all_although_the_directory_comes_late) {
    path += "/later";
    for (std::size_t const waiting : {std::size_t{1}, std::size_t{3}, std::size_t{20}, std::size_t{4'096}}) {
        SCOPED_TRACE(waiting);
        std::filesystem::remove_all(path);
        limits.waiting = waiting;
        begin_page("a");
        files = std::make_unique<Record_files>(path, limits);
        recorder = std::make_unique<Recorder>(*files, Records(), k_watchdog);
        run();
        for (Number i = 0; i < 99; ++i) {
            status::transition(1 + i % 2, 2 - i % 2, 1);
            look();
        }
        find_gone(0);
        begin_page("a", 2);
        run();
        for (int i = 0; i < 3; ++i) {
            status::transition(1, 5, 4);
            status::transition(5, 1, 4);
            look();
        }
        std::filesystem::create_directory(path);
        Number const happened = 109;
        for (int i = 0; i < 2 + 40 && records().lives.size() < 2; ++i) {
            look();
        }
        status::transition(1, 5, 4);
        status::transition(5, 4, 4);
        for (int i = 0; i < 40; ++i) {
            look();
        }
        auto const all = records();
        EXPECT_EQ(all.damaged, 0U);
        ASSERT_FALSE(all.lives.empty());
        auto const& last = all.lives.back();
        EXPECT_EQ(last.identity.number, 2U);
        EXPECT_EQ(last.events.back().numbers[1], 4U);
        Number told = 0;
        for (auto const& life : all.lives) {
            told += life.events.size() + life.missed;
        }
        EXPECT_EQ(told, happened);
        for (auto const& event : last.events) {
            EXPECT_GE(event.at, last.from);
        }
    }
}

TEST_F(Following, Tells_a_clock_that_was_set_while_there_was_no_room_for_a_line) {
    constexpr Number k_hour = 3'600 * k_second;
    path += "/later";
    limits.waiting = 2;
    files = std::make_unique<Record_files>(path, limits);
    recorder = std::make_unique<Recorder>(*files, Records(), k_watchdog);
    auto const look_where_clock_is_set_by = [this](Number set_by) {
        auto snapshot = snapshot_of(*page, 3);
        snapshot.is_alive = true;
        auto const now = status::now();
        recorder->look(snapshot, {now, now + k_second + set_by, page->events.load()});
    };
    for (int i = 0; i < 9; ++i) {
        run();
        look_where_clock_is_set_by(0);
    }
    look_where_clock_is_set_by(k_hour);
    std::filesystem::create_directory(path);
    std::string written;
    for (int i = 0; i < 9; ++i) {
        look_where_clock_is_set_by(k_hour);
    }
    for (auto const& file : std::filesystem::directory_iterator(path)) {
        std::ifstream text(file.path());
        written.append(std::istreambuf_iterator<char>(text), {});
    }
    auto const told = R"("set_by":)" + std::to_string(k_hour);
    EXPECT_THAT(written, testing::HasSubstr(told));
    EXPECT_EQ(written.find("set_by"), written.rfind("set_by")) << "once: " << written;
}

TEST_F(Following, Has_on_the_disk_at_once_what_the_machine_may_go_down_after) {
    run();
    look();
    status::key_taken(4);
    look();  // the first sync is over in any case
    struct {
        char const* name;
        void (*happens)();
        bool is_urgent;
    } const rows[]{
        {"a key", [] { status::key_taken(4); }, false},
        {"Running to Post Run", [] { status::transition(1, 3, 1); }, false},
        {"entering Preparing", [] { status::transition(3, 5, 4); }, true},
        {"another key", [] { status::key_taken(4); }, false},
        {"Preparing to Running", [] { status::transition(5, 1, 4); }, false},
        {"entering Shutting down", [] { status::transition(1, 4, 4); }, true},
        {"a restart", [] { status::restart_requested(1); }, true},
        {"the loop's end", [] { status::loop_ended(); }, true},
    };
    for (auto const& row : rows) {
        SCOPED_TRACE(row.name);
        auto const begin = std::chrono::steady_clock::now();
        status::key_taken(4);
        recorder->leave({status::now(), k_second, 0});  // is on the disk: no other sync is due within a second
        disk.synced.clear();
        row.happens();
        look();
        auto const took = std::chrono::steady_clock::now() - begin;
        if (row.is_urgent || took < std::chrono::milliseconds(900)) {
            EXPECT_EQ(disk.synced.size(), row.is_urgent ? 1U : 0U);
        }
    }
}

TEST_F(Following, Tells_once_what_records_have_twice) {
    auto const event = event_line("transition", 7, "0,1,1");
    auto const other = event_line("key", 7, "4,0,0");
    auto const all = records_of({life_line("a", 1), event, other, event, event_line("transition", 7, "0,1,2"), other});
    EXPECT_EQ(all.lives.at(0).events.size(), 3U);
}

TEST_F(Following, Begins_a_life_for_each_page) {
    run();
    look();
    begin_page("b");
    run();
    look();
    EXPECT_THAT(endings(), ElementsAre("went down in Running", "no farewell in Running"));
}

}  // namespace
}  // namespace statectl::record
