#include "bench/vm/dlt_stream.h"

#include <cstdint>
#include <string>

#include <gmock/gmock.h>

namespace bench::vm {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

void append_little_endian(std::string& bytes, std::uint32_t value, int size) {
    for (int i = 0; i < size; ++i) {
        bytes += static_cast<char>(value >> (8 * i) & 0xFFU);
    }
}

/// A message with one string, as a log daemon sends it on a serial line; time in tenths of a millisecond.
std::string message(std::string const& text, std::uint8_t time = 0) {
    std::string payload;
    append_little_endian(payload, 0x200, 4);  // a string
    append_little_endian(payload, static_cast<std::uint32_t>(text.size() + 1), 2);
    payload += text + '\0';
    constexpr std::size_t headers = 4 + 4 + 4 + 10;  // standard with ECU and time, extended
    auto const length = headers + payload.size();
    std::string bytes("DLS\x01");
    bytes += "\x35";  // extended header, ECU, time stamp, version 1
    bytes += '\0';
    bytes += static_cast<char>(length >> 8U);
    bytes += static_cast<char>(length & 0xFFU);
    bytes += "ECU1";
    bytes += std::string(3, '\0') + static_cast<char>(time);
    bytes += "\x41\x01";  // verbose log message of level info, one argument
    bytes += std::string("STMG", 4) + std::string("MAIN", 4);
    return bytes + payload;
}

TEST(Dlt_stream_of_a_serial_line, Gives_them_however_they_arrive) {
    Dlt_stream sut;
    auto const bytes = message("One") + message("Two");
    vehicle::Timeline events;
    for (char const byte : bytes) {
        for (auto& event : sut.add(std::string_view(&byte, 1))) {
            events.push_back(std::move(event));
        }
    }
    ASSERT_THAT(events, SizeIs(2));
    EXPECT_EQ(events[0].text, "One");
    EXPECT_EQ(events[1].text, "Two");
}

TEST(Dlt_stream_of_a_serial_line, Goes_on_behind_a_message_that_was_cut_off) {
    Dlt_stream sut;
    auto const cut = message("Lost with its sender");
    EXPECT_THAT(sut.add(cut.substr(0, 12)), IsEmpty());
    auto const events = sut.add(message("Next"));
    ASSERT_THAT(events, SizeIs(1));
    EXPECT_EQ(events[0].text, "Next");
}

TEST(Dlt_stream_of_a_serial_line, Leaves_out_what_is_between_messages) {
    Dlt_stream sut;
    auto const events = sut.add("console noise" + message("Hello"));
    ASSERT_THAT(events, SizeIs(1));
    EXPECT_EQ(events[0].text, "Hello");
}

}  // namespace
}  // namespace bench::vm
