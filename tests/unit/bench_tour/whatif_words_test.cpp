// The tour's lives as scripts of ap_whatif expect the words that the tour sees.

#include "bench/tour/tour.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace bench::tour {
namespace {

using Words = std::vector<std::string>;

/// The word of the state that the log says is entered.
std::string word_of_transition(std::string const& log) {
    static std::map<std::string, std::string> const words{
        {"Running", "running"},           {"NM Controlled", "runnmcontrolled"}, {"Post Run", "postrun"},
        {"Preparing", "preparing"},       {"PreparedSD", "prepared4sd"},        {"Resuming", "resuming"},
        {"Shutting down", "shuttingdown"}};
    auto const to = log.find("  to  ");
    return to == std::string::npos ? "" : words.at(log.substr(to + 6));
}

/// Of each life, in order. A step names a state's word, the transition to it, or both.
std::vector<Words> words_of_the_tour() {
    std::vector<Words> lives;
    for (auto const& step : steps()) {
        if (step.begins_life) {
            lives.emplace_back();
        }
        for (auto const& expectation : step.expectations) {
            auto const word = expectation.kind == vehicle::Kind::state_word ? expectation.text
                              : expectation.kind == vehicle::Kind::log      ? word_of_transition(expectation.text)
                                                                            : "";
            if (!word.empty() && (lives.back().empty() || lives.back().back() != word)) {
                lives.back().push_back(word);
            }
        }
    }
    return lives;
}

std::vector<Words> words_of_the_scripts() {
    std::vector<std::filesystem::path> files;
    for (auto const& entry : std::filesystem::directory_iterator(WHATIF_EXAMPLES)) {
        if (entry.path().filename().string().rfind("tour-", 0) == 0) {
            files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    std::vector<Words> lives;
    for (auto const& path : files) {
        std::ifstream file(path);
        lives.emplace_back();
        for (std::string line; std::getline(file, line);) {
            constexpr std::string_view k_begin = "expect words ";
            for (std::size_t at = k_begin.size(); line.rfind(k_begin, 0) == 0 && at < line.size();) {
                auto const end = std::min(line.find(", ", at), line.size());
                lives.back().push_back(line.substr(at, end - at));
                at = end + 2;
            }
        }
    }
    return lives;
}

TEST(Scripts_of_the_tour, Expect_its_words) {
    EXPECT_EQ(words_of_the_scripts(), words_of_the_tour());
}

}  // namespace
}  // namespace bench::tour
