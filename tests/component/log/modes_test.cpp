// The places that a program can log to, by the lines that arrive there.

#include "base/temporary_directory.h"
#include "bench/process/child_process.h"

#include <chrono>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace {

using testing::Eq;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class Log_modes : public testing::Test {
 protected:
    static constexpr std::chrono::seconds k_patience{5};

    /// Runs the program with its standard error in the file "console".
    void run(std::string const& task, int modes, std::string const& log_directory) {
        bench::Child_process program({"sh", "-c", R"(exec "$0" "$1" "$2" "$3" 2>"$4")", LOG_PROGRAM, task,
                                      std::to_string(modes), log_directory, directory.file("console")},
                                     {});
        ASSERT_EQ(program.wait(k_patience), 0);
    }

    std::string read(std::string const& name) const {
        std::ifstream file(directory.file(name));
        return {std::istreambuf_iterator<char>(file), {}};
    }

    base::Temporary_directory directory;
};

constexpr int k_file = 2;
constexpr int k_console = 4;

TEST_F(Log_modes, The_console_alone) {
    run("types", k_console, directory.path().string());
    EXPECT_THAT(read("console"), HasSubstr("info    DFLT before logging was initialised\n"));
    EXPECT_THAT(read("console"), HasSubstr("warn    OTHR from another context\n"));
    EXPECT_THAT(read("PROG.log"), IsEmpty());
}

TEST_F(Log_modes, A_file_alone) {
    run("types", k_file, directory.path().string());
    EXPECT_THAT(read("console"), IsEmpty());
    EXPECT_THAT(read("PROG.log"), HasSubstr("info    DFLT from the destructor of a static object\n"));
}

TEST_F(Log_modes, Both) {
    run("types", k_file | k_console, directory.path().string());
    EXPECT_THAT(read("console"), Not(IsEmpty()));
    EXPECT_THAT(read("PROG.log"), Eq(read("console")));
}

TEST_F(Log_modes, A_file_that_can_not_be_opened_is_told_where_there_is_somebody_to_tell) {
    run("types", k_file | k_console, directory.file("missing"));
    EXPECT_THAT(read("console"),
                HasSubstr("error   DFLT Log file can't be opened in directory:  " + directory.file("missing") + "\n"));
}

TEST_F(Log_modes, Stay_when_logging_is_initialised_once_more) {
    run("initialise again", k_console, "");
    EXPECT_THAT(read("console"),
                HasSubstr("warn    DFLT Logging is already initialised; ignored for application:  MORE\n"));
    EXPECT_THAT(read("console"), HasSubstr("verbose DFLT still verbose\n"));
}

}  // namespace
