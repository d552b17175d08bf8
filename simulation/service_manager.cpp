#include "simulation/service_manager.h"

#include <array>
#include <chrono>

namespace simulation {

namespace {

constexpr Time k_patience = std::chrono::seconds(1);

}  // namespace

Service_manager::Manner Service_manager::answer(std::string const& machine_state) {
    auto manner = manner_;
    if (after_ >= k_patience || manner == Manner::silent) {
        manner = Manner::silent;
        stage_.events().pass(k_patience);
    } else {
        stage_.events().pass(after_);
    }
    constexpr std::array<char const*, 3> k_answers{"granted", "refused", "unanswered"};
    stage_.note(Kind::machine_state, k_answers.at(static_cast<std::size_t>(manner)), machine_state);
    return manner;
}

}  // namespace simulation
