#include "simulation/log.h"

#include "told/told.h"

#include <utility>

namespace simulation {

namespace {

Log_listener::Heard const* current = nullptr;

// "info DFLT text": the daemon has few other contexts, and which one it is tells nothing here.
void hear(told::Line const& line) {
    if (current == nullptr || line.whom != "log") {
        return;
    }
    auto const level = line.what.substr(0, line.what.find(' '));
    auto const rest = line.what.substr(level.size() + 1);
    auto const context = rest.find(' ');
    (*current)(level, context == std::string_view::npos ? std::string_view() : rest.substr(context + 1));
}

}  // namespace

Log_listener::Log_listener(Heard heard) : heard_(std::move(heard)) {
    current = &heard_;
    told::listen(hear);
}

Log_listener::~Log_listener() {
    current = nullptr;
}

}  // namespace simulation
