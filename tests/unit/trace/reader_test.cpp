#include "tools/dlt/reader.h"

#include "dlt_bytes.h"

#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>

namespace trace_test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct Read {
    std::vector<std::string> texts;
    std::size_t skipped;
    bool is_cut;
};

// Reads bytes in pieces of a size.
Read read(std::string_view bytes, std::size_t piece) {
    dlt::Reader reader;
    Read all{};
    auto const take = [&] {
        while (auto const message = reader.next()) {
            all.texts.push_back(text_of(*message));
        }
    };
    for (std::size_t place = 0; place < bytes.size(); place += piece) {
        reader.add(bytes.substr(place, piece));
        take();
    }
    reader.end();
    take();
    all.skipped = reader.skipped_bytes();
    all.is_cut = reader.is_cut();
    return all;
}

std::string three(Framing framing) {
    return bytes_of({{"One"}}, framing) + bytes_of({{"Two", "of", "them"}}, framing) + bytes_of({{"Three"}}, framing);
}

class A_trace : public testing::TestWithParam<Framing> {};

TEST_P(A_trace, Is_read_in_pieces_of_any_size) {
    auto const bytes = three(GetParam());
    for (std::size_t piece = 1; piece <= bytes.size(); ++piece) {
        auto const all = read(bytes, piece);
        ASSERT_THAT(all.texts, ElementsAre("One", "Two of them", "Three")) << piece;
        ASSERT_EQ(all.skipped, 0U);
    }
}

// Wherever it ends, what is whole is read, and every byte of the rest is counted.
TEST_P(A_trace, May_end_anywhere) {
    auto const bytes = three(GetParam());
    auto const first = bytes_of({{"One"}}, GetParam()).size();
    auto const second = first + bytes_of({{"Two", "of", "them"}}, GetParam()).size();
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        auto const all = read(std::string_view(bytes).substr(0, size), 7);
        auto const whole = size < first ? 0U : size < second ? 1U : 2U;
        ASSERT_EQ(all.texts.size(), whole) << size;
        ASSERT_EQ(all.skipped, size - (whole == 0 ? 0 : whole == 1 ? first : second)) << size;
    }
}

INSTANTIATE_TEST_SUITE_P(Reader, A_trace, testing::Values(Framing::storage, Framing::serial, Framing::none),
                         [](auto const& one) {
                             return std::string(one.param == Framing::storage  ? "With_storage_headers"
                                                : one.param == Framing::serial ? "With_serial_headers"
                                                                               : "Without_headers");
                         });

// A message that lacks no more than its header is whole.
TEST(A_trace_with_headers, May_begin_anywhere) {
    for (auto const framing : {Framing::storage, Framing::serial}) {
        auto const bytes = three(framing);
        auto const first = bytes_of({{"One"}}, framing).size();
        auto const header = first - bytes_of({{"One"}}, Framing::none).size();
        for (std::size_t begin = 1; begin <= first; ++begin) {
            auto all = read(std::string_view(bytes).substr(begin), 5);
            if (begin <= header) {
                ASSERT_EQ(all.texts.front(), "One") << begin;
                all.texts.erase(all.texts.begin());
            }
            ASSERT_THAT(all.texts, ElementsAre("Two of them", "Three")) << begin;
            ASSERT_EQ(all.skipped, (begin <= header ? header : first) - begin) << begin;
        }
    }
}

TEST(A_trace_with_headers, Goes_on_behind_a_message_that_broke_off) {
    auto const broken = bytes_of({{"Lost with its sender"}});
    for (std::size_t size = 1; size < broken.size(); ++size) {
        auto const all = read(broken.substr(0, size) + bytes_of({{"Next"}}), 11);
        ASSERT_THAT(all.texts, ElementsAre("Next")) << size;
        ASSERT_EQ(all.skipped, size);
    }
}

TEST(A_trace_with_headers, Has_a_message_that_speaks_of_headers) {
    auto const speaks = bytes_of({{"a mark: DLT\x01 here"}});
    EXPECT_THAT(read(speaks + bytes_of({{"Next"}}), 4096).texts, ElementsAre("a mark: DLT\x01 here", "Next"));
    EXPECT_THAT(read(speaks, 4096).texts, ElementsAre("a mark: DLT\x01 here"));
}

