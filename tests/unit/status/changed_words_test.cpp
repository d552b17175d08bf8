// What each of the functions that tell the page something changes on it, and that it changes nothing else.

#include "status/driver_status.h"
#include "status/network_status.h"
#include "status/restart_status.h"
#include "status/server_status.h"
#include "status/services_status.h"
#include "written_page.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

namespace status {
namespace {

/// A section of the page, and what its words are called: "queue*16" are sixteen.
struct Section {
    template <class Words>
    Section(std::string name_of_all, Words const& section, std::string const& names_of_words)
        : name(std::move(name_of_all)), first(reinterpret_cast<Shared_word const*>(&section)) {
        std::istringstream all(names_of_words);
        for (std::string word; all >> word;) {
            auto const star = word.find('*');
            auto const count = star == std::string::npos ? 1 : std::stoi(word.substr(star + 1));
            for (int i = 0; i < count; ++i) {
                names.push_back(word.substr(0, star) + (count == 1 ? "" : "[" + std::to_string(i) + "]"));
            }
        }
        EXPECT_EQ(names.size() * sizeof(Shared_word), sizeof section) << name;
    }

    std::string name;
    Shared_word const* first;
    std::vector<std::string> names;
};

class Status_words : public Written_page {
 protected:
    Status_words() {
        std::string const event = "at kind numbers*3 text*3";
        sections.emplace_back("counters", written->counters,
                              "failed_calls*3 call_failed_at restarts*6 restart_at restart_type restarts_failed");
        sections.emplace_back(
            "driver", written->driver,
            "sequence beat cycles longest longest_at ended told state since previous row command transitions condition "
            "blocked prepare_sd forced knockout default_held waiting queue*16 taken_at*16 keys_taken keys_dropped "
            "keys_cleared keys_swallowed last_key last_key_at last_dropped last_dropped_at last_cleared "
            "last_cleared_at "
            "last_swallowed last_swallowed_at swallowed_from swallowed_row devices_found devices devices_lost "
            "device_lost_at log_lost log_lost_at word*3 word_at word_failed words_failed machine_state*3 "
            "machine_state_at machine_state_failed supervision_stopped group group_at mode*2");
        sections.emplace_back(
            "server", written->server,
            "sequence clients clients_untold names names_untold failures requests in_progress asked_at "
            "deadline asked unanswered ended_at ended_how mode*2");
        sections.emplace_back("client", written->clients[k_connection],
                              "sequence since connection pid uid name_record name_digest answer status asked_at "
                              "answered_at state*2 name*" +
                                  std::to_string(k_longest_name / 8));
        sections.emplace_back("name", written->names[digest_of("radio") % k_names],
                              "sequence used connections asked in_time failed late timed_out vanished longest total "
                              "digest name*" +
                                  std::to_string(k_longest_name / 8));
        sections.emplace_back("services", written->services,
                              "sequence manager_found sending instances instances_untold cab_length cab*4 user_length "
                              "user*4");
        sections.emplace_back(
            "instance", written->instances[0],
            "sequence provided*3 since*3 requests*3 releases*3 cab ac name*" + std::to_string(k_longest_name / 8));
        sections.emplace_back("network", written->network,
                              "sequence ecu_state ecu_since reports reported_at state_length state*4");
        sections.emplace_back("driver's event", written->driver_ring.events[0], event);
        sections.emplace_back("server's event", written->server_ring.events[0], event);
        sections.emplace_back("services' event", written->services_ring.events[0], event);
        sections.emplace_back("network's event", written->network_ring.events[0], event);
    }

    std::vector<std::uint64_t> words() const {
        std::vector<std::uint64_t> all;
        for (auto const& section : sections) {
            for (std::size_t i = 0; i < section.names.size(); ++i) {
                all.push_back(own(section.first[i]));
            }
        }
        return all;
    }

