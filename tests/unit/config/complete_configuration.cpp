#include "unit/config/complete_configuration.h"

namespace test_support {

nlohmann::json complete_configuration() {
    return nlohmann::json::parse(R"({
        "KnockOutTimer": 7,
        "StateManagerNMUsage": false,
        "RequestNetworkOnEntryRunState": false,
        "StateManagerMainPeriod": 250,
        "ApplicationSuspendRequestTimeout": 11,
        "DMSuspendRequestTimeout": 12,
        "PMSuspendRequestTimeout": 13,
        "AliveSupervisionInstanceId": "supervision/1",
        "SharedMemoryConfig": {"UpdateStatusFile": "/tmp/status", "RestartCommandFile": "/tmp/command"},
        "NmUserDataConfig": {"UserDataBytes": 8, "CWUBitPosition": 5, "ACOffset": 2, "ACBytes": 1, "CABOffset": 4,
                             "CABBytes": 2, "MaxCABSizeBits": 15, "CabBitsEnabled": true},
        "DefautNMRequestPattern": [65, 0, 255],
        "MaxNumberOfApplicationsRequestAlive": 3,
        "ApplicationsRequestAliveConfig": [{"EcuAliveInterfaceInstance": "a1"}, {"EcuAliveInterfaceInstance": "a2"}],
        "MaxNumberOfApplicationsRequestNetwork": 4,
        "ApplicationsRequestNetworkConfig": [{"NetworkAliveInterfaceInstance": "n1"}],
        "MaxNumberOfCWURequest": 5,
        "CWURequestConfig": [{"CWUInterfaceInstance": "c1"}, {"CWUInterfaceInstance": "c2"}]
    })");
}

std::string file_text(nlohmann::json const& configuration) {
    return nlohmann::json{{"ap_statemanager", configuration}}.dump(4);
}

std::string reason_of_refusal(std::string const& text) {
    return reason([&] { [[maybe_unused]] auto const document = nlohmann::json::parse(text); });
}

}  // namespace test_support
