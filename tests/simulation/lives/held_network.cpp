#include "held_network.h"

#include "life_texts.h"

#include <algorithm>
#include <chrono>
#include <sstream>
#include <utility>

namespace lives {

using simulation::Entry;
using simulation::Network;
using simulation::Time;

namespace {

constexpr std::uint64_t k_ecu_bit = 1U << 16U;  // the lowest of the third byte

std::uint64_t number_of(std::string const& bytes) {
    std::istringstream text(bytes);
    std::uint64_t number = 0;
    unsigned byte = 0;
    for (unsigned place = 0; place < 8 && text >> std::hex >> byte; ++place) {
        number |= std::uint64_t(byte) << 8 * place;
    }
    return number;
}

std::uint64_t number_of(simulation::Bits const& bytes) {
    std::uint64_t number = 0;
    for (std::size_t place = 0; place < bytes.size() && place < 8; ++place) {
        number |= std::uint64_t(bytes[place]) << 8 * place;
    }
    return number;
}

bool ends_with(std::string const& text, std::string const& end) {
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

}  // namespace

void Held_network::begin_suspend() {
    default_held_ = false;
    is_standing_by_ = true;
    first_.clear();
}

// A resume requests everything anew; what was not released then may stay.
void Held_network::begin_resume() {
    is_standing_by_ = false;
    default_held_ = true;
    if (taken_ != Taken::all && works_ && is_offered_) {
        taken_ = Taken::all_since_resume;
    }
}

void Held_network::take_report(std::string const& bits) {
    is_zero_ = number_of(bits) == 0;
    if (is_found_) {
        hear_report();
    }
}

// The first report of rest after activity is not sleep yet, the next one is.
void Held_network::hear_report() {
    if (!is_zero_) {
        sleep_ = Sleep::active;
    } else if (sleep_ != Sleep::unknown) {
        sleep_ = sleep_ == Sleep::active ? Sleep::ready : Sleep::asleep;
    }
}

bool Held_network::must_fail(std::string const& who) const {
    return who != "diagnostics" && (!terms_.nm_usage || !is_found_);
}

// What was not told as failed by now has succeeded.
void Held_network::call_is_over() {
    if (!caller_.empty() && must_fail(caller_) && !is_ending_) {
        find_("a call of " + caller_ + " was answered, and nobody serves it");
    }
    caller_.clear();
}

void Held_network::take_application(std::string const& who, std::string const& what) {
    if (ends_with(what, ", failed")) {
        if (!must_fail(who) && !is_ending_) {
            find_("a call has failed: " + who + ' ' + what);
        }
        held_ = held_before_;
        caller_.clear();
        return;
    }
    call_is_over();
    caller_ = who;
    held_before_ = held_;
    if (who == "diagnostics") {
        return;
    }
    bool const requests = what.rfind("requests", 0) == 0;
    auto const number_at = what.find(" ac ");
    auto const object = what.substr(9, number_at - 9);
    auto& of_one = held_[who];
    if (object == "ecu") {
        of_one.ecu = requests;
        return;
    }
    if (object == "wake-up") {
        of_one.wake_up = requests;
    } else if (auto const bits = behind("com ", object)) {
        auto const number = static_cast<std::uint32_t>(number_of(*bits));
        of_one.bits = requests ? of_one.bits | number : of_one.bits & ~number;
        bits_seen_ |= number;
    }
    if (requests) {
        of_one.number = number_at == std::string::npos ? 0 : std::stoul(what.substr(number_at + 4));
    } else if (!of_one.wake_up && of_one.bits == 0) {
        of_one.number = 0;
    }
}

void Held_network::take_request(Entry const& entry, bool may_come) {
    auto const told = entry.who + ' ' + entry.what;
    if (!terms_.nm_usage || !is_found_) {
        find_("network management was told without being used: " + told);
    }
    if (!first_.empty()) {
        if (told.rfind(first_.front(), 0) != 0) {
            find_("network management was told " + told + " before " + first_.front());
        }
        first_.pop_front();
    }
    if (entry.what.find("failed") != std::string::npos || entry.what.find("unanswered") != std::string::npos) {
        taken_ = Taken::no_longer_all;
    }
    busy_until_ = std::max(busy_until_, entry.at) + longest_call_;
    if (is_standing_by_ && !may_come) {
        find_("a message during the suspend: " + told);
    }
}

void Held_network::take_manager(Time now, std::string const& what) {
    if (what == "offers") {
        is_offered_ = true;
        offered_at_ = now;
    } else if (what == "withdraws" || what == "fails") {
        taken_ = Taken::no_longer_all;
        is_offered_ = is_offered_ && what == "fails";
        sleep_ = what == "fails" ? sleep_ : Sleep::unknown;
    } else if (what == "silent" || what.rfind("takes ", 0) == 0) {
        longest_call_ = std::max(longest_call_, time_behind("takes ", what).value_or(Network::k_patience));
    }
    works_ = what == "works" || (works_ && what != "fails" && what != "silent");
}

bool Held_network::take_log(std::string const& text) {
    if (text == "Initializing user data") {
        is_found_ = true;
        hear_report();  // a manager that is found tells its state
        if (!is_standing_by_) {
            first_ = {"user data ", "release ff ff ff 01"};
        }
    } else if (auto const activity = behind("Ecu state based on NM activity: ", text)) {
        is_asleep_ = activity->rfind("inactive", 0) == 0;
    } else {
        return false;
    }
    return true;
}

void Held_network::check(simulation::Life& life) {
    call_is_over();
    check_found(life.events().now());
    if (!terms_.nm_usage || !is_found_) {
        return;
    }
    if (sleep_ != Sleep::unknown && is_asleep_ != (sleep_ == Sleep::asleep)) {
        find_(is_asleep_ ? "the network is taken for asleep, and is not"
                         : "the network sleeps, and is taken for awake");
    }
    check_requested(life);
}

void Held_network::check_found(Time now) {
    if (terms_.nm_usage && is_offered_ && !is_found_ && now > std::max(offered_at_, busy_until_)) {
        find_("network management is there, and is not found");
    }
    if (!first_.empty() && now > busy_until_) {
        find_("network management was not told " + first_.front());
    }
}

bool Held_network::keeps_ecu() const {
    return std::any_of(held_.begin(), held_.end(), [](auto const& one) { return one.second.ecu; });
}

bool Held_network::keeps_com() const {
    return std::any_of(held_.begin(), held_.end(),
                       [](auto const& one) { return one.second.wake_up || one.second.bits != 0; });
}

std::uint64_t Held_network::held_bits() const {
    std::uint64_t bits = keeps_ecu() ? k_ecu_bit : 0;
    for (auto const& [name, one] : held_) {
        bits |= one.bits;
    }
    return bits | (default_held_ ? number_of(terms_.default_pattern) : 0);
}

// What applications hold, and the states, is what is requested; during a suspend an ECU that was kept alive.
void Held_network::check_requested(simulation::Life& life) {
    if (taken_ == Taken::no_longer_all) {
        return;
    }
    auto const requested = number_of(life.network().requested());
    // Bits of the default pattern that are also applications': no application's release takes them from the states, and
    // the states' release takes them from applications.
    auto const shared = number_of(terms_.default_pattern) & bits_seen_;
    auto const held = held_bits();
    if (taken_ == Taken::all_since_resume) {
        if (!is_standing_by_ && (held & ~requested & ~shared) != 0) {
            find_("what is held was not requested of the network since the last resume");
        }
        return;
    }
    if (is_standing_by_) {
        if ((requested & ~k_ecu_bit) != 0) {
            find_("the network is requested during a suspend");
        }
    } else if (((requested ^ held) & ~shared) != 0 || (default_held_ && (requested & shared) != shared)) {
        std::ostringstream both;
        both << std::hex << "requested of the network is " << requested << ", held is " << held;
        find_(both.str());
    }
    check_user_data(life);
}

// The area of the applications' bits is sent by each resume, also where it is otherwise left out.
void Held_network::check_user_data(simulation::Life& life) {
    auto told = life.network().user_data();
    auto const wanted = is_standing_by_ ? simulation::Bits(told.size()) : user_data();
    told.resize(wanted.size());
    if (told != wanted) {
        find_("the user data is " + simulation::text_of(told) + ", not " + simulation::text_of(wanted));
    }
}

simulation::Bits Held_network::user_data() const {
    constexpr unsigned k_most_numbers = 16;
    constexpr unsigned k_most_cab_bytes = 4;
    auto const& layout = terms_.layout;
    simulation::Bits data(layout.length);
    auto const add = [&data](std::size_t place, unsigned bits) { data.at(place) |= static_cast<std::uint8_t>(bits); };
    add(0, 0x80);
    for (auto const& [name, one] : held_) {
        add(layout.wake_up_bit / 8, one.wake_up ? 1U << layout.wake_up_bit % 8 : 0);
        auto const number = one.number - 1;
        if (one.number >= 1 && one.number <= k_most_numbers && number / 8 < layout.ac_length) {
            add(layout.ac_offset + number / 8, 1U << number % 8);
        }
        for (unsigned place = 0; place < std::min(layout.cab_length, k_most_cab_bytes); ++place) {
            add(layout.cab_offset + place, one.bits >> 8 * place);
        }
    }
    data.resize(layout.length - (terms_.sends_cab_area ? 0 : layout.cab_length));
    return data;
}

}  // namespace lives
