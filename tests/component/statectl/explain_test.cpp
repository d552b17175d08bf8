#include "statectl.h"

#include <string>

#include <gmock/gmock.h>

namespace statectl {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

/// What is told of a trace through a pipe that stays open until `end` is run; the first line was told before.
Result explained(std::string const& end) {
    return run_shell("coproc EXPLAIN { exec " STATECTL
                     " explain - --follow; }; exec 3<&${EXPLAIN[0]} 4>&${EXPLAIN[1]}; "
                     "process=$EXPLAIN_PID; eval \"exec ${EXPLAIN[0]}<&- ${EXPLAIN[1]}>&-\"; cat " TRACES
                     "/tour.dlt >&4; read -r -u 3 line; echo \"live: $line\"; " +
                     end + "; cat <&3; wait $process");
}

TEST(Explain, Tells_each_state_while_its_pipe_is_open_and_the_whole_at_its_end) {
    auto const result = explained("exec 4>&-");
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_THAT(result.output, StartsWith("live: 20"));
    EXPECT_THAT(result.output, testing::ContainsRegex("  Running: [a-z]"));
    EXPECT_THAT(result.output, HasSubstr(" of the state manager in "));
}

TEST(Explain, Tells_the_whole_when_it_is_interrupted) {
    auto const result = explained("kill -INT $process");
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_THAT(result.output, HasSubstr(" of the state manager in "));
}

}  // namespace
}  // namespace statectl