    /// "driver: row=2 since=now; ..." after the action, "then" for a moment before it; its events come first in their
    /// rings.
    std::string changed_by(std::function<void()> const& action) {
        for (auto* ring :
             {&written->driver_ring, &written->server_ring, &written->services_ring, &written->network_ring}) {
            put(ring->count, 0U);
        }
        auto const before = words();
        while (now() <= last_) {
        }
        auto const begin = now();
        action();
        auto const end = now();
        auto const after = words();
        last_ = end;
        std::string text;
        std::size_t place = 0;
        for (auto const& section : sections) {
            std::string changes;
            for (std::size_t i = 0; i < section.names.size(); ++i, ++place) {
                if (section.names[i] == "sequence") {
                    EXPECT_EQ(after[place] % 2, 0U) << section.name << ": a change that does not end";
                } else if (after[place] != before[place]) {
                    auto const word = after[place];
                    changes += " " + section.names[i] + "=" +
                               (begin <= word && word <= end                                   ? "now"
                                : start_ <= word && word <= begin                              ? "then"
                                : is_time(section.name, section.names[i], before[place], word) ? "some"
                                                                                               : text_of_word(word));
                }
            }
            text += changes.empty() ? "" : (text.empty() ? "" : "; ") + section.name + ":" + changes;
        }
        return text;
    }

    /// A time that the story took: of a client's words how long his last answer did, of the driver's any.
    bool is_time(std::string const& section, std::string const& name, std::uint64_t before, std::uint64_t word) const {
        if (section == "driver") {
            return name == "longest" && 500 < word && word <= now() - start_;
        }
        auto const& client = written->clients[k_connection];
        auto const took = name == "total" ? word - before : word;
        return (name == "longest" || name == "total" || name == "numbers[1]") && took != 0 &&
               took == own(client.answered_at) - own(client.asked_at);
    }

    /// A number, or the letters that stand in it.
    static std::string text_of_word(std::uint64_t word) {
        std::string letters;
        for (auto rest = word; rest != 0; rest >>= 8) {
            letters += static_cast<char>(rest & 0xffU);
        }
        bool const is_text = letters.size() > 1 && std::all_of(letters.begin(), letters.end(), [](char letter) {
                                 return letter >= ' ' && letter <= '~';
                             });
        return is_text ? letters : std::to_string(word);
    }

    static constexpr int k_connection = 999;  // no descriptor, so nobody is known at its other end
    std::vector<Section> sections;

