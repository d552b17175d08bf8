#ifndef TOOLS_STATUS_REPORT_H
#define TOOLS_STATUS_REPORT_H

#include "tools/page/page_view.h"
#include "tools/page/reasons.h"

#include <nlohmann/json.hpp>
#include <string>

namespace statectl {

// What `status` and `why` show of a page: for people, and for programs.

std::string status_text(Snapshot const& page);
std::string why_text(Snapshot const& page);

nlohmann::json status_json(Snapshot const& page);
nlohmann::json why_json(Snapshot const& page);

/// Why the state was entered, and the row that says so.
std::string cause_of(Snapshot const& page);

}  // namespace statectl

#endif
