#include "tools/trace/message_words.h"

namespace statectl::trace {

bool is_of_state_manager(dlt::Message const& message) {
    constexpr char const* k_application = "STMG";
    return message.application == k_application && message.level != 0;
}

std::string const& argument(dlt::Message const& message, std::size_t index) {
    static std::string const none;
    return index < message.arguments.size() ? message.arguments[index] : none;
}

bool says(dlt::Message const& message, char const* text) {
    return argument(message, 0) == text;
}

}  // namespace statectl::trace
