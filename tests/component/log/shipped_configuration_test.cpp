// A log daemon with the configuration that is shipped, as the system's tables of sockets show it.

#include "base/temporary_directory.h"
#include "bench/process/child_process.h"
#include "support/eventually.h"

#include <csignal>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace {

// "protocol address" of each socket of one port that takes what comes, the address as the kernel writes it. Connections
// that have ended stay in the tables for a while.
std::vector<std::string> sockets_of(std::string const& port) {
    std::vector<std::string> sockets;
    for (std::string const protocol : {"tcp", "tcp6", "udp", "udp6"}) {
        std::ifstream table("/proc/net/" + protocol);
        std::string line;
        std::getline(table, line);
        while (std::getline(table, line)) {
            std::istringstream columns(line);
            std::string number;
            std::string local;
            std::string remote;
            std::string state;
            columns >> number >> local >> remote >> state;
            bool const takes = state == "0A" || protocol.substr(0, 3) == "udp";
            if (takes && local.substr(local.find(':') + 1) == port) {
                sockets.push_back(protocol + " " + local.substr(0, local.find(':')));
            }
        }
    }
    return sockets;
}

TEST(Shipped_log_daemon, Listens_on_the_loopback_and_nowhere_else) {
    constexpr char const* k_port = "0DA2";                                  // 3490
    constexpr char const* k_loopback = "0000000000000000FFFF00000100007F";  // ::ffff:127.0.0.1
    base::Temporary_directory const pipes;
    bench::Child_process daemon({"dlt-daemon", "-c", PROJECT "/deploy/dlt/dlt.conf", "-t", pipes.path().string()}, {});
    EXPECT_TRUE(test_support::eventually(
        [&] { return !sockets_of(k_port).empty() && std::filesystem::is_fifo(pipes.file("dlt")); }));
    EXPECT_THAT(sockets_of(k_port), testing::ElementsAre(std::string("tcp6 ") + k_loopback));
    daemon.signal(SIGKILL);  // it would take two seconds
}

}  // namespace
