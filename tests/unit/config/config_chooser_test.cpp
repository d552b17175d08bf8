#include "statemanager/config/config_chooser.h"

#include "support/log_capture.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

#include <gmock/gmock.h>
#include <unistd.h>

namespace ximo::ap::statemanager::config {
namespace {

using ara::log::LogLevel;
using test_support::Log_capture;
using test_support::logged;
using testing::ElementsAre;

/// A machine of that name, whose C library copies what fits and reports a name that does not.
Config_chooser::Host_name_reader machine(std::string const& name) {
    return [name](char* buffer, std::size_t size) {
        std::memcpy(buffer, name.c_str(), std::min(size, name.size() + 1));
        if (name.size() < size) {
            return 0;
        }
        errno = ENAMETOOLONG;
        return -1;
    };
}

/// The same with a C library that cuts silently, without a terminator.
Config_chooser::Host_name_reader silently_cutting_machine(std::string const& name) {
    return [name](char* buffer, std::size_t size) {
        std::memcpy(buffer, name.c_str(), std::min(size, name.size() + 1));
        return 0;
    };
}

Config_chooser::Host_name_reader failing_machine(int error) {
    return [error](char* /*buffer*/, std::size_t /*size*/) {
        errno = error;
        return -1;
    };
}

std::string path_on(std::string const& name) {
    return Config_chooser(machine(name)).get_config_path();
}

TEST(Config_chooser, The_names_of_folder_and_files_are_fixed) {
    EXPECT_EQ(Config_chooser::s_default_config_folder, "/etc/adaptive/");
    EXPECT_EQ(Config_chooser::s_default_sm_config, "ap_statemanager.json");
    EXPECT_EQ(Config_chooser::s_sm_config_hk, "ap_statemanager_hk.json");
    EXPECT_EQ(Config_chooser::s_sm_config_jo, "ap_statemanager_jo.json");
}

TEST(Config_chooser, Each_known_machine_reads_its_own_file) {
    EXPECT_EQ(path_on(HOST_HOUSEKEEPING), "/etc/adaptive/ap_statemanager_hk.json");
    EXPECT_EQ(path_on(HOST_JAVA), "/etc/adaptive/ap_statemanager_jo.json");
    EXPECT_EQ(path_on(HOST_APPLICATIONS), "/etc/adaptive/ap_statemanager.json");
    EXPECT_EQ(path_on(HOST_EMULATED), "/etc/adaptive/ap_statemanager.json");
}

TEST(Config_chooser, A_machine_of_any_other_name_reads_the_default_file) {
    EXPECT_EQ(path_on("somewhere"), "/etc/adaptive/ap_statemanager.json");
    EXPECT_EQ(path_on(""), "/etc/adaptive/ap_statemanager.json");
}

TEST(Config_chooser, Host_names_are_compared_whole_and_by_case) {
    std::string upper = HOST_HOUSEKEEPING;
    upper[0] = 'H';

    EXPECT_EQ(path_on(upper), "/etc/adaptive/ap_statemanager.json");
    EXPECT_EQ(path_on(std::string(HOST_HOUSEKEEPING) + "x"), "/etc/adaptive/ap_statemanager.json");
    EXPECT_EQ(path_on(std::string(HOST_HOUSEKEEPING).substr(0, 5)), "/etc/adaptive/ap_statemanager.json");
}

TEST(Config_chooser, The_host_name_is_logged) {
    Log_capture log;

    Config_chooser const sut(machine(HOST_JAVA));

    EXPECT_TRUE(sut.good());
    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kInfo, "Configuration for hostname: ", HOST_JAVA)));
}

TEST(Config_chooser, An_empty_host_name_is_good_and_logged) {
    Log_capture log;

    Config_chooser const sut(machine(""));

    EXPECT_TRUE(sut.good());
    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kInfo, "Configuration for hostname: ", "")));
}

TEST(Config_chooser, The_host_name_is_read_once_into_twenty_bytes) {
    std::vector<std::size_t> sizes;

    Config_chooser const sut([&](char* /*buffer*/, std::size_t size) {
        sizes.push_back(size);
        return 0;
    });

    EXPECT_THAT(sizes, ElementsAre(20));
}

TEST(Config_chooser, A_host_name_of_nineteen_characters_is_taken_whole) {
    Log_capture log;
    std::string const name = "nineteen-characters";

    Config_chooser const sut(machine(name));

    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kInfo, "Configuration for hostname: ", name)));
}

TEST(Config_chooser, A_longer_host_name_is_cut_to_nineteen_characters) {
    for (auto const& reader : {machine("nineteen-characters-and-more"), machine("nineteen-characters."),
                               silently_cutting_machine("nineteen-characters-and-more")}) {
        Log_capture log;

        Config_chooser const sut(reader);

        EXPECT_TRUE(sut.good());
        EXPECT_THAT(log.messages(),
                    ElementsAre(logged(LogLevel::kInfo, "Configuration for hostname: ", "nineteen-characters")));
    }
}

TEST(Config_chooser, A_host_name_that_cannot_be_read_is_fatal_and_leaves_the_default_path) {
    Log_capture log;

    Config_chooser const sut(failing_machine(EFAULT));

    EXPECT_FALSE(sut.good());
    EXPECT_EQ(sut.get_config_path(), "/etc/adaptive/ap_statemanager.json");
    EXPECT_THAT(log.messages(),
                ElementsAre(logged(LogLevel::kFatal, "Unable to get hostname: ", std::strerror(EFAULT))));
}

TEST(Config_chooser, Without_a_reader_the_name_of_this_machine_is_taken) {
    Log_capture log;
    std::array<char, 256> name{};
    ASSERT_EQ(::gethostname(name.data(), name.size()), 0);

    Config_chooser const sut;

    EXPECT_TRUE(sut.good());
    EXPECT_THAT(
        log.messages(),
        ElementsAre(logged(LogLevel::kInfo, "Configuration for hostname: ", std::string(name.data()).substr(0, 19))));
}

}  // namespace
}  // namespace ximo::ap::statemanager::config
