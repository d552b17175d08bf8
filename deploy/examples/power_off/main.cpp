// An example of the power-off service on the other end of the state manager's channel: `ap_power_off` listens on
// /run/adaptive/poweroff, as root, and is started before the state manager.

#include "channel.h"
#include "linux_machine.h"
#include "service.h"

#include <cstdio>
#include <cstdlib>
#include <exception>

#include <systemd/sd-daemon.h>

int main() {
    try {
        power_off::Channel channel("/run/adaptive/poweroff", "ap-statemanager");
        power_off::Linux_machine machine;
        power_off::Service service(machine);
        ::sd_notify(0, "READY=1");
        while (auto const line = channel.read_line()) {
            service.handle(*line);
        }
    } catch (std::exception const& error) {
        std::fprintf(stderr, "ap_power_off: %s\n", error.what());
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
