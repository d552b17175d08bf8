#include "service_handler_fixture.h"

namespace ximo::ap::statemanager {
namespace {

class Stopping : public Service_handler_test {};

TEST_F(Stopping, Withdraws_every_service_in_order) {
    build_and_find();

    sut->deinit();

    EXPECT_THAT(binding.record(), ElementsAre("withdraw " + k_dsa + " DSA_Interface", "withdraw " + k_alive + " door",
                                              "withdraw " + k_alive + " roof", "withdraw " + k_com_alive + " radio",
                                              "withdraw " + k_com_alive + " phone", "withdraw " + k_cwu + " radio",
                                              "withdraw " + k_cwu + " alarm"));
    EXPECT_THAT(log.messages(), IsEmpty());
    EXPECT_THAT(actions, IsEmpty());
}

TEST_F(Stopping, Withdraws_the_restart_service_alone_without_network_management) {
    configuration.set_nm_usage(false);
    build().init();
    forget();

    sut->deinit();

    EXPECT_THAT(binding.record(), ElementsAre("withdraw " + k_dsa + " DSA_Interface"));
}

TEST_F(Stopping, Offers_nothing_when_network_management_is_found_after_that) {
    build().init();
    sut->deinit();
    forget();

    network->be_found();

    EXPECT_THAT(binding.record(), IsEmpty());
}

TEST_F(Stopping, Destroys_network_management_when_nobody_can_call_any_more) {
    build_and_find();
    std::vector<std::string> offered;
    network->at_the_end = [&] {
        for (auto const& [interface_name, instance] : {std::pair(k_dsa, "DSA_Interface"), std::pair(k_alive, "door"),
                                                       std::pair(k_com_alive, "radio"), std::pair(k_cwu, "alarm")}) {
            if (binding.is_offered(interface_name, instance)) {
                offered.push_back(interface_name);
            }
        }
    };

    sut.reset();

    EXPECT_THAT(actions, ElementsAre("gone"));
    EXPECT_THAT(offered, IsEmpty());
}

// Its destructor waits for the lookup that ends at the same moment.
TEST_F(Stopping, Is_harmless_when_network_management_is_found_while_it_goes) {
    build().init();
    network->at_the_end = [this] { network->be_found(); };
    forget();

    sut.reset();

    EXPECT_THAT(actions, ElementsAre("user data 80 00 00 ", "release ff ff ff 01 ", "gone"));
    EXPECT_THAT(binding.recorded("offer"), IsEmpty());
}

}  // namespace
}  // namespace ximo::ap::statemanager
