#include "drawn_life.h"

#include "simulation/random.h"

#include <algorithm>
#include <utility>

namespace lives {

namespace {

constexpr unsigned k_suspend_s = 70;  // longer than any of these lives lets a suspend take

/// A line that happens, and when, in milliseconds.
using Happening = std::pair<std::uint64_t, std::string>;

class Drawing {
 public:
    explicit Drawing(std::uint64_t seed) : random_(seed) {}

    Lines lines();

 private:
    unsigned below(unsigned count) { return static_cast<unsigned>(random_.below(count)); }
    bool in_100(unsigned chances) { return below(100) < chances; }
    std::string one_of(std::vector<std::string> const& all) { return all[below(static_cast<unsigned>(all.size()))]; }

    std::string time();
    std::string manner();
    std::string bits();
    void pass();
    void happens(std::string const& what) { happenings_.emplace_back(now_, what); }

    void configure(Lines& lines);
    void draw_clients(Lines& lines);
    void go_on();
    void stay_in_post_run();
    void drive();
    void end_post_run_with_a_key();
    void suspend();
    void wander();
    void press(std::string const& key);
    void ask_for_something();
    void change_client();
    void disturb();

    // Draws are statements of their own: the operands of one expression have no order.
    simulation::Random random_;
    std::uint64_t now_{0};
    unsigned period_{100};
    bool has_faults_{false};
    std::vector<Happening> happenings_;
};

// Moments that meet: multiples of the period and of seconds, and some that meet nothing.
std::string Drawing::time() {
    switch (below(4)) {
        case 0:
            return std::to_string(below(4) * 1000) + "ms";
        case 1:
            return std::to_string(below(30) * period_) + "ms";
        case 2:
            return std::to_string(below(20)) + "ms";
        default:
            return std::to_string(below(9000)) + "ms";
    }
}

void Drawing::pass() {
    switch (below(6)) {
        case 0:
            break;
        case 1:
            now_ += below(period_);
            break;
        case 2:
            now_ += std::uint64_t(below(6)) * period_;
            break;
        case 3:
            now_ += 1000U * below(10);
            break;
        default:
            now_ += below(4000);
    }
}

std::string Drawing::manner() {
    auto const how = below(12);
    if (how == 0) {
        return "silent";
    }
    if (how <= 3) {
        auto const answer = one_of({"fails", "invalid", "crashes", "twice"});
        return answer + " after " + time();
    }
    return "after " + time();
}

std::string Drawing::bits() {
    return one_of({"01", "00 01", "00 00 02", "05", "00 03 80", "00 02"});
}

std::string layout(unsigned length, unsigned wake_up_bit, unsigned ac_offset, unsigned ac_length, unsigned cab_offset,
                   unsigned cab_length) {
    auto const is = [](char const* name, unsigned value) {
        return std::string(", \"") + name + "\": " + std::to_string(value);
    };
    return "{\"CabBitsEnabled\": true" + is("UserDataBytes", length) + is("CWUBitPosition", wake_up_bit) +
           is("ACOffset", ac_offset) + is("ACBytes", ac_length) + is("CABOffset", cab_offset) +
           is("CABBytes", cab_length) + is("MaxCABSizeBits", 8 * cab_length) + '}';
}

void Drawing::configure(Lines& lines) {
    period_ = in_100(70) ? 100 : 20 * (1 + below(15));
    auto const set = [&](std::string const& name, std::string const& value) {
        lines.push_back("config " + name + ' ' + value);
    };
    set("StateManagerMainPeriod", std::to_string(period_));
    set("KnockOutTimer", std::to_string(below(12)));
    set("ApplicationSuspendRequestTimeout", std::to_string(1 + below(5)));
    set("DMSuspendRequestTimeout", std::to_string(1 + below(4)));
    set("PMSuspendRequestTimeout", std::to_string(1 + below(9)));
    if (in_100(30)) {
        set("NmUserDataConfig",
            one_of({layout(8, 15, 2, 2, 4, 4), layout(4, 0, 1, 1, 2, 2), layout(7, 6, 4, 2, 6, 1)}));
    }
    set("DefautNMRequestPattern",
        one_of({"[0,0,0,0,0,0]", "[0,16,0,0,0,0]", "[0,32,0,0]", "[0,48]", "[64,16,0,0,0,0]", "[1,16,0,0,0,0]"}));
    if (in_100(12)) {
        set("StateManagerNMUsage", "false");
    }
    if (in_100(30)) {
        set("RequestNetworkOnEntryRunState", "false");
    }
    set("NmUserDataConfig.CabBitsEnabled", one_of({"true", "false"}));
    if (in_100(15)) {
        lines.push_back("manager absent");
        now_ = 1000;
        happenings_.emplace_back(below(900), "manager offers");
    }
    if (in_100(30)) {
        lines.push_back(in_100(50) ? "power-off absent" : "power-off takes " + time());
    }
}

void Drawing::draw_clients(Lines& lines) {
    for (auto const* const name : {"dcm", "radio", "tuner", "seat", "dem"}) {
        if (in_100(75)) {
            auto const how = manner();
            lines.push_back(std::string("clients ") + name + ' ' + how + (in_100(10) ? " in kPrepSD" : ""));
        }
    }
}

void Drawing::ask_for_something() {
    auto const who = one_of({"navigation", "hud"});
    auto const does = in_100(55) ? " requests " : " releases ";
    auto const number = in_100(50) ? " ac " + std::to_string(below(19)) : std::string();
    switch (below(4)) {
        case 0:
            return happens("application " + who + does + "com " + bits() + number);
        case 1:
            return happens("application " + who + does + "wake-up" + number);
        default:
            return happens("application " + who + does + "ecu");
    }
}

void Drawing::change_client() {
    auto const who = one_of({"dcm", "dem", "radio", "tuner", "seat"});
    switch (below(6)) {
        case 0:
            return happens("client " + who + " disconnects");
        case 1: {
            happens("client " + who + " disconnects");
            auto const how = manner();
            return happens("client " + who + " connects " + how + (in_100(30) ? " in kPrepSD" : ""));
        }
        case 2:
            if (in_100(25)) {  // a second one of this name
                return happens("client " + who + " connects " + manner());
            }
            return happens("client " + who + " reports " + one_of({"kOn", "kPrepSD", "degraded"}));
        case 3:
            return happens("client late" + std::to_string(happenings_.size()) + " connects " + manner());
        default:
            return happens("client " + who + ' ' + manner());
    }
}

void Drawing::disturb() {
    switch (below(has_faults_ ? 9 : 5)) {
        case 0: {
            auto const manner = one_of({"refuses", "takes", "takes", "deaf"});
            return happens("status-file " + manner + (in_100(30) ? " after " + std::to_string(below(900)) + "ms" : ""));
        }
        case 1: {
            auto const answer = one_of({"grants", "refuses", "silent"});
            return happens("service-manager " + answer +
                           (in_100(50) ? " after " + std::to_string(below(900)) + "ms" : ""));
        }
        case 2: {
            if (in_100(25)) {
                auto const manner = one_of({"refuses", "takes", "deaf"});
                return happens("restart-file " + manner +
                               (in_100(30) ? " after " + std::to_string(below(900)) + "ms" : ""));
            }
            return happens("diagnostics restart " + std::to_string(below(7)));
        }
        case 3:
            return happens(one_of({"others need network", "others release network"}));
        case 4:
            return in_100(5) ? happens("service-manager stops") : happens("network follows");
        case 5:
            return happens("manager withdraws");
        case 6:
            return happens("manager offers");
        case 7: {
            auto const time = std::to_string(10 + below(1500));
            return happens(in_100(30) ? "manager silent" : "manager takes " + time + "ms");
        }
        default:
            return happens(one_of({"manager fails", "manager works"}));
    }
}

// Some keys bounce, or are pressed by somebody who has no patience.
void Drawing::press(std::string const& key) {
    happens("key " + key);
    if (in_100(15)) {
        now_ += below(2 * period_);
        happens("key " + key);
    }
}

void Drawing::wander() {
    switch (below(10)) {
        case 0:
        case 1:
            return press(one_of({"r", "n", "s", "p", "r", "p"}));
        case 2:
            return in_100(20) ? happens("key power") : ask_for_something();
        case 3:
        case 4:
            return happens(one_of({"network sleeps", "network wakes"}));
        case 5:
        case 6:
            return ask_for_something();
        case 7:
        case 8:
            return change_client();
        default:
            return disturb();
    }
}

// Left to the network, as a vehicle that is parked.
void Drawing::drive() {
    happens("key " + one_of({"n", "s"}));
    for (unsigned more = below(4); more > 0; --more) {
        pass();
        ask_for_something();
    }
    pass();
    happens("network sleeps");
    if (in_100(30)) {
        end_post_run_with_a_key();
    }
    for (unsigned more = below(4); more > 0; --more) {
        pass();
        in_100(50) ? wander() : ask_for_something();
    }
}

// A key and the end of Post Run in one moment.
void Drawing::end_post_run_with_a_key() {
    auto const who = one_of({"navigation", "hud"});
    happenings_.insert(happenings_.end() - 1, {now_, "application " + who + " requests ecu"});
    now_ += period_ + below(2 * period_);
    happens("application " + who + " releases ecu");
    happens("key " + one_of({"r", "power", "p"}));
}

// A suspend, whole or turned back in the middle, and the way back.
void Drawing::suspend() {
    happens("key " + one_of({"p", "p", "p", "s"}));
    for (unsigned more = below(4); more > 0; --more) {
        pass();
        in_100(40) ? ask_for_something() : change_client();
    }
    now_ += in_100(50) ? below(6000) : 1000U * below(k_suspend_s / 2);
    happens("key " + one_of({"r", "r", "r", "r", "power"}));
    for (unsigned more = below(3); more > 0; --more) {
        pass();
        wander();
    }
    now_ += in_100(50) ? below(6000) : 1000U * below(k_suspend_s / 2);
}

void Drawing::go_on() {
    pass();
    switch (below(4)) {
        case 0:
            return drive();
        case 1:
            return suspend();
        default:
            return wander();
    }
}

// With keys that lead nowhere from Post Run.
void Drawing::stay_in_post_run() {
    auto const who = one_of({"navigation", "hud"});
    happens("key r");
    happens("application " + who + " requests ecu");
    now_ += 10U * period_;
    happens("key " + one_of({"n", "s"}));
    now_ += 10U * period_;
    happens("network sleeps");
    for (unsigned more = 2 + below(4); more > 0; --more) {
        now_ += below(6 * period_);
        switch (below(4)) {
            case 0:
                happens("key " + one_of({"n", "s"}));
                break;
            case 1:
                happens(one_of({"network sleeps", "network wakes"}));
                break;
            default:
                ask_for_something();
        }
    }
    now_ += below(6 * period_);
    happens(one_of({"key r", "key power", "key p"}));
}

Lines Drawing::lines() {
    Lines lines;
    has_faults_ = in_100(25);
    configure(lines);
    draw_clients(lines);
    for (unsigned more = 3 + below(14); more > 0; --more) {
        go_on();
    }
    // Without a keyboard a cycle is a millisecond: such a life is not long any more.
    bool const loses_keyboard = in_100(2);
    if (loses_keyboard) {
        happens("keyboard lost");
        now_ += below(1000);
        wander();
    }
    // What is rare is sought.
    if (in_100(25)) {
        stay_in_post_run();
    }
    std::stable_sort(happenings_.begin(), happenings_.end(),
                     [](auto const& left, auto const& right) { return left.first < right.first; });
    for (auto const& [at, what] : happenings_) {
        lines.push_back("at " + std::to_string(at) + "ms " + what);
    }
    lines.push_back("until " + std::to_string(now_ + 1000U * (loses_keyboard ? 1U : k_suspend_s)) + "ms");
    return lines;
}

}  // namespace

Lines drawn_life(std::uint64_t seed) {
    return Drawing(seed).lines();
}

std::string text_of(Lines const& lines) {
    std::string text;
    for (auto const& line : lines) {
        text += line + '\n';
    }
    return text;
}

}  // namespace lives
