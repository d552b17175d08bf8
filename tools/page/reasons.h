#ifndef TOOLS_PAGE_REASONS_H
#define TOOLS_PAGE_REASONS_H

#include "tools/page/page_view.h"

#include <string>
#include <vector>

namespace statectl {

/// Why the machine stays where it is, or what is wrong with it: a word of a closed list (ap_statectl(1) has it), and
/// its sentence.
struct Reason {
    std::string code;
    std::string text;
};

/// What the current state waits for, and why a command waits; the first one is what the state waits for.
std::vector<Reason> reasons_of(Snapshot const& page);

/// What is wrong.
std::vector<Reason> troubles_of(Snapshot const& page);

}  // namespace statectl

#endif
