// Goes through everything that the machine can do: the real driver, states, notifier and command queue, among a
// network, applications and clients that may do anything at any time. In each cycle the rules (bench/rules/rules.h)
// tell which state is entered, if any, and what becomes of the flags, and the machine is held against that (walk.h);
// here follow the rules about the whole.

#include "explorer.h"
#include "statemanager/states/state_interface.h"
#include "support/temporary_directory.h"

#include <algorithm>
#include <cstdio>

#include <gmock/gmock.h>

namespace exploration {
namespace {

namespace states = ximo::ap::statemanager::states;

class Exploration : public testing::TestWithParam<Surroundings> {
 protected:
    using Node = Explorer::Node;

    /// Points from which no way leads to one of the wanted.
    template <class Wanted>
    std::vector<std::size_t> without_way_to(Wanted const& wanted) const {
        auto const& nodes = sut.nodes();
        std::vector<std::vector<std::size_t>> before(nodes.size());
        std::vector<std::size_t> open;
        std::vector<bool> reached(nodes.size());
        for (std::size_t node = 0; node < nodes.size(); ++node) {
            for (auto const& edge : nodes[node].edges) {
                before[edge.to].push_back(node);
            }
            if (wanted(nodes[node].point)) {
                reached[node] = true;
                open.push_back(node);
            }
        }
        while (!open.empty()) {
            auto const node = open.back();
            open.pop_back();
            for (auto const earlier : before[node]) {
                if (!reached[earlier]) {
                    reached[earlier] = true;
                    open.push_back(earlier);
                }
            }
        }
        std::vector<std::size_t> without;
        for (std::size_t node = 0; node < nodes.size(); ++node) {
            if (!reached[node]) {
                without.push_back(node);
            }
        }
        return without;
    }

    /// How many answers and cycles it takes, without a further key, until the notification is over.
    unsigned steps_to_end_of_notification(std::size_t node) const {
        unsigned steps = 0;
        while (is_notifying(sut.nodes()[node].point) && steps <= k_longest_notification) {
            auto const wanted = sut.nodes()[node].point.notifier.asked() ? Action::Kind::answer : Action::Kind::cycle;
            auto const& edges = sut.nodes()[node].edges;
            node = std::find_if(edges.begin(), edges.end(), [&](auto const& edge) {
                       return edge.action.kind == wanted;
                   })->to;
            ++steps;
        }
        return steps;
    }

    static bool is_notifying(Point const& point) {
        return point.state == states::k_preparing || point.state == states::k_resuming;
    }

    /// Prints the size of what was explored; every state is to be in it.
    void print_counts() const {
        std::array<std::size_t, 8> points{};
        for (auto const& node : sut.nodes()) {
            ++points.at(node.point.state);
        }
        std::printf("%zu points, %zu edges\n", sut.nodes().size(), sut.edge_count());
        for (unsigned state = 0; state < points.size(); ++state) {
            std::printf("%8zu points in %s\n", points.at(state), name_of(state).c_str());
            bool const needs_nm = state == states::k_nm_controlled || state == states::k_post_run;
            EXPECT_EQ(points.at(state) > 0, GetParam().nm_usage || !needs_nm);
        }
    }

    /// Three groups, an answer and a cycle each, on the way there and back.
    static constexpr unsigned k_longest_notification = 12;

    test_support::Temporary_directory files;
    Explorer sut{GetParam(), files.file("status")};
};

TEST_P(Exploration, Every_point_keeps_the_rules_and_none_is_a_dead_end) {
    sut.explore();
    print_counts();
    ASSERT_FALSE(HasFailure());
    for (auto const node : without_way_to([](Point const& point) { return point.state == states::k_shutting_down; })) {
        ADD_FAILURE() << "no shutdown after " << sut.way_to(node);
    }
    auto const is_running_or_shut_down = [](Point const& point) {
        return point.state == states::k_running || point.state == states::k_shutting_down;
    };
    for (auto const node : without_way_to(is_running_or_shut_down)) {
        ADD_FAILURE() << "neither running nor shut down after " << sut.way_to(node);
    }
    for (std::size_t node = 0; node < sut.nodes().size(); ++node) {
        EXPECT_LE(steps_to_end_of_notification(node), k_longest_notification) << sut.way_to(node);
    }
}

std::string name_of_surroundings(testing::TestParamInfo<Surroundings> const& info) {
    return std::string(info.param.nm_usage ? "with_network_management" : "without_network_management") +
           (info.param.has_power_off_service ? "_and_power_off_service" : "");
}

INSTANTIATE_TEST_SUITE_P(A_machine, Exploration,
                         testing::Values(Surroundings{true, true}, Surroundings{true, false}, Surroundings{false, true},
                                         Surroundings{false, false}),
                         name_of_surroundings);

}  // namespace
}  // namespace exploration
