#include "statemanager/smw/shared_memory_reboot.h"

#include "status/page_writer.h"
#include "support/log_capture.h"
#include "support/temporary_directory.h"

#include <deque>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

namespace ximo::ap::statemanager::smw {
namespace {

using test_support::Log_capture;
using test_support::Temporary_directory;
using testing::ElementsAre;
using testing::IsEmpty;

/// Notes the words instead of writing them; fails as it is told, then succeeds.
class Noting_reboot : public Shared_memory_reboot {
 public:
    explicit Noting_reboot(std::deque<bool> results)
        : Shared_memory_reboot("/dev/null"), results_(std::move(results)) {}
    bool write_to_memory(std::string data) override {
        words.push_back(std::move(data));
        if (results_.empty()) {
            return true;
        }
        bool const result = results_.front();
        results_.pop_front();
        return result;
    }

    std::vector<std::string> words;

 private:
    std::deque<bool> results_;
};

TEST(Shared_memory_reboot_test, A_request_that_gets_through_is_the_only_word) {
    Temporary_directory const directory;
    Shared_memory_reboot sut(directory.file("command_request"));

    sut.restart_vm();
    EXPECT_EQ(directory.read("command_request"), "restartao");

    sut.restart_m3();
    EXPECT_EQ(directory.read("command_request"), "restartaorestartm3");
}

TEST(Shared_memory_reboot_test, A_request_that_fails_is_cancelled_and_made_once_more) {
    Noting_reboot sut({false});

    sut.restart_vm();

    EXPECT_THAT(sut.words, ElementsAre("restartao", "cancel", "restartao"));
}

TEST(Shared_memory_reboot_test, The_co_processor_s_restart_is_cancelled_in_the_same_way) {
    Noting_reboot sut({false});

    sut.restart_m3();

    EXPECT_THAT(sut.words, ElementsAre("restartm3", "cancel", "restartm3"));
}

TEST(Shared_memory_reboot_test, A_cancel_that_fails_changes_nothing) {
    Noting_reboot sut({false, false});

    sut.restart_vm();

    EXPECT_THAT(sut.words, ElementsAre("restartao", "cancel", "restartao"));
}

TEST(Shared_memory_reboot_test, A_second_failure_is_the_end_of_it) {
    Noting_reboot sut({false, true, false});

    sut.restart_vm();

    EXPECT_THAT(sut.words, ElementsAre("restartao", "cancel", "restartao"));
}

TEST(Shared_memory_reboot_test, Only_a_request_that_never_got_through_is_told_as_failed) {
    auto const page = std::make_unique<status::Page>();
    status::set_page(page.get());
    Noting_reboot({false}).restart_vm();
    EXPECT_EQ(status::own(page->counters.restarts_failed), 0U);
    Noting_reboot({false, true, false}).restart_vm();
    status::set_page(nullptr);
    EXPECT_EQ(status::own(page->counters.restarts_failed), 1U);
}

TEST(Shared_memory_reboot_test, Any_word_may_be_tried) {
    Noting_reboot sut({false});

    sut.try_reboot("restartx");

    EXPECT_THAT(sut.words, ElementsAre("restartx", "cancel", "restartx"));
}

TEST(Shared_memory_reboot_test, It_logs_nothing_of_its_own) {
    Log_capture log;
    Noting_reboot sut({false, false, false});

    sut.restart_vm();
    sut.restart_m3();

    EXPECT_THAT(log.messages(), IsEmpty());
}

TEST(Shared_memory_reboot_test, Each_of_three_real_failures_is_told) {
    Log_capture log;
    Shared_memory_reboot sut("/dev/full");

    sut.restart_vm();

    auto const warning = [](char const* word) {
        return test_support::logged(ara::log::LogLevel::kWarn, "I/O exception while writing \"", word,
                                    "\" to file: ", "/dev/full");
    };
    EXPECT_THAT(log.messages(), ElementsAre(warning("restartao"), warning("cancel"), warning("restartao")));
}

TEST(Shared_memory_reboot_test, Where_the_file_could_not_be_opened_a_request_is_not_repeated) {
    Log_capture log;
    Shared_memory_reboot sut("");
    log.clear();

    sut.restart_vm();

    EXPECT_THAT(log.messages(), IsEmpty());
}

}  // namespace
}  // namespace ximo::ap::statemanager::smw
