#include "statemanager/smw/shared_memory_update.h"

#include "status/page_writer.h"
#include "support/log_capture.h"
#include "support/temporary_directory.h"

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

namespace ximo::ap::statemanager::smw {
namespace {

using ara::log::LogLevel;
using status::Word_fate;
using test_support::Log_capture;
using test_support::logged;
using test_support::Temporary_directory;
using testing::ElementsAre;
using testing::IsEmpty;

struct Operation {
    void (Shared_memory_update::*write)();
    char const* word;
    char const* failure;
};

std::vector<Operation> const k_operations = {
    {&Shared_memory_update::starting_up, "startingup", "Failed to set startingup state in shared memory!"},
    {&Shared_memory_update::running, "running", "Failed to set running state in shared memory!"},
    {&Shared_memory_update::shutting_down, "shuttingdown", "Failed to set shuttingdown state in shared memory!"},
    {&Shared_memory_update::run_nm_controlled, "runnmcontrolled",
     "Failed to set runnmcontrolled state in shared memory!"},
    {&Shared_memory_update::post_run, "postrun", "Failed to set postrun state in shared memory!"},
    {&Shared_memory_update::preparing, "preparing", "Failed to set preparing state in shared memory!"},
    {&Shared_memory_update::prepared_4_sd, "prepared4sd", "Failed to set prepared4sd state in shared memory!"},
    {&Shared_memory_update::resuming, "resuming", "Failed to set resuming state in shared memory!"},
};

/// Notes the words instead of writing them.
class Noting_update : public Shared_memory_update {
 public:
    Noting_update() : Shared_memory_update("/dev/null") {}
    bool write_to_memory(std::string data) override {
        words.push_back(std::move(data));
        return succeed;
    }

    bool succeed{true};
    std::vector<std::string> words;
};

TEST(Shared_memory_update_test, Each_state_writes_its_word_into_the_file_given) {
    for (Operation const& operation : k_operations) {
        Temporary_directory const directory;
        Shared_memory_update sut(directory.file("set_status"));

        (sut.*operation.write)();

        EXPECT_EQ(directory.read("set_status"), operation.word);
    }
}

TEST(Shared_memory_update_test, Each_state_writes_once_through_the_virtual_operation_and_a_success_is_silent) {
    for (Operation const& operation : k_operations) {
        Log_capture log;
        Noting_update sut;

        (sut.*operation.write)();

        EXPECT_THAT(sut.words, ElementsAre(operation.word));
        EXPECT_THAT(log.messages(), IsEmpty());
    }
}

TEST(Shared_memory_update_test, Each_failure_is_told_once_and_not_repeated) {
    for (Operation const& operation : k_operations) {
        Log_capture log;
        Noting_update sut;
        sut.succeed = false;

        (sut.*operation.write)();

        EXPECT_THAT(sut.words, ElementsAre(operation.word));
        EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kVerbose, operation.failure)));
    }
}

TEST(Shared_memory_update_test, A_real_failure_is_a_warning_and_the_state_s_own_message) {
    Log_capture log;
    Shared_memory_update sut("/dev/full");

    sut.resuming();

    EXPECT_THAT(
        log.messages(),
        ElementsAre(logged(LogLevel::kWarn, "I/O exception while writing \"", "resuming", "\" to file: ", "/dev/full"),
                    logged(LogLevel::kVerbose, "Failed to set resuming state in shared memory!")));
}

TEST(Shared_memory_update_test, Where_the_file_could_not_be_opened_no_state_fails) {
    Log_capture log;
    Shared_memory_update sut("");
    log.clear();

    for (Operation const& operation : k_operations) {
        (sut.*operation.write)();
    }

    EXPECT_THAT(log.messages(), IsEmpty());
}

TEST(Shared_memory_update_test, The_status_page_tells_what_became_of_the_word) {
    auto const page = std::make_unique<status::Page>();
    status::set_page(page.get());
    for (auto const& [path, fate] : {std::pair<char const*, status::Word_fate>{"/dev/null", Word_fate::written},
                                     {"/dev/full", Word_fate::refused},
                                     {"/no/such/file", Word_fate::no_file}}) {
        Shared_memory_update(path).running();
        EXPECT_EQ(page->driver.word_failed, static_cast<std::uint64_t>(fate)) << path;
    }
    EXPECT_EQ(page->driver.words_failed, 2U);
    status::set_page(nullptr);
}

}  // namespace
}  // namespace ximo::ap::statemanager::smw
