#include "statemanager/config/state_manager_json_parser.h"
#include "support/log_capture.h"
#include "unit/config/complete_configuration.h"

#include <nlohmann/json.hpp>
#include <tuple>

#include <gmock/gmock.h>

namespace ximo::ap::statemanager::config {
namespace {

using ara::log::LogLevel;
using nlohmann::json;
using test_support::complete_configuration;
using test_support::Log_capture;
using test_support::logged;
using testing::Contains;
using testing::Not;

auto values(Nm_user_data_config const& layout) {
    return std::make_tuple(layout.user_data_bytes, layout.cwu_bit_position, layout.ac_offset, layout.ac_bytes,
                           layout.cab_offset, layout.cab_bytes, layout.max_cab_size_bits, layout.cab_bits_enabled);
}

auto const k_defaults = values(Nm_user_data_config{6, 6, 1, 2, 3, 3, 24, false});

/// A configuration read with another "NmUserDataConfig".
struct Read_with {
    explicit Read_with(json const& section) {
        auto root = complete_configuration();
        root["NmUserDataConfig"] = section;
        result = State_manager_json_parser::read_state_manager_configuration(root, config);
    }
    auto layout() const { return values(config.get_nm_user_data_config()); }

    Log_capture log;
    State_manager_config config;
    bool result;
};

TEST(Nm_user_data_section, Every_member_reaches_its_field) {
    Read_with const sut(complete_configuration()["NmUserDataConfig"]);

    EXPECT_TRUE(sut.result);
    EXPECT_EQ(sut.layout(), values({8, 5, 2, 1, 4, 2, 15, true}));
}

TEST(Nm_user_data_section, A_section_that_is_not_set_keeps_the_default_layout) {
    for (auto const& section : {json(), json::object(), json::array()}) {
        Read_with sut(section);

        EXPECT_TRUE(sut.result);
        EXPECT_EQ(sut.layout(), k_defaults);
        EXPECT_THAT(sut.log.messages(), Contains(logged(LogLevel::kDebug, "State_manager_json_parser:",
                                                        "NmUserDataConfig  not set in configuration file!")));
    }
}

TEST(Nm_user_data_section, A_missing_section_keeps_the_default_layout) {
    State_manager_config config;
    auto root = complete_configuration();
    root.erase("NmUserDataConfig");

    EXPECT_TRUE(State_manager_json_parser::read_state_manager_configuration(root, config));

    EXPECT_EQ(values(config.get_nm_user_data_config()), k_defaults);
}

TEST(Nm_user_data_section, A_missing_member_keeps_its_default_and_the_others_are_read) {
    Read_with const sut(json{{"CWUBitPosition", 5}});

    EXPECT_TRUE(sut.result);
    EXPECT_EQ(sut.layout(), values({6, 5, 1, 2, 3, 3, 24, false}));
}

TEST(Nm_user_data_section, A_member_of_another_type_keeps_its_default_and_the_others_are_read) {
    Read_with const sut(json{{"UserDataBytes", "8"}, {"CWUBitPosition", 5}, {"CabBitsEnabled", 1}});

    EXPECT_TRUE(sut.result);
    EXPECT_EQ(sut.layout(), values({6, 5, 1, 2, 3, 3, 24, false}));
}

TEST(Nm_user_data_section, A_section_that_is_no_object_keeps_the_default_layout) {
    Read_with sut(json(5));

    EXPECT_TRUE(sut.result);
    EXPECT_EQ(sut.layout(), k_defaults);
    EXPECT_THAT(sut.log.messages(), Not(Contains(logged(LogLevel::kDebug, "State_manager_json_parser:",
                                                        "NmUserDataConfig  not set in configuration file!"))));
}

TEST(Nm_user_data_section, A_layout_whose_areas_overlap_fails_the_reading_and_is_not_stored) {
    Read_with sut(json{{"CABOffset", 2}, {"ACOffset", 1}, {"ACBytes", 2}});

    EXPECT_FALSE(sut.result);
    EXPECT_EQ(sut.layout(), k_defaults);
    EXPECT_EQ(sut.log.messages().back(),
              logged(LogLevel::kDebug, "State_manager_json_parser:", "Inncorect configuration of NmUserDataConfig!"));
}

TEST(Nm_user_data_section, Nothing_after_a_refused_layout_is_read) {
    Read_with const sut(json{{"UserDataBytes", 1}});

    EXPECT_FALSE(sut.result);
    EXPECT_TRUE(sut.config.get_nm_request_pattern().empty());
    EXPECT_EQ(sut.config.get_max_apps_ecualive(), 0U);
}

}  // namespace
}  // namespace ximo::ap::statemanager::config
