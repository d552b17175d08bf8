#include "tools/record/recorder.h"

#include "lines.h"
#include "status/driver_status.h"
#include "status/network_status.h"
#include "status/page_writer.h"
#include "status/restart_status.h"
#include "status/services_status.h"
#include "support/temporary_directory.h"
#include "tools/record/power_cycles.h"

#include <memory>

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
        files = std::make_unique<Record_files>(std::string(directory.path()));
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

    Records records() const { return read_records(directory.path()); }
    std::vector<std::string> endings() const {
        std::vector<std::string> texts;
        for (auto const& cycle : power_cycles(records(), {"b", {}})) {
            texts.push_back(cycle.told.ending);
        }
        return texts;
    }
    std::size_t events() const { return records().lives.at(0).events.size(); }

    test_support::Temporary_directory directory;
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
