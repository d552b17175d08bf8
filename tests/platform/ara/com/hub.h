#ifndef ARA_COM_HUB_H
#define ARA_COM_HUB_H

#include "ara/com/find_service.h"

#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace ara::com {

class Skeleton;

using Octets = std::vector<std::uint8_t>;

/// A search for instances of an interface.
struct Lookup {
    std::string interface;
    InstanceSpecifier wanted;
    FindServiceHandler handler;
    bool is_stopped{false};
};

/// The way of an event or a field from one instance to its subscribers.
struct Channel {
    std::list<std::function<void(Octets const&)>> subscribers;
    std::optional<Octets> newest;  ///< of a field
};

/// All services of this process. Nothing leaves it, and no thread is started: a call runs its method, an offer the
/// handlers of lookups, and a sample those of subscribers, before it returns. For one thread at a time.
class Hub {
 public:
    static Hub& instance();

    void offer(Skeleton& skeleton);
    void withdraw(Skeleton const& skeleton);

    /// Null when nobody offers it.
    Skeleton* offered(std::string const& interface, std::string const& instance) const;

    std::shared_ptr<Lookup> find(Lookup lookup);

    Channel& channel(std::string const& interface, std::string const& instance, std::string const& event);

 private:
    void report(std::string const& interface);
    void report(Lookup const& lookup) const;

    std::map<std::pair<std::string, std::string>, Skeleton*> offers_;
    std::vector<std::shared_ptr<Lookup>> lookups_;
    std::map<std::string, Channel> channels_;
};

}  // namespace ara::com

#endif
