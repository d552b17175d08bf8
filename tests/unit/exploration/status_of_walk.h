#ifndef TESTS_UNIT_EXPLORATION_STATUS_OF_WALK_H
#define TESTS_UNIT_EXPLORATION_STATUS_OF_WALK_H

#include "bench/rules/rules.h"
#include "point.h"

namespace exploration {

/// The status page of a machine that walks, held against what the walk knows.
class Status_of_walk {
 public:
    explicit Status_of_walk(bool nm_usage);
    ~Status_of_walk();
    Status_of_walk(Status_of_walk const&) = delete;
    Status_of_walk& operator=(Status_of_walk const&) = delete;

    /// State, queue, last key and knock-out count are the point's.
    void check(Point const& point) const;

    /// What a cycle tells when it begins is that of the point before it.
    void check_beat(Point const& point) const;

    /// The last transition is told with the row that was due.
    void check_cause(bench::rules::Row const& row) const;
};

}  // namespace exploration

#endif
