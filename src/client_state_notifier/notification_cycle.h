#ifndef CLIENT_STATE_NOTIFIER_NOTIFICATION_CYCLE_H
#define CLIENT_STATE_NOTIFIER_NOTIFICATION_CYCLE_H

#include "client_state_notifier/state_change_request.h"

#include <cstddef>
#include <string>
#include <vector>

namespace client_state_notifier {

/// One request on its way: who was asked and who has answered. Clients are told apart by connection. One thread.
class Notification_cycle {
 public:
    explicit Notification_cycle(State_change_request request) : request_(std::move(request)) {}

    State_change_request const& request() const { return request_; }

    void ask(int connection, std::string name);

    /// The first answer of each connection that was asked counts, and no other.
    void answer(int connection, Component_client_return_type status);

    /// The connection has gone: whoever gets its number next does not answer for it. It still counts as asked.
    void lose(int connection);

    /// Everybody who was asked has answered.
    bool is_complete() const { return unanswered_ == 0; }

    /// Ends the cycle with what was answered: calls the request's callback.
    void complete() const;

    /// Ends the cycle now: those without an answer get "timed out".
    void time_out();

    /// 0 if all statuses are 0, else 2.
    Callback_status get_overall_status() const;

 private:
    static constexpr auto k_not_asked = static_cast<std::size_t>(-1);

    struct Asked_client {
        std::string name;
        bool has_answered{false};
        bool has_gone{false};
    };

    Asked_client* find_open(int connection);
    void record_silent_clients();
    void record(std::string const& name, Component_client_return_type status);

    State_change_request request_;
    std::vector<Asked_client> asked_;
    std::vector<std::size_t> places_;  ///< of the clients among those, at the numbers of their connections
    std::size_t unanswered_{0};        ///< how many of them have not answered, whether they are there or gone
    Client_results results_;
};

}  // namespace client_state_notifier

#endif
