// The system refuses to take a word that wakes the server's thread.

#include "sequence_fixture.h"

#include <atomic>
#include <cerrno>
#include <string_view>

#include <dlfcn.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

std::atomic<int> words_until_refusal{0};  // 0 for none
std::atomic<int> refusal{0};
std::atomic<bool> events_are_refused{false};

bool is_word_of_the_channel(void const* bytes, std::size_t length) {
    std::string_view const text(static_cast<char const*>(bytes), length);
    return text.find("state_change_request_added") != text.npos || text.find("terminate") != text.npos;
}

template <class Function>
Function c_library(Function /*replaced*/, char const* name) {
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

}  // namespace

// These take the place of the C library's in this program.
extern "C" ssize_t send(int socket, void const* bytes, std::size_t length, int flags) {
    if (is_word_of_the_channel(bytes, length) && words_until_refusal > 0 && --words_until_refusal == 0) {
        errno = refusal;
        return -1;
    }
    return c_library(&::send, "send")(socket, bytes, length, flags);
}

extern "C" ssize_t write(int file, void const* bytes, std::size_t length) {
    if (events_are_refused && length == sizeof(std::uint64_t)) {
        errno = ENOMEM;
        return -1;
    }
    return c_library(&::write, "write")(file, bytes, length);
}

namespace sequences {
namespace {

using test_support::logged_in;
using testing::Contains;
using testing::ElementsAreArray;

class Refused_wake_up : public Sequence_test {
 protected:
    Refused_wake_up() : Sequence_test(std::chrono::seconds(5)) {}
    void TearDown() override {
        EXPECT_EQ(words_until_refusal.exchange(0), 0) << "so many words were not sent";
        events_are_refused = false;
    }

    static void refuse(int word, int error) {
        refusal = error;
        words_until_refusal = word;
    }

    static std::vector<Asked> suspend_and_resume() {
        auto asked = whole_sequence(Way::standby);
        auto const resume = whole_sequence(Way::resume);
        asked.insert(asked.end(), resume.begin(), resume.end());
        return asked;
    }
};

/// The three words of a suspend, the three of a resume, and how the system may refuse them.
class Of_a_suspend_and_a_resume : public Refused_wake_up, public testing::WithParamInterface<std::tuple<int, int>> {};

TEST_P(Of_a_suspend_and_a_resume, Loses_and_delays_nothing) {
    connect_all();
    refuse(std::get<0>(GetParam()), std::get<1>(GetParam()));
    EXPECT_LT(run(Way::standby), time_out);
    EXPECT_LT(run(Way::resume), time_out);
    EXPECT_THAT(clients.asked(), ElementsAreArray(suspend_and_resume()));
}

INSTANTIATE_TEST_SUITE_P(, Of_a_suspend_and_a_resume,
                         testing::Combine(testing::Range(1, 7), testing::Values(ENOBUFS, ENOMEM)),
                         [](auto const& test) {
                             return "word_" + std::to_string(std::get<0>(test.param)) + "_error_" +
                                    std::to_string(std::get<1>(test.param));
                         });

TEST_P(Of_a_suspend_and_a_resume, Skips_the_group_when_there_is_no_other_way_to_wake_the_thread) {
    connect_all();
    auto expected = suspend_and_resume();
    int const word = std::get<0>(GetParam());
    expected.erase(expected.begin() + word - 1);
    refuse(word, std::get<1>(GetParam()));
    events_are_refused = true;
    EXPECT_LT(run(Way::standby), time_out);
    EXPECT_LT(run(Way::resume), time_out);
    EXPECT_THAT(clients.asked(), ElementsAreArray(expected));
    EXPECT_THAT(log.messages(),
                Contains(logged_in("SNCC", ara::log::LogLevel::kError, "the server can't be told to ask clients for ",
                                   mode_of(word <= 3 ? Way::standby : Way::resume))));
}

using At_the_end = Refused_wake_up;

TEST_F(At_the_end, Ends_the_thread_all_the_same) {
    auto const second_path = files.file("second.socket");
    std::optional<client_state_notifier::Client_states_impl> second(std::in_place, "kOn", nullptr, second_path);
    ASSERT_TRUE(eventually([&] { return ::access(second_path.c_str(), F_OK) == 0; }));
    refuse(1, ENOBUFS);
    second.reset();
    EXPECT_NE(::access(second_path.c_str(), F_OK), 0);
}

}  // namespace
}  // namespace sequences
