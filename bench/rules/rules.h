#ifndef BENCH_RULES_RULES_H
#define BENCH_RULES_RULES_H

#include <string>
#include <vector>

/// The transition tables of the machine's eight states, told once: the tour reaches each row, the page of the states
/// prints them, and tests hold the real states and the whole machine against them. It knows nothing of the daemon.
namespace bench::rules {

/// The numbers are the daemon's.
enum class State : unsigned {
    starting_up,
    running,
    nm_controlled,
    post_run,
    shutting_down,
    preparing,
    prepared_sd,
    resuming,
    stay  ///< no transition
};
enum class Command : unsigned { none, run, nm_controlled, nm_controlled_prepare_sd, prepare_sd, shutdown };

/// What a cycle finds. A row asks only as far as one answer decides.
class Situation {
 public:
    virtual ~Situation() = default;
    virtual Command command() const = 0;         ///< the oldest that waits
    virtual bool nm_is_used() const = 0;         ///< by the configuration
    virtual bool nm_is_found() const = 0;        ///< the network manager's services
    virtual bool network_sleeps() const = 0;     ///< two reports of rest in a row
    virtual bool ecu_is_kept() const = 0;        ///< an application keeps the ECU alive
    virtual bool com_is_kept() const = 0;        ///< an application keeps communication alive
    virtual bool is_to_prepare() const = 0;      ///< key s began the network phase, not key n
    virtual bool time_is_over() const = 0;       ///< of Post Run
    virtual bool clients_are_asked() const = 0;  ///< some still have to answer
};

/// What becomes of the intention to prepare for a suspend when the network phase is over.
enum class Intention { stays, begins, ends };

/// One row of a state's table. In each cycle the first row of the current state that holds decides.
struct Row {
    State from;
    int number;
    char const* condition;
    char const* result;
    bool (*holds)(Situation const&);
    State to;
    Intention intention;
    char const* message;  ///< what the state logs, "" for nothing; at level verbose unless it stays
    char const* label;    ///< at the arrow of the diagram
};

/// "NM Controlled".
char const* name(State state);

/// Names a row: "NM Controlled 2".
std::string name(Row const& row);

/// The rows of all eight states in the order of the states in a life, and of their tables.
std::vector<Row> const& rows();

/// The row that decides; each state has one for every situation.
Row const& deciding_row(State state, Situation const& situation);

}  // namespace bench::rules

#endif
