// What an application gets when the interfaces are installed, by pkg-config.

#include "support/temporary_directory.h"

#include <cstdlib>
#include <filesystem>
#include <string>

#include <gmock/gmock.h>

namespace {

std::string const k_sanitizer_flags = std::string(SANITIZER).empty() ? "" : " -fsanitize=" SANITIZER;

/// Looks for the restart service, which is not there.
constexpr char const* k_caller = R"(
#include "services/found_instance.h"
#include "tarq/com/runtime/component_singleton.h"
#include "ximo/ap/statemanager/dsa_interface_proxy.h"

int main() {
    tarq::com::runtime::Component_singleton const communication(false, "");
    services::Found_instance<ximo::ap::statemanager::proxy::DSAInterfaceProxy> restart("DSA_Interface");
    return restart.await(std::chrono::milliseconds(1)) ? 1 : 42;
}
)";

int run(std::string const& command) {
    int const status = std::system(command.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(Interfaces_package, Is_found_by_pkg_config_where_it_was_moved_to_and_makes_a_caller) {
    test_support::Temporary_directory const directory;
    auto const first = directory.file("first");
    auto const moved = directory.file("moved");
    ASSERT_EQ(run(CMAKE " --install " BUILD_DIRECTORY " --component development --prefix " + first + " >/dev/null"), 0);
    std::filesystem::rename(first, moved);
    auto const caller = directory.write("caller.cpp", k_caller);
    auto const built = directory.file("caller");
    ASSERT_EQ(run("PKG_CONFIG_PATH=" + moved + "/" LIBRARY_DIRECTORY "/pkgconfig sh -c '" COMPILER " -std=c++17" +
                  k_sanitizer_flags + " " + caller + " -o " + built +
                  " $(pkg-config --cflags --libs ap_statemanager_interfaces)'"),
              0);
    EXPECT_EQ(run(built), 42);
}

}  // namespace
