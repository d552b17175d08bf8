// The page that tells which story of the vehicle is a script as well names all of them.

#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <string>

#include <gmock/gmock.h>

namespace simulation {
namespace {

std::string text_of_file(std::filesystem::path const& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::set<std::string> stories() {
    std::regex const test(R"(TEST(?:_F|_P)?\((\w+),\s*(\w+)\))");
    std::set<std::string> names;
    for (auto const& entry : std::filesystem::directory_iterator(STORIES)) {
        if (entry.path().extension() != ".cpp") {
            continue;
        }
        auto const text = text_of_file(entry.path());
        for (std::sregex_iterator found(text.begin(), text.end(), test), end; found != end; ++found) {
            names.insert((*found)[1].str() + "." + (*found)[2].str());
        }
    }
    return names;
}

TEST(The_page_of_stories, Names_each_story_with_scripts_that_exist_or_what_it_needs) {
    std::regex const row(R"(\| (\w+\.\w+) \| (.+) \|)");
    std::regex const script("`([^`]+)`");
    std::set<std::string> named;
    std::ifstream page(STORIES_PAGE);
    std::smatch cells;
    for (std::string line; std::getline(page, line);) {
        if (!std::regex_match(line, cells, row)) {
            continue;
        }
        EXPECT_TRUE(named.insert(cells[1]).second) << line;
        auto const told = cells[2].str();
        if (told.rfind("needs ", 0) == 0) {
            continue;
        }
        std::sregex_iterator found(told.begin(), told.end(), script);
        EXPECT_NE(found, std::sregex_iterator()) << line;
        for (; found != std::sregex_iterator(); ++found) {
            EXPECT_TRUE(std::filesystem::exists(WHATIF_EXAMPLES "/" + (*found)[1].str() + ".whatif")) << line;
        }
    }
    EXPECT_EQ(named, stories());
}

}  // namespace
}  // namespace simulation
