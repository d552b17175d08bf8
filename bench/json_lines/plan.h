#ifndef BENCH_JSON_LINES_PLAN_H
#define BENCH_JSON_LINES_PLAN_H

#include <algorithm>
#include <cstdint>
#include <deque>
#include <string>
#include <tuple>

namespace bench {

/// What a player was told beforehand for what will happen: each counts so often. `Keys` say what it is for; of texts
/// "*" fits any. A default `What` is the usual way.
template <class What, class... Keys>
class Plan {
 public:
    void add(Keys const&... keys, What const& what, std::uint64_t count) {
        if (count > 0) {
            planned_.push_back({{keys...}, what, count});
        }
    }

    /// Uses up the oldest that fits; the usual way when there is none.
    What take(Keys const&... keys) {
        auto const found = oldest_for(*this, {keys...});
        if (found == planned_.end()) {
            return {};
        }
        What what = found->what;
        if (--found->left == 0) {
            planned_.erase(found);
        }
        return what;
    }

    bool has(Keys const&... keys) const { return oldest_for(*this, {keys...}) != planned_.end(); }
    void clear() { planned_.clear(); }

 private:
    struct Planned {
        std::tuple<Keys...> keys;
        What what;
        std::uint64_t left;
    };

    static bool fits(std::string const& planned, std::string const& seen) { return planned == "*" || planned == seen; }
    template <class Key>
    static bool fits(Key planned, Key seen) {
        return planned == seen;
    }

    template <class Self>
    static auto oldest_for(Self& self, std::tuple<Keys...> const& seen) {
        return std::find_if(self.planned_.begin(), self.planned_.end(), [&](Planned const& planned) {
            return std::apply(
                [&](Keys const&... wanted) {
                    return std::apply([&](Keys const&... keys) { return (fits(wanted, keys) && ...); }, seen);
                },
                planned.keys);
        });
    }

    std::deque<Planned> planned_;
};

}  // namespace bench

#endif
