#ifndef BENCH_VM_WORD_SPLITTER_H
#define BENCH_VM_WORD_SPLITTER_H

#include <string>
#include <string_view>
#include <vector>

namespace bench::vm {

/// Cuts the bytes of a port into the words that the machine wrote there. Nothing separates them, but no word begins
/// with another one, so each ends where it is complete. Bytes that begin no word are left out.
class Word_splitter {
 public:
    /// The words that these bytes complete.
    std::vector<std::string> add(std::string_view bytes);

 private:
    std::string waiting_;
};

}  // namespace bench::vm

#endif
