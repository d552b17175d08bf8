#ifndef TESTS_UNIT_TRACE_TOLD_H
#define TESTS_UNIT_TRACE_TOLD_H

#include "dlt_bytes.h"
#include "tools/trace/narrator.h"

#include <string>
#include <utility>
#include <vector>

namespace trace_test {

/// The story of a trace.
inline statectl::trace::Story story_of(std::string const& bytes) {
    dlt::Reader reader;
    statectl::trace::Narrator narrator;
    reader.add(bytes);
    reader.end();
    while (auto message = reader.next()) {
        narrator.hear(std::move(*message));
    }
    return narrator.end(reader);
}

inline statectl::trace::Story told(std::vector<Words> const& lines) {
    std::string bytes;
    for (auto const& line : lines) {
        bytes += bytes_of(line);
    }
    return story_of(bytes);
}

using Line = std::pair<double, std::vector<std::string>>;

inline void add(std::vector<Words>& lines, std::vector<Line> const& more) {
    for (auto const& [time, arguments] : more) {
        lines.push_back({arguments, time});
    }
}

/// A start up to Running.
inline std::vector<Words> start() {
    std::vector<Words> lines;
    add(lines, {{0.5, {"Configuration for hostname: ", "java-vm"}},
                {0.5, {"NM usage is enabled"}},
                {0.5, {"Entering startup state"}},
                {0.6, {"AP_StateManger daemon started"}},
                {1.0, {"AP_StateManger transition from", "Starting up", " to ", "Running"}}});
    return lines;
}

/// From there to a suspend for which the radio was too late, and a power-off.
inline std::vector<Words> suspend_by_key() {
    auto lines = start();
    add(lines,
        {{10.0, {"New command received", "PrepareSD"}},
         {10.0, {"AP_StateManger transition from", "Running", " to ", "Preparing"}},
         {10.0, {"Starting standby sequence"}},
         {10.0, {"Requesting ", "kPrepSD", " mode for DCM"}},
         {10.0, {"Consumed VirtIO command: ", "PrepareSD"}},
         {10.1, {"Received DCM client completion notification for ", "kPrepSD", ". Status: ", "0"}},
         {10.1, {"State notification client [", "diag::dcm", "] succeeded"}},
         {10.1, {"Requesting ", "kPrepSD", " mode for client applications"}},
         {18.9, {"Received application client completion notification for ", "kPrepSD", ". Status: ", "1"}},
         {18.9, {"State notification client [", "navigation", "] succeeded"}},
         {18.9, {"State notification client [", "radio", "] timed out"}},
         {18.9, {"Requesting ", "kPrepSD", " mode for DEM"}},
         {19.0, {"Received DEM client completion notification for ", "kPrepSD", ". Status: ", "0"}},
         {19.0, {"State notification client [", "diag::dem", "] succeeded"}},
         {19.0, {"AP_StateManger transition from", "Preparing", " to ", "PreparedSD"}},
         {19.5, {"Client ", "radio", " errorneously reported state change to ", "kPrepSD", ". Client status: ", "0"}},
         {20.0, {"New command received", "Shutdown"}},
         {20.0, {"AP_StateManger transition from", "PreparedSD", " to ", "Shutting down"}},
         {20.0, {"Fast shutdown executed"}},
         {20.0, {"Consumed VirtIO command: ", "Shutdown"}}});
    return lines;
}

}  // namespace trace_test

#endif
