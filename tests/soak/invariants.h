#ifndef TESTS_SOAK_INVARIANTS_H
#define TESTS_SOAK_INVARIANTS_H

#include "bench/rules/rules.h"
#include "bench/vehicle/timeline.h"
#include "holds.h"
#include "notifier_model.h"
#include "script.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace soak {

using bench::vehicle::Event;
using bench::vehicle::Kind;

/// What the invariants know of the machine besides its events.
struct Circumstances {
    bool nm_usage{true};
    std::int64_t period_ms{100};
    std::int64_t application_s{60};
    std::int64_t diagnosis_s{60};

    struct Stall {
        std::int64_t begin;
        std::int64_t end;
    };
    std::vector<Stall> stalls{};  ///< something stood still, or the processors were busy
    std::set<Verb> happened{};    ///< to the machine
    bool log_has_hole{false};     ///< since the daemon was started
    bool is_supervised{true};     ///< by the service manager that was there at the start

    /// How much of a time was part of stalls.
    std::int64_t stalled_in(std::int64_t begin, std::int64_t end) const;
};

/// What must hold of one daemon from its start to its end. Told everything in the order in which it became known.
class Invariant {
 public:
    using Finding = std::function<void(std::string const&)>;

    Invariant() = default;
    virtual ~Invariant() = default;
    Invariant(Invariant const&) = delete;
    Invariant& operator=(Invariant const&) = delete;

    virtual void take(Event const& event, Finding const& finding) = 0;

    /// What is still to come, or ought to have, when nothing goes on any more; empty when all is well.
    virtual std::string missing_at_rest() { return {}; }
};

/// What is known of a cycle of the driver's, and a guess of what is not.
struct Situation : bench::rules::Situation {
    bench::rules::Command head{};
    bool nm_usage{};
    bool found{};
    bool sleeps{};
    bool ecu{};
    bool com{};
    bool prepares{};
    bool time_over{};
    bool asked{};

    bench::rules::Command command() const override { return head; }
    bool nm_is_used() const override { return nm_usage; }
    bool nm_is_found() const override { return found; }
    bool network_sleeps() const override { return sleeps; }
    bool ecu_is_kept() const override { return ecu; }
    bool com_is_kept() const override { return com; }
    bool is_to_prepare() const override { return prepares; }
    bool time_is_over() const override { return time_over; }
    bool clients_are_asked() const override { return asked; }
};

/// The control file's words follow each other as the tables of the states allow.
class Words : public Invariant {
 public:
    void take(Event const& event, Finding const& finding) override;
    std::optional<bench::rules::State> state() const { return state_; }

 private:
    std::optional<bench::rules::State> state_;
};

/// The driver: each key is taken or dropped as the queue's rules say, each transition is that of the first row that
/// can hold, each state writes its word, and no row that holds is forgotten.
class Way : public Invariant {
 public:
    Way(Circumstances const& circumstances, Holds const& holds) : circumstances_(circumstances), holds_(holds) {}

    void take(Event const& event, Finding const& finding) override;
    std::string missing_at_rest() override;

    bench::rules::State state() const { return state_; }
    bool is_held_up() const;  ///< at rest: by a key that its state does not take, or in the last state

 private:
    void take_log(std::string const& text, Finding const& finding);
    void press(std::string const& key);
    void go(bench::rules::State to, Finding const& finding);
    void take_notifier(std::string const& text, Finding const& finding);
    bool may_go(bench::rules::State to);
    Situation situation() const;

    Circumstances const& circumstances_;
    Holds const& holds_;
    bench::rules::State state_{bench::rules::State::starting_up};
    bool is_to_prepare_{false};
    bool is_asleep_{false};
    std::deque<std::string> coming_;  ///< commands whose keys were pressed, not taken yet
    std::string last_pressed_;
    std::deque<std::string> queue_;
    std::deque<std::string> entered_{"startingup"};  ///< words of the states, as the log tells them
    std::deque<std::string> written_;
    exploration::Notifier_model notifier_;
    bool is_asking_{false};  ///< a sequence has begun, its first group is next
};

/// Clients are asked in their groups, each connection once by each request of its group, with numbers that go up by
/// one; a group has its time, no less and no more.
class Asking : public Invariant {
 public:
    explicit Asking(Circumstances const& circumstances) : circumstances_(circumstances) {}

    void take(Event const& event, Finding const& finding) override;
    std::string missing_at_rest() override;

 private:
    /// One connection, as the server and as the client tell of it.
    struct Connection {
        std::vector<std::string> sent{};
        std::vector<std::string> received{};
        int number{0};
        bool is_over{false};
    };
    struct Client {
        std::vector<Connection> all{};
        std::size_t server{0};  ///< that the server has told of
        std::size_t client{0};
    };

    void take_log(Event const& event, Finding const& finding);
    void take_act(Event const& event, Finding const& finding);
    void judge_time(Event const& event, Finding const& finding);
    void send(std::string const& state);
    Connection& at(Client& client, std::size_t count);

    Circumstances const& circumstances_;
    std::map<std::string, Client> clients_;
    std::string group_;         ///< asked last
    std::int64_t asked_at_{0};  ///< 0 when all of it is over
};

/// A suspend and a resume take no longer than the configuration allows their clients.
class Budget : public Invariant {
 public:
    explicit Budget(Circumstances const& circumstances) : circumstances_(circumstances) {}
    void take(Event const& event, Finding const& finding) override;

 private:
    Circumstances const& circumstances_;
    std::string word_;
    std::int64_t since_{0};
};

/// The daemon reports alive as long as somebody listens.
class Beats : public Invariant {
 public:
    explicit Beats(Circumstances const& circumstances) : circumstances_(circumstances) {}
    void take(Event const& event, Finding const& finding) override;

 private:
    Circumstances const& circumstances_;
    std::int64_t last_{0};
};

/// Each warning and error has its reason among what happened.
class Complaints : public Invariant {
 public:
    explicit Complaints(Circumstances const& circumstances) : circumstances_(circumstances) {}
    void take(Event const& event, Finding const& finding) override;

 private:
    Circumstances const& circumstances_;
};

}  // namespace soak

#endif
