#include "bench/console/machine_view.h"

#include <utility>

namespace bench::console {

using vehicle::Kind;

namespace {

template <class Item>
void keep_newest(std::deque<Item>& items, Item item, std::size_t limit) {
    items.push_back(std::move(item));
    if (items.size() > limit) {
        items.pop_front();
    }
}

}  // namespace

void Machine_view::take(vehicle::Event const& event) {
    switch (event.kind) {
        case Kind::key:
            keep_newest(keys_, event.text, k_recent);
            break;
        case Kind::state_word:
            state_word_ = event.text;
            keep_newest(words_, event.text, k_recent);
            break;
        case Kind::restart_word:
            keep_newest(words_, event.text, k_recent);
            break;
        case Kind::power_off:
            keep_newest(words_, "> " + event.text, k_recent);
            break;
        case Kind::machine_state:
            machine_state_ = event.text;
            break;
        case Kind::watchdog:
            ++beats_;
            break;
        case Kind::ended:
            exit_status_ = event.text;
            break;
        case Kind::log:
            keep_newest(log_, event, k_log_lines);
            break;
        case Kind::notification:
        case Kind::bus:
        case Kind::network_state:
        case Kind::user_data:
        case Kind::client:
        case Kind::application:
            break;
    }
}

void Machine_view::take_clients(std::vector<vehicle::Client_status> clients, std::int64_t now) {
    clients_ = std::move(clients);
    now_ = now;
}

void Machine_view::select_next_client() {
    selected_client_ = clients_.empty() ? 0 : (selected_client_ + 1) % clients_.size();
}

void Machine_view::begin_life() {
    state_word_.clear();
    exit_status_.reset();
}

}  // namespace bench::console
