#include "status_of_walk.h"

#include "machine.h"
#include "statemanager/states/state_interface.h"
#include "status/page_writer.h"

#include <gmock/gmock.h>

namespace exploration {

namespace {

// One for all walks, of which there are many and one at a time: only what the driver has written is cleared.
status::Page& page() {
    static auto& memory = *new status::Page{};
    return memory;
}

}  // namespace

Status_of_walk::Status_of_walk(bool nm_usage) {
    auto& driver = page().driver;
    auto* const words = reinterpret_cast<status::Shared_word*>(&driver);
    for (std::size_t i = 0; i < sizeof driver / sizeof *words; ++i) {
        status::put(words[i], 0U);
    }
    status::put(page().life.nm_usage, nm_usage ? 1U : 0U);
    status::set_page(&page());
}

Status_of_walk::~Status_of_walk() {
    status::set_page(nullptr);
}

void Status_of_walk::check(Point const& point) const {
    auto const& driver = page().driver;
    EXPECT_EQ(status::own(driver.sequence) % 2, 0U);
    EXPECT_EQ(status::own(driver.state), point.state);
    EXPECT_EQ(status::own(driver.last_key), static_cast<std::uint64_t>(point.last_key));
    EXPECT_EQ(status::own(driver.waiting), point.queue.size());
    for (std::size_t place = 0; place < point.queue.size(); ++place) {
        EXPECT_EQ(status::own(driver.queue.at(place)), static_cast<std::uint64_t>(point.queue[place]));
    }
    if (point.state == ximo::ap::statemanager::states::k_post_run) {
        EXPECT_EQ(status::own(driver.knockout), Machine::k_knockout - point.ticks);
    }
}

void Status_of_walk::check_beat(Point const& point) const {
    if (!point.has_ended) {
        EXPECT_EQ(status::own(page().driver.prepare_sd), point.prepare_sd ? 1U : 0U);
        EXPECT_EQ(status::own(page().driver.forced), point.forced_shutdown ? 1U : 0U);
    }
}

void Status_of_walk::check_cause(bench::rules::Row const& row) const {
    EXPECT_EQ(status::own(page().driver.row), static_cast<std::uint64_t>(row.number)) << row.condition;
    EXPECT_EQ(status::own(page().driver.previous), static_cast<std::uint64_t>(row.from));
}

}  // namespace exploration
