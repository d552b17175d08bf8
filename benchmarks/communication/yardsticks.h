#ifndef BENCHMARKS_COMMUNICATION_YARDSTICKS_H
#define BENCHMARKS_COMMUNICATION_YARDSTICKS_H

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace benchmarks {

/// A bare ping-pong of 64 bytes over a Unix stream socket: the price of two processes that wake each other.
class Socket_call {
 public:
    explicit Socket_call(std::string const& path);
    ~Socket_call();
    Socket_call(Socket_call const&) = delete;
    Socket_call& operator=(Socket_call const&) = delete;

    void operator()() const;

 private:
    int socket_;
};
void serve_socket(std::string const& path, std::function<void()> const& ready);

/// The same call without arguments over a D-Bus, by sd-bus.
class Bus_call {
 public:
    explicit Bus_call(std::string const& address);
    ~Bus_call();
    Bus_call(Bus_call const&) = delete;
    Bus_call& operator=(Bus_call const&) = delete;

    void operator()() const;

 private:
    friend void serve_bus(std::string const& address, std::function<void()> const& ready);

    class Connection;
    std::unique_ptr<Connection> connection_;
};
void serve_bus(std::string const& address, std::function<void()> const& ready);

/// The same call on the engine's C interface, with a thread behind the one that receives on both sides, as a service
/// and its caller have: the least that a call over this engine can take whose handler may block.
class Engine_call {
 public:
    /// Waits until the server is there.
    explicit Engine_call(std::string const& configuration);
    ~Engine_call();
    Engine_call(Engine_call const&) = delete;
    Engine_call& operator=(Engine_call const&) = delete;

    void operator()() const;

 private:
    friend void serve_engine(std::string const& configuration, std::function<void()> const& ready);

    class Side;
    std::unique_ptr<Side> side_;
};
void serve_engine(std::string const& configuration, std::function<void()> const& ready);

/// Median round trip in microseconds of the engine's own ping-pong (the program ddsperf, which prints the half of it),
/// between two processes over the loopback; nothing when the program is not installed or told nothing.
std::optional<double> engine_round_trip_us(std::string const& engine_configuration);

}  // namespace benchmarks

#endif
