#ifndef TOOLS_TRACE_CLIENT_REQUESTS_H
#define TOOLS_TRACE_CLIENT_REQUESTS_H

#include "tools/dlt/reader.h"
#include "tools/trace/life.h"

#include <map>
#include <string>
#include <vector>

namespace statectl::trace {

/// What clients were asked during one life and how they answered, as its messages tell: the sequences before and after
/// a suspend, of each its groups and their answers, and an account of each client.
class Client_requests {
 public:
    /// Whether the message was about that.
    bool hear(dlt::Message const& message, double now);

    /// The newest sequence has led where it should: the machine is suspended, or runs again.
    void finish_sequence(double now);

    /// Nobody waits for those any more who are asked just now.
    void leave_sequence(double now);

    /// Who has not answered in time in the newest sequence.
    std::vector<std::string> late() const;

    std::vector<Sequence> const& sequences() const { return sequences_; }
    std::map<std::string, Client_account> const& accounts() const { return accounts_; }

 private:
    bool tells_sequences(dlt::Message const& message, double now);
    bool tells_clients(dlt::Message const& message, double now);
    void begin_sequence(bool is_standby, double now);
    void complete_group(double now);
    void answer(std::string const& client, std::string const& status, double now);

    std::vector<Sequence> sequences_;
    std::map<std::string, Client_account> accounts_;
};

}  // namespace statectl::trace

#endif
