#include "statemanager/smw/shared_memory_writer_interface.h"

#include "support/file_size_limit.h"
#include "support/log_capture.h"
#include "support/open_descriptors.h"
#include "support/temporary_directory.h"

#include <ios>
#include <memory>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ximo::ap::statemanager::smw {
namespace {

using ara::log::LogLevel;
using test_support::descriptors_on;
using test_support::File_size_limit;
using test_support::Log_capture;
using test_support::Log_message;
using test_support::logged;
using test_support::Temporary_directory;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class Shared_memory_writer : public testing::Test {
 protected:
    Log_message write_warning(char const* word) const {
        return logged(LogLevel::kWarn, "I/O exception while writing \"", word, "\" to file: ", file);
    }

    /// Closes the writer's file under it, so that its own close will fail.
    void close_behind_its_back() const {
        ASSERT_THAT(descriptors_on(file), SizeIs(1));
        ASSERT_EQ(::close(descriptors_on(file).front()), 0);
    }

    Log_capture log;
    Temporary_directory directory;
    std::string const file{directory.file("set_status")};
};

TEST_F(Shared_memory_writer, Opening_empties_the_file_and_is_silent) {
    directory.write("set_status", "left over");

    Shared_memory_writer_interface const sut(file);

    EXPECT_EQ(directory.read("set_status"), "");
    EXPECT_THAT(log.messages(), IsEmpty());
}

TEST_F(Shared_memory_writer, Words_stand_back_to_back_with_all_their_bytes_and_nothing_between_or_after_them) {
    Shared_memory_writer_interface sut(file);
    std::string const odd("line\nzero\0blank \xFF", 17);

    EXPECT_TRUE(sut.write_to_memory("startingup"));
    EXPECT_EQ(directory.read("set_status"), "startingup");
    EXPECT_TRUE(sut.write_to_memory(odd));

    EXPECT_EQ(directory.read("set_status"), "startingup" + odd);
    EXPECT_THAT(log.messages(), IsEmpty());
}

TEST_F(Shared_memory_writer, An_empty_word_is_told_and_succeeds_without_a_write) {
    Shared_memory_writer_interface sut("/dev/full");

    EXPECT_TRUE(sut.write_to_memory(""));

    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kDebug, "No data provided for shared memory write!")));
}

TEST_F(Shared_memory_writer,
       A_path_that_cannot_be_opened_is_told_once_and_every_word_and_the_close_then_silently_succeed) {
    for (auto const& path : {directory.file("missing/set_status"), std::string()}) {
        Shared_memory_writer_interface sut(path);
        EXPECT_THAT(log.messages(),
                    ElementsAre(logged(LogLevel::kError, "Invalid Shared memory file provided: ", path, "!")));
        log.clear();

        EXPECT_TRUE(sut.write_to_memory("running"));
        EXPECT_TRUE(sut.write_to_memory("postrun"));
        EXPECT_NO_THROW(sut.close_file());

        EXPECT_THAT(log.messages(), IsEmpty());
    }
}

TEST_F(Shared_memory_writer, An_empty_word_for_a_file_that_could_not_be_opened_is_told_as_well) {
    Shared_memory_writer_interface sut("");
    log.clear();

    EXPECT_TRUE(sut.write_to_memory(""));

    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kDebug, "No data provided for shared memory write!")));
}

TEST_F(Shared_memory_writer, A_file_that_appears_later_is_not_opened) {
    Shared_memory_writer_interface sut(directory.file("late/set_status"));
    ASSERT_EQ(::mkdir(directory.file("late").c_str(), 0700), 0);

    EXPECT_TRUE(sut.write_to_memory("running"));

    EXPECT_TRUE(std::filesystem::is_empty(directory.file("late")));
}

TEST_F(Shared_memory_writer, Every_word_that_fails_is_told_anew) {
    Shared_memory_writer_interface sut(file);
    File_size_limit const limit(0);

    EXPECT_FALSE(sut.write_to_memory("running"));
    EXPECT_FALSE(sut.write_to_memory("postrun"));

    EXPECT_THAT(log.messages(), ElementsAre(write_warning("running"), write_warning("postrun")));
}

TEST_F(Shared_memory_writer, After_a_failed_word_the_next_one_is_written_alone) {
    Shared_memory_writer_interface sut(file);
    {
        File_size_limit const limit(0);
        EXPECT_FALSE(sut.write_to_memory("running"));
    }

    EXPECT_TRUE(sut.write_to_memory("postrun"));
    EXPECT_TRUE(sut.write_to_memory("preparing"));

    EXPECT_EQ(directory.read("set_status"), "postrunpreparing");
    EXPECT_THAT(log.messages(), ElementsAre(write_warning("running")));
}

TEST_F(Shared_memory_writer, A_word_that_is_cut_short_has_failed_and_its_rest_does_not_follow) {
    Shared_memory_writer_interface sut(file);
    {
        File_size_limit const limit(3);
        EXPECT_FALSE(sut.write_to_memory("running"));
    }

    EXPECT_TRUE(sut.write_to_memory("postrun"));

    EXPECT_EQ(directory.read("set_status"), "runpostrun");
    EXPECT_THAT(log.messages(), ElementsAre(write_warning("running")));
}

TEST_F(Shared_memory_writer, Closing_closes_the_file_and_a_word_fails_then) {
    Shared_memory_writer_interface sut(file);

    sut.close_file();

    EXPECT_THAT(descriptors_on(file), IsEmpty());
    EXPECT_FALSE(sut.write_to_memory("running"));
    EXPECT_THAT(log.messages(), ElementsAre(write_warning("running")));
}

TEST_F(Shared_memory_writer, Closing_twice_throws) {
    Shared_memory_writer_interface sut(file);
    sut.close_file();

    EXPECT_THROW(sut.close_file(), std::ios_base::failure);
}

TEST_F(Shared_memory_writer, A_close_that_fails_throws_to_the_caller) {
    Shared_memory_writer_interface sut(file);
    close_behind_its_back();

    EXPECT_THROW(sut.close_file(), std::ios_base::failure);
}

TEST_F(Shared_memory_writer, Closing_after_a_failed_word_does_nothing) {
    Shared_memory_writer_interface sut(file);
    {
        File_size_limit const limit(0);
        EXPECT_FALSE(sut.write_to_memory("running"));
    }

    EXPECT_NO_THROW(sut.close_file());

    EXPECT_THAT(descriptors_on(file), SizeIs(1));
}

TEST_F(Shared_memory_writer, The_end_of_the_writer_closes_the_file_also_after_a_failed_word) {
    for (bool const fail_first : {false, true}) {
        auto sut = std::make_unique<Shared_memory_writer_interface>(file);
        File_size_limit const limit(fail_first ? 0 : 100);
        EXPECT_NE(sut->write_to_memory("running"), fail_first);

        sut.reset();

        EXPECT_THAT(descriptors_on(file), IsEmpty());
    }
}

TEST_F(Shared_memory_writer, The_end_of_the_writer_never_throws) {
    auto sut = std::make_unique<Shared_memory_writer_interface>(file);
    close_behind_its_back();

    sut.reset();

    EXPECT_THAT(log.messages(), IsEmpty());
}

}  // namespace
}  // namespace ximo::ap::statemanager::smw
