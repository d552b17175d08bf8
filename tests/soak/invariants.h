#ifndef TESTS_SOAK_INVARIANTS_H
#define TESTS_SOAK_INVARIANTS_H

#include "bench/rules/rules.h"
#include "bench/vehicle/timeline.h"
#include "script.h"

#include <cstdint>
#include <functional>
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

    virtual void hear(Event const& event, Finding const& finding) = 0;

    /// What is still to come, or ought to have, when nothing goes on any more; empty when all is well.
    virtual std::string missing_at_rest() { return {}; }
};

/// The control file's words follow each other as the tables of the states allow.
class Words : public Invariant {
 public:
    void hear(Event const& event, Finding const& finding) override;
    std::optional<bench::rules::State> state() const { return state_; }

 private:
    std::optional<bench::rules::State> state_;
};

/// A suspend and a resume take no longer than the configuration allows their clients.
class Budget : public Invariant {
 public:
    explicit Budget(Circumstances const& circumstances) : circumstances_(circumstances) {}
    void hear(Event const& event, Finding const& finding) override;

 private:
    Circumstances const& circumstances_;
    std::string word_;
    std::int64_t since_{0};
};

/// The daemon reports alive as long as somebody listens.
class Beats : public Invariant {
 public:
    explicit Beats(Circumstances const& circumstances) : circumstances_(circumstances) {}
    void hear(Event const& event, Finding const& finding) override;

 private:
    Circumstances const& circumstances_;
    std::int64_t last_{0};
};

/// Each warning and error has its reason among what happened.
class Complaints : public Invariant {
 public:
    explicit Complaints(Circumstances const& circumstances) : circumstances_(circumstances) {}
    void hear(Event const& event, Finding const& finding) override;

 private:
    Circumstances const& circumstances_;
};

}  // namespace soak

#endif
