#include "udp_nm_fixture.h"

#include <functional>

namespace ximo::ap::statemanager {
namespace {

auto const no_network_state = logged(LogLevel::kWarn, "Could not find NetworkState service");
auto const found_network_state = logged(LogLevel::kInfo, "Found NetworkState service");
auto const stopping_network_state = logged(LogLevel::kInfo, "Stopping NetworkState service lookup");
auto const no_user_data = logged(LogLevel::kWarn, "Could not find UserData service");
auto const found_user_data = logged(LogLevel::kInfo, "Found UserData service");
auto const stopping_user_data = logged(LogLevel::kInfo, "Stopping UserData service lookup");

class Nm_search : public Udp_nm_test {};

TEST_F(Nm_search, Looks_for_any_instance_of_both_services) {
    search();

    EXPECT_THAT(binding.record(), ElementsAre("find " + k_network_state + " *", "find " + k_user_data + " *"));
}

TEST_F(Nm_search, Goes_on_after_an_empty_report) {
    search();

    EXPECT_THAT(log.messages(), ElementsAre(no_network_state, no_user_data));
    EXPECT_EQ(announced, 0);
    EXPECT_THAT(binding.recorded("stop finding"), IsEmpty());
}

TEST_F(Nm_search, Is_complete_with_the_second_service_which_is_announced_before_its_lookup_stops) {
    for (bool const user_data_first : {true, false}) {
        sut = std::make_unique<Nm_interface>();
        network_state.StopOfferService();
        user_data.StopOfferService();
        announced = 0;
        std::vector<std::string> stopped_before;
        sut->start_find_services([&] {
            ++announced;
            stopped_before = binding.recorded("stop finding");
        });
        auto const offer = [this](bool is_user_data) {
            log.clear();
            is_user_data ? user_data.OfferService() : network_state.OfferService();
            EXPECT_THAT(log.messages(), is_user_data ? ElementsAre(found_user_data, stopping_user_data)
                                                     : ElementsAre(found_network_state, stopping_network_state));
        };
        auto const stop = [](bool is_user_data) {
            return "stop finding " + (is_user_data ? k_user_data : k_network_state);
        };
        binding.clear_record();

        offer(user_data_first);
        EXPECT_EQ(announced, 0);
        EXPECT_THAT(binding.recorded("stop finding"), ElementsAre(stop(user_data_first)));
        offer(!user_data_first);
        EXPECT_EQ(announced, 1);
        EXPECT_THAT(stopped_before, ElementsAre(stop(user_data_first)));
        EXPECT_THAT(binding.recorded("stop finding"), ElementsAre(stop(user_data_first), stop(!user_data_first)));
    }
}

TEST_F(Nm_search, Announces_when_it_has_subscribed_to_the_network_state) {
    std::vector<std::string> subscribed_before;
    sut->start_find_services([&] { subscribed_before = binding.recorded("subscribe"); });

    user_data.OfferService();
    network_state.OfferService();

    EXPECT_THAT(subscribed_before, testing::SizeIs(1));
}

TEST_F(Nm_search, Stops_a_lookup_whose_handler_runs_before_its_handle_is_known) {
    network_state.OfferService();
    user_data.OfferService();

    search();

    EXPECT_EQ(announced, 1);
    EXPECT_THAT(binding.recorded("stop finding"),
                ElementsAre("stop finding " + k_network_state, "stop finding " + k_user_data));
    EXPECT_THAT(log.messages(),
                ElementsAre(found_network_state, stopping_network_state, found_user_data, stopping_user_data));
}

TEST_F(Nm_search, Subscribes_to_the_network_state_and_to_nothing_else) {
    network_state.OfferService();
    user_data.OfferService();

    search();

    EXPECT_THAT(binding.recorded("subscribe"), ElementsAre("subscribe " + k_network_state + " NetworkState node"));
}

TEST_F(Nm_search, Takes_the_first_of_several_instances) {
    Network_state_service second_network_state("other");
    User_data_service second_user_data("other");
    network_state.OfferService();
    second_network_state.OfferService();
    user_data.OfferService();
    second_user_data.OfferService();

    search();

    EXPECT_THAT(binding.recorded("connect"),
                ElementsAre("connect " + k_network_state + " node", "connect " + k_user_data + " node"));
}

TEST_F(Nm_search, Announces_once_however_often_a_service_is_reported) {
    network_state.OfferService();
    sut->start_find_services([this] {
        // The lookup that announces is still running.
        if (++announced == 1) {
            binding.report(k_user_data,
                           {ara::com::ServiceHandle(k_user_data, ara::com::InstanceIdentifier("node"), "")});
        }
    });

    user_data.OfferService();

    EXPECT_EQ(announced, 1);
    EXPECT_THAT(binding.recorded("connect " + k_user_data), testing::SizeIs(2));
}

TEST_F(Nm_search, Lets_go_of_the_proxy_of_before_when_a_service_is_reported_again) {
    for (auto const& [first, last] :
         {std::pair(k_network_state, k_user_data), std::pair(k_user_data, k_network_state)}) {
        sut = std::make_unique<Nm_interface>();
        network_state.StopOfferService();
        user_data.StopOfferService();
        binding.clear_record();
        sut->start_find_services([this, name = last] {
            if (++announced == 1) {  // the lookup that announces is still running
                binding.report(name, {ara::com::ServiceHandle(name, ara::com::InstanceIdentifier("other"), "")});
            }
        });
        announced = 0;
        if (first == k_network_state) {
            network_state.OfferService();
            user_data.OfferService();
        } else {
            user_data.OfferService();
            network_state.OfferService();
        }
        EXPECT_THAT(binding.recorded("connect"), ElementsAre("connect " + first + " node", "connect " + last + " node",
                                                             "connect " + last + " other"));
        EXPECT_THAT(binding.recorded("disconnect"), ElementsAre("disconnect " + last + " node"));
    }
}

TEST_F(Nm_search, Announces_again_when_it_could_not_be_heard) {
    network_state.OfferService();
    sut->start_find_services([this] {
        if (++announced == 1) {
            throw tarq::com::Infrastructure_exception("no memory");
        }
    });
    EXPECT_THROW(user_data.OfferService(), tarq::com::Infrastructure_exception) << "so that the binding reports again";

    binding.report(k_user_data, {ara::com::ServiceHandle(k_user_data, ara::com::InstanceIdentifier("node"), "")});

    EXPECT_EQ(announced, 2);
    EXPECT_THAT(log.messages(), Contains(stopping_user_data));
}

TEST_F(Nm_search, Needs_somebody_to_announce_to) {
    network_state.OfferService();
    sut->start_find_services({});

    EXPECT_THROW(user_data.OfferService(), std::bad_function_call);
}

TEST_F(Nm_search, Goes_on_when_the_service_can_not_be_reached) {
    search();
    log.clear();
    ara::com::ServiceHandle const handle(k_user_data, ara::com::InstanceIdentifier("node"), "");
    auto const engine = ara::com::use_binding(nullptr);

    EXPECT_THROW(binding.report(k_user_data, {handle}), tarq::com::Infrastructure_exception)
        << "so that the binding reports it again";
    EXPECT_THAT(log.messages(), ElementsAre(found_user_data));

    ara::com::use_binding(engine);
    binding.report(k_user_data, {handle});
    network_state.OfferService();
    EXPECT_EQ(announced, 1);
}

TEST_F(Nm_search, Is_stopped_only_while_it_runs) {
    sut->stop_find_network_state_service();
    sut->stop_find_user_data_service();
    EXPECT_THAT(log.messages(), IsEmpty());

    search();
    log.clear();
    sut->stop_find_network_state_service();
    sut->stop_find_network_state_service();
    sut->stop_find_user_data_service();

    EXPECT_THAT(log.messages(), ElementsAre(stopping_network_state, stopping_user_data));
    network_state.OfferService();
    EXPECT_THAT(log.messages(), Not(Contains(found_network_state)));
}

TEST_F(Nm_search, Ends_with_the_client) {
    search();
    log.clear();

    sut.reset();

    EXPECT_THAT(log.messages(), ElementsAre(stopping_network_state, stopping_user_data));
}

TEST_F(Nm_search, Is_over_without_a_word_when_both_services_were_found) {
    network_state.OfferService();
    user_data.OfferService();
    search();
    log.clear();

    sut.reset();

    EXPECT_THAT(log.messages(), IsEmpty());
}

TEST_F(Nm_search, Ends_with_the_callback_then_the_user_data_then_the_network_state) {
    network_state.OfferService();
    user_data.OfferService();
    search();
    std::vector<std::string> gone_before{"everything"};
    // Runs when the callback that holds it goes.
    sut->set_network_state_updated_func([held = std::shared_ptr<void>(nullptr, [&](void* /*nothing*/) {
                                             gone_before = binding.recorded("disconnect");
                                         })](auto const& /*state*/) {});
    ASSERT_THAT(binding.recorded("disconnect"), IsEmpty());

    sut.reset();

    EXPECT_THAT(gone_before, IsEmpty());
    EXPECT_THAT(binding.recorded("disconnect"),
                ElementsAre("disconnect " + k_user_data + " node", "disconnect " + k_network_state + " node"));
}

// Without the others' log, which has a thread.
TEST(Nm_search_DeathTest, Ends_the_process_when_it_can_not_be_stopped) {
    test_support::Fake_binding binding;
    auto sut = std::make_unique<Nm_interface>();
    sut->start_find_services([] {});
    binding.fail_stops(std::make_exception_ptr(tarq::com::Infrastructure_exception("no engine")));
    EXPECT_DEATH(sut.reset(), "no engine");
    binding.fail_stops(nullptr);
}

TEST_F(Nm_search, Ends_the_subscription_with_the_client) {
    network_state.OfferService();
    user_data.OfferService();
    search();

    sut.reset();

    EXPECT_THAT(binding.recorded("unsubscribe"), ElementsAre("unsubscribe " + k_network_state + " NetworkState node"));
}

}  // namespace
}  // namespace ximo::ap::statemanager
