#ifndef BENCH_PROCESS_UNASKED_END_H
#define BENCH_PROCESS_UNASKED_END_H

#include <string>

namespace bench {

/// A program came to an end that nobody had asked for: by itself, by a signal, with a sanitizer's status, or not at
/// all. Told on standard error, or to the one who hears of it instead.
void unasked_end(std::string const& what);

/// From now on `hear` is told, on the thread that lets the program go. Tests fail by it.
void hear_unasked_ends(void (*hear)(std::string const& what));

}  // namespace bench

#endif
