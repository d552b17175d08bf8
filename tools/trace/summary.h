#ifndef TOOLS_TRACE_SUMMARY_H
#define TOOLS_TRACE_SUMMARY_H

#include "tools/trace/life.h"

#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace statectl::trace {

/// A power cycle: from a start or a resume to the suspend or the end. Its stays are those from `first` up to `last`.
struct Cycle {
    Life const* life;
    std::size_t number;  ///< in its life, from 1
    std::size_t first;
    std::size_t last;
    double begin;
    double end;
};

std::vector<Cycle> cycles_of(Life const& life);

/// How long a group was asked, over all lives.
struct Group_total {
    unsigned times{0};
    unsigned late{0};  ///< times in which somebody did not answer in time
    double total{0};
    double longest{0};
};

/// What an application has held, over all lives.
struct Hold_total {
    unsigned times{0};
    double total{0};
    double awake{0};  ///< of that, while the machine would have gone to sleep: in NM Controlled and Post Run
};

/// What cost the machine time, the dearest first.
struct Offender {
    double seconds;
    std::string text;
};

struct Summary {
    std::map<std::pair<std::string, std::string>, Group_total> groups;  ///< by "suspend" or "resume", and group
    std::map<std::string, Client_account> clients;
    std::map<std::pair<std::string, std::string>, Hold_total> holds;  ///< by what, and who
    std::vector<Offender> offenders;
};

Summary summary_of(Story const& story);

/// How a sequence went: "the suspend took 9.0 s: DCM 0.1 s, applications 8.8 s (radio timed out), DEM 0.1 s".
std::string sentence_of(Sequence const& sequence, Life const& life);

/// "12.3 s", "2 min 5 s", "3 h 4 min".
std::string duration_text(double seconds);

/// When a life began: its date where the trace has it, its machine's seconds otherwise.
std::string begin_text(Life const& life);

}  // namespace statectl::trace

#endif
