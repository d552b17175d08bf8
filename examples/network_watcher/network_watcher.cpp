// Prints the network state of network management whenever it is reported, byte by byte in hexadecimal:
//   network_watcher [INSTANCE]
// A bit that is set is needed by somebody (docs/network.md). Ends with SIGTERM or SIGINT.

#include "tarq/com/runtime/component_singleton.h"
#include "tarq/udpnm/interface/network_state_interface_proxy.h"

#include <csignal>
#include <cstdio>
#include <exception>
#include <iostream>
#include <memory>
#include <string>

namespace {

using Proxy = tarq::udpnm::interface::proxy::NetworkStateInterfaceProxy;

/// Subscribes when the network manager is found. The subscription, like the proxy, outlives a restart of it.
class Watcher {
 public:
    explicit Watcher(std::string const& instance)
        : lookup_(Proxy::StartFindService([this](auto const& found) { subscribe(found); },
                                          ara::com::InstanceSpecifier(instance))) {}
    ~Watcher() {
        Proxy::StopFindService(lookup_);  // no handler runs any more
        if (proxy_) {
            proxy_->NetworkState.Notify.Unsubscribe();
        }
    }
    Watcher(Watcher const&) = delete;
    Watcher& operator=(Watcher const&) = delete;

 private:
    void subscribe(ara::com::ServiceHandleContainer const& found) {
        if (proxy_ || found.empty()) {
            return;
        }
        proxy_ = std::make_unique<Proxy>(found.front());
        proxy_->NetworkState.Notify.SetReceiveHandler([this] { show(); });
        proxy_->NetworkState.Notify.Subscribe(1);
    }

    void show() {
        proxy_->NetworkState.Notify.Update();
        for (auto const& state : proxy_->NetworkState.Notify.GetCachedSamples()) {
            for (auto const byte : *state) {
                std::printf("%02x ", byte);
            }
            std::puts("");
            std::fflush(stdout);
        }
    }

    std::unique_ptr<Proxy> proxy_;
    ara::com::FindServiceHandle lookup_;
};

}  // namespace

int main(int argc, char** argv) {
    // Blocked before there are other threads, and taken here.
    sigset_t ends;
    sigemptyset(&ends);
    sigaddset(&ends, SIGTERM);
    sigaddset(&ends, SIGINT);
    pthread_sigmask(SIG_BLOCK, &ends, nullptr);
    try {
        tarq::com::runtime::Component_singleton const communication(false, "");  // first, and outlives the rest
        Watcher const watcher(argc > 1 ? argv[1] : "*");
        int signal = 0;
        sigwait(&ends, &signal);
    } catch (std::exception const& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
    return 0;
}
