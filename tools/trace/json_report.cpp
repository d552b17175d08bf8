// `explain --json` calls `json_report` once, with the whole story; each function before it makes one part of that.

#include "tools/trace/reports.h"
#include "tools/trace/summary.h"

namespace statectl::trace {

namespace {

using nlohmann::json;

json optional(std::optional<double> const& value) {
    return value ? json(*value) : json();
}

json remarks(std::vector<Remark> const& all) {
    auto list = json::array();
    for (auto const& remark : all) {
        list.push_back({{"time", remark.time}, {"text", remark.text}});
    }
    return list;
}

json stays(Life const& life) {
    auto list = json::array();
    for (auto const& stay : life.stays) {
        list.push_back(
            {{"state", stay.state}, {"begin", stay.begin}, {"end", optional(stay.end)}, {"cause", stay.cause}});
    }
    return list;
}

json groups(Sequence const& sequence) {
    auto list = json::array();
    for (auto const& group : sequence.groups) {
        auto answers = json::array();
        for (auto const& answer : group.answers) {
            answers.push_back({{"client", answer.client}, {"status", answer.status}});
            if (answer.seconds) {
                answers.back()["seconds"] = *answer.seconds;
            }
        }
        list.push_back(
            {{"group", group.name}, {"begin", group.begin}, {"end", optional(group.end)}, {"answers", answers}});
    }
    return list;
}

json sequences(Life const& life) {
    auto list = json::array();
    for (auto const& sequence : life.sequences) {
        list.push_back({{"way", sequence.is_standby ? "suspend" : "resume"},
                        {"begin", sequence.begin},
                        {"end", optional(sequence.end)},
                        {"groups", groups(sequence)}});
    }
    return list;
}

json holds(Life const& life) {
    auto list = json::array();
    for (auto const& hold : life.holds) {
        list.push_back({{"what", hold.what},
                        {"who", hold.who},
                        {"bits", hold.bits},
                        {"begin", hold.begin},
                        {"end", optional(hold.end)}});
    }
    return list;
}

json clients(std::map<std::string, Client_account> const& all) {
    auto list = json::array();
    for (auto const& [name, account] : all) {
        list.push_back({{"client", name},
                        {"asked", account.asked},
                        {"succeeded", account.succeeded},
                        {"late", account.late},
                        {"failed", account.failed},
                        {"out_of_turn", account.out_of_turn},
                        {"dropped", account.dropped},
                        {"waited", account.waited}});
    }
    return list;
}

json life_object(Life const& life) {
    json object{{"ecu", life.ecu},
                {"begin", life.begin},
                {"end", life.end},
                {"has_start", life.has_start},
                {"ending", life.ending},
                {"orderly", life.is_orderly},
                {"states", stays(life)},
                {"sequences", sequences(life)},
                {"holds", holds(life)},
                {"dropped", remarks(life.dropped)},
                {"restarts", remarks(life.requests)},
                {"troubles", remarks(life.troubles)},
                {"clients", clients(life.clients)}};
    if (life.process) {
        object["process"] = *life.process;
    }
    if (life.stored_us) {
        object["stored"] = begin_text(life);
    }
    return object;
}

}  // namespace

json json_report(Story const& story) {
    auto lives = json::array();
    for (auto const& life : story.lives) {
        lives.push_back(life_object(life));
    }
    auto const summary = summary_of(story);
    auto offenders = json::array();
    for (auto const& offender : summary.offenders) {
        offenders.push_back({{"seconds", offender.seconds}, {"text", offender.text}});
    }
    return {{"messages", story.messages},
            {"skipped_bytes", story.skipped_bytes},
            {"cut", story.is_cut},
            {"lives", lives},
            {"clients", clients(summary.clients)},
            {"offenders", offenders}};
}

}  // namespace statectl::trace
