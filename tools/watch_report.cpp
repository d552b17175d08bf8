#include "tools/watch_report.h"

#include "base/hex.h"
#include "tools/json_text.h"
#include "tools/time_text.h"

#include <cstdio>

namespace statectl {

void Watch_report::offered(std::string const& service, bool is_offered) {
    print(is_offered ? "offered" : "withdrawn", service, {{"service", service}});
}

void Watch_report::network_state(services::Octets const& state) {
    values("network_state", state, services::network_state_names(state));
}

void Watch_report::user_data_asked(services::Octets const& data) {
    {
        base::Lock_guard const lock(mutex_);
        if (user_data_ == data) {
            return;
        }
    }
    user_data(data);
}

void Watch_report::user_data(services::Octets const& data) {
    {
        base::Lock_guard const lock(mutex_);
        user_data_ = data;
    }
    values("user_data", data, services::user_data_names(data, layout_));
}

void Watch_report::trouble(std::string const& text) {
    print("trouble", text, {{"text", text}});
}

void Watch_report::values(char const* what, services::Octets const& bytes, std::vector<std::string> const& names) {
    auto const hex = base::to_hex(bytes);
    print(what, hex + "  " + services::enumerate(names), {{"bytes", hex}, {"set", names}});
}

void Watch_report::print(std::string const& what, std::string const& text, nlohmann::json details) {
    auto const time = time_text(std::chrono::system_clock::now());
    base::Lock_guard const lock(mutex_);
    if (as_json_) {
        details["event"] = what;
        details["time"] = time;
        std::puts(json_text(details).c_str());
    } else {
        std::printf("%s  %-13s  %s\n", time.c_str(), what.c_str(), text.c_str());
    }
    std::fflush(stdout);
}

}  // namespace statectl
