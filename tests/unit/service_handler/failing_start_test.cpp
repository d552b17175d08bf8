// What can't be offered or looked for, and what is refused before it is tried.

#include "service_handler_fixture.h"
#include "tarq/com/exception.h"

#include <exception>
#include <stdexcept>

namespace ximo::ap::statemanager {
namespace {

class Failing_start : public Service_handler_test {};

TEST_F(Failing_start, Passes_a_refused_instance_on_to_the_creator) {
    configuration.set_max_apps_ecualive(3);
    configuration.add_apps_ecualive("any*");

    EXPECT_THROW(build(), tarq::com::Invalid_argument_exception);
}

TEST_F(Failing_start, Takes_a_layout_whose_sums_wrap_around) {
    config::Nm_user_data_config layout;
    layout.ac_offset = 0;
    layout.cab_offset = 2;
    layout.cab_bytes = 0xFFFFFFFF;
    ASSERT_TRUE(configuration.set_nm_user_data_config(layout));
    build().init();

    network->be_found();
    com_alive("radio").RequestComAlive({0x01}, 1).get();

    EXPECT_THAT(actions, Contains("user data 80 00 00 00 00 00 "));
    EXPECT_THAT(actions, Contains("request 01 00 00 00 "));
}

// The failures show when each offer was tried.
TEST_F(Failing_start, Goes_on_without_an_offer_that_fails_and_names_each_group_before_it_is_offered) {
    for (auto const& interface : {k_alive, k_com_alive, k_cwu}) {
        binding.fail_offers(interface, std::make_exception_ptr(tarq::com::Infrastructure_exception(interface)));
    }
    build().init();
    forget();

    network->be_found();

    auto messages = log.at_least(LogLevel::kInfo);
    messages.erase(messages.begin(), messages.begin() + 2);  // of the user data
    auto const failed = [](std::string const& what) {
        return logged(LogLevel::kError, "infrastructure exception ", what);
    };
    EXPECT_THAT(messages, ElementsAre(logged(LogLevel::kInfo, "Offering ECU alive services"), failed(k_alive),
                                      failed(k_alive), logged(LogLevel::kInfo, "Offering COM alive services"),
                                      failed(k_com_alive), failed(k_com_alive),
                                      logged(LogLevel::kInfo, "Offering CWU services"), failed(k_cwu), failed(k_cwu)));
    EXPECT_TRUE(sut->nm_interface_available());
}

TEST_F(Failing_start, Says_when_the_restart_service_can_not_be_offered) {
    binding.fail_offers(k_dsa, std::make_exception_ptr(tarq::com::Infrastructure_exception("no engine")));
    build();

    EXPECT_FALSE(sut->init());

    EXPECT_THAT(log.messages(LogLevel::kError),
                ElementsAre(logged(LogLevel::kError, "infrastructure exception ", "no engine")));
    EXPECT_THAT(actions, ElementsAre("callback", "search"));
}

TEST_F(Failing_start, Says_when_network_management_can_not_be_looked_for) {
    build();
    network->at_the_search = [] { throw tarq::com::Infrastructure_exception("no engine"); };

    EXPECT_FALSE(sut->init());

    EXPECT_THAT(log.messages(LogLevel::kError),
                ElementsAre(logged(LogLevel::kError, "infrastructure exception ", "no engine")));
    EXPECT_TRUE(binding.is_offered(k_dsa, "DSA_Interface"));
    EXPECT_FALSE(sut->nm_interface_available());
}

class Lengths_for_network_management : public Service_handler_test {
 protected:
    /// Why a service handler can't be built with these lengths; empty when it can.
    std::string refusal(std::uint32_t user_data_bytes, std::size_t pattern_bytes) {
        config::Nm_user_data_config layout;
        layout.user_data_bytes = user_data_bytes;
        configuration.set_nm_user_data_config(layout);
        configuration.set_nm_request_pattern(Bit_vector(pattern_bytes, 0x01));
        try {
            build().init();
        } catch (std::length_error const& error) {
            return error.what();
        }
        return {};
    }
};

TEST_F(Lengths_for_network_management, Are_those_that_a_call_carries) {
    EXPECT_EQ(refusal(1024, 1024), "");
    EXPECT_EQ(refusal(1025, 0), "UserDataBytes says 1025 bytes, and network management takes 1024 at most");
    EXPECT_EQ(refusal(0xFFFFFFFF, 0), "UserDataBytes says 4294967295 bytes, and network management takes 1024 at most");
    EXPECT_EQ(refusal(6, 1025), "DefautNMRequestPattern says 1025 bytes, and network management takes 1024 at most");
}

TEST_F(Lengths_for_network_management, Are_not_looked_at_where_it_is_not_used) {
    configuration.set_nm_usage(false);

    EXPECT_EQ(refusal(0xFFFFFFFF, 1025), "");
}

}  // namespace
}  // namespace ximo::ap::statemanager
