// A page without scripts and without anything from elsewhere: it can be mailed, and opens in any browser.

#include "tools/trace/html_style.h"
#include "tools/trace/reports.h"
#include "tools/trace/summary.h"
#include "tools/trace/timeline.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace statectl::trace {

namespace {

constexpr std::size_t k_most_offenders = 10;
constexpr std::size_t k_most_troubles = 50;

std::string element(char const* name, std::string const& content) {
    return std::string("<") + name + '>' + content + "</" + name + ">";
}

std::string row(char const* cell, std::vector<std::string> const& cells) {
    std::string text;
    for (auto const& one : cells) {
        text += element(cell, escaped(one));
    }
    return element("tr", text) + '\n';
}

/// A table of texts.
class Table {
 public:
    explicit Table(std::vector<std::string> const& heads) : text_("<table>\n" + row("th", heads)) {}
    void add(std::vector<std::string> const& cells) {
        text_ += row("td", cells);
        is_empty_ = false;
    }
    std::string under(char const* title) const {
        return is_empty_ ? "" : element("h2", title) + "\n<div>" + text_ + "</table></div>\n";
    }

 private:
    std::string text_;
    bool is_empty_{true};
};

std::string number(unsigned value) {
    return value == 0 ? "–" : std::to_string(value);
}

std::string counted(std::size_t count, char const* one, char const* many) {
    return std::to_string(count) + ' ' + (count == 1 ? one : many);
}

std::string states_table(Cycle const& cycle) {
    auto const& life = *cycle.life;
    std::string text = "<table>\n";
    for (auto i = cycle.first; i < cycle.last; ++i) {
        auto const& stay = life.stays[i];
        std::array<char, 32> offset{};
        std::snprintf(offset.data(), offset.size(), "+%.3f", stay.begin - cycle.begin);
        text +=
            row("td", {offset.data(), stay.state, duration_text(stay.end.value_or(life.end) - stay.begin), stay.cause});
    }
    return text + "</table>\n";
}

std::string remarks(Cycle const& cycle) {
    auto const& life = *cycle.life;
    std::string text;
    auto const is_inside = [&](double time) { return time >= cycle.begin && time <= cycle.end; };
    for (auto const& sequence : life.sequences) {
        if (is_inside(sequence.begin)) {
            text += element("li", escaped(sentence_of(sequence, life))) + '\n';
        }
    }
    for (auto const* const all : {&life.dropped, &life.requests}) {
        for (auto const& remark : *all) {
            if (is_inside(remark.time)) {
                text += element("li", escaped(remark.text)) + '\n';
            }
        }
    }
    std::size_t troubles = 0;
    for (auto const& remark : life.troubles) {
        if (is_inside(remark.time) && ++troubles <= k_most_troubles) {
            text += element("li", escaped(remark.text)) + '\n';
        }
    }
    return text.empty() ? "" : element("ul", '\n' + text) + '\n';
}

std::string cycle_section(Cycle const& cycle, std::size_t life_number) {
    auto const& life = *cycle.life;
    bool const is_last = cycle.last == life.stays.size();
    auto const ending = is_last ? life.ending : "suspended";
    auto const name =
        std::to_string(life_number) + (cycle.number > 1 || !is_last ? "." + std::to_string(cycle.number) : "");
    return "<section>\n<h3>" + name + " <span>" + escaped(begin_text(life)) +
           (cycle.number > 1 ? " +" + duration_text(cycle.begin - life.begin) : "") + ", " +
           duration_text(cycle.end - cycle.begin) + "</span> <b class=\"" +
           (is_last && !life.is_orderly ? "bad" : "good") + "\">" + escaped(ending) + "</b></h3>\n" + timeline(cycle) +
           "<details><summary>states and remarks</summary>\n" + states_table(cycle) + remarks(cycle) +
           "</details>\n</section>\n";
}

std::string cycles(Story const& story) {
    std::string text;
    for (std::size_t i = 0; i < story.lives.size(); ++i) {
        for (auto const& cycle : cycles_of(story.lives[i])) {
            text += cycle_section(cycle, i + 1);
        }
        if (story.lives[i].stays.empty()) {
            text += "<section><h3>" + std::to_string(i + 1) + " <span>" + escaped(begin_text(story.lives[i])) +
                    "</span> <b class=\"bad\">" + escaped(story.lives[i].ending) + "</b></h3></section>\n";
        }
    }
    return text;
}

std::string offenders(Summary const& summary) {
    Table table({"time", "who"});
    for (std::size_t i = 0; i < std::min(summary.offenders.size(), k_most_offenders); ++i) {
        table.add({duration_text(summary.offenders[i].seconds), summary.offenders[i].text});
    }
    return table.under("What cost time");
}

std::string groups(Summary const& summary) {
    Table table({"way", "group", "asked", "not in time", "mean", "longest"});
    for (auto const& [key, total] : summary.groups) {
        table.add({key.first, key.second, number(total.times), number(total.late),
                   duration_text(total.total / total.times), duration_text(total.longest)});
    }
    return table.under("Groups");
}

std::string clients(Summary const& summary) {
    Table table({"client", "asked", "succeeded", "not in time", "failed", "out of turn", "dropped", "waited for"});
    for (auto const& [name, account] : summary.clients) {
        table.add({name, number(account.asked), number(account.succeeded), number(account.late), number(account.failed),
                   number(account.out_of_turn), number(account.dropped),
                   account.waited > 0 ? duration_text(account.waited) : "–"});
    }
    return table.under("Clients");
}

std::string holds(Summary const& summary) {
    Table table({"application", "held", "times", "for", "of that in NM Controlled and Post Run"});
    for (auto const& [key, total] : summary.holds) {
        table.add({key.second, key.first, number(total.times), duration_text(total.total),
                   total.awake > 0 ? duration_text(total.awake) : "–"});
    }
    return table.under("Applications");
}

}  // namespace

std::string html_report(Story const& story, std::string const& title, Parts const& parts) {
    auto const summary = summary_of(story);
    return "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
           "<meta name=\"viewport\" content=\"width=device-width\">\n<title>" +
           escaped(title) + "</title>\n<style>" + k_style + "</style>\n</head>\n<body>\n<h1>" + escaped(title) +
           "</h1>\n<p>" + counted(story.lives.size(), parts.life, parts.lives) + " in " +
           counted(story.messages, parts.message, parts.messages) +
           (story.skipped_bytes == 0 ? "" : ", " + counted(story.skipped_bytes, "byte", "bytes") + " skipped") +
           "</p>\n" + "<section>" + legend() + "</section>\n" + cycles(story) + offenders(summary) + groups(summary) +
           clients(summary) + holds(summary) + "</body>\n</html>\n";
}

}  // namespace statectl::trace
