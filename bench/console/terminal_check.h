#ifndef BENCH_CONSOLE_TERMINAL_CHECK_H
#define BENCH_CONSOLE_TERMINAL_CHECK_H

#include <string>

namespace bench::console {

/// Why the console can't be shown on the terminal at standard output; empty when it can. To be asked before the machine
/// is built up: what the library that draws says itself goes where nobody sees it.
std::string why_no_console();

}  // namespace bench::console

#endif
