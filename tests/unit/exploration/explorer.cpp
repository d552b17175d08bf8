#include "explorer.h"

#include <algorithm>

#include <gtest/gtest.h>

namespace exploration {

namespace {

constexpr std::array<Virtio_command, 5> k_keys{Virtio_command::run, Virtio_command::nm_controlled,
                                               Virtio_command::nm_controlled_prepare_sd, Virtio_command::prepare_sd,
                                               Virtio_command::shutdown};

std::string words(Action const& action) {
    switch (action.kind) {
        case Action::Kind::press:
            return "press " + toString(action.key);
        case Action::Kind::answer:
            return "answer " + std::to_string(action.status);
        default:
            std::string text = "cycle";
            for (bool const condition : action.conditions) {
                text += condition ? " yes" : " no";
            }
            return text;
    }
}

}  // namespace

Explorer::Explorer(Surroundings const& surroundings, std::string status_file)
    : surroundings_(surroundings),
      status_file_(std::move(status_file)),
      power_off_service_(surroundings.has_power_off_service ? std::make_unique<Power_off_channel>() : nullptr) {}

void Explorer::explore() {
    Point const start = Walk(surroundings_, status_file_, log_, power_off_service_.get()).point();
    nodes_.push_back({start, 0, {Action::Kind::cycle}, {}});
    known_.emplace(start, 0);
    for (std::size_t node = 0; node < nodes_.size() && !testing::Test::HasFailure(); ++node) {
        expand(node);
        if (testing::Test::HasFailure()) {
            ADD_FAILURE() << "on the way: " << way_to(node);
        }
    }
}

std::size_t Explorer::edge_count() const {
    std::size_t count = 0;
    for (auto const& node : nodes_) {
        count += node.edges.size();
    }
    return count;
}

std::string Explorer::way_to(std::size_t node) const {
    std::string text;
    for (auto const& action : way(node)) {
        text += words(action) + ", ";
    }
    return text + "to " + name_of(nodes_[node].point.state);
}

void Explorer::expand(std::size_t node) {
    go_through_all_cycles(node);
    if (nodes_[node].point.has_ended) {
        return;
    }
    press_keys(node);
    if (nodes_[node].point.notifier.asked()) {
        answer(node);
    }
}

/// The keys that wait are read by the queue alone, and each later cycle checks that the queue is as the point says; so
/// there is no need of a machine for each press.
void Explorer::press_keys(std::size_t node) {
    for (auto const key : k_keys) {
        Point pressed = nodes_[node].point;
        pressed.press(key);
        if (pressed.queue.size() <= k_longest_queue) {
            add_edge(node, {Action::Kind::press, key}, pressed);
        }
    }
}

/// All values of those conditions that the cycle asks for: each cycle shows at which conditions it could have gone
/// another way.
void Explorer::go_through_all_cycles(std::size_t node) {
    std::deque<std::vector<bool>> untried{{}};
    while (!untried.empty()) {
        auto const given = untried.front();
        untried.pop_front();
        auto conditions = go(node, {Action::Kind::cycle, Virtio_command::none, given}).conditions;
        while (conditions.size() > given.size()) {
            conditions.back() = true;
            untried.push_back(conditions);
            conditions.pop_back();
        }
    }
}

void Explorer::answer(std::size_t node) {
    for (unsigned const status : {0U, 1U, 2U}) {
        go(node, {Action::Kind::answer, Virtio_command::none, {}, status});
    }
}

Action Explorer::go(std::size_t node, Action const& action) {
    Walk walk(surroundings_, status_file_, log_, power_off_service_.get());
    for (auto const& step : way(node)) {
        walk.go(step);
    }
    Action done = walk.go(action);
    add_edge(node, done, walk.point());
    return done;
}

void Explorer::add_edge(std::size_t node, Action const& action, Point const& reached) {
    auto const [known, is_new] = known_.emplace(reached, nodes_.size());
    if (is_new) {
        nodes_.push_back({reached, node, action, {}});
    }
    nodes_[node].edges.push_back({action, known->second});
}

std::vector<Action> Explorer::way(std::size_t node) const {
    std::vector<Action> actions;
    for (; node != 0; node = nodes_[node].from) {
        actions.push_back(nodes_[node].by);
    }
    std::reverse(actions.begin(), actions.end());
    return actions;
}

}  // namespace exploration
