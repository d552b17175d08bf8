#include "bench/client/behaviour.h"

#include <algorithm>
#include <array>
#include <utility>

namespace bench::client {

namespace {

constexpr std::array<std::pair<Manner, char const*>, 5> k_names{{{Manner::well, "well"},
                                                                 {Manner::late, "late"},
                                                                 {Manner::silent, "silent"},
                                                                 {Manner::failing, "failing"},
                                                                 {Manner::crashing, "crashing"}}};

}  // namespace

std::string name(Manner manner) {
    auto const* const found =
        std::find_if(k_names.begin(), k_names.end(), [manner](auto const& entry) { return entry.first == manner; });
    return found->second;
}

std::optional<Manner> manner_named(std::string const& name) {
    auto const* const found =
        std::find_if(k_names.begin(), k_names.end(), [&name](auto const& entry) { return entry.second == name; });
    return found != k_names.end() ? std::optional(found->first) : std::nullopt;
}

}  // namespace bench::client
