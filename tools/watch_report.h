#ifndef TOOLS_WATCH_REPORT_H
#define TOOLS_WATCH_REPORT_H

#include "base/mutex.h"
#include "services/user_data_names.h"

#include <string>

namespace statectl {

/// Tells on standard output what happens on the network, one line each: for people, or as JSON objects. May be used by
/// any thread.
class Watch_report {
 public:
    Watch_report(bool as_json, services::User_data_layout const& layout) : as_json_(as_json), layout_(layout) {}

    void offered(std::string const& service, bool is_offered);
    void network_state(services::Octets const& state);
    void user_data(services::Octets const& data);
    /// What was asked for, and is no news unless its event was lost.
    void user_data_asked(services::Octets const& data);
    void trouble(std::string const& text);

 private:
    void values(char const* what, services::Octets const& bytes, std::vector<std::string> const& names);
    void print(std::string const& what, std::string const& text, nlohmann::json details);

    bool const as_json_;
    services::User_data_layout const layout_;
    base::Mutex mutex_;  ///< one line at a time
    services::Octets user_data_ GUARDED_BY(mutex_);
};

}  // namespace statectl

#endif
