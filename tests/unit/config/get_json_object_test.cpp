#include "statemanager/config/state_manager_json_parser.h"
#include "support/log_capture.h"
#include "unit/config/complete_configuration.h"

#include <nlohmann/json.hpp>

#include <gmock/gmock.h>

namespace ximo::ap::statemanager::config {
namespace {

using ara::log::LogLevel;
using nlohmann::json;
using test_support::Log_capture;
using test_support::logged;
using test_support::reason;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(Get_json_object, Gives_the_member_and_logs_that_it_was_found) {
    Log_capture log;
    json const parent{{"Section", {{"a", 1}}}};

    auto const member = State_manager_json_parser::get_json_object(parent, "Section");

    EXPECT_EQ(member, (json{{"a", 1}}));
    EXPECT_THAT(log.messages(),
                ElementsAre(logged(LogLevel::kVerbose, "State_manager_json_parser: Found ", "Section")));
}

TEST(Get_json_object, Gives_a_copy) {
    json const parent{{"Section", 1}};

    auto member = State_manager_json_parser::get_json_object(parent, "Section");
    member = 2;

    EXPECT_EQ(parent, (json{{"Section", 1}}));
}

TEST(Get_json_object, A_missing_member_is_logged_in_six_pieces_and_gives_null) {
    Log_capture log;
    json const parent = json::object();

    auto const member = State_manager_json_parser::get_json_object(parent, "Section");

    EXPECT_TRUE(member.is_null());
    EXPECT_THAT(log.messages(),
                ElementsAre(logged(LogLevel::kInfo, "State_manager_json_parser:", "Missing ", "Section",
                                   "in configuration.", "caused by", reason([&] { parent.at("Section"); }))));
}

TEST(Get_json_object, A_parent_that_is_no_object_is_an_error_of_the_caller) {
    Log_capture log;

    EXPECT_THROW(State_manager_json_parser::get_json_object(json(), "Section"), json::type_error);
    EXPECT_THROW(State_manager_json_parser::get_json_object(json::array(), "Section"), json::type_error);
    EXPECT_THAT(log.messages(), IsEmpty());
}

}  // namespace
}  // namespace ximo::ap::statemanager::config
