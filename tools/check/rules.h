#ifndef TOOLS_CHECK_RULES_H
#define TOOLS_CHECK_RULES_H

#include "tools/check/scene.h"

#include <string>
#include <vector>

namespace statectl::check {

/// What a client must do. Each rule is looked at in a run of its own; a program that breaks one may hold all others.
struct Rule {
    std::string name;
    std::string text;
    void (*check)(Scene& scene);  ///< throws Broken or Not_checkable
};

/// Every rule, in the order in which they are told.
std::vector<Rule> const& rules();

// The groups they stand in.
std::vector<Rule> introduction_rules();
std::vector<Rule> answer_rules();
std::vector<Rule> request_rules();
std::vector<Rule> life_rules();

/// What becomes of one rule with this program.
Verdict judge(Rule const& rule, Start const& start, Limits const& limits);

}  // namespace statectl::check

#endif
