#ifndef TESTS_SUPPORT_FAKE_BINDING_H
#define TESTS_SUPPORT_FAKE_BINDING_H

#include "ara/com/binding.h"

#include <exception>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace test_support {

/// ara::com inside one process and on one thread: a call runs its handler, an offer its lookups' handlers and a sent
/// sample its receive handlers before it returns. From construction to destruction it is the process's binding; it must
/// outlive the skeletons, proxies and lookups made meanwhile.
///
/// What happened is recorded in order, one line each: "offer INTERFACE INSTANCE", "withdraw INTERFACE INSTANCE",
/// "find INTERFACE WANTED", "stop finding INTERFACE", "connect INTERFACE INSTANCE", "disconnect INTERFACE INSTANCE",
/// "call INTERFACE INSTANCE",
/// "subscribe INTERFACE NAME INSTANCE", "unsubscribe INTERFACE NAME INSTANCE".
class Fake_binding {
 public:
    Fake_binding();
    ~Fake_binding();
    Fake_binding(Fake_binding const&) = delete;
    Fake_binding& operator=(Fake_binding const&) = delete;

    std::vector<std::string> const& record() const;
    void clear_record();

    /// The record's lines that begin with a text, in order.
    std::vector<std::string> recorded(std::string const& beginning) const;

    bool is_offered(std::string const& interface_name, std::string const& instance) const;

    /// The next call to an instance of the interface fails with this before it reaches a handler; several are used up
    /// in order.
    void fail_next_call(std::string const& interface_name, std::exception_ptr cause);

    /// Each `OfferService` of the interface throws this from now on; null ends it.
    void fail_offers(std::string const& interface_name, std::exception_ptr cause);

    /// Each stop of a lookup throws this from now on; null ends it.
    void fail_stops(std::exception_ptr cause);

    /// Calls this on the caller's thread before each call reaches a handler or fails.
    void on_call(std::function<void(std::string const& interface_name, std::string const& instance)> observer);

    /// From now on lookups report nothing until `release_reports`, which lets each report once what is offered then.
    void hold_reports();
    void release_reports();

    /// Reports to the lookups of an interface what the test says, whether or not it is offered.
    void report(std::string const& interface_name, ara::com::ServiceHandleContainer const& handles);

    class Engine;

 private:
    std::shared_ptr<Engine> engine_;
    std::shared_ptr<ara::com::Binding> previous_;
};

}  // namespace test_support

#endif
