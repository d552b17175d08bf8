#ifndef TESTS_UNIT_EXPLORATION_EXPLORER_H
#define TESTS_UNIT_EXPLORATION_EXPLORER_H

#include "walk.h"

#include <deque>
#include <map>
#include <string>
#include <vector>

namespace exploration {

/// Every point that a machine can come to, breadth first, with all ways on from it. A point is reached again by going
/// the shortest way to it from the start with a new machine, since a machine can't be copied.
class Explorer {
 public:
    /// Keys are pressed as long as fewer than this wait. The build decides.
    static constexpr std::size_t k_longest_queue = LONGEST_QUEUE;

    struct Edge {
        Action action;
        std::size_t to;
    };
    struct Node {
        Point point;
        std::size_t from;  ///< the node before it on the shortest way; itself for the first
        Action by;
        std::vector<Edge> edges;
    };

    Explorer(Surroundings const& surroundings, std::string status_file);

    /// Goes everywhere; stops early when a rule was broken.
    void explore();

    std::vector<Node> const& nodes() const { return nodes_; }
    std::size_t edge_count() const;

    /// The shortest way to a point, in words.
    std::string way_to(std::size_t node) const;

 private:
    void expand(std::size_t node);
    void press_keys(std::size_t node);
    void go_through_all_cycles(std::size_t node);
    void answer(std::size_t node);
    Action go(std::size_t node, Action const& action);
    void add_edge(std::size_t node, Action const& action, Point const& reached);
    std::vector<Action> way(std::size_t node) const;

    Surroundings surroundings_;
    std::string status_file_;
    std::unique_ptr<Power_off_channel> power_off_service_;
    Driver_log log_;
    std::vector<Node> nodes_;
    std::map<Point, std::size_t> known_;
};

}  // namespace exploration

#endif
