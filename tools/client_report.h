#ifndef TOOLS_CLIENT_REPORT_H
#define TOOLS_CLIENT_REPORT_H

#include "component_client/answer.h"

#include <chrono>
#include <cstdint>
#include <string>

namespace statectl {

/// Tells on standard output what happens to a client, one line for each event, with its
/// time: for people, or as JSON objects.
class Client_report {
 public:
    explicit Client_report(bool as_json) : as_json_(as_json) {}

    void connected(std::string const& name, std::string const& state) const;
    void disconnected() const;
    void requested(std::uint32_t number, std::string const& state) const;

    /// `after` is the time since the request; `sent` is false when nobody waited for the answer any more.
    void answered(std::uint32_t number, std::string const& state, std::uint32_t status, std::chrono::milliseconds after,
                  bool sent) const;
    void trouble(std::string const& text) const;

 private:
    bool as_json_;
};

}  // namespace statectl

#endif
