#ifndef TESTS_SIMULATION_LIVES_HELD_CLIENTS_H
#define TESTS_SIMULATION_LIVES_HELD_CLIENTS_H

#include "notifier_model.h"
#include "terms.h"

#include <functional>
#include <map>
#include <string>

namespace lives {

/// What the rules say of a life's clients: which group is asked for what and when, that each of its clients is asked
/// once, and that a group has answered when all of them have, or its time is over.
class Held_clients {
 public:
    using Time = simulation::Time;

    /// `find` is told what was broken.
    Held_clients(Terms const& terms, std::function<void(std::string const&)> find)
        : terms_(terms), find_(std::move(find)) {}

    void begin_suspend();
    void begin_resume();

    /// What a client does, and what happens to it.
    void take_client(Time now, std::string const& name, std::string const& what);

    /// A line of the log that tells of a group, if it does; a sequence `may_begin` in some states.
    void take_log(Time now, std::string const& text, bool may_begin);

    /// Nothing is overdue.
    void check(Time now) const;

    exploration::Notifier_model& notifier() { return notifier_; }

 private:
    struct Client {
        unsigned connections{0};
        unsigned at_request{0};  ///< of these, when its group was asked last
        unsigned asked{0};       ///< by that request
        unsigned answered{0};
        unsigned greeted{0};    ///< has come in another state, and was not told the current one yet
        bool is_unsure{false};  ///< several have the name: who of them was asked or answers can't be told
        Time changed_at{-1};    ///< came or left
    };

    void asked(std::string const& name, std::string const& state);
    void group_asked(Time now, std::string const& text, bool may_begin);
    void group_completed(Time now, std::string const& text);
    Time limit_of(exploration::Group group) const;

    Terms const& terms_;
    std::function<void(std::string const&)> const find_;
    exploration::Notifier_model notifier_;
    bool sequence_begins_{false};
    std::map<std::string, Client> clients_;
    Time asked_at_{0};
    Time answered_at_{0};  ///< the last answer, or the last change of who is there
};

}  // namespace lives

#endif
