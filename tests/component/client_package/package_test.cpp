// What an application gets when the client library is installed: headers, library, CMake package, pkg-config file.

#include "support/temporary_directory.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace {

using testing::Each;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::Not;

std::string const k_sanitizer_flags =
    std::string(SANITIZER).empty() ? "" : " -fsanitize=" SANITIZER " -fno-omit-frame-pointer";
std::string const k_flags = "-Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror" + k_sanitizer_flags;

/// The library installed into a prefix that was moved afterwards.
class Client_package : public testing::Test {
 protected:
    static void SetUpTestSuite() {
        directory = new test_support::Temporary_directory;
        auto const first = directory->file("first");
        for (std::string const component : {"client", "client-development"}) {
            run(CMAKE " --install " BUILD_DIRECTORY " --prefix " + first + " --component " + component);
        }
        std::filesystem::rename(first, prefix());
        std::ofstream(directory->file("program.cpp")) << program();
    }
    static void TearDownTestSuite() { delete directory; }

    static std::string prefix() { return directory->file("moved"); }
    static std::string library() { return prefix() + "/" LIBRARY_DIRECTORY; }

    /// Runs a command in the directory, which must succeed; returns the lines that it writes.
    static std::vector<std::string> run(std::string const& command) {
        auto const inside = "cd " + directory->path().string() + " && { " + command + "; } >output 2>errors </dev/null";
        EXPECT_EQ(std::system(inside.c_str()), 0) << command << '\n'
                                                  << directory->read("output") << directory->read("errors");
        std::vector<std::string> lines;
        std::istringstream output(directory->read("output"));
        for (std::string line; std::getline(output, line);) {
            lines.push_back(line);
        }
        return lines;
    }

    /// The program that the installed header shows.
    static std::string program() {
        constexpr std::string_view margin = "//     ";
        std::ifstream header(prefix() + "/include/component_client/client.h");
        std::string result;
        for (std::string line; std::getline(header, line) && line.rfind("class", 0) != 0;) {
            if (line.rfind(margin, 0) == 0) {
                result += line.substr(margin.size()) + '\n';
            }
        }
        return result;
    }

    static void check_as_client(std::string const& built) {
        run("LD_LIBRARY_PATH=" + library() + " " STATECTL " check-client --patience 10000 --quiet 200 -- " + built);
    }

    static test_support::Temporary_directory* directory;
};

test_support::Temporary_directory* Client_package::directory = nullptr;

TEST_F(Client_package, Shows_a_program_of_ten_lines) {
    auto const text = program();
    EXPECT_EQ(text.substr(0, text.find('\n')), "#include \"component_client/client.h\"");
    EXPECT_LE(std::count(text.begin(), text.end(), '\n'), 10);
}

TEST_F(Client_package, Is_found_by_CMake_and_makes_that_program_a_good_client) {
    std::ofstream(directory->file("CMakeLists.txt"))
        << "cmake_minimum_required(VERSION 3.16)\nproject(application LANGUAGES CXX)\n"
           "find_package(ap_statemanager_client 0.1 REQUIRED)\n"
           "add_executable(application program.cpp)\n"
           "target_link_libraries(application PRIVATE ap_statemanager::client)\n";
    run(CMAKE " -S . -B build -DCMAKE_PREFIX_PATH=" + prefix() +
        " -DCMAKE_CXX_COMPILER=" COMPILER " -DCMAKE_CXX_FLAGS='" + k_flags + "'");
    run(CMAKE " --build build");
    check_as_client("build/application");
}

TEST_F(Client_package, Is_found_by_pkg_config_and_makes_that_program_a_good_client) {
    run("PKG_CONFIG_PATH=" + library() + "/pkgconfig sh -c '" COMPILER " -std=c++17 " + k_flags +
        " program.cpp -o application $(pkg-config --cflags --libs ap_statemanager_client)'");
    check_as_client("./application");
}

TEST_F(Client_package, Brings_no_log_and_no_other_library_into_an_application) {
    auto const needed =
        run("readelf -d " + library() + "/libap_statemanager_client.so | sed -n 's/.*(NEEDED).*\\[\\(.*\\)\\]/\\1/p'");
    EXPECT_THAT(needed, Not(IsEmpty()));
    EXPECT_THAT(needed, Each(MatchesRegex("lib(stdc\\+\\+|gcc_s|c|m|pthread|[alt]san|ubsan)\\.so.*|ld-linux.*")));
}

TEST_F(Client_package, Has_no_names_but_its_own) {
    auto const names = run("nm -DC --defined-only " + library() + "/libap_statemanager_client.so | cut -d ' ' -f 3-");
    EXPECT_THAT(names, Not(IsEmpty()));
    EXPECT_THAT(names, Each(MatchesRegex("component_client::(Client|Answer)::.*")));
}

}  // namespace
