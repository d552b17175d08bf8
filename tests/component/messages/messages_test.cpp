// docs/messages.md has every message that the sources log, at its level, and none that they don't. A message is read
// from its statement: texts as they stand, an ellipsis for each value. One whose text comes from elsewhere begins with
// a value; its texts are told apart by being three words or more.

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>
#include <regex>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

namespace messages {
namespace {

namespace fs = std::filesystem;

constexpr char const* k_value = "…";

struct Message {
    std::string text;
    std::string level;
};

bool operator<(Message const& left, Message const& right) {
    return std::tie(left.text, left.level) < std::tie(right.text, right.level);
}

struct Folder {
    std::set<Message> logged;
    std::set<std::string> texts;      ///< all literals
    bool has_texts_of_others{false};  ///< some message begins with a value
};

std::string read(fs::path const& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string trimmed(std::string const& text) {
    auto const first = text.find_first_not_of(' ');
    return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

/// Goes through a source piece by piece.
class Source {
 public:
    explicit Source(std::string text) : text_(std::move(text)) {}

    bool is_at_end() const { return at_ >= text_.size(); }
    bool is_at(char const* word) const { return text_.compare(at_, std::char_traits<char>::length(word), word) == 0; }
    char take() { return text_[at_++]; }
    void skip(std::size_t count) { at_ = std::min(at_ + count, text_.size()); }

    bool skip_comment() {
        if (!is_at("//")) {
            return false;
        }
        at_ = std::min(text_.find('\n', at_), text_.size());
        return true;
    }

    bool skip_character() {
        bool const is_character =
            is_at("'") && at_ + 2 < text_.size() && (text_[at_ + 1] == '\\' || text_[at_ + 2] == '\'');
        if (is_character) {
            at_ = text_.find('\'', at_ + 2) + 1;
        }
        return is_character;
    }

    /// A literal at this place, without its quotes.
    std::optional<std::string> take_literal() {
        if (is_at("R\"(")) {
            auto const end = text_.find(")\"", at_);
            at_ = end + 2;
            return "";
        }
        if (!is_at("\"")) {
            return std::nullopt;
        }
        std::string literal;
        for (++at_; text_.at(at_) != '"'; ++at_) {
            if (text_[at_] == '\\') {
                ++at_;
            }
            literal += text_[at_];
        }
        ++at_;
        return literal;
    }

 private:
    std::string text_;
    std::size_t at_{0};
};

/// One operand of a message: literals, or a value.
class Piece {
 public:
    void add_text(std::string const& text) { text_ += text; }
    void add(char character) { is_value_ = is_value_ || std::isspace(static_cast<unsigned char>(character)) == 0; }
    std::string shown() const { return is_value_ ? k_value : text_; }

 private:
    std::string text_;
    bool is_value_{false};
};

/// From behind the call that begins a message to the statement's end; empty for one that goes on elsewhere.
std::string message_at(Source& source, std::set<std::string>& texts) {
    std::string shown;
    Piece piece;
    bool is_first = true;
    int depth = 0;
    while (!source.is_at_end() && !(depth == 0 && source.is_at(";"))) {
        if (auto const literal = source.take_literal()) {
            texts.insert(*literal);
            depth == 0 ? piece.add_text(*literal) : piece.add('x');
        } else if (depth == 0 && source.is_at("<<")) {
            source.skip(2);
            shown += is_first ? "" : piece.shown();
            is_first = false;
            piece = {};
        } else if (!source.skip_comment()) {
            char const next = source.take();
            depth += next == '(' || next == '[' || next == '{' ? 1 : next == ')' || next == ']' || next == '}' ? -1 : 0;
            piece.add(next);
        }
    }
    return is_first ? "" : shown + piece.shown();
}

void read_source(fs::path const& path, Folder& folder) {
    static std::vector<std::pair<char const*, char const*>> const& levels =
        *new std::vector<std::pair<char const*, char const*>>{{"LogFatal()", "fatal"}, {"LogError()", "error"},
                                                              {"LogWarn()", "warn"},   {"LogInfo()", "info"},
                                                              {"LogDebug()", "debug"}, {"LogVerbose()", "verbose"}};
    Source source(read(path));
    while (!source.is_at_end()) {
        auto const level = std::find_if(levels.begin(), levels.end(),
                                        [&](auto const& candidate) { return source.is_at(candidate.first); });
        if (level != levels.end()) {
            source.skip(std::char_traits<char>::length(level->first));
            auto const text = message_at(source, folder.texts);
            folder.has_texts_of_others = folder.has_texts_of_others || text.rfind(k_value, 0) == 0;
            if (!text.empty() && text != k_value) {
                folder.logged.insert({trimmed(text), level->second});
            }
        } else if (auto const literal = source.take_literal()) {
            folder.texts.insert(*literal);
        } else if (!source.skip_comment() && !source.skip_character()) {
            source.take();
        }
    }
}

std::map<std::string, Folder> read_sources() {
    std::map<std::string, Folder> folders;
    for (auto const* const root : {"src", "platform"}) {
        for (auto const& entry : fs::recursive_directory_iterator(fs::path(PROJECT) / root)) {
            auto const extension = entry.path().extension();
            if (extension == ".cpp" || extension == ".h") {
                read_source(entry.path(), folders[fs::relative(entry.path().parent_path(), PROJECT)]);
            }
        }
    }
    return folders;
}

/// The rows of the page's sections, each of which is named by a folder.
std::map<std::string, std::set<Message>> read_page(std::string const& page) {
    static std::regex const heading("### `([^`]+)`");
    static std::regex const row(R"(\| `([^`]+)` \| ([a-z]+) \|.*)");
    std::map<std::string, std::set<Message>> sections;
    std::istringstream lines(page);
    std::string folder;
    std::smatch match;
    for (std::string line; std::getline(lines, line);) {
        if (std::regex_match(line, match, heading)) {
            folder = match[1];
        } else if (std::regex_match(line, match, row)) {
            sections[folder].insert({match[1], match[2]});
        }
    }
    return sections;
}

/// Whether a text is a row's, with anything in the place of its values.
bool fits(std::string const& row, std::string const& text) {
    std::size_t at = 0;
    std::size_t from = 0;
    for (auto end = row.find(k_value);; end = row.find(k_value, from)) {
        auto const piece = trimmed(row.substr(from, end == std::string::npos ? end : end - from));
        auto const found = text.find(piece, at);
        if (found == std::string::npos) {
            return false;
        }
        at = found + piece.size();
        if (end == std::string::npos) {
            return true;
        }
        from = end + std::string(k_value).size();
    }
}

bool is_sentence(std::string const& text) {
    return std::count(text.begin(), text.end(), ' ') >= 2 &&
           std::isupper(static_cast<unsigned char>(text.front())) != 0;
}

class Page_of_messages : public testing::Test {
 protected:
    std::map<std::string, Folder> const sources{read_sources()};
    std::string const text{read(PROJECT "/docs/messages.md")};
    std::string const states{read(PROJECT "/docs/states.md")};
    std::map<std::string, std::set<Message>> const page{read_page(text)};

    bool has(std::string const& folder, Message const& message) const {
        auto const section = page.find(folder);
        return section != page.end() && section->second.count(message) != 0;
    }

    bool is_told(std::string const& folder, std::string const& literal) const {
        auto const section = page.find(folder);
        return text.find(trimmed(literal)) != std::string::npos || states.find(literal) != std::string::npos ||
               (section != page.end() &&
                std::any_of(section->second.begin(), section->second.end(), [&](auto const& row) {
                    return row.text.rfind(k_value, 0) != 0 && fits(row.text, literal);
                }));
    }

    /// Whether a row's text is a literal, or one with values in it that stand in others.
    static bool is_made_of(std::string const& row, std::set<std::string> const& literals) {
        auto const head = trimmed(row.substr(0, row.find(k_value)));
        return std::any_of(literals.begin(), literals.end(), [&](auto const& literal) {
            return fits(row, literal) || (!head.empty() && trimmed(literal) == head);
        });
    }
};

TEST_F(Page_of_messages, Has_each_message_of_the_sources_with_its_level) {
    std::size_t found = 0;
    for (auto const& [name, folder] : sources) {
        for (auto const& message : folder.logged) {
            bool const is_in_page = has(name, message) || message.text.rfind(k_value, 0) == 0;
            EXPECT_TRUE(is_in_page) << "docs/messages.md, ### `" << name << "`: | `" << message.text << "` | "
                                    << message.level << " |";
            found += is_in_page ? 1 : 0;
        }
    }
    EXPECT_GT(found, 100U);
}

TEST_F(Page_of_messages, Has_the_texts_that_messages_get_from_elsewhere) {
    for (auto const& [name, folder] : sources) {
        for (auto const& literal : folder.texts) {
            if (folder.has_texts_of_others && is_sentence(literal)) {
                EXPECT_TRUE(is_told(name, literal))
                    << name << " has \"" << literal << "\", and docs/messages.md has not";
            }
        }
    }
}

TEST_F(Page_of_messages, Has_no_message_that_nothing_logs) {
    for (auto const& [name, section] : page) {
        ASSERT_EQ(sources.count(name), 1U) << name;
        auto const& folder = sources.at(name);
        for (auto const& row : section) {
            EXPECT_TRUE(folder.logged.count(row) != 0 || is_made_of(row.text, folder.texts))
                << name << ": " << row.text;
        }
    }
}

}  // namespace
}  // namespace messages
