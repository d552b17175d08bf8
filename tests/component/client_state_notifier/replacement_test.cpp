// A request that a newer one replaces when it is about to complete. The newer one is made on the server's own thread,
// by a predicate or a status callback, so that the moment is the same in each run.

#include "server_fixture.h"

namespace client_state_notifier {
namespace {

class Request_that_is_replaced_at_the_last_moment : public testing::Test {
 protected:
    using Completed = std::promise<Callback_status>;

    void request(std::string const& state, Client_predicate const& predicate,
                 std::shared_ptr<Completed> const& completed, std::chrono::seconds timeout) {
        sut.request_state_change(
            state, predicate, [completed](auto status, auto const&) { completed->set_value(status); }, timeout);
    }

    /// With nobody to ask, so that it completes as soon as it is taken.
    void request_newer() {
        request(
            "kOn", [](auto const& /*name*/) { return false; }, newer, 1h);
    }

    void expect_completion_of_the_newer_one_only() {
        EXPECT_EQ(newer->get_future().wait_for(10s), std::future_status::ready);
        auto completion_of_older = older->get_future();
        older.reset();
        EXPECT_THROW(completion_of_older.get(), std::future_error) << "its callback has gone without a call";
    }

    test_support::Temporary_directory files;
    std::string path{files.file("notification.socket")};
    std::shared_ptr<Completed> older{std::make_shared<Completed>()};
    std::shared_ptr<Completed> newer{std::make_shared<Completed>()};
    Client_states_impl sut{
        "kOn", [this](auto const& /*name*/, auto /*status*/, auto const& /*state*/) { request_newer(); }, path};
    test_support::Test_client radio{path, "radio", "kOn"};
    bool const is_connected{eventually([&] { return sut.get_connected_clients().size() == 1; })};
};

TEST_F(Request_that_is_replaced_at_the_last_moment, Does_not_complete_for_lack_of_clients) {
    auto const replace_and_select_nobody = [this](auto const& /*name*/) {
        request_newer();
        return false;
    };
    request("kPrepSD", replace_and_select_nobody, older, 1h);
    expect_completion_of_the_newer_one_only();
}

TEST_F(Request_that_is_replaced_at_the_last_moment, Does_not_complete_for_lack_of_time) {
    auto const replace_and_select = [this](auto const& /*name*/) {
        request_newer();
        return true;
    };
    request("kPrepSD", replace_and_select, older, 0s);
    expect_completion_of_the_newer_one_only();
}

TEST_F(Request_that_is_replaced_at_the_last_moment, Does_not_complete_by_the_last_answer) {
    auto const everybody = [](auto const& /*name*/) { return true; };
    request("kPrepSD", everybody, older, 1h);
    auto const asked = radio.receive();
    // Both are received together, and the first of them is reported.
    auto bytes = utilities::serialize({utilities::Type_length_value(asked.number + 1),
                                       utilities::Type_length_value("kOff"), utilities::Type_length_value(0U)});
    auto const answer =
        utilities::serialize({utilities::Type_length_value(asked.number), utilities::Type_length_value("kPrepSD"),
                              utilities::Type_length_value(0U)});
    bytes.insert(bytes.end(), answer.begin(), answer.end());
    radio.send_bytes(bytes.data(), bytes.size());
    expect_completion_of_the_newer_one_only();
}

}  // namespace
}  // namespace client_state_notifier