 private:
    std::uint64_t const start_{now()};
    std::uint64_t last_{0};
};

struct Told {
    std::function<void()> action;
    std::string changes;
};

TEST_F(Status_words, That_change_are_those_that_are_told_and_no_others) {
    static constexpr std::array<std::uint8_t, 1> k_report{7};
    std::chrono::steady_clock::time_point const deadline{std::chrono::nanoseconds(77)};
    std::vector<Told> const story{
        {[] { beat(false, true); }, "driver: beat=now cycles=1 condition=1 forced=1"},
        {[] { beat(true, false); }, "driver: beat=now cycles=2 longest=some longest_at=now prepare_sd=1 forced=0"},
        {[] { key_taken(4); },
         "driver: waiting=1 queue[0]=4 taken_at[0]=now keys_taken=1 last_key=4 last_key_at=now; driver's event: at=now "
         "kind=2 numbers[0]=4"},
        {[] { key_taken(9); },
         "driver: waiting=2 queue[1]=9 taken_at[1]=now keys_taken=2 last_key=9 last_key_at=now; driver's event: at=now "
         "numbers[0]=9"},
        {[] { transition(1, 5, 4); },
         "driver: state=5 since=now previous=1 row=3 command=4 transitions=1 condition=5 blocked=1; driver's event: "
         "at=now kind=1 numbers[0]=1 numbers[1]=5 numbers[2]=3"},
        {[] { command_consumed(); }, "driver: waiting=1 queue[0]=9 queue[1]=0 taken_at[0]=then taken_at[1]=0"},
        {[] { transition(2, 3, 0); },
         "driver: state=3 since=now previous=2 row=2 command=0 transitions=2 condition=4; driver's event: at=now "
         "numbers[0]=2 numbers[1]=3 numbers[2]=2"},
        {[] { command_consumed(); },
         "driver: blocked=0 waiting=0 queue[0]=0 taken_at[0]=0 keys_swallowed=1 last_swallowed=9 last_swallowed_at=now "
         "swallowed_from=2 swallowed_row=2; driver's event: at=now kind=21 numbers[0]=9 numbers[1]=2"},
        {[] { key_taken(1); },
         "driver: waiting=1 queue[0]=1 taken_at[0]=now keys_taken=3 last_key=1 last_key_at=now; driver's event: at=now "
         "kind=2 numbers[0]=1 numbers[1]=0 numbers[2]=0"},
        {[] { key_taken(2); },
         "driver: waiting=2 queue[1]=2 taken_at[1]=now keys_taken=4 last_key=2 last_key_at=now; driver's event: at=now "
         "numbers[0]=2"},
        {[] { queue_cleared(); },
         "driver: waiting=0 queue[0]=0 queue[1]=0 taken_at[0]=0 taken_at[1]=0 keys_cleared=2 last_cleared=1 "
         "last_cleared_at=now; driver's event: at=now kind=22 numbers[0]=1 numbers[1]=2"},
        {[] { queue_cleared(); }, ""},
        {[] { key_dropped(3); },
         "driver: keys_dropped=1 last_dropped=3 last_dropped_at=now; driver's event: at=now kind=3 numbers[0]=3 "
         "numbers[1]=0"},
        {[] { knockout_left(6); }, "driver: knockout=6"},
        {[] { devices_opened(2); }, "driver: devices_found=2 devices=2"},
        {[] { device_lost(1); },
         "driver: devices=1 devices_lost=1 device_lost_at=now; driver's event: at=now kind=19 numbers[0]=1"},
        {[] { state_word("running", Word_fate::written); },
         "driver: word[0]=running word_at=now; driver's event: at=now kind=4 numbers[0]=0 text[0]=running"},
        {[] { state_word("running", Word_fate::refused); },
         "driver: word_at=now word_failed=1 words_failed=1; driver's event: at=now numbers[0]=1"},
        {[] { machine_state("Running", true); },
         "driver: machine_state[0]=Running machine_state_at=now; driver's event: at=now kind=5 numbers[0]=0 "
         "text[0]=Running"},
        {[] { machine_state("Running", false); },
         "driver: machine_state_at=now machine_state_failed=1; driver's event: at=now numbers[0]=1"},
        {[] { supervision_stopped(); },
         "driver: supervision_stopped=now; driver's event: at=now kind=23 numbers[0]=0 text[0]=0"},
        {[] { default_pattern(true); }, "driver: default_held=now"},
        {[] { default_pattern(false); }, "driver: default_held=0"},
        {[] { group_asked(Group::applications, "kPrepSD"); },
         "driver: group=2 group_at=now mode[0]=kPrepSD; driver's event: at=now kind=6 numbers[0]=2 text[0]=kPrepSD"},
        {[] { log_lost(3); }, "driver: log_lost=3 log_lost_at=now"},
        {[] { log_lost(3); }, ""},
        {[] { loop_ended(); }, "driver: ended=now told=17; driver's event: at=now kind=20 numbers[0]=3 text[0]=0"},
        {[] { client_connected(k_connection, "radio", "kOn"); },
         "server: clients=1 names=1; client: since=now connection=999 uid=4294967295 name_record=268 "
         "name_digest=9805413986708565268 state[0]=kOn name[0]=radio; name: used=1 connections=1 "
         "digest=9805413986708565268 name[0]=radio; server's event: at=now kind=8 numbers[2]=9805413986708565268 "
         "text[0]=radio"},
        {[deadline] { request_began("kPrepSD", deadline); },
         "server: requests=1 in_progress=1 asked_at=now deadline=77 mode[0]=kPrepSD"},
        {[] { client_asked(k_connection); },
         "server: asked=1 unanswered=1; client: answer=1 asked_at=then; name: asked=1"},
        {[] { client_answered(k_connection, "kPrepSD", 0); },
         "server: unanswered=0; client: answer=2 answered_at=now state[0]=kPrepSD; name: in_time=1 longest=some "
         "total=some; server's event: at=now kind=10 numbers[1]=some"},
        {[] { client_asked(k_connection); },
         "server: asked=2 unanswered=1; client: answer=1 answered_at=0; name: asked=2"},
        {[] { client_answered(k_connection, "kOn", 5); },
         "server: unanswered=0; client: answer=3 status=5 answered_at=now state[0]=kOn; name: failed=1 longest=some "
         "total=some; server's event: at=now numbers[0]=5 numbers[1]=some"},
        {[] { client_asked(k_connection); },
         "server: asked=3 unanswered=1; client: answer=1 answered_at=0; name: asked=3"},
        {[] { request_ended(Answer::timed_out); },
         "server: in_progress=0 ended_at=now ended_how=4; client: answer=4; name: timed_out=1; server's event: at=now "
         "kind=12 numbers[0]=0 numbers[1]=0"},
        {[] { client_answered(k_connection, "kPrepSD", 0); },
         "client: answer=5 status=0 answered_at=now state[0]=kPrepSD; name: late=1 longest=some; server's event: "
         "at=now kind=11 numbers[1]=some"},
        {[] { client_asked(k_connection); },
         "server: asked=4 unanswered=2; client: answer=1 answered_at=0; name: asked=4"},
        {[deadline] { request_began("kOn", deadline); },
         "server: requests=2 in_progress=1 asked_at=now asked=0 unanswered=0 mode[0]=kOn; client: answer=6"},
        {[] { client_answered(k_connection, "kOn", 0); }, "client: state[0]=kOn"},
        {[] { client_answered(k_connection, "kPrepSD", 0); }, "client: state[0]=kPrepSD"},
        {[] { client_asked(k_connection); },
         "server: asked=1 unanswered=1; client: answer=1 asked_at=then; name: asked=5"},
        {[] { client_left(k_connection); },
         "server: clients=0; client: since=0 answer=0; name: connections=0 vanished=1; server's event: at=now kind=13 "
         "numbers[1]=0"},
        {[] { client_connected(k_connection, "radio", "kOn"); },
         "server: clients=1; client: since=now asked_at=0 state[0]=kOn; name: connections=1; server's event: at=now "
         "kind=8"},
        {[] { client_out_of_turn("radio"); }, "server's event: at=now kind=14"},
        {[] { server_failed(); },
         "server: clients=0 failures=1 in_progress=0; client: since=0; name: connections=0; server's event: at=now "
         "kind=9"},
        {[] { provided(Hold::com_alive, {"1"}); }, "services: instances=1; instance: provided[1]=1 name[0]=49"},
        {[] { manager_found(); }, "services: manager_found=now; services' event: at=now kind=17"},
        {[] { sending(true); }, "services: sending=1"},
        {[] { sending(false); }, "services: sending=0"},
        {[] { ecu_requested("1"); },
         "instance: since[0]=now requests[0]=1; services' event: at=now kind=15 numbers[2]=1 text[0]=49"},
        {[] { ecu_released("1"); }, "instance: since[0]=0 releases[0]=1; services' event: at=now kind=16"},
        {[] { com_requested("1", {6}, 9); },
         "instance: since[1]=now requests[1]=1 cab=6 ac=9; services' event: at=now kind=15 numbers[0]=1"},
        {[] { com_requested("1", {}, 9); }, "instance: requests[1]=2; services' event: at=now"},
        {[] { com_released("1", {2}); }, "instance: releases[1]=1 cab=4; services' event: at=now kind=16 numbers[1]=1"},
        {[] { cwu_requested("1", 3); },
         "instance: since[2]=now requests[2]=1 ac=3; services' event: at=now kind=15 numbers[0]=2 numbers[1]=0"},
        {[] { com_released("1", {4}); },
         "instance: since[1]=0 releases[1]=2 cab=0; services' event: at=now kind=16 numbers[0]=1"},
        {[] { cwu_released("1"); }, "instance: since[2]=0 releases[2]=1 ac=0; services' event: at=now numbers[0]=2"},
        {[] { com_requested("1", {}, 0); },
         "instance: requests[1]=3; services' event: at=now kind=15 numbers[0]=1 numbers[1]=1"},
        {[] {
             cab_pattern(std::vector<std::uint8_t>{1, 2});
         },
         "services: cab_length=2 cab[0]=513"},
        {[] { user_data({3}); }, "services: user_length=1 user[0]=3"},
        {[] { ecu_state(2); }, "network: ecu_state=2 ecu_since=now"},
        {[] { network_state(k_report.data(), k_report.size()); },
         "network: reports=1 reported_at=now state_length=1 state[0]=7; network's event: at=now kind=18 numbers[0]=2 "
         "numbers[1]=7"},
        {[] { call_failed(Network_call::release_network); }, "counters: failed_calls[1]=1 call_failed_at=now"},
        {[] { restart_requested(2); }, "counters: restarts[2]=1 restart_at=now restart_type=2"},
        {[] { restart_requested(99); }, "counters: restarts[0]=1 restart_at=now restart_type=99"},
        {[] { restart_failed(); }, "counters: restarts_failed=1"},
    };
    put(written->life.nm_usage, 1U);
    for (std::size_t i = 0; i < story.size(); ++i) {
        EXPECT_EQ(changed_by(story[i].action), story[i].changes) << "row " << i;
    }
}

}  // namespace
}  // namespace status
