#include "utilities/protocol.h"

#include <algorithm>
#include <array>
#include <atomic>

#include <dlfcn.h>
#include <gmock/gmock.h>

namespace {

std::array<std::atomic<void*>, 4096> objects_that_die;  // at the end of the process, as far as they were told
std::atomic<std::size_t> count_of_those{0};

}  // namespace

// Takes the place of the C library's in this program.
extern "C" int __cxa_atexit(void (*destructor)(void*), void* object, void* library) noexcept {
    if (auto const place = count_of_those++; place < objects_that_die.size()) {
        objects_that_die.at(place) = object;
    }
    using Function = int (*)(void (*)(void*), void*, void*);
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, "__cxa_atexit"))(destructor, object, library);
}

namespace utilities {
namespace {

template <class Object>
bool dies(Object const& object) {
    return std::find(objects_that_die.begin(), objects_that_die.end(), &object) != objects_that_die.end();
}

using testing::ElementsAre;

struct Word {
    std::string const& (*get)();
    std::string text;
};

// The server's thread and a client's use them until the process has gone.
TEST(Protocol, Each_word_is_that_of_the_protocol_built_once_and_never_destroyed) {
    for (auto const& word :
         {Word{get_socket_path, std::string(VAR_PREFIX) + "/run/adaptive/ara_SM/ara_SM.socket"},
          Word{get_default_non_connected_state, "kOn"}, Word{get_unknown_state, "unknown"},
          Word{get_terminate_command, "terminate"}, Word{get_protocol_version_one, "component_client_v1"},
          Word{get_state_change_request_added, "state_change_request_added"}}) {
        EXPECT_EQ(word.get(), word.text);
        EXPECT_EQ(&word.get(), &word.get());
        EXPECT_FALSE(dies(word.get())) << word.text;
    }
    static std::string const one_that_is = "or this test sees nothing";
    EXPECT_TRUE(dies(one_that_is));
    EXPECT_LT(count_of_those, objects_that_die.size());
}

TEST(Protocol, The_terminate_command_is_a_list_of_its_word) {
    EXPECT_THAT(create_terminate_command(), ElementsAre(Type_length_value("terminate")));
}

TEST(Remove_quotes, Takes_off_exactly_one_surrounding_pair) {
    EXPECT_EQ(remove_quotes("\"/var\""), "/var");
    EXPECT_EQ(remove_quotes("\"\"/var\"\""), "\"/var\"");
    EXPECT_EQ(remove_quotes("\"\""), "");
    EXPECT_EQ(remove_quotes("\"a\"b\""), "a\"b");
}

TEST(Remove_quotes, Leaves_text_without_a_surrounding_pair) {
    EXPECT_EQ(remove_quotes("/var"), "/var");
    EXPECT_EQ(remove_quotes("\"/var"), "\"/var");
    EXPECT_EQ(remove_quotes("/var\""), "/var\"");
    EXPECT_EQ(remove_quotes("/\"v\"ar"), "/\"v\"ar");
    EXPECT_EQ(remove_quotes("\""), "\"");
    EXPECT_EQ(remove_quotes("'/var'"), "'/var'");
    EXPECT_EQ(remove_quotes(""), "");
}

}  // namespace
}  // namespace utilities
