// The page of the states is made of their tables:
//   states_page DOCS          says what of DOCS/states.md and DOCS/images/states.svg differs, and ends with status 1
//   then states_page --write DOCS  writes the picture, and the tables between the page's two marks

#include "bench/rules/rules.h"
#include "diagram.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

namespace {

constexpr char const* k_begin = "<!-- tables: bench/rules -->\n";
constexpr char const* k_end = "<!-- end of tables -->\n";

std::string tables() {
    std::ostringstream out;
    for (auto const& row : bench::rules::rows()) {
        if (row.number == 1) {
            out << "\n### " << bench::rules::name(row.from)
                << "\n\n| | Condition | Next | Logged |\n|---|---|---|---|\n";
        }
        std::string const message = *row.message == '\0' ? "" : '"' + std::string(row.message) + '"';
        out << "| " << row.number << " | " << row.condition << " | " << row.result << " | " << message << " |\n";
    }
    out << '\n';
    return out.str();
}

std::string read(std::string const& path) {
    std::ifstream file(path);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

/// The page with our tables in the place of its own; empty when it has no place for them.
std::string with_tables(std::string page) {
    auto const begin = page.find(k_begin);
    auto const end = page.find(k_end);
    if (begin == std::string::npos || end == std::string::npos) {
        return {};
    }
    auto const from = begin + std::string(k_begin).size();
    return page.replace(from, end - from, tables());
}

bool is_right(std::string const& path, std::string const& wanted, bool writes) {
    if (!wanted.empty() && read(path) == wanted) {
        return true;
    }
    if (writes && !wanted.empty()) {
        return static_cast<bool>(std::ofstream(path) << wanted);
    }
    std::fprintf(stderr, "%s is not what bench/rules/rules.cpp says: states_page --write docs\n", path.c_str());
    return false;
}

}  // namespace

int main(int argc, char** argv) {
    bool const writes = argc == 3 && std::string(argv[1]) == "--write";
    if (argc != 2 && !writes) {
        std::fprintf(stderr, "Usage: states_page [--write] DOCS\n");
        return 2;
    }
    std::string const docs = argv[argc - 1];
    bool const has_page = is_right(docs + "/states.md", with_tables(read(docs + "/states.md")), writes);
    bool const has_picture = is_right(docs + "/images/states.svg", diagram(), writes);
    return has_page && has_picture ? EXIT_SUCCESS : EXIT_FAILURE;
}
