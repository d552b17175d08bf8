#ifndef TESTS_CHECK_CLIENT_STATECTL_H
#define TESTS_CHECK_CLIENT_STATECTL_H

#include <string>
#include <utility>
#include <vector>

namespace statectl {

struct Result {
    int status;  ///< 128 + n for signal n
    std::string output;
    std::string errors;
};

/// Runs ap_statectl with these words to its end.
Result run_statectl(std::vector<std::string> const& words);

/// Runs a script in bash.
Result run_shell(std::string const& script);

}  // namespace statectl

#endif
