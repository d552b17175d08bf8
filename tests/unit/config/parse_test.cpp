#include "statemanager/config/state_manager_json_parser.h"
#include "support/log_capture.h"
#include "support/temporary_directory.h"
#include "unit/config/complete_configuration.h"

#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <sys/fsuid.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ximo::ap::statemanager::config {
namespace {

using ara::log::LogLevel;
using nlohmann::json;
using test_support::complete_configuration;
using test_support::file_text;
using test_support::Log_capture;
using test_support::logged;
using test_support::reason;
using test_support::reason_of_refusal;
using test_support::Temporary_directory;
using testing::ElementsAre;

/// Parses files of the test's own.
class Parse : public testing::Test {
 protected:
    bool parse_path(std::string const& path) {
        log_.clear();
        return State_manager_json_parser::parse(path, config_);
    }
    bool parse(std::string_view content) { return parse_path(directory_.write("file.json", content)); }
    std::string path() const { return directory_.file("file.json"); }
    Temporary_directory const& directory() const { return directory_; }
    Log_capture& log() { return log_; }
    State_manager_config const& config() const { return config_; }

    void expect_failed_with(std::string const& why) {
        EXPECT_THAT(log().messages(), ElementsAre(logged(LogLevel::kInfo, "Parsing configuration file:", path()),
                                                  logged(LogLevel::kFatal, "Failed to parse configuration: ", why)));
    }

 private:
    Temporary_directory directory_;
    Log_capture log_;
    State_manager_config config_;
};

TEST_F(Parse, Fills_the_configuration_from_a_file) {
    EXPECT_TRUE(parse(file_text(complete_configuration())));

    EXPECT_EQ(config().get_knockout_timer(), 7U);
    EXPECT_THAT(config().get_apps_cwu(), ElementsAre("c1", "c2"));
    EXPECT_THAT(log().at_least(LogLevel::kDebug),
                ElementsAre(logged(LogLevel::kInfo, "Parsing configuration file:", path())));
}

TEST_F(Parse, Looks_for_the_member_ap_statemanager_before_it_reads) {
    parse(file_text(complete_configuration()));

    auto const messages = log().messages();
    ASSERT_GE(messages.size(), 3U);
    EXPECT_EQ(messages[1], logged(LogLevel::kVerbose, "State_manager_json_parser: Found ", "ap_statemanager"));
    EXPECT_EQ(messages[2],
              logged(LogLevel::kVerbose, "State_manager_json_parser: Parsing State Manager configuration"));
}

TEST_F(Parse, A_file_with_a_byte_order_mark_is_read) {
    EXPECT_TRUE(parse("\xef\xbb\xbf" + file_text(complete_configuration())));
}

TEST_F(Parse, A_configuration_that_is_incomplete_is_refused) {
    auto incomplete = complete_configuration();
    incomplete.erase("CWURequestConfig");

    EXPECT_FALSE(parse(file_text(incomplete)));
}

TEST_F(Parse, A_file_that_does_not_exist_is_fatal) {
    EXPECT_FALSE(parse_path(path()));

    EXPECT_THAT(log().messages(),
                ElementsAre(logged(LogLevel::kInfo, "Parsing configuration file:", path()),
                            logged(LogLevel::kFatal, "Configuration file could NOT be opened! Path: ", path())));
}

TEST_F(Parse, A_file_that_may_not_be_read_is_fatal) {
    directory().write("file.json", file_text(complete_configuration()));
    ASSERT_EQ(::chmod(path().c_str(), 0), 0);

    ::setfsuid(65534);  // root may read everything; for opening files be somebody else. Without effect for others.
    auto const parsed = parse_path(path());
    ::setfsuid(::geteuid());

    EXPECT_FALSE(parsed);
    EXPECT_EQ(log().messages().back(),
              logged(LogLevel::kFatal, "Configuration file could NOT be opened! Path: ", path()));
}

TEST_F(Parse, Text_that_is_no_bounded_JSON_document_is_fatal_with_the_reason) {
    auto const cut_short = "{\"ap_statemanager\": }";
    for (auto const& [content, why] : std::vector<std::pair<std::string, std::string>>{
             {cut_short, reason_of_refusal(cut_short)},
             {"", reason_of_refusal("")},
             {file_text(complete_configuration()) + std::string(3, '\0'), "it contains a zero byte"},
             {std::string(1048577, ' '), "it is larger than 1048576 bytes"},
             {"{\"ap_statemanager\":" + std::string(500000, '[') + std::string(500000, ']') + "}",
              "values are nested deeper than 32 levels"}}) {
        EXPECT_FALSE(parse(content));

        expect_failed_with(why);
    }
}

TEST_F(Parse, A_file_cut_anywhere_is_refused) {
    auto const whole = file_text(complete_configuration());

    for (std::size_t length = 0; length < whole.size(); ++length) {
        EXPECT_FALSE(parse(whole.substr(0, length))) << length;
    }
}

TEST_F(Parse, Text_after_the_document_is_fatal) {
    EXPECT_FALSE(parse(file_text(complete_configuration()) + "{}"));

    EXPECT_EQ(log().messages().back().level, LogLevel::kFatal);
    EXPECT_EQ(config().get_knockout_timer(), 3U);
}

TEST_F(Parse, A_document_that_is_no_object_is_fatal) {
    for (auto const* content : {"[]", "null", "1", "\"ap_statemanager\""}) {
        EXPECT_FALSE(parse(content));

        auto const document = json::parse(content);
        expect_failed_with(reason([&] { document.at("ap_statemanager"); }));
    }
}

TEST_F(Parse, A_file_without_the_member_ap_statemanager_fails_at_the_first_key) {
    EXPECT_FALSE(parse("{}"));

    json const null;
    EXPECT_THAT(
        log().messages(),
        ElementsAre(logged(LogLevel::kInfo, "Parsing configuration file:", path()),
                    logged(LogLevel::kInfo, "State_manager_json_parser:", "Missing ", "ap_statemanager",
                           "in configuration.", "caused by", reason([] { json::object().at("ap_statemanager"); })),
                    logged(LogLevel::kVerbose, "State_manager_json_parser: Parsing State Manager configuration"),
                    logged(LogLevel::kDebug, "State_manager_json_parser:", "Incorrect key type: ", reason([&] {
                               null.at("KnockOutTimer");
                           }))));
}

TEST_F(Parse, A_directory_or_a_FIFO_that_nobody_writes_to_does_not_hold_the_start) {
    ASSERT_EQ(::mkdir(path().c_str(), 0700), 0);
    EXPECT_FALSE(parse_path(path()));
    expect_failed_with("it is not a regular file");
    ASSERT_EQ(::rmdir(path().c_str()), 0);

    ASSERT_EQ(::mkfifo(path().c_str(), 0600), 0);
    EXPECT_FALSE(parse_path(path()));
    expect_failed_with("it is not a regular file");
}

TEST_F(Parse, A_thousand_instances_are_read) {
    auto large = complete_configuration();
    large["MaxNumberOfCWURequest"] = 1000;
    large["CWURequestConfig"] = json::array();
    for (int number = 0; number < 1000; ++number) {
        large["CWURequestConfig"].push_back({{"CWUInterfaceInstance", std::to_string(number)}});
    }

    EXPECT_TRUE(parse(file_text(large)));

    EXPECT_EQ(config().get_apps_cwu().size(), 1000U);
    EXPECT_EQ(config().get_apps_cwu().back(), "999");
}

}  // namespace
}  // namespace ximo::ap::statemanager::config
