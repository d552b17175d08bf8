#include "support/fake_binding.h"

#include "support/fake_engine.h"

#include <algorithm>
#include <set>
#include <utility>

namespace test_support {

Fake_binding::Fake_binding() : engine_(std::make_shared<Engine>()), previous_(ara::com::use_binding(engine_)) {}

Fake_binding::~Fake_binding() {
    ara::com::use_binding(previous_);
}

std::vector<std::string> const& Fake_binding::record() const {
    return engine_->record;
}

void Fake_binding::clear_record() {
    engine_->record.clear();
}

std::vector<std::string> Fake_binding::recorded(std::string const& beginning) const {
    std::vector<std::string> lines;
    std::copy_if(engine_->record.begin(), engine_->record.end(), std::back_inserter(lines),
                 [&beginning](std::string const& line) { return line.rfind(beginning, 0) == 0; });
    return lines;
}

bool Fake_binding::is_offered(std::string const& interface_name, std::string const& instance) const {
    return engine_->offers.count({interface_name, instance}) != 0;
}

void Fake_binding::fail_next_call(std::string const& interface_name, std::exception_ptr cause) {
    engine_->failing_calls[interface_name].push_back(std::move(cause));
}

void Fake_binding::fail_offers(std::string const& interface_name, std::exception_ptr cause) {
    if (cause) {
        engine_->failing_offers[interface_name] = std::move(cause);
    } else {
        engine_->failing_offers.erase(interface_name);
    }
}

void Fake_binding::fail_stops(std::exception_ptr cause) {
    engine_->failing_stops = std::move(cause);
}

void Fake_binding::on_call(std::function<void(std::string const&, std::string const&)> observer) {
    engine_->observer = std::move(observer);
}

void Fake_binding::hold_reports() {
    engine_->holds_reports = true;
}

void Fake_binding::release_reports() {
    engine_->holds_reports = false;
    std::set<std::string> interfaces;
    for (auto const& lookup : engine_->lookups) {
        interfaces.insert(lookup->interface_name());
    }
    for (auto const& name : interfaces) {
        engine_->report_offers(name);
    }
}

void Fake_binding::report(std::string const& interface_name, ara::com::ServiceHandleContainer const& handles) {
    engine_->report(interface_name, handles);
}

}  // namespace test_support
