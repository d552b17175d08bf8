#include "status/page_writer.h"
#include "udp_nm_fixture.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <numeric>
#include <stdexcept>

namespace ximo::ap::statemanager {
namespace {

class Nm_requests : public Udp_nm_test {
 protected:
    void find() {
        network_state.OfferService();
        user_data.OfferService();
        search();
        log.clear();
        binding.clear_record();
    }

    template <class Failure>
    void next_call_fails(std::string const& interface_name, Failure failure) {
        binding.fail_next_call(interface_name, std::make_exception_ptr(std::move(failure)));
    }
};

TEST_F(Nm_requests, Are_lost_before_the_services_are_found) {
    search();
    log.clear();

    sut->request_network({0x01});
    sut->release_network({0x01});
    sut->set_user_data({0x80});
    network_state.OfferService();
    user_data.OfferService();

    EXPECT_THAT(network_state.asked, IsEmpty());
    EXPECT_THAT(user_data.given, IsEmpty());
    EXPECT_THAT(log.messages(LogLevel::kError), IsEmpty());
}

TEST_F(Nm_requests, Reach_the_services_as_they_are) {
    find();

    sut->request_network({0x01, 0x00, 0xFF});
    sut->release_network({0x02});
    sut->release_network({});
    sut->set_user_data({0x80, 0x00});

    EXPECT_THAT(network_state.asked, ElementsAre("request 01 00 ff ", "release 02 ", "release "));
    EXPECT_THAT(user_data.given, ElementsAre("80 00 "));
    EXPECT_THAT(log.messages(), IsEmpty());
}

TEST_F(Nm_requests, Give_user_data_although_the_network_state_was_never_found) {
    user_data.OfferService();
    search();

    sut->set_user_data({0x80});

    EXPECT_THAT(user_data.given, ElementsAre("80 "));
    EXPECT_EQ(announced, 0);
}

TEST_F(Nm_requests, Request_the_network_although_the_user_data_was_never_found) {
    network_state.OfferService();
    search();

    sut->request_network({0x01});

    EXPECT_THAT(network_state.asked, ElementsAre("request 01 "));
    EXPECT_EQ(announced, 0);
}

TEST_F(Nm_requests, Log_a_failure_of_the_binding_and_go_on_and_pass_every_other_one_on) {
    find();
    auto const page = std::make_unique<status::Page>();
    status::set_page(page.get());
    auto const failed = [&page] {
        auto const& calls = page->counters.failed_calls;
        return std::accumulate(calls.begin(), calls.end(), std::uint64_t{0});
    };
    std::uint64_t failures = 0;
    struct Request {
        std::string service;
        std::function<void(std::uint8_t)> make;
    };
    for (auto const& [service, make] : {Request{k_network_state, [this](auto bits) { sut->request_network({bits}); }},
                                        Request{k_network_state, [this](auto bits) { sut->release_network({bits}); }},
                                        Request{k_user_data, [this](auto bits) { sut->set_user_data({bits}); }}}) {
        log.clear();
        next_call_fails(service, tarq::com::Infrastructure_exception("no answer"));
        make(1);
        EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kError, "infrastructure exception ", "no answer")));
        EXPECT_EQ(failed(), ++failures);
        log.clear();
        next_call_fails(service, std::logic_error("other"));
        EXPECT_THROW(make(1), std::logic_error);
        EXPECT_THAT(log.messages(), IsEmpty());
        make(2);
    }
    EXPECT_THAT(network_state.asked, ElementsAre("request 02 ", "release 02 "));
    EXPECT_THAT(user_data.given, ElementsAre("02 "));
    status::set_page(nullptr);
    for (auto const& calls : page->counters.failed_calls) {
        EXPECT_EQ(calls, 1U);
    }
}

TEST_F(Nm_requests, Log_that_a_service_has_gone_and_work_again_when_it_is_back) {
    find();

    network_state.StopOfferService();
    sut->request_network({0x01});
    EXPECT_THAT(log.messages(),
                ElementsAre(logged(LogLevel::kError, "infrastructure exception ", "Service not available exception")));

    network_state.OfferService();
    sut->request_network({0x01});
    EXPECT_THAT(network_state.asked, ElementsAre("request 01 "));
    EXPECT_THAT(binding.recorded("find"), IsEmpty());
}

}  // namespace
}  // namespace ximo::ap::statemanager
