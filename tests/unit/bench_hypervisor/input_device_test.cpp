#include "bench/hypervisor/input_device.h"

#include <cerrno>
#include <cstring>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/ioctl.h>

namespace bench::hypervisor {
namespace {

using Record = std::tuple<int, int, int>;  // type, code, value

constexpr unsigned k_get_event_types = 0x80084520;
constexpr std::size_t k_record = 24;
constexpr Input_device::Reader k_reader = 1;

class Input_device_test : public testing::Test {
 protected:
    Input_device_test() { sut.add_reader(k_reader); }

    // All records that wait, read one by one.
    std::vector<Record> records(Input_device::Reader reader = k_reader) {
        std::vector<Record> result;
        for (Outcome outcome = sut.read(reader, k_record); outcome.error == 0; outcome = sut.read(reader, k_record)) {
            result.push_back(decoded(outcome.bytes));
        }
        return result;
    }

    // The fields by their place in the record: type at 16, code at 18, value at 20.
    static Record decoded(std::string const& bytes) {
        EXPECT_EQ(bytes.size(), k_record);
        std::uint16_t type = 0;
        std::uint16_t code = 0;
        std::int32_t value = 0;
        std::memcpy(&type, bytes.data() + 16, sizeof type);
        std::memcpy(&code, bytes.data() + 18, sizeof code);
        std::memcpy(&value, bytes.data() + 20, sizeof value);
        return {type, code, value};
    }

    Input_device sut{"event0", 1U << EV_SYN | 1U << EV_KEY};
};

TEST_F(Input_device_test, A_read_gives_as_many_whole_records_as_fit) {
    sut.press(EV_KEY, KEY_N);
    EXPECT_EQ(sut.read(k_reader, 2 * k_record + 23).bytes.size(), 2 * k_record);
    EXPECT_EQ(sut.read(k_reader, 1000).bytes.size(), 2 * k_record);
}

TEST_F(Input_device_test, A_read_without_room_for_one_record_is_invalid_and_takes_nothing) {
    sut.send(EV_KEY, KEY_N, 1);
    EXPECT_EQ(sut.read(k_reader, k_record - 1).error, EINVAL);
    EXPECT_EQ(records().size(), 1U);
}

TEST_F(Input_device_test, A_reader_that_closed_is_no_longer_served) {
    sut.remove_reader(k_reader);
    EXPECT_EQ(sut.readers(), 0U);
    sut.send(EV_KEY, KEY_N, 1);
    sut.add_reader(k_reader);
    EXPECT_TRUE(records().empty());
}

TEST_F(Input_device_test, One_record_too_many_leaves_the_dropped_mark_and_the_newest_record) {
    for (std::size_t number = 0; number <= Input_device::k_queue_length; ++number) {
        sut.send(EV_KEY, KEY_N, static_cast<std::int32_t>(number));
    }
    EXPECT_EQ(records(), (std::vector<Record>{{EV_SYN, SYN_DROPPED, 0}, {1, 49, 64}}));
}

TEST_F(Input_device_test, The_mask_is_cut_to_the_asked_length) {
    EXPECT_EQ(sut.control(_IOC(_IOC_READ, 'E', 0x20, 4), 4).bytes.size(), 4U);
    EXPECT_EQ(sut.control(_IOC(_IOC_READ, 'E', 0x20, 64), 64).bytes.size(), 8U);
}

TEST_F(Input_device_test, After_a_hang_up_that_keeps_announcing_poll_still_promises_what_can_not_be_read) {
    sut.press(EV_KEY, KEY_N);
    sut.hang_up(true);
    EXPECT_EQ(sut.poll(k_reader), unsigned{POLLHUP | POLLERR | POLLIN | POLLRDNORM});
    EXPECT_EQ(sut.read(k_reader, k_record).error, ENODEV);
}

TEST_F(Input_device_test, A_device_that_hung_up_sends_nothing_more) {
    sut.hang_up(true);
    sut.press(EV_KEY, KEY_N);
    EXPECT_EQ(sut.poll(k_reader), unsigned{POLLHUP | POLLERR});
}

}  // namespace
}  // namespace bench::hypervisor
