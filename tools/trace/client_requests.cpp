#include "tools/trace/client_requests.h"

#include "tools/trace/message_words.h"

namespace statectl::trace {

using dlt::Message;

bool Client_requests::hear(Message const& message, double now) {
    return tells_sequences(message, now) || tells_clients(message, now);
}

bool Client_requests::tells_sequences(Message const& message, double now) {
    if (says(message, "Starting standby sequence") || says(message, "Starting resume sequence")) {
        begin_sequence(says(message, "Starting standby sequence"), now);
        return true;
    }
    if (says(message, "Requesting ")) {
        static std::map<std::string, std::string> const names{
            {" mode for DCM", "DCM"}, {" mode for client applications", "applications"}, {" mode for DEM", "DEM"}};
        auto const name = names.find(argument(message, 2));
        if (name != names.end()) {
            if (sequences_.empty()) {
                begin_sequence(argument(message, 1) == "kPrepSD", now);
            }
            sequences_.back().groups.push_back({name->second, now, std::nullopt, {}});
        }
        return name != names.end();
    }
    if (argument(message, 0).rfind("Received ", 0) == 0 &&
        argument(message, 0).find("client completion notification for ") != std::string::npos) {
        complete_group(now);
        return true;
    }
    return false;
}

void Client_requests::leave_sequence(double now) {
    for (auto& sequence : sequences_) {
        if (!sequence.groups.empty() && !sequence.groups.back().end) {
            sequence.groups.back().end = now;
        }
    }
}

void Client_requests::begin_sequence(bool is_standby, double now) {
    leave_sequence(now);
    sequences_.push_back({is_standby, now, std::nullopt, {}});
}

void Client_requests::finish_sequence(double now) {
    if (!sequences_.empty() && !sequences_.back().end) {
        sequences_.back().end = now;
    }
}

void Client_requests::complete_group(double now) {
    if (!sequences_.empty() && !sequences_.back().groups.empty()) {
        sequences_.back().groups.back().end = now;
    }
}

bool Client_requests::tells_clients(Message const& message, double now) {
    if (says(message, "State notification client [")) {
        auto const& status = argument(message, 2);
        answer(argument(message, 1), status.size() > 2 ? status.substr(2) : status, now);
    } else if (says(message, "Client ")) {
        ++accounts_[argument(message, 1)].out_of_turn;
    } else if (says(message, "client dropped: ")) {
        ++accounts_[argument(message, 1)].dropped;
    } else if (says(message, "client connected: name = ")) {
        accounts_[argument(message, 1)];
    } else {
        return false;
    }
    return true;
}

void Client_requests::answer(std::string const& client, std::string const& status, double now) {
    auto& account = accounts_[client];
    ++account.asked;
    account.succeeded += status == "succeeded" ? 1 : 0;
    account.late += status == "timed out" ? 1 : 0;
    account.failed += status != "succeeded" && status != "timed out" ? 1 : 0;
    if (sequences_.empty() || sequences_.back().groups.empty()) {
        return;
    }
    auto& group = sequences_.back().groups.back();
    group.answers.push_back({client, status});
    if (status == "timed out") {
        account.waited += group.end.value_or(now) - group.begin;
    }
}

std::vector<std::string> Client_requests::late() const {
    std::vector<std::string> names;
    if (sequences_.empty()) {
        return names;
    }
    for (auto const& group : sequences_.back().groups) {
        for (auto const& one : group.answers) {
            if (one.status == "timed out") {
                names.push_back(one.client);
            }
        }
    }
    return names;
}

}  // namespace statectl::trace
