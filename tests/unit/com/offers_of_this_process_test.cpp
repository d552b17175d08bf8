// What this process offers, and how many offers are known here.

#include "ara/com/dds/engine/engine.h"
#include "ara/com/dds/offers/offer_bounds.h"
#include "played_services.h"
#include "support/log_capture.h"
#include "support/played_dds.h"

#include <string>

#include <gmock/gmock.h>

namespace com_unit {
namespace {

using namespace ara::com::dds;  // NOLINT(google-build-using-namespace): what is tested is a part of it
using testing::SizeIs;

TEST(Claims, Are_of_an_instance_of_an_interface) {
    Engine engine;
    auto& sut = engine.announcer();
    sut.claim("an::Interface", "app");
    EXPECT_TRUE(sut.claims("an::Interface", "app"));
    EXPECT_FALSE(sut.claims("another::Interface", "app"));
    EXPECT_FALSE(sut.claims("an::Interface", "other"));
    EXPECT_THROW(sut.claim("an::Interface", "app"), tarq::com::Infrastructure_exception);
    sut.claim("another::Interface", "app");
    sut.claim("an::Interface", "other");
    sut.withdraw("another::Interface", "app");
    EXPECT_FALSE(sut.claims("another::Interface", "app"));
    EXPECT_TRUE(sut.claims("an::Interface", "app"));
    EXPECT_TRUE(sut.claims("an::Interface", "other"));
}

/// Bounds among others' writers; the offers of this participant are its own where their interface says so.
class Bounds_of_offers : public testing::Test {
 protected:
    static constexpr auto const* k_claimed = "claimed::Interface";

    bool admits(dds_instance_handle_t writer, int number, std::string const& interface_name = "an::Interface") {
        return sut_.admits(offering_.of(interface_name, name(writer, number)), writer);
    }
    std::size_t admitted(dds_instance_handle_t writer, int count, std::string const& interface_name = "an::Interface") {
        std::size_t all = 0;
        for (int number = 0; number < count; ++number) {
            all += admits(writer, number, interface_name) ? 1 : 0;
        }
        return all;
    }
    void end(dds_instance_handle_t writer, int number) {
        sut_.ended(offering_.of("an::Interface", name(writer, number)));
    }

    test_support::Log_capture log_;

 private:
    static std::string name(dds_instance_handle_t writer, int number) {
        return std::to_string(writer) + '/' + std::to_string(number);
    }

    Offering offering_;
    Offer_bounds sut_{[](Guid const& /*participant*/, std::string const& interface_name,
                         std::string const& /*instance*/) { return interface_name == k_claimed; }};
};

TEST_F(Bounds_of_offers, Are_64_of_a_writer_and_each_that_ends_makes_room) {
    EXPECT_EQ(admitted(1, 70), 64U);
    EXPECT_EQ(admitted(1, 70), 64U) << "what is known is let in again";
    EXPECT_EQ(admitted(2, 64), 64U);
    EXPECT_EQ(admitted(1, 70, k_claimed), 70U) << "ours are not counted";
    end(1, 5);
    end(1, 5);
    end(3, 5);
    EXPECT_TRUE(admits(1, 69));
    EXPECT_FALSE(admits(1, 5));
    EXPECT_THAT(log_.at_least(ara::log::LogLevel::kWarn), SizeIs(1)) << "once";
}

TEST_F(Bounds_of_offers, Are_1024_in_all) {
    std::size_t known = 0;
    for (dds_instance_handle_t writer = 1; writer <= 17; ++writer) {
        known += admitted(writer, 64);
    }
    EXPECT_EQ(known, 1024U);
    EXPECT_FALSE(admits(18, 0));
    EXPECT_TRUE(admits(18, 0, k_claimed));
    end(1, 0);
    EXPECT_TRUE(admits(18, 0));
    EXPECT_FALSE(admits(18, 1));
}

}  // namespace
}  // namespace com_unit
