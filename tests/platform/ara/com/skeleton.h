#ifndef ARA_COM_SKELETON_H
#define ARA_COM_SKELETON_H

#include "ara/com/hub.h"
#include "ximo/com/future.h"

#include <string>
#include <utility>

namespace ara::com {

/// Base of all skeletons: an instance that can be offered and withdrawn, again and again. Tells both.
class Skeleton {
 public:
    virtual ~Skeleton() { StopOfferService(); }
    Skeleton(Skeleton const&) = delete;
    Skeleton& operator=(Skeleton const&) = delete;

    void OfferService();
    void StopOfferService();

    std::string const& interface() const { return interface_; }
    std::string const& instance() const { return instance_; }

 protected:
    /// Throws `tarq::com::Invalid_argument_exception` for another mode than kEvent.
    Skeleton(char const* interface, InstanceIdentifier const& instance, MethodCallProcessingMode mode);

 private:
    std::string const interface_;
    std::string const instance_;
    bool is_offered_{false};
};

/// The sending end of an event.
class Skeleton_event {
 public:
    Skeleton_event(Skeleton const& skeleton, char const* name)
        : channel_(Hub::instance().channel(skeleton.interface(), skeleton.instance(), name)) {}

    void Send(Octets const& value) const {
        auto const subscribers = channel_.subscribers;
        for (auto const& subscriber : subscribers) {
            subscriber(value);
        }
    }

 protected:
    Channel& channel_;
};

/// A field: who subscribes gets the newest value at once. One that is made has none.
class Skeleton_field : public Skeleton_event {
 public:
    Skeleton_field(Skeleton const& skeleton, char const* name) : Skeleton_event(skeleton, name) {
        channel_.newest.reset();
    }

    void Update(Octets const& value) {
        channel_.newest = value;
        Send(value);
    }
};

}  // namespace ara::com

#endif
