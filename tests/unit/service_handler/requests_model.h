#ifndef TESTS_UNIT_SERVICE_HANDLER_REQUESTS_MODEL_H
#define TESTS_UNIT_SERVICE_HANDLER_REQUESTS_MODEL_H

#include "statemanager/nm/bit_vector.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace ximo::ap::statemanager {

using Bits = std::set<unsigned>;

inline Bits operator|(Bits left, Bits const& right) {
    left.insert(right.begin(), right.end());
    return left;
}

inline Bits operator-(Bits const& left, Bits const& right) {
    Bits rest;
    std::set_difference(left.begin(), left.end(), right.begin(), right.end(), std::inserter(rest, rest.end()));
    return rest;
}

inline Bit_vector bytes(Bits const& bits, std::size_t size) {
    Bit_vector vector(size);
    for (unsigned const bit : bits) {
        if (bit / 8 < size) {
            vector[bit / 8] = static_cast<std::uint8_t>(vector[bit / 8] | 1U << bit % 8);
        }
    }
    return vector;
}

inline std::string text(Bits const& bits, std::size_t size = 4) {
    return bitvector2str(bytes(bits, size));
}

/// What applications ask of the network, told with sets: who holds what, what the network was asked to hold, and what
/// follows from each call, as the actions of network management and as the log's lines. The user data is that of the
/// default layout: 80 with the CWU in bit 6, two bytes of AC bits, three of CAB bits, which are not sent unless
/// enabled.
class Requests_model {
 public:
    Requests_model(Bits default_pattern, bool cab_area_sent)
        : default_pattern_(std::move(default_pattern)), sent_bytes_(cab_area_sent ? 6 : 3) {
        sent_ = user_data(sent_bytes_);
    }

    void request_com_alive(std::string const& id, Bits const& bits, std::size_t size, unsigned ac) {
        tell("State_manager::handle_com_alive_request( " + id + " ,  " + text(bits, size) + " ,  " +
             std::to_string(ac) + " )");
        holds_[id].ac = ac;
        holds_[id].cab = holds_[id].cab | bits;
        auto const added = held() - requested_;
        change("request", added, requested_ | added, added);
    }

    void release_com_alive(std::string const& id, Bits const& bits, std::size_t size) {
        tell("State_manager::handle_com_alive_release( " + id + " ,  " + text(bits, size) + " )");
        holds_[id].cab = holds_[id].cab - bits;
        forget_ac_of_idle(id);
        auto const gone = requested_ - held();
        change("release", gone, requested_ - gone, gone - default_pattern_);
    }

    void request_cwu(std::string const& id, unsigned ac) {
        tell("State_manager::handle_cwu_request( " + id + " ,  " + std::to_string(ac) + " )");
        holds_[id].ac = ac;
        holds_[id].cwu = true;
        send_user_data();
    }

    void release_cwu(std::string const& id) {
        tell("State_manager::handle_cwu_release( " + id + " )");
        holds_[id].cwu = false;
        forget_ac_of_idle(id);
        send_user_data();
    }

    void request_ecu_alive(std::string const& id) {
        keepers_.insert(id);
        ask_for_ecu_alive(id);
    }

    void release_ecu_alive(std::string const& id) {
        keepers_.erase(id);
        give_ecu_alive_back();
    }

    void standby() {
        tell("Stop sending NM messages");
        give_ecu_alive_back();
        actions.push_back("user data " + text({}, sent_bytes_));
        actions.push_back("release " + text(requested_));
        actions.push_back("release " + text(default_pattern_));
        is_active_ = false;
    }

    void end_standby() {
        tell("Start sending NM messages");
        is_active_ = true;
        actions.push_back("request " + text(default_pattern_));
        actions.push_back("request " + text(requested_));
        if (!keepers_.empty()) {
            ask_for_ecu_alive("End standby call");
        }
        actions.push_back("user data " + text(user_data(6), 6));
        auto const owed = k_ecu_alive - default_pattern_ - requested_;
        bool const is_owed = ecu_alive_requested_ && keepers_.empty();
        if (is_owed && !owed.empty()) {
            tell("State_manager::ecu_alive_release network");
            actions.push_back("release " + text(owed));
        }
        ecu_alive_requested_ = ecu_alive_requested_ && !is_owed;
    }

    bool keeps_com_alive() const {
        return std::any_of(holds_.begin(), holds_.end(), [](auto const& entry) { return entry.second.is_alive(); });
    }
    bool keeps_ecu_alive() const { return !keepers_.empty(); }

    std::vector<std::string> actions;
    std::vector<std::string> told;

 private:
    struct Held {
        Bits cab;
        unsigned ac{0};
        bool cwu{false};

        bool is_alive() const { return cwu || !cab.empty(); }
    };

    inline static Bits const k_ecu_alive{16};

    void tell(std::string line) { told.push_back(std::move(line)); }

    void forget_ac_of_idle(std::string const& id) {
        if (!holds_[id].is_alive()) {
            holds_[id].ac = 0;
        }
    }

    Bits held() const {
        Bits all;
        for (auto const& [id, held] : holds_) {
            all = all | held.cab;
        }
        all.erase(all.lower_bound(32), all.end());
        return all;
    }

    Bits user_data(std::size_t size) const {
        Bits all{7};
        for (auto const& [id, held] : holds_) {
            if (held.cwu) {
                all.insert(6);
            }
            if (held.ac >= 1 && held.ac <= 16) {
                all.insert(8 + held.ac - 1);
            }
        }
        for (unsigned const bit : held()) {
            all.insert(24 + bit);
        }
        all.erase(all.lower_bound(static_cast<unsigned>(8 * size)), all.end());
        return all;
    }

    void change(std::string const& what, Bits const& difference, Bits const& requested, Bits const& sent) {
        auto const name = "State_manager::" + what + "_network";
        if (difference.empty()) {
            tell(name + ": no changes to CAB pattern");
        } else {
            tell(name + "( " + text(difference) + " )");
            requested_ = requested;
            act(what + " " + text(sent));
        }
        send_user_data();
    }

    void send_user_data() {
        auto const data = user_data(sent_bytes_);
        if (data == sent_) {
            tell("State_manager::set_user_data: no change to user data");
            return;
        }
        sent_ = data;
        tell("State_manager::set_user_data( " + text(data, sent_bytes_) + " )");
        act("user data " + text(data, sent_bytes_));
    }

    void ask_for_ecu_alive(std::string const& id) {
        tell("State_manager::ecu_alive_request:  " + id);
        act("request " + text(k_ecu_alive));
        ecu_alive_requested_ = ecu_alive_requested_ || is_active_;
    }

    void give_ecu_alive_back() {
        if (keepers_.empty() && is_active_) {
            tell("State_manager::ecu_alive_release network");
            act("release " + text(k_ecu_alive));
            ecu_alive_requested_ = false;
        }
    }

    void act(std::string action) {
        if (is_active_) {
            actions.push_back(std::move(action));
        }
    }

    Bits const default_pattern_;
    std::size_t const sent_bytes_;
    std::map<std::string, Held> holds_;
    std::set<std::string> keepers_;
    Bits requested_;  ///< CAB bits
    Bits sent_;       ///< user data
    bool is_active_{true};
    bool ecu_alive_requested_{false};
};

}  // namespace ximo::ap::statemanager

#endif
