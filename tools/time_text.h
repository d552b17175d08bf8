#ifndef TOOLS_TIME_TEXT_H
#define TOOLS_TIME_TEXT_H

#include <chrono>
#include <string>

namespace statectl {

/// A moment with its time zone's offset, as in 2026-11-21T07:43:11.123+0000.
std::string time_text(std::chrono::system_clock::time_point time);

}  // namespace statectl

#endif
