#include "bench/rules/rules.h"
#include "bench/tour/tour.h"

#include <algorithm>
#include <cstdio>
#include <map>

namespace bench::tour {

namespace {

/// The steps that reached each row, by its name: the first one.
std::map<std::string, std::string> reached(std::vector<Step> const& steps, std::vector<Finding> const& findings) {
    std::map<std::string, std::string> result;
    for (auto const& step : steps) {
        bool const failed = std::any_of(findings.begin(), findings.end(), [&](Finding const& finding) {
            return finding.step == step.name && !finding.seen;
        });
        bool const walked = std::any_of(findings.begin(), findings.end(),
                                        [&](Finding const& finding) { return finding.step == step.name; });
        for (auto const& row : step.rows) {
            if (walked && !failed) {
                result.emplace(row, step.name);
            }
        }
    }
    return result;
}

}  // namespace

bool print_summary(std::vector<Finding> const& findings) {
    std::printf("\n%-55s %-70s %s\n", "step", "expected", "seen");
    std::string step;
    std::size_t seen = 0;
    for (auto const& finding : findings) {
        std::printf("%-55s %-70s %s\n", finding.step == step ? "" : finding.step.c_str(), finding.expected.c_str(),
                    finding.seen ? "yes" : "NO");
        step = finding.step;
        seen += finding.seen ? 1U : 0U;
    }
    std::printf("\n%zu of %zu expectations seen\n", seen, findings.size());
    return seen == findings.size();
}

bool print_rows(std::vector<Step> const& steps, std::vector<Finding> const& findings) {
    auto const steps_by_row = reached(steps, findings);
    std::printf("\n%-16s %-52s %-38s %s\n", "row of a state", "condition", "expected", "seen in step");
    std::size_t seen = 0;
    for (auto const& row : rules::rows()) {
        auto const step = steps_by_row.find(rules::name(row));
        bool const is_reached = step != steps_by_row.end();
        std::printf("%-16s %-52s %-38s %s\n", rules::name(row).c_str(), row.condition, row.result,
                    is_reached ? step->second.c_str() : "NOT SEEN");
        seen += is_reached ? 1U : 0U;
    }
    std::printf("\n%zu of %zu rows of the states' tables seen\n", seen, rules::rows().size());
    return seen == rules::rows().size();
}

}  // namespace bench::tour
