// An application that is asked before the machine stands by and after it is back:
//   suspend_client NAME
// Ends with SIGTERM or SIGINT.

#include "component_client/client.h"

#include <csignal>
#include <iostream>
#include <string>

using component_client::Answer;
using component_client::Client;
using component_client::Options;
using component_client::Status;

namespace {

/// What the application has to save and to take up again. False when it could not.
bool go_to(std::string const& state) {
    std::cout << "going to " << state << std::endl;
    return true;
}

void handle(std::string const& state, Answer answer) {
    if (state != "kPrepSD" && state != "kOn") {
        answer.send(Status::invalid);  // a state that this application does not know
        return;
    }
    answer.send(go_to(state) ? Status::succeeded : Status::general_error);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "Usage: " << argv[0] << " NAME\n";
        return 2;
    }
    // Blocked before there are other threads, and taken here.
    sigset_t ends;
    sigemptyset(&ends);
    sigaddset(&ends, SIGTERM);
    sigaddset(&ends, SIGINT);
    pthread_sigmask(SIG_BLOCK, &ends, nullptr);

    Options options;
    options.on_trouble = [](std::string const& trouble) { std::cerr << trouble << std::endl; };
    Client const client(argv[1], handle, options);
    int signal = 0;
    sigwait(&ends, &signal);  // the application's own work
    return 0;
}
