#include "bench/vm/word_splitter.h"

#include <algorithm>
#include <array>

namespace bench::vm {

namespace {

constexpr std::array<std::string_view, 11> k_words{"startingup", "running",   "shuttingdown", "runnmcontrolled",
                                                   "postrun",    "preparing", "prepared4sd",  "resuming",
                                                   "restartao",  "restartm3", "cancel"};

bool begins_with(std::string_view text, std::string_view beginning) {
    return text.substr(0, beginning.size()) == beginning;
}

}  // namespace

std::vector<std::string> Word_splitter::add(std::string_view bytes) {
    waiting_.append(bytes);
    std::vector<std::string> words;
    while (!waiting_.empty()) {
        auto const* const complete =
            std::find_if(k_words.begin(), k_words.end(), [this](auto word) { return begins_with(waiting_, word); });
        if (complete != k_words.end()) {
            words.emplace_back(*complete);
            waiting_.erase(0, complete->size());
        } else if (std::any_of(k_words.begin(), k_words.end(),
                               [this](auto word) { return begins_with(word, waiting_); })) {
            break;  // the rest of it is on its way
        } else {
            waiting_.erase(0, 1);
        }
    }
    return words;
}

}  // namespace bench::vm
