// What a state does when it is entered, and in which order: log, control file and neighbours write into one journal.

#include "state_fixture.h"
#include "statemanager/states/nm_controlled_state.h"
#include "statemanager/states/post_run_state.h"
#include "statemanager/states/prepared_sd_state.h"
#include "statemanager/states/preparing_state.h"
#include "statemanager/states/resuming_state.h"
#include "statemanager/states/running_state.h"
#include "statemanager/states/shutting_down_state.h"
#include "statemanager/states/startingup_state.h"

#include <chrono>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace ximo::ap::statemanager::states {
namespace {

using ara::log::LogLevel;
using test_support::logged;
using testing::Contains;
using testing::ElementsAre;

using Listener = std::function<void(std::string const&)>;

/// A status file that tells of each word.
class Listened_status_file : public smw::Shared_memory_update {
 public:
    Listened_status_file(std::string path, Listener listener)
        : Shared_memory_update(std::move(path)), listener_(std::move(listener)) {}

    bool write_to_memory(std::string data) override {
        listener_("word " + data);
        return Shared_memory_update::write_to_memory(std::move(data));
    }

 private:
    Listener listener_;
};

/// A power-off service that always listens, or whose driver takes nothing of a command.
class Listened_fast_shutdown : public fast_shutdown::Fast_shutdown_handler {
 public:
    explicit Listened_fast_shutdown(Listener listener)
        : Fast_shutdown_handler("/nowhere"), listener_(std::move(listener)) {}

    bool takes_nothing{false};

    bool is_possible() const override { return true; }
    void process_lookup() const override { command("process_lookup"); }
    void start_fast_shutdown(std::chrono::milliseconds timeout) const override {
        command("start_fast_shutdown " + std::to_string(timeout.count()));
    }

 private:
    void command(std::string const& text) const {
        listener_(text);
        if (takes_nothing) {
            throw std::out_of_range("basic_string::substr");
        }
    }

    Listener listener_;
};

class Entry_order : public State_test {
 protected:
    Entry_order() {
        services->listener = note_;
        em->listener = note_;
        notifier->listener = note_;
        log.clear();
    }

    std::vector<std::string> journal_of(State_interface& sut) {
        sut.entering_state();
        hear_log();
        return journal_;
    }

    Listener note_ = [this](std::string const& what) {
        hear_log();
        journal_.push_back(what);
    };
    std::shared_ptr<Listened_status_file> status{std::make_shared<Listened_status_file>(files.file("status"), note_)};
    std::shared_ptr<Listened_fast_shutdown> power_off{std::make_shared<Listened_fast_shutdown>(note_)};

 private:
    void hear_log() {
        for (auto const& message : log.messages()) {
            journal_.push_back(ara::log::to_text(message.arguments));
        }
        log.clear();
    }

    std::vector<std::string> journal_;
};

TEST_F(Entry_order, Of_starting_up) {
    Startingup_state sut(services, status, true);
    EXPECT_THAT(journal_of(sut), ElementsAre("Entering startup state", "word startingup"));
}

TEST_F(Entry_order, Of_running) {
    Running_state sut(services, status, em, true, true);
    EXPECT_THAT(journal_of(sut),
                ElementsAre("Entering running state", "word running", "request_network", "request_running"));
}

TEST_F(Entry_order, Of_NM_controlled) {
    Nm_controlled_state sut(services, status);
    EXPECT_THAT(journal_of(sut), ElementsAre("Entering NM controled state", "word runnmcontrolled", "release_network"));
}

TEST_F(Entry_order, Of_post_run) {
    Post_run_state sut(services, status, 3);
    EXPECT_THAT(journal_of(sut), ElementsAre("Entering post run state", "word postrun"));
}

TEST_F(Entry_order, Of_post_run_refills_its_count_after_the_word) {
    std::vector<unsigned> transitions;
    State_interface* entered = nullptr;
    auto const asking = std::make_shared<Listened_status_file>(files.file("asking"), [&](std::string const& /*word*/) {
        transitions.push_back(entered->check_transition(virtio::Virtio_command::none));
    });
    Post_run_state sut(services, asking, 1);
    entered = &sut;
    services->ecu_alive = true;
    sut.tick();
    sut.entering_state();
    transitions.push_back(sut.check_transition(virtio::Virtio_command::none));
    EXPECT_THAT(transitions, ElementsAre(k_shutting_down, k_stay));
}

TEST_F(Entry_order, Of_preparing) {
    Preparing_state sut(services, status, notifier, power_off);
    EXPECT_THAT(journal_of(sut), ElementsAre("Entering preparing state", "word preparing", "request_standby",
                                             "process_lookup", "standby"));
}

TEST_F(Entry_order, Of_prepared_for_shutdown) {
    PreparedSD_state sut(status);
    EXPECT_THAT(journal_of(sut), ElementsAre("Entering PreparedSD state", "word prepared4sd"));
}

TEST_F(Entry_order, Of_resuming) {
    Resuming_state sut(services, status, notifier);
    EXPECT_THAT(journal_of(sut),
                ElementsAre("Entering resuming state", "word resuming", "request_resume", "end_standby"));
}

TEST_F(Entry_order, Of_shutting_down_normally) {
    Shutting_down_state sut(services, status, em, true, 60, power_off);
    EXPECT_THAT(journal_of(sut), ElementsAre("Entering shutdown state", "word shuttingdown", "Normal shutdown executed",
                                             "request_shutdown"));
}

TEST_F(Entry_order, Of_shutting_down_fast) {
    Shutting_down_state sut(services, status, em, true, 90, power_off);
    State_interface::set_forced_shutdown_flag(true);
    EXPECT_THAT(journal_of(sut), ElementsAre("Entering shutdown state", "word shuttingdown", "Fast shutdown executed",
                                             "start_fast_shutdown 90000"));
}

TEST_F(Entry_order, Of_preparing_goes_on_when_the_power_off_channel_takes_nothing) {
    power_off->takes_nothing = true;
    Preparing_state sut(services, status, notifier, power_off);
    std::vector<test_support::Log_message> errors;
    services->listener = [&](std::string const& what) {
        errors = log.messages(LogLevel::kError);
        note_(what);
    };
    EXPECT_THAT(journal_of(sut),
                ElementsAre("Entering preparing state", "word preparing", "request_standby", "process_lookup",
                            "Fast shutdown not prepared:  basic_string::substr", "standby"));
    EXPECT_THAT(errors, ElementsAre(logged(LogLevel::kError, "Fast shutdown not prepared: ", "basic_string::substr")));
}

TEST_F(Entry_order, Of_shutting_down_fast_survives_a_power_off_channel_that_takes_nothing) {
    power_off->takes_nothing = true;
    Shutting_down_state sut(services, status, em, true, 60, power_off);
    State_interface::set_forced_shutdown_flag(true);
    EXPECT_TRUE(sut.entering_state());
    EXPECT_TRUE(sut.is_forced_shutdown());
    EXPECT_THAT(log.messages(LogLevel::kError),
                Contains(logged(LogLevel::kError, "Fast shutdown not completed: ", "basic_string::substr")));
}

}  // namespace
}  // namespace ximo::ap::statemanager::states
