#include "component_client/socket_path.h"

#include <cstdlib>

#include <gmock/gmock.h>

namespace component_client {
namespace {

class Socket_path : public testing::Test {
 protected:
    Socket_path() { ::unsetenv(k_socket_variable); }
    ~Socket_path() override { ::unsetenv(k_socket_variable); }
};

TEST_F(Socket_path, Is_that_of_the_machine_unless_told_otherwise) {
    EXPECT_EQ(socket_path(""), "/var/run/adaptive/ara_SM/ara_SM.socket");
}

TEST_F(Socket_path, Comes_from_the_environment) {
    ::setenv("AP_STATEMANAGER_SOCKET", "/tmp/private", 1);
    EXPECT_EQ(socket_path(""), "/tmp/private");
}

TEST_F(Socket_path, Does_not_come_from_an_empty_variable) {
    ::setenv(k_socket_variable, "", 1);
    EXPECT_EQ(socket_path(""), "/var/run/adaptive/ara_SM/ara_SM.socket");
}

TEST_F(Socket_path, Is_first_of_all_the_chosen_one) {
    ::setenv(k_socket_variable, "/tmp/private", 1);
    EXPECT_EQ(socket_path("/tmp/chosen"), "/tmp/chosen");
}

}  // namespace
}  // namespace component_client
