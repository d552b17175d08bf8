#include "tools/trace/teller.h"

#include "tools/trace/cause.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <sstream>
#include <utility>

namespace statectl::trace {

namespace {

using dlt::Message;

constexpr double k_second = 1;
constexpr int k_warning = 3;
constexpr char const* k_application = "STMG";
constexpr char const* k_first_words = "Configuration for hostname: ";

std::string const& argument(Message const& message, std::size_t index) {
    static std::string const none;
    return index < message.arguments.size() ? message.arguments[index] : none;
}

bool says(Message const& message, char const* text) {
    return argument(message, 0) == text;
}

std::string trimmed(std::string const& text) {
    auto const begin = text.find_first_not_of(' ');
    return begin == std::string::npos ? "" : text.substr(begin, text.find_last_not_of(' ') - begin + 1);
}

// "07 00 01" as bytes.
std::vector<unsigned> bytes_of(std::string const& text) {
    std::vector<unsigned> bytes;
    std::istringstream words(text);
    for (unsigned byte = 0; words >> std::hex >> byte;) {
        bytes.push_back(byte);
    }
    return bytes;
}

// Both texts' bytes, combined one by one; the shorter one goes on with zeros.
template <class Operation>
std::string combined(std::string const& left, std::string const& right, Operation operation) {
    auto all = bytes_of(left);
    auto others = bytes_of(right);
    all.resize(std::max(all.size(), others.size()));
    others.resize(all.size());
    std::string text;
    for (std::size_t i = 0; i < all.size(); ++i) {
        constexpr char const* k_digits = "0123456789abcdef";
        auto const byte = operation(all[i], others[i]);
        text += text.empty() ? "" : " ";
        text += k_digits[byte >> 4U & 0xFU];
        text += k_digits[byte & 0xFU];
    }
    return text;
}

bool tells_nothing(Message const& message) {
    constexpr int k_info = 4;
    return message.level > k_info && !says(message, "State_manager::ecu_alive_release: ");
}

bool is_empty(std::string const& bits) {
    return bits.find_first_not_of("0 ") == std::string::npos;
}

}  // namespace

// Ticks count 32 bits of tenths of a millisecond: they begin anew after five days.
double Teller::time_of(Message const& message) {
    constexpr double k_ticks = 10'000;
    constexpr double k_us = 1'000'000;
    constexpr std::uint32_t k_half = 0x8000'0000U;
    if (!message.ticks) {
        return message.stored_us ? static_cast<double>(*message.stored_us) / k_us : now_;
    }
    if (*message.ticks < newest_ticks_ && newest_ticks_ - *message.ticks > k_half) {
        ++wraps_;
    }
    newest_ticks_ = *message.ticks;
    return (static_cast<double>(wraps_) * 4294967296.0 + static_cast<double>(*message.ticks)) / k_ticks;
}

bool Teller::begins_life(Message const& message, double time) const {
    if (!telling_) {
        return true;
    }
    auto const& life = telling_->life;
    bool const is_other_process = life.process && message.session && *life.process != *message.session;
    return is_other_process || (says(message, k_first_words) && life.messages > 0) || time < now_ - k_second;
}

void Teller::begin_life(Message const& message) {
    end_life(false);
    wraps_ = 0;
    newest_ticks_ = 0;
    now_ = time_of(message);
    telling_.emplace();
    auto& life = telling_->life;
    life.ecu = message.ecu;
    life.process = message.session;
    life.stored_us = message.stored_us;
    life.begin = now_;
    life.has_start = says(message, k_first_words) || says(message, "Parsing configuration file:");
}

void Teller::take(Message const& message) {
    auto const time = time_of(message);
    if (begins_life(message, time)) {
        begin_life(message);
    } else {
        now_ = std::max(now_, time);
    }
    auto& life = telling_->life;
    ++life.messages;
    life.end = now_;
    // Closing the devices fails for each that is not there: it always does.
    if (message.level != 0 && message.level <= k_warning && !says(message, "Failed to close event file descriptor! ")) {
        life.troubles.push_back({now_, text_of(message)});
    }
    understand(message);
}

void Teller::understand(Message const& message) {
    static_cast<void>(tells_states(message) || tells_commands(message) || tells_sequences(message) ||
                      tells_clients(message) || tells_holds(message) || tells_end(message));
}

bool Teller::tells_states(Message const& message) {
    if (says(message, "AP_StateManger transition from")) {
        change_state(argument(message, 1), argument(message, 3));
        return true;
    }
    if (says(message, "Entering startup state")) {
        telling_->life.stays.push_back({"Starting up", now_, std::nullopt, "start"});
        return true;
    }
    if (says(message, "NM usage is disabled")) {
        telling_->uses_network = false;
        return true;
    }
    return false;
}

void Teller::change_state(std::string const& from, std::string const& to) {
    auto& telling = *telling_;
    auto& stays = telling.life.stays;
    if (stays.empty()) {
        stays.push_back({from, telling.life.begin, std::nullopt, "before the trace"});
    }
    stays.back().end = now_;
    Situation const situation{telling.commands.empty() ? "" : telling.commands.front(), telling.uses_network,
                              holders({"ECU alive"}), holders({"communication", "car wake-up"}), late_clients()};
    auto const cause = cause_of(from, to, situation);
    telling.is_cause_of_newest = cause.by_command;
    if (to == "Shutting down") {
        leave_sequence();
    }
    stays.push_back({to, now_, std::nullopt, cause.text});
}

bool Teller::tells_commands(Message const& message) {
    auto& telling = *telling_;
    if (says(message, "New command received")) {
        auto const& command = argument(message, 1);
        if (command == "Shutdown") {
            for (auto const& waiting : telling.commands) {
                telling.life.dropped.push_back({now_, waiting + ": Shutdown overtook it"});
            }
            telling.commands.clear();
        }
        telling.commands.push_back(command);
        return true;
    }
    if (says(message, "Consumed VirtIO command: ")) {
        consume();
        return true;
    }
    return false;
}

void Teller::consume() {
    auto& telling = *telling_;
    if (telling.commands.empty()) {
        return;
    }
    if (!telling.is_cause_of_newest && !telling.life.stays.empty()) {
        telling.life.dropped.push_back({now_, telling.commands.front() + ": the transition to " +
                                                  telling.life.stays.back().state + " took it along"});
    }
    telling.commands.pop_front();
    telling.is_cause_of_newest = false;
}

bool Teller::tells_sequences(Message const& message) {
    if (says(message, "Starting standby sequence") || says(message, "Starting resume sequence")) {
        begin_sequence(says(message, "Starting standby sequence"));
        return true;
    }
    auto& sequences = telling_->life.sequences;
    if (says(message, "Requesting ")) {
        static std::map<std::string, std::string> const names{
            {" mode for DCM", "DCM"}, {" mode for client applications", "applications"}, {" mode for DEM", "DEM"}};
        auto const name = names.find(argument(message, 2));
        if (name != names.end()) {
            if (sequences.empty()) {
                begin_sequence(argument(message, 1) == "kPrepSD");
            }
            sequences.back().groups.push_back({name->second, now_, std::nullopt, {}});
        }
        return name != names.end();
    }
    if (argument(message, 0).rfind("Received ", 0) == 0 &&
        argument(message, 0).find("client completion notification for ") != std::string::npos) {
        complete_group();
        return true;
    }
    return false;
}

// Nobody waits for those any more who are asked just now.
void Teller::leave_sequence() {
    for (auto& sequence : telling_->life.sequences) {
        if (!sequence.groups.empty() && !sequence.groups.back().end) {
            sequence.groups.back().end = now_;
        }
    }
}

void Teller::begin_sequence(bool is_standby) {
    leave_sequence();
    telling_->life.sequences.push_back({is_standby, now_, std::nullopt, {}});
}

// The last group of a way is the first one of the way back.
void Teller::complete_group() {
    auto& sequences = telling_->life.sequences;
    if (sequences.empty() || sequences.back().groups.empty()) {
        return;
    }
    auto& sequence = sequences.back();
    auto& group = sequence.groups.back();
    group.end = now_;
    if (group.name == (sequence.is_standby ? "DEM" : "DCM")) {
        sequence.end = now_;
    }
}

bool Teller::tells_clients(Message const& message) {
    auto& clients = telling_->life.clients;
    if (says(message, "State notification client [")) {
        auto const& status = argument(message, 2);
        answer(argument(message, 1), status.size() > 2 ? status.substr(2) : status);
    } else if (says(message, "Client ")) {
        ++clients[argument(message, 1)].out_of_turn;
    } else if (says(message, "client dropped: ")) {
        ++clients[argument(message, 1)].dropped;
    } else if (says(message, "client connected: name = ")) {
        clients[argument(message, 1)];
    } else {
        return false;
    }
    return true;
}

void Teller::answer(std::string const& client, std::string const& status) {
    auto& life = telling_->life;
    auto& account = life.clients[client];
    ++account.asked;
    account.succeeded += status == "succeeded" ? 1 : 0;
    account.late += status == "timed out" ? 1 : 0;
    account.failed += status != "succeeded" && status != "timed out" ? 1 : 0;
    if (life.sequences.empty() || life.sequences.back().groups.empty()) {
        return;
    }
    auto& group = life.sequences.back().groups.back();
    group.answers.push_back({client, status});
    if (status == "timed out") {
        account.waited += group.end.value_or(now_) - group.begin;
    }
}

bool Teller::tells_holds(Message const& message) {
    auto const& who = argument(message, 1);
    if (says(message, "State_manager::ecu_alive_request: ") && who != "End standby call") {
        hold("ECU alive", who, "");
    } else if (says(message, "State_manager::ecu_alive_release: ") && who != "Standby call") {
        release("ECU alive", who, "");
    } else if (says(message, "State_manager::ecu_alive_release network")) {
        release_all("ECU alive");  // also where the level of the log hides each release
    } else if (says(message, "State_manager::handle_com_alive_request(")) {
        auto const bits = trimmed(argument(message, 3));
        if (!is_empty(bits)) {
            hold("communication", who, bits);
        }
    } else if (says(message, "State_manager::handle_com_alive_release(")) {
        release("communication", who, trimmed(argument(message, 3)));
    } else if (says(message, "State_manager::handle_cwu_request(")) {
        hold("car wake-up", who, "");
    } else if (says(message, "State_manager::handle_cwu_release(")) {
        release("car wake-up", who, "");
    } else {
        return false;
    }
    return true;
}

void Teller::hold(std::string const& what, std::string const& who, std::string const& bits) {
    auto& holds = telling_->life.holds;
    auto const open = std::find_if(holds.begin(), holds.end(),
                                   [&](Hold const& one) { return !one.end && one.what == what && one.who == who; });
    if (open == holds.end()) {
        holds.push_back({what, who, bits, now_, std::nullopt});
    } else {
        open->bits = combined(open->bits, bits, [](unsigned held, unsigned added) { return held | added; });
    }
}

void Teller::release(std::string const& what, std::string const& who, std::string const& bits) {
    for (auto& one : telling_->life.holds) {
        if (one.end || one.what != what || one.who != who) {
            continue;
        }
        auto const rest = combined(one.bits, bits, [](unsigned held, unsigned released) { return held & ~released; });
        if (is_empty(rest)) {
            one.end = now_;
        } else {
            one.bits = rest;
        }
    }
}

void Teller::release_all(std::string const& what) {
    for (auto& one : telling_->life.holds) {
        if (!one.end && one.what == what) {
            one.end = now_;
        }
    }
}

std::vector<std::string> Teller::holders(std::vector<std::string> const& kinds) const {
    std::vector<std::string> names;
    for (auto const& one : telling_->life.holds) {
        bool const counts = !one.end && std::find(kinds.begin(), kinds.end(), one.what) != kinds.end();
        if (counts && std::find(names.begin(), names.end(), one.who) == names.end()) {
            names.push_back(one.who);
        }
    }
    return names;
}

std::vector<std::string> Teller::late_clients() const {
    std::vector<std::string> names;
    auto const& sequences = telling_->life.sequences;
    if (sequences.empty()) {
        return names;
    }
    for (auto const& group : sequences.back().groups) {
        for (auto const& one : group.answers) {
            if (one.status == "timed out") {
                names.push_back(one.client);
            }
        }
    }
    return names;
}

// The first reason counts: a machine that goes down stops its services.
bool Teller::tells_end(Message const& message) {
    auto& telling = *telling_;
    auto const leave = [&](char const* farewell) {
        telling.farewell = telling.farewell.empty() ? farewell : telling.farewell;
    };
    auto const& first = argument(message, 0);
    if (first == "SIGTERM received!") {
        leave("was stopped");
    } else if (first == "Normal shutdown executed") {
        leave("went down");
    } else if (first == "Fast shutdown executed") {
        leave("was powered off the fast way");
    } else if (first == "AP_StateManger reporting kTerminating to EM" ||
               first == "AP_StateManger daemon shutting down") {
        telling.said_goodbye = true;
    } else if (first == "Failed to initialize AP_StateManger!" ||
               first.find("AP_StateManger is aborted") != std::string::npos) {
        leave("did not start");
    } else if (first.rfind("RequestDiagnosticRestart for ", 0) == 0) {
        telling.life.requests.push_back({now_, first});
    } else {
        return false;
    }
    return true;
}

void Teller::end_life(bool is_last) {
    if (!telling_) {
        return;
    }
    auto& life = telling_->life;
    for (auto const& command : telling_->commands) {
        life.dropped.push_back({now_, command + ": no state acted on it"});
    }
    auto const& farewell = telling_->farewell;
    auto const state = life.stays.empty() ? std::string() : " in " + life.stays.back().state;
    bool const has_gone = farewell == "did not start" || farewell == "was powered off the fast way";
    if (telling_->said_goodbye || has_gone) {
        life.ending = farewell.empty() ? "ended in order" : farewell;
    } else {
        life.is_orderly = is_last;
        life.ending = is_last ? "the trace ends" + state : "ended without farewell" + state;
    }
    lives_.push_back(std::move(life));
    telling_.reset();
}

std::vector<Life> Teller::end() {
    end_life(true);
    return std::exchange(lives_, {});
}

// Of what each cycle logs the newest message tells that the process still lived; a day has two million of them.
void Narrator::take(Message message) {
    ++count_;
    if (message.application != k_application || message.level == 0) {
        return;
    }
    if (tells_nothing(message)) {
        message.arguments.clear();
        bool const is_next = !messages_.empty() && tells_nothing(messages_.back()) &&
                             messages_.back().session == message.session && messages_.back().ecu == message.ecu;
        if (is_next) {
            messages_.back() = std::move(message);
            return;
        }
    }
    messages_.push_back(std::move(message));
}

Story Narrator::end(dlt::Reader const& reader) {
    // A ring has one place where time jumps back, behind its newest message.
    auto const jump =
        std::adjacent_find(messages_.begin(), messages_.end(), [](Message const& one, Message const& next) {
            constexpr std::int64_t k_us = 1'000'000;
            return one.stored_us && next.stored_us && *next.stored_us < *one.stored_us - k_us;
        });
    if (jump != messages_.end() && *messages_.back().stored_us <= *messages_.front().stored_us) {
        std::rotate(messages_.begin(), jump + 1, messages_.end());
    }
    std::map<std::string, Teller> tellers;
    for (auto const& message : messages_) {
        tellers[message.ecu].take(message);
    }
    Story story{{}, count_, reader.skipped_bytes(), reader.is_cut()};
    for (auto& [ecu, teller] : tellers) {
        auto lives = teller.end();
        std::move(lives.begin(), lives.end(), std::back_inserter(story.lives));
    }
    std::stable_sort(story.lives.begin(), story.lives.end(), [](Life const& left, Life const& right) {
        return left.stored_us.value_or(0) < right.stored_us.value_or(0);
    });
    return story;
}

}  // namespace statectl::trace
