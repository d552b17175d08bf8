#ifndef SIMULATION_LOG_H
#define SIMULATION_LOG_H

#include <functional>
#include <string_view>

namespace simulation {

/// Hears what the daemon logs while it lives: level and text.
class Log_listener {
 public:
    using Heard = std::function<void(std::string_view level, std::string_view text)>;

    explicit Log_listener(Heard heard);
    ~Log_listener();
    Log_listener(Log_listener const&) = delete;
    Log_listener& operator=(Log_listener const&) = delete;

 private:
    Heard heard_;
};

}  // namespace simulation

#endif
