#include "status/services_status.h"

#include "status/page_writer.h"

#include <algorithm>
#include <climits>

namespace status {

namespace {

using Shared_instance = Instance<Shared_word>;

Shared_instance* instance_named(Page& page, std::string_view name) {
    auto* const end = page.instances.data() + own(page.services.instances);
    auto* const found =
        std::find_if(page.instances.data(), end, [&](auto const& instance) { return holds(instance.name, name); });
    return found == end ? nullptr : found;
}

// The record of a new name, if there is room.
Shared_instance* add_instance(Page& page, std::string_view name) {
    Change const change(page.services.sequence);
    auto const count = own(page.services.instances);
    if (count == k_instances) {
        add(page.services.instances_untold);
        return nullptr;
    }
    auto& instance = page.instances[count];
    put(instance.name, name);
    put(page.services.instances, count + 1);
    return &instance;
}

std::uint64_t number_of(Page const& page, Shared_instance const& instance) {
    return static_cast<std::uint64_t>(&instance - page.instances.data());
}

std::size_t place(Hold service) {
    return static_cast<std::size_t>(service);
}

// The rules of what one application holds: as in Application_stats.
std::uint64_t cab_of(std::vector<std::uint8_t> const& bits) {
    constexpr std::size_t k_application_bytes = 7;
    std::uint64_t cab = 0;
    for (std::size_t i = 0; i < std::min(bits.size(), k_application_bytes); ++i) {
        cab |= std::uint64_t{bits[i]} << CHAR_BIT * i;
    }
    return cab;
}

std::uint64_t valid(std::uint64_t ac_number) {
    constexpr std::uint64_t k_highest = 16;
    return ac_number <= k_highest ? ac_number : 0;
}

void forget_ac_of_inactive(Shared_instance& instance) {
    if (own(instance.cab) == 0 && own(instance.since[place(Hold::car_wake_up)]) == 0) {
        put(instance.ac, 0U);
    }
}

void hold(Shared_instance& instance, Hold service, bool holds, std::uint64_t at) {
    auto& since = instance.since[place(service)];
    if (!holds || own(since) == 0) {
        put(since, holds ? at : 0);
    }
}

template <class Action>
void change(std::string_view name, Hold service, bool is_request, Action const& action) {
    auto* const page = status::page();
    auto* const instance = page == nullptr ? nullptr : instance_named(*page, name);
    if (instance == nullptr) {
        return;
    }
    auto const at = now();
    {
        Change const change(instance->sequence);
        add((is_request ? instance->requests : instance->releases)[place(service)]);
        action(*instance, at);
    }
    bool const is_other_way = is_request != (own(instance->since[place(service)]) != 0);
    tell(*page, page->services_ring, at, is_request ? Event_kind::held : Event_kind::released,
         {place(service), is_other_way ? 1U : 0U, number_of(*page, *instance) + 1}, name);
}

}  // namespace

void provided(Hold service, std::vector<std::string> const& instances) {
    if (auto* const page = status::page()) {
        for (auto const& name : instances) {
            auto* const known = instance_named(*page, name);
            if (auto* const instance = known != nullptr ? known : add_instance(*page, name)) {
                Change const change(instance->sequence);
                put(instance->provided[place(service)], 1U);
            }
        }
    }
}

void manager_found() {
    if (auto* const page = status::page()) {
        auto const at = now();
        {
            Change const change(page->services.sequence);
            put(page->services.manager_found, at);
        }
        tell(*page, page->services_ring, at, Event_kind::manager_found, {});
    }
}

void sending(bool sends) {
    if (auto* const page = status::page()) {
        Change const change(page->services.sequence);
        put(page->services.sending, sends ? 1U : 0U);
    }
}

void ecu_requested(std::string_view name) {
    change(name, Hold::ecu_alive, true,
           [](Shared_instance& instance, std::uint64_t at) { hold(instance, Hold::ecu_alive, true, at); });
}

void ecu_released(std::string_view name) {
    change(name, Hold::ecu_alive, false,
           [](Shared_instance& instance, std::uint64_t at) { hold(instance, Hold::ecu_alive, false, at); });
}

void com_requested(std::string_view name, std::vector<std::uint8_t> const& bits, std::uint64_t ac_number) {
    change(name, Hold::com_alive, true, [&](Shared_instance& instance, std::uint64_t at) {
        put(instance.ac, valid(ac_number));
        put(instance.cab, own(instance.cab) | cab_of(bits));
        hold(instance, Hold::com_alive, own(instance.cab) != 0, at);
    });
}

void com_released(std::string_view name, std::vector<std::uint8_t> const& bits) {
    change(name, Hold::com_alive, false, [&](Shared_instance& instance, std::uint64_t at) {
        put(instance.cab, own(instance.cab) & ~cab_of(bits));
        hold(instance, Hold::com_alive, own(instance.cab) != 0, at);
        forget_ac_of_inactive(instance);
    });
}

void cwu_requested(std::string_view name, std::uint64_t ac_number) {
    change(name, Hold::car_wake_up, true, [&](Shared_instance& instance, std::uint64_t at) {
        put(instance.ac, valid(ac_number));
        hold(instance, Hold::car_wake_up, true, at);
    });
}

void cwu_released(std::string_view name) {
    change(name, Hold::car_wake_up, false, [](Shared_instance& instance, std::uint64_t at) {
        hold(instance, Hold::car_wake_up, false, at);
        forget_ac_of_inactive(instance);
    });
}

void cab_pattern(std::vector<std::uint8_t> const& bits) {
    if (auto* const page = status::page()) {
        Change const change(page->services.sequence);
        put(page->services.cab_pattern, bits.data(), bits.size());
    }
}

void user_data(std::vector<std::uint8_t> const& bytes) {
    if (auto* const page = status::page()) {
        Change const change(page->services.sequence);
        put(page->services.user_data, bytes.data(), bytes.size());
    }
}

}  // namespace status
