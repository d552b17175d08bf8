#include "statemanager/smw/shared_memory_reboot.h"

#include "status/page_writer.h"
#include "support/log_capture.h"
#include "support/temporary_directory.h"

#include <deque>
#include <functional>
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

/// Notes the words instead of writing them; succeeds and fails as it is told.
class Noting_reboot : public Shared_memory_reboot {
 public:
    explicit Noting_reboot(std::deque<bool> results)
        : Shared_memory_reboot("/dev/null"), results_(std::move(results)) {}
    bool write_to_memory(std::string data) override {
        words.push_back(std::move(data));
        bool const result = results_.at(0);
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

// What becomes of the cancel changes nothing, and nothing here is logged.
TEST(Shared_memory_reboot_test, A_request_that_fails_is_cancelled_and_made_once_more_and_told_when_both_fail) {
    std::vector<std::pair<std::string, std::function<void(Shared_memory_reboot&)>>> const requests{
        {"restartao", [](auto& sut) { sut.restart_vm(); }},
        {"restartm3", [](auto& sut) { sut.restart_m3(); }},
        {"restartx", [](auto& sut) { sut.try_reboot("restartx"); }}};
    for (auto const& [word, request] : requests) {
        for (unsigned outcomes = 0; outcomes < 8; ++outcomes) {
            bool const first = (outcomes & 1U) != 0;
            bool const second = (outcomes & 2U) != 0;
            auto const page = std::make_unique<status::Page>();
            status::set_page(page.get());
            Log_capture log;
            Noting_reboot sut({first, (outcomes & 4U) != 0, second});

            request(sut);
            status::set_page(nullptr);

            auto const words = first ? std::vector{word} : std::vector<std::string>{word, "cancel", word};
            EXPECT_EQ(sut.words, words) << word << " with outcomes " << outcomes;
            EXPECT_EQ(status::own(page->counters.restarts_failed), first || second ? 0U : 1U);
            EXPECT_THAT(log.messages(), IsEmpty());
        }
    }
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
