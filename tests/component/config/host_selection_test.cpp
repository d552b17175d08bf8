#include "support/temporary_directory.h"
#include "unit/config/complete_configuration.h"

#include <cstdio>
#include <string>

#include <gmock/gmock.h>
#include <sys/wait.h>

namespace {

using test_support::Temporary_directory;
using testing::HasSubstr;

constexpr int k_not_allowed = 77;

/// What the daemon's choice and parser make of a machine of a name with a folder at /etc/adaptive.
struct Outcome {
    int status;
    std::string output;
};

Outcome on_host(std::string const& name, std::string const& folder) {
    auto const command = std::string(CONFIG_ON_HOST) + " '" + name + "' '" + folder + "' 2>&1";
    auto* const pipe = ::popen(command.c_str(), "r");  // NOLINT(cert-env33-c): a command of the test's own
    std::string output;
    for (int character = std::fgetc(pipe); character != EOF; character = std::fgetc(pipe)) {
        output += static_cast<char>(character);
    }
    return {WEXITSTATUS(::pclose(pipe)), output};
}

/// A test that ends early, with the reason printed, where the machine forbids namespaces.
class Host_selection : public testing::Test {
 protected:
    void SetUp() override {
        auto const probe = on_host("probe", DEPLOYED_EXAMPLES);
        if (probe.status == k_not_allowed) {
            GTEST_SKIP() << probe.output;
        }
    }
};

std::string chosen(std::string const& file, std::string const& supervision) {
    return "good true\npath /etc/adaptive/" + file + "\nparsed true\nsupervision " + supervision + "\n";
}

TEST_F(Host_selection, Each_machine_reads_the_example_that_is_shipped_for_it) {
    EXPECT_EQ(on_host(HOST_HOUSEKEEPING, DEPLOYED_EXAMPLES).output,
              chosen("ap_statemanager_hk.json", "ap_statemanager_hk"));
    EXPECT_EQ(on_host(HOST_JAVA, DEPLOYED_EXAMPLES).output, chosen("ap_statemanager_jo.json", "ap_statemanager_jo"));
    EXPECT_EQ(on_host(HOST_APPLICATIONS, DEPLOYED_EXAMPLES).output, chosen("ap_statemanager.json", "ap_statemanager"));
    EXPECT_EQ(on_host(HOST_EMULATED, DEPLOYED_EXAMPLES).output, chosen("ap_statemanager.json", "ap_statemanager"));
}

TEST_F(Host_selection, Any_other_machine_reads_the_default_file) {
    for (std::string const name : {"unknown", "(none)", "nineteen-characters", "nineteen-characters-and-more",
                                   "the-longest-name-that-the-kernel-takes-has-sixty-four-characters"}) {
        EXPECT_EQ(on_host(name, DEPLOYED_EXAMPLES).output, chosen("ap_statemanager.json", "ap_statemanager")) << name;
    }
}

TEST_F(Host_selection, A_machine_without_a_name_reads_the_default_file) {
    EXPECT_EQ(on_host("", DEPLOYED_EXAMPLES).output, chosen("ap_statemanager.json", "ap_statemanager"));
}

TEST_F(Host_selection, A_machine_whose_own_file_is_missing_does_not_fall_back_to_the_default_file) {
    Temporary_directory const folder;
    folder.write("ap_statemanager.json", test_support::file_text(test_support::complete_configuration()));

    EXPECT_THAT(on_host(HOST_JAVA, folder.path()).output, HasSubstr("ap_statemanager_jo.json\nparsed false\n"));
    EXPECT_THAT(on_host("unknown", folder.path()).output,
                HasSubstr("ap_statemanager.json\nparsed true\nsupervision supervision/1\n"));
}

TEST_F(Host_selection, A_folder_without_files_gives_no_configuration) {
    Temporary_directory const folder;

    EXPECT_EQ(on_host("unknown", folder.path()).output,
              "good true\npath /etc/adaptive/ap_statemanager.json\nparsed false\nsupervision \n");
}

}  // namespace