TEST(A_trace_with_headers, Leaves_out_what_is_between_messages) {
    auto const all = read("console noise" + bytes_of({{"Hello"}}, Framing::serial) + "more", 3);
    EXPECT_THAT(all.texts, ElementsAre("Hello"));
    EXPECT_EQ(all.skipped, 17U);
}

TEST(A_message, Has_its_times_its_sender_and_its_level) {
    dlt::Reader reader;
    reader.add(bytes_of({{"x"}, 12.5, 2, "RADI", 77, 1'700'000'000}));
    auto const message = reader.next();
    ASSERT_TRUE(message);
    EXPECT_EQ(message->stored_us, 1'700'000'000'250'000);
    EXPECT_EQ(message->ticks, 125'000U);
    EXPECT_EQ(message->session, 77U);
    EXPECT_EQ(message->level, 2);
    EXPECT_EQ(message->ecu, "ECU1");
    EXPECT_EQ(message->application, "RADI");
    EXPECT_EQ(message->context, "DFLT");
}

struct Typed {
    char const* name;
    std::uint32_t type;
    std::uint64_t value;
    int size;
    char const* text;
};

// As the log's own viewer shows them.
TEST(An_argument, Of_each_type_is_text) {
    constexpr std::array<Typed, 10> k_rows{{{"bool", 0x11, 1, 1, "1"},
                                            {"signed 8", 0x21, 0xF8, 1, "-8"},
                                            {"signed 16", 0x22, 0xFFF0, 2, "-16"},
                                            {"signed 32", 0x23, 0xFFFFFFE0, 4, "-32"},
                                            {"signed 64", 0x24, 0x8000000000000000, 8, "-9223372036854775808"},
                                            {"unsigned 8", 0x41, 200, 1, "200"},
                                            {"unsigned 16", 0x42, 60000, 2, "60000"},
                                            {"unsigned 32", 0x43, 4000000000, 4, "4000000000"},
                                            {"unsigned 64", 0x44, 0xFFFFFFFFFFFFFFFF, 8, "18446744073709551615"},
                                            {"float 32", 0x83, 0x3FC00000, 4, "1.500000"}}};
    for (auto const& row : k_rows) {
        EXPECT_THAT(read(bytes_of_argument(little(row.type, 4) + little(row.value, row.size), false), 4096).texts,
                    ElementsAre(row.text))
            << row.name;
        EXPECT_THAT(read(bytes_of_argument(big(row.type, 4) + big(row.value, row.size), true), 4096).texts,
                    ElementsAre(row.text))
            << row.name << ", most significant byte first";
    }
    EXPECT_THAT(read(bytes_of_argument(little(0x400, 4) + little(2, 2) + "\xbe\xef", false), 4096).texts,
                ElementsAre("be ef"));
}

TEST(An_argument, That_has_a_name_is_read_behind_it) {
    auto const number = little(0x843, 4) + little(2, 2) + little(3, 2) + std::string("n\0ms\0", 5) + little(7, 4);
    EXPECT_THAT(read(bytes_of_argument(number, false), 4096).texts, ElementsAre("7"));
    auto const text = little(0xA00, 4) + little(3, 2) + little(2, 2) + std::string("n\0hi\0", 5);
    EXPECT_THAT(read(bytes_of_argument(text, false), 4096).texts, ElementsAre("hi"));
}

TEST(An_argument, That_is_longer_than_its_message_is_left_out) {
    EXPECT_THAT(read(bytes_of_argument(little(0x200, 4) + little(60'000, 2) + "short", false), 4096).texts,
                ElementsAre(""));
}

TEST(Nothing, Is_no_trace) {
    EXPECT_THAT(read("", 1).texts, IsEmpty());
    EXPECT_THAT(read("a text file\nwith lines\n", 4).texts, IsEmpty());
}

}  // namespace
}  // namespace trace_test
