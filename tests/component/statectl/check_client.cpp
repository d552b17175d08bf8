#include "check_client.h"

#include <sstream>

namespace statectl {

std::vector<std::string> check(std::vector<std::string> const& program, char const* patience_ms) {
    std::vector<std::string> words{"check-client", "--json", "--patience", patience_ms, "--quiet", "250", "--"};
    words.insert(words.end(), program.begin(), program.end());
    return words;
}

std::vector<std::string> rules_with(nlohmann::json const& report, std::string const& result) {
    std::vector<std::string> names;
    for (auto const& rule : report.at("rules")) {
        if (rule.at("result") == result) {
            names.push_back(rule.at("rule"));
        }
    }
    return names;
}

std::vector<std::string> all_rules() {
    std::vector<std::string> names;
    std::istringstream lines(run_statectl({"check-client", "--list"}).output);
    for (std::string line; std::getline(lines, line);) {
        names.push_back(line.substr(0, line.find(' ')));
    }
    return names;
}

}  // namespace statectl
