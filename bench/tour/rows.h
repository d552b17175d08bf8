#ifndef BENCH_TOUR_ROWS_H
#define BENCH_TOUR_ROWS_H

#include <string>
#include <vector>

namespace bench::tour {

/// One row of a state's transition table. In each cycle the first row of the current state whose condition holds
/// decides.
struct Row {
    std::string state;
    int number;
    std::string condition;
    std::string result;  ///< the next state; "stay" for none
};

/// Names a row: "NM Controlled 2".
std::string name(Row const& row);

/// The rows of all eight states in the order of the states and of their tables.
std::vector<Row> const& rows();

}  // namespace bench::tour

#endif
