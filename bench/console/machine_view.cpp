#include "bench/console/machine_view.h"

#include <algorithm>
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

void Machine_view::hear(vehicle::Event const& event) {
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
            held_.clear();  // the daemon alone knew of it
            break;
        case Kind::log:
            hear_log(event);
            break;
        case Kind::bus:
            bus_ = event.text;
            break;
        case Kind::network_state:
            network_state_ = event;
            break;
        case Kind::user_data:
            user_data_ = event;
            break;
        case Kind::application:
            hear_application(event.act);
            break;
        case Kind::notification:
        case Kind::client:
            break;
    }
}

void Machine_view::show_clients(std::vector<vehicle::Client_status> clients, std::int64_t now) {
    clients_ = std::move(clients);
    now_ = now;
}

void Machine_view::select_next_client() {
    selected_client_ = clients_.empty() ? 0 : (selected_client_ + 1) % clients_.size();
}

void Machine_view::hear_log(vehicle::Event const& event) {
    constexpr std::string_view k_ecu_state = "Ecu state based on NM activity: ";
    if (event.text.rfind(k_ecu_state, 0) == 0) {
        ecu_state_ = event.text.substr(k_ecu_state.size());
    }
    log_.push_back(event);
    auto const has_its_level = [&event](auto const& message) { return message.level == event.level; };
    if (std::count_if(log_.begin(), log_.end(), has_its_level) > static_cast<std::ptrdiff_t>(k_log_lines)) {
        log_.erase(std::find_if(log_.begin(), log_.end(), has_its_level));
    }
}

void Machine_view::hear_application(vehicle::Act const& act) {
    if (act.what == "requests") {
        held_.emplace(act.who, act.of);
    } else {
        held_.erase({act.who, act.of});
    }
}

bool Machine_view::holds(std::string const& application, std::string const& what) const {
    return held_.count({application, what}) != 0;
}

void Machine_view::begin_life() {
    state_word_.clear();
    ecu_state_.clear();
    exit_status_.reset();
}

}  // namespace bench::console
