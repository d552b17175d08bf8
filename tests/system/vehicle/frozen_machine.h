#ifndef TESTS_SYSTEM_VEHICLE_FROZEN_MACHINE_H
#define TESTS_SYSTEM_VEHICLE_FROZEN_MACHINE_H

#include "network_machine.h"
#include "support/freezer.h"

#include <algorithm>
#include <chrono>
#include <ostream>
#include <string>
#include <thread>

namespace bench::vehicle {

/// Where a machine is when its hypervisor doesn't let it run for a while.
enum class Place { running, preparing, prepared, resuming };

struct Freeze {
    Place place;
    std::chrono::milliseconds time;

    std::string name() const {
        static char const* const names[] = {"Running", "Preparing", "PreparedSD", "Resuming"};
        return std::string(names[static_cast<int>(place)]) + "_for_" + std::to_string(time.count()) + "_ms";
    }
};

inline void PrintTo(Freeze const& freeze, std::ostream* out) {
    *out << freeze.name();
}

/// A machine with an application that needs the network, frozen whole in one of its states, with time going on. All but
/// the hypervisor stands still.
class Frozen_machine : public Network_story, public testing::WithParamInterface<Freeze> {
 protected:
    void freeze_at(Place place) {
        if (place == GetParam().place) {
            freezer.enclose_all_but(machine->hypervisor().process().pid());
            freezer.freeze();
            std::this_thread::sleep_for(GetParam().time);
            freezer.thaw();
        }
    }

    void start() {
        start_and_run();
        for (auto const& client : options.clients) {
            ASSERT_TRUE(sees(Kind::client, client + " connected kOn")) << client;
        }
        request("1", com_alive("02", 3));
        request("1", k_ecu_alive);
        ASSERT_TRUE(sees(Kind::user_data, "80 04 00"));
        machine->tell("radio", {{"do", "behave"}, {"as", "late"}, {"delay_ms", 200}});
        daemon = machine->daemon().pid();
    }

    void suspend_and_resume() {
        freeze_at(Place::running);
        machine->press("p");
        ASSERT_TRUE(sees(Kind::client, "radio asked kPrepSD"));
        freeze_at(Place::preparing);
        ASSERT_TRUE(sees(Kind::state_word, "prepared4sd"));
        freeze_at(Place::prepared);
        before_resume = machine->events().size();
        machine->press("r");
        ASSERT_TRUE(sees(Kind::client, "radio asked kOn"));
        freeze_at(Place::resuming);
        ASSERT_TRUE(machine->await(Kind::state_word, "running", before_resume));
    }

    void expect_nothing_lost() {
        EXPECT_TRUE(machine->await(Kind::user_data, "80 04 00 02 00 00", before_resume));
        EXPECT_EQ(requests_of_node(), "03 00 01 00 00 00");
        EXPECT_EQ(texts(Kind::state_word), (std::vector<std::string>{"startingup", "running", "preparing",
                                                                     "prepared4sd", "resuming", "running"}));
        for (auto const& client : options.clients) {
            EXPECT_EQ(times(Kind::client, client + " asked kPrepSD"), 1) << client;
            EXPECT_EQ(times(Kind::client, client + " asked kOn"), 1) << client;
        }
        EXPECT_THAT(texts(Kind::log), testing::Not(testing::Contains(testing::StartsWith("infrastructure exception"))));
        EXPECT_EQ(machine->daemon().pid(), daemon);
        machine->signal_daemon(SIGTERM);
        EXPECT_TRUE(ends_with(0));
    }

    long times(Kind kind, std::string const& text) const {
        auto const all = texts(kind);
        return std::count(all.begin(), all.end(), text);
    }

    Freezer freezer;
    pid_t daemon{0};
    std::size_t before_resume{0};
};

}  // namespace bench::vehicle

#endif
