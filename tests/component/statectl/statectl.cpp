#include "statectl.h"

#include "support/temporary_directory.h"

#include <cstdlib>

#include <sys/wait.h>

namespace statectl {

namespace {

std::string quoted(std::string const& word) {
    std::string result = "'";
    for (char const character : word) {
        result += character == '\'' ? std::string("'\\''") : std::string(1, character);
    }
    return result + "'";
}

// Under nohup, or in the background of a script, signals are ignored that these programs are to be ended by.
Result run(std::string const& command) {
    test_support::Temporary_directory const directory;
    auto const redirected = "env --default-signal=HUP,INT,QUIT,TERM " + command + " >" + directory.file("output") +
                            " 2>" + directory.file("errors") + " </dev/null";
    int const status = std::system(redirected.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status), directory.read("output"),
            directory.read("errors")};
}

}  // namespace

Result run_statectl(std::vector<std::string> const& words) {
    std::string command = quoted(STATECTL);
    for (auto const& word : words) {
        command += ' ' + quoted(word);
    }
    return run(command);
}

Result run_shell(std::string const& script) {
    return run("bash -c " + quoted(script));
}

}  // namespace statectl
