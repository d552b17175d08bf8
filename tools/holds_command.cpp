#include "base/hex.h"
#include "tools/commands.h"
#include "tools/page/words.h"
#include "tools/page_commands.h"
#include "tools/table.h"

namespace statectl {

namespace {

using nlohmann::json;
using Instance = status::Instance<Number>;

constexpr auto k_com_alive = static_cast<std::size_t>(status::Hold::com_alive);

// The seven bytes of CAB bits that an application may hold.
std::string cab_text(Instance const& instance) {
    std::vector<std::uint8_t> bytes;
    for (auto cab = instance.cab; cab != 0; cab >>= 8U) {
        bytes.push_back(static_cast<std::uint8_t>(cab));
    }
    return base::to_hex(bytes);
}

std::string bits_text(Instance const& instance, std::size_t hold) {
    auto text = hold == k_com_alive && instance.cab != 0 ? "CAB " + cab_text(instance) : std::string();
    if (hold != 0 && instance.since[hold] != 0 && instance.ac != 0) {
        text += (text.empty() ? "AC " : ", AC ") + std::to_string(instance.ac);
    }
    return text;
}

std::string holds_text(Snapshot const& page) {
    Table table({"INSTANCE", "HOLDS", "SINCE", "REQUESTS", "RELEASES", "BITS"});
    if (page.driver.default_held != 0) {
        table.add({"the states", "network", span_text(page.driver.default_held, page.now), "", "", "default pattern"},
                  Mark::bold);
    }
    for (auto const& instance : page.instances) {
        for (std::size_t hold = 0; hold < instance.since.size(); ++hold) {
            if (instance.provided[hold] != 0) {
                bool const is_held = instance.since[hold] != 0;
                table.add(
                    {quoted(text_of(instance.name)), hold_word(hold),
                     is_held ? span_text(instance.since[hold], page.now) : "-", std::to_string(instance.requests[hold]),
                     std::to_string(instance.releases[hold]), bits_text(instance, hold)},
                    is_held ? Mark::bold : Mark::plain);
            }
        }
    }
    auto text = table.text();
    if (page.services.instances_untold != 0) {
        text += std::to_string(page.services.instances_untold) + " instances had no room on the page\n";
    }
    return text;
}

json hold_json(Snapshot const& page, Instance const& instance, std::size_t hold) {
    auto const since = instance.since[hold];
    return {{"instance", text_of(instance.name)},
            {"hold", hold_word(hold)},
            {"held", since != 0},
            {"since_s", since == 0 ? json() : json(static_cast<double>(page.now > since ? page.now - since : 0) / 1e9)},
            {"requests", instance.requests[hold]},
            {"releases", instance.releases[hold]},
            {"cab", hold == k_com_alive ? json(cab_text(instance)) : json()},
            {"ac", instance.ac}};
}

json holds_json(Snapshot const& page) {
    auto holds = json::array();
    for (auto const& instance : page.instances) {
        for (std::size_t hold = 0; hold < instance.since.size(); ++hold) {
            if (instance.provided[hold] != 0) {
                holds.push_back(hold_json(page, instance, hold));
            }
        }
    }
    return {{"running", page.is_alive},
            {"default_pattern", page.driver.default_held != 0},
            {"sending", page.services.sending != 0},
            {"cab_pattern", base::to_hex(bytes_of(page.services.cab_pattern))},
            {"user_data", base::to_hex(bytes_of(page.services.user_data))},
            {"holds", holds},
            {"untold", page.services.instances_untold}};
}

}  // namespace

void add_holds_command(CLI::App& program, Action& chosen) {
    add_page_command(program, chosen, "holds", "List who holds the machine or the network awake, and since when",
                     {holds_text, holds_json});
}

}  // namespace statectl
