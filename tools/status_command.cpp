#include "tools/commands.h"
#include "tools/page_commands.h"
#include "tools/status_report.h"

namespace statectl {

void add_status_command(CLI::App& program, Action& chosen) {
    add_page_command(program, chosen, "status", "Tell the machine's state, what it waits for, and what is wrong",
                     {status_text, status_json});
}

void add_why_command(CLI::App& program, Action& chosen) {
    add_page_command(program, chosen, "why", "Tell why the machine stays in its state", {why_text, why_json});
}

}  // namespace statectl
