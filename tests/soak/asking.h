#ifndef TESTS_SOAK_ASKING_H
#define TESTS_SOAK_ASKING_H

#include "invariants.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace soak {

/// Clients are asked in their groups, each connection once by each request of its group, with numbers that go up by
/// one; a group has its time, no less and no more. A client that stood still when the next request came hears of the
/// newest alone; then it has timed out as often as it was passed over.
class Asking : public Invariant {
 public:
    explicit Asking(Circumstances const& circumstances) : circumstances_(circumstances) {}

    void hear(Event const& event, Finding const& finding) override;
    std::string missing_at_rest() override;

 private:
    /// One connection, as the server and as the client tell of it.
    struct Connection {
        std::vector<std::string> sent{};
        std::vector<std::string> received{};  ///< empty where it was passed over
        bool is_over{false};
    };
    struct Client {
        std::vector<Connection> all{};
        std::size_t server{0};  ///< that the server has told of
        std::size_t client{0};
        int timed_out{0};
    };

    void hear_log(Event const& event, Finding const& finding);
    void hear_act(Event const& event, Finding const& finding);
    void judge_time(Event const& event, Finding const& finding);
    void send(std::string const& state);
    static bool has_heard_all(Client const& client, Connection const& connection);
    Connection& at(Client& client, std::size_t count);

    Circumstances const& circumstances_;
    std::map<std::string, Client> clients_;
    std::string group_;         ///< asked last
    std::int64_t asked_at_{0};  ///< 0 when all of it is over
};

}  // namespace soak

#endif
