// The examples, on installed packages that were moved afterwards: they build, and the clients among them are good ones.

#include "support/temporary_directory.h"

#include <cstdlib>
#include <filesystem>
#include <string>

#include <gmock/gmock.h>

namespace {

class Examples : public testing::Test {
 protected:
    static int status_of(std::string const& command) {
        auto const inside = "cd " + directory().path().string() + " && { " + command + "; } >output 2>&1 </dev/null";
        int const status = std::system(inside.c_str());
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    static void run(std::string const& command) {
        EXPECT_EQ(status_of(command), 0) << command << '\n' << directory().read("output");
    }

    static void SetUpTestSuite() {
        for (std::string const component : {"client", "client-development", "development"}) {
            run(CMAKE " --install " BUILD_DIRECTORY " --prefix $PWD/first --component " + component);
        }
        run("mv first moved");
    }
    static void TearDownTestSuite() { std::filesystem::remove_all(directory().path()); }

    static test_support::Temporary_directory& directory() {
        static auto& made = *new test_support::Temporary_directory;
        return made;
    }

    static void check_as_client(std::string const& words) {
        run("LD_LIBRARY_PATH=moved/" LIBRARY_DIRECTORY " " STATECTL " check-client --patience 10000 --quiet 200 -- " +
            words);
    }
};

TEST_F(Examples, Build_with_find_package_and_the_client_in_Cpp_is_a_good_one) {
    std::string const flags = std::string(SANITIZER).empty() ? "" : "-fsanitize=" SANITIZER;
    run(CMAKE " -S " EXAMPLES " -B build -DCMAKE_PREFIX_PATH=$PWD/moved -DCMAKE_CXX_COMPILER=" COMPILER
              " -DCMAKE_CXX_FLAGS='-Wall -Wextra -Wshadow -Wconversion -Werror " +
        flags + "' && " CMAKE " --build build");
    check_as_client("build/suspend_client example");
    EXPECT_EQ(status_of("build/keep_alive ''"), 1) << "a name that is none";
    EXPECT_EQ(status_of("build/network_watcher ''"), 1) << "a name that is none";
}

TEST_F(Examples, Have_a_client_in_Python_that_is_a_good_one) {
    check_as_client(EXAMPLES "/suspend_client/suspend_client.py example");
}

}  // namespace
