#include "tools/page/words.h"
#include "tools/trace/cause.h"
#include "tools/trace/reports.h"
#include "tools/trace/summary.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace statectl::trace {

namespace {

constexpr std::size_t k_most_remarks = 10;  // of one kind, in one life
constexpr std::size_t k_most_offenders = 5;

/// Lines of text, with colours where they are wanted. What a trace says may be anybody's: a terminal obeys none of it.
class Page {
 public:
    explicit Page(bool is_coloured) : is_coloured_(is_coloured) {}

    void line(std::string const& text) { text_ += shown(text) + '\n'; }
    void coloured_line(std::string const& coloured, char const* colour, std::string const& text = "",
                       std::string const& before = "") {
        auto const words = shown(coloured);
        text_ += before + (is_coloured_ ? std::string("\033[") + colour + 'm' + words + "\033[0m" : words) +
                 shown(text) + '\n';
    }
    std::string take() { return std::move(text_); }

 private:
    bool is_coloured_;
    std::string text_;
};

constexpr char const* k_bold = "1";
constexpr char const* k_red = "1;31";

// Left, padded to a width in characters of one byte.
std::string left(std::string text, std::size_t width) {
    text.resize(std::max(text.size(), width), ' ');
    return text;
}

std::string right(std::string const& text, std::size_t width) {
    return std::string(width > text.size() ? width - text.size() : 0, ' ') + text;
}

// Seconds since the life's beginning.
std::string offset(double time, Life const& life) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "+%.3f", time - life.begin);
    return right(text.data(), 12);
}

std::string count(std::size_t number, char const* word) {
    return std::to_string(number) + ' ' + word + (number == 1 ? "" : "s");
}

void remarks(char const* title, std::vector<Remark> const& all, Life const& life, Page& page) {
    if (all.empty()) {
        return;
    }
    page.line(std::string("  ") + title);
    for (std::size_t i = 0; i < std::min(all.size(), k_most_remarks); ++i) {
        page.line("  " + offset(all[i].time, life) + "  " + all[i].text);
    }
    if (all.size() > k_most_remarks) {
        page.line("                and " + std::to_string(all.size() - k_most_remarks) + " more");
    }
}

void stays(Life const& life, Page& page) {
    for (auto const& stay : life.stays) {
        page.line("  " + offset(stay.begin, life) + "  " + left(stay.state, 14) +
                  right(duration_text(stay.end.value_or(life.end) - stay.begin), 12) + "  " + stay.cause);
    }
}

void holds(Life const& life, Page& page) {
    std::vector<Remark> all;
    for (auto const& hold : life.holds) {
        all.push_back({hold.begin,
                       hold.who + " held " + hold.what + (hold.bits.empty() ? "" : " (" + hold.bits + ')') +
                           (hold.end ? " for " + duration_text(*hold.end - hold.begin) : ", and did not release it")});
    }
    remarks("held", all, life, page);
}

void sequences(Life const& life, Page& page) {
    std::vector<Remark> all;
    for (auto const& sequence : life.sequences) {
        all.push_back({sequence.begin, sentence_of(sequence, life)});
    }
    remarks("clients asked", all, life, page);
}

void tell(Life const& life, Page& page) {
    stays(life, page);
    sequences(life, page);
    holds(life, page);
    remarks("commands that no state acted on", life.dropped, life, page);
    remarks("restarts asked for", life.requests, life, page);
    remarks("warnings and errors", life.troubles, life, page);
    auto const when = "  " + offset(life.end, life) + "  ";
    if (life.is_orderly) {
        page.line(when + life.ending);
    } else {
        page.coloured_line(life.ending, k_red, "", when);
    }
}

void tell(Life const& life, std::size_t number, Page& page) {
    auto const who = (life.process ? ", process " + std::to_string(*life.process) : "") +
                     (life.ecu.empty() ? "" : ", ECU " + life.ecu);
    page.line("");
    page.coloured_line("life " + std::to_string(number), k_bold,
                       "  " + begin_text(life) + ", " + duration_text(life.end - life.begin) + who +
                           (life.has_start ? "" : ", begun before the trace"));
    tell(life, page);
}

void offenders(Summary const& summary, Page& page) {
    if (summary.offenders.empty()) {
        return;
    }
    page.line("");
    page.coloured_line("what cost time", k_bold);
    for (std::size_t i = 0; i < std::min(summary.offenders.size(), k_most_offenders); ++i) {
        page.line("  " + right(duration_text(summary.offenders[i].seconds), 12) + "  " + summary.offenders[i].text);
    }
}

}  // namespace

std::string text_of(Life const& life) {
    Page page(false);
    tell(life, page);
    return page.take();
}

std::string text_report(Story const& story, bool is_coloured) {
    Page page(is_coloured);
    auto const without_farewell = static_cast<std::size_t>(
        std::count_if(story.lives.begin(), story.lives.end(), [](Life const& life) { return !life.is_orderly; }));
    page.line((story.lives.size() == 1 ? std::string("1 life") : std::to_string(story.lives.size()) + " lives") +
              " of the state manager in " + count(story.messages, "message") +
              (without_farewell == 0 ? "" : ", " + std::to_string(without_farewell) + " without farewell"));
    if (story.skipped_bytes != 0) {
        page.line(count(story.skipped_bytes, "byte") + " skipped" + (story.is_cut ? "; the last message is cut" : ""));
    }
    for (std::size_t i = 0; i < story.lives.size(); ++i) {
        tell(story.lives[i], i + 1, page);
    }
    offenders(summary_of(story), page);
    return page.take();
}

}  // namespace statectl::trace
