#include "held_clients.h"

#include "life_texts.h"

#include <algorithm>
#include <utility>

namespace lives {

using exploration::Group;
using exploration::Mode;

namespace {

Group group_of(std::string const& name) {
    return name == "diag::dcm" ? exploration::dcm : name == "diag::dem" ? exploration::dem : exploration::applications;
}

char const* text_of(Mode mode) {
    return mode == Mode::on ? "kOn" : mode == Mode::prepare_sd ? "kPrepSD" : "nothing";
}

}  // namespace

void Held_clients::begin_suspend() {
    notifier_.request_standby();
    sequence_begins_ = true;
}

void Held_clients::begin_resume() {
    sequence_begins_ = !notifier_.is_running();
    notifier_.request_resume();
}

void Held_clients::take_log(Time now, std::string const& text, bool may_begin) {
    auto const request = behind("Requesting ", text);
    if (request && request->find(" mode for ") != std::string::npos) {
        group_asked(now, *request, may_begin);
    } else if (text.rfind("Received ", 0) == 0 && text.find(" completion notification for ") != std::string::npos) {
        group_completed(now, text);
    }
}

void Held_clients::group_asked(Time now, std::string const& text, bool may_begin) {
    static std::map<std::string, Group> const groups{
        {"DCM", exploration::dcm}, {"client applications", exploration::applications}, {"DEM", exploration::dem}};
    auto const group = groups.at(text.substr(text.find(" mode for ") + 10));
    auto const begin = text.find_first_not_of(' ');
    auto const mode = text.substr(begin, text.find(' ', begin) - begin);
    if (!std::exchange(sequence_begins_, false)) {
        if (notifier_.asked()) {
            find_("a group is asked while another request waits for its answers: " + text);
        }
        // The driver's cycle asks before it decides.
        auto ahead = notifier_;
        ahead.check();
        if (ahead.asked() != group || text_of(ahead.requested_from(group)) != mode) {
            find_("this group is not next, or not for that: " + text);
        }
    } else if (!may_begin) {
        find_("a sequence begins: " + text);
    } else if (notifier_.asked() != group || text_of(notifier_.requested_from(group)) != mode) {
        find_("a sequence begins with " + text);
    }
    asked_at_ = answered_at_ = now;
    for (auto& [name, client] : clients_) {
        client.at_request = group_of(name) == group ? client.connections : 0;
        // Who leaves or comes in the moment of a request may be asked.
        client.is_unsure = client.connections > 1 || client.changed_at == now;
        client.asked = client.answered = 0;
    }
}

Held_clients::Time Held_clients::limit_of(Group group) const {
    return group == exploration::applications ? terms_.application : terms_.diagnosis;
}

void Held_clients::group_completed(Time now, std::string const& text) {
    if (!notifier_.asked()) {
        return find_("a group has answered that was not asked: " + text);
    }
    auto const limit = limit_of(*notifier_.asked());
    bool const is_late = text.find("Status:  1") != std::string::npos;
    if (is_late && now - asked_at_ != limit) {
        find_("a group had " + text_of(now - asked_at_) + ", not " + text_of(limit));
    }
    for (auto const& [name, client] : clients_) {
        bool const was_asked = client.at_request > 0 && !client.is_unsure;
        if (was_asked && client.connections > 0 && client.asked == 0) {
            find_(name + " was not asked by " + text);
        }
        if (was_asked && !is_late && client.answered != client.at_request) {
            find_(name + " has not answered, and " + text);
        }
    }
    notifier_.answered();
}

void Held_clients::check(Time now) const {
    if (!notifier_.asked()) {
        return;
    }
    if (now > asked_at_ + limit_of(*notifier_.asked())) {
        find_("a group has had " + text_of(now - asked_at_));
    }
    bool const is_open = std::any_of(clients_.begin(), clients_.end(), [](auto const& entry) {
        return entry.second.is_unsure || entry.second.answered < entry.second.at_request;
    });
    if (!is_open && now > answered_at_) {
        find_("all have answered, and nobody notes it");
    }
}

void Held_clients::take_client(Time now, std::string const& name, std::string const& what) {
    auto& client = clients_[name];
    if (auto const state = behind("connected in ", what)) {
        client.is_unsure = client.is_unsure || client.connections > 0 || client.at_request > 0 ||
                           (notifier_.asked() && now == asked_at_);
        ++client.connections;
        client.changed_at = now;
        client.greeted += *state == "kOn" ? 0U : 1U;
    } else if (what == "disconnected" || what == "crashed" || what == "was dropped") {
        --client.connections;  // at_request stays: whoever goes without an answer is waited for
        client.greeted = 0;
        client.changed_at = now;
    } else if (auto const wanted = behind("asked ", what)) {
        asked(name, *wanted);
    } else if (what.rfind("answered ", 0) == 0) {
        client.answered += client.asked > client.answered ? 1U : 0U;
        answered_at_ = now;
    }
}

void Held_clients::asked(std::string const& name, std::string const& state) {
    auto& client = clients_[name];
    auto const group = group_of(name);
    bool const is_of_group = notifier_.asked() == group && text_of(notifier_.requested_from(group)) == state;
    if (client.greeted > 0 && state == "kOn") {
        --client.greeted;
    } else if (!is_of_group) {
        find_(name + " was asked " + state + ", and it is not its turn");
    } else if (++client.asked > std::max(client.connections, client.at_request)) {
        find_(name + " was asked twice");
    }
}

}  // namespace lives
