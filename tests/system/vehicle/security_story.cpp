#include "base/temporary_directory.h"
#include "story.h"
#include "tool.h"

namespace bench::vehicle {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::Not;

constexpr char const* k_restart_logged = "RequestDiagnosticRestart for own VM";

/// A machine whose services are closed to all who hold no grant, with keys of its own.
class Closed_machine : public Story {
 protected:
    Closed_machine() {
        EXPECT_EQ(run({VEHICLE_PROJECT "/deploy/security/make-keys", keys.path()}).status, 0);
        settings()["StateManagerNMUsage"] = false;
        options.daemon_starter = {"/usr/bin/env", as("statemanager")};
        start();
        EXPECT_TRUE(sees(Kind::state_word, "running"));
    }

    /// The environment of somebody who has that one's key.
    std::string as(std::string const& name) const {
        return "CYCLONEDDS_URI=file://" + keys.file(name) + "/cyclonedds.xml";
    }

    static std::string services_seen(std::vector<std::string> const& environment) {
        return statectl({"services", "--json", "--wait", "2000"}, environment).output;
    }

    base::Temporary_directory const keys;
};

TEST_F(Closed_machine, Restarts_for_diagnostics_that_have_a_grant) {
    EXPECT_EQ(statectl({"restart", "vm", "--wait", "8000"}, {as("diagnostics")}).status, 0);
    EXPECT_TRUE(logs(k_restart_logged));
}

// It sees that the service is there, so that the refusal is no accident of the connection.
TEST_F(Closed_machine, Does_not_restart_for_an_application_without_a_grant) {
    EXPECT_THAT(services_seen({as("application")}), HasSubstr("DSA_Interface"));
    auto const refused = statectl({"restart", "vm", "--wait", "5000", "--json"}, {as("application")});
    EXPECT_GT(refused.status, 0);
    EXPECT_THAT(refused.output, HasSubstr("Not Allowed By Security"));
    machine->update(std::chrono::milliseconds(100));
    EXPECT_THAT(texts(Kind::log), Not(Contains(k_restart_logged)));
}

TEST_F(Closed_machine, Is_not_seen_by_who_has_no_certificate) {
    EXPECT_THAT(services_seen({as("diagnostics")}), HasSubstr("DSA_Interface"));
    EXPECT_THAT(services_seen({}), Not(HasSubstr("DSA_Interface")));
    EXPECT_GT(statectl({"restart", "vm", "--wait", "1000"}).status, 0);
    EXPECT_THAT(texts(Kind::log), Not(Contains(k_restart_logged)));
}

}  // namespace
}  // namespace bench::vehicle
