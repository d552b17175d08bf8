#ifndef TESTS_COMPONENT_COM_SUBSCRIBED_H
#define TESTS_COMPONENT_COM_SUBSCRIBED_H

#include "client_fixture.h"

#include <vector>

namespace com_test {

/// A subscription that writes down the newest sample each time that its handler is called.
template <class Event>
class Subscribed {
 public:
    explicit Subscribed(Event& event) : event_(event) {
        event_.SetReceiveHandler([this] {
            if (event_.Update()) {
                samples.add(*event_.GetCachedSamples().back());
            }
        });
        event_.Subscribe(1);
    }
    ~Subscribed() { event_.Unsubscribe(); }
    Subscribed(Subscribed const&) = delete;
    Subscribed& operator=(Subscribed const&) = delete;

    std::vector<Bytes> await_last(Bytes const& wanted) {
        return samples.await([&](auto const& items) { return !items.empty() && items.back() == wanted; });
    }

    Seen<Bytes> samples;

 private:
    Event& event_;
};

}  // namespace com_test

#endif
