#include "bench/json_lines/clock.h"
#include "mounted_fixture.h"

#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>
#include <vector>

#include <linux/input.h>
#include <pthread.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/syscall.h>

namespace bench::hypervisor {
namespace {

using nlohmann::json;

class Input_devices_test : public Mounted_fixture {
 protected:
    void press(std::string const& key, std::string const& device = "event0") {
        json const answer = sut->command({{"do", "press"}, {"device", device}, {"key", key}});
        ASSERT_EQ(answer["ok"], true) << answer;
    }

    // The next record that a non-blocking read gives; type 0xFFFF when there is none.
    static input_event read_record(int descriptor) {
        input_event record{};
        if (::read(descriptor, &record, sizeof record) != static_cast<ssize_t>(sizeof record)) {
            record.type = 0xFFFF;
        }
        return record;
    }

    // Returns once the thread of this process waits in read().
    static void await_blocked_read(std::atomic<pid_t> const& thread) {
        auto const end = std::chrono::steady_clock::now() + std::chrono::milliseconds(k_patience_ms);
        for (std::string call; call != std::to_string(SYS_read); std::this_thread::yield()) {
            std::ifstream("/proc/self/task/" + std::to_string(thread) + "/syscall") >> call;
            ASSERT_LT(std::chrono::steady_clock::now(), end) << "the reader never waited: " << call;
        }
    }

    std::vector<std::string> listed_devices() {
        std::vector<std::string> names;
        for (auto const& entry : std::filesystem::directory_iterator(path("input"))) {
            names.push_back(entry.path().filename());
        }
        return names;
    }
};

TEST_F(Input_devices_test, A_press_wakes_epoll_and_is_read_as_four_records_of_24_bytes) {
    Opened const device(path("input/event0"), O_RDONLY | O_NONBLOCK);
    ASSERT_EQ(device.error(), 0);
    Watched const watched(device);
    EXPECT_EQ(watched.wait(0), 0U);
    press("n");
    EXPECT_EQ(watched.wait(k_patience_ms), unsigned{EPOLLIN});
    std::vector<int> seen;
    for (int number = 0; number < 4; ++number) {
        input_event const record = read_record(device);
        seen.insert(seen.end(), {record.type, record.code, record.value});
    }
    EXPECT_EQ(seen, (std::vector<int>{EV_KEY, KEY_N, 1, EV_SYN, 0, 0, EV_KEY, KEY_N, 0, EV_SYN, 0, 0}));
    EXPECT_EQ(watched.wait(0), 0U);
    input_event record{};
    EXPECT_EQ(::read(device, &record, sizeof record), -1);
    EXPECT_EQ(errno, EAGAIN);
}

TEST_F(Input_devices_test, The_event_types_are_answered_and_other_requests_are_not) {
    sut->command({{"do", "add_device"}, {"device", "event1"}, {"events", {"EV_SYN", "EV_MSC"}}});
    Opened const keyboard(path("input/event0"), O_RDONLY | O_NONBLOCK);
    Opened const other(path("input/event1"), O_RDONLY | O_NONBLOCK);
    unsigned long mask = 0;
    EXPECT_GE(::ioctl(keyboard, EVIOCGBIT(0, 8), &mask), 0);
    EXPECT_EQ(mask, 0b11U);
    EXPECT_GE(::ioctl(other, EVIOCGBIT(0, 8), &mask), 0);
    EXPECT_EQ(mask, 0b10001U);
    int version = 0;
    EXPECT_EQ(::ioctl(keyboard, EVIOCGVERSION, &version), -1);
    EXPECT_EQ(errno, ENOTTY);
}

TEST_F(Input_devices_test, The_event_types_can_be_made_to_fail) {
    Opened const device(path("input/event0"), O_RDONLY | O_NONBLOCK);
    sut->command({{"do", "fault"}, {"file", "event0"}, {"operation", "ioctl"}, {"errno", "EIO"}});
    unsigned long mask = 0;
    EXPECT_EQ(::ioctl(device, EVIOCGBIT(0, 8), &mask), -1);
    EXPECT_EQ(errno, EIO);
    EXPECT_EQ(mask, 0U);
}

TEST_F(Input_devices_test, A_thousand_presses_are_all_read_in_order) {
    Opened const device(path("input/event0"), O_RDONLY | O_NONBLOCK);
    Watched const watched(device);
    std::vector<std::string> const keys{"r", "n", "s", "p"};
    std::vector<int> const codes{KEY_R, KEY_N, KEY_S, KEY_P};
    for (std::size_t number = 0; number < 1000; ++number) {
        press(keys[number % keys.size()]);
        ASSERT_EQ(watched.wait(k_patience_ms), unsigned{EPOLLIN}) << number;
        for (int const value : {1, -1, 0, -1}) {
            input_event const record = read_record(device);
            if (value >= 0) {
                ASSERT_EQ(record.code, codes[number % codes.size()]) << number;
                ASSERT_EQ(record.value, value);
            }
        }
    }
}

TEST_F(Input_devices_test, Devices_appear_and_go_while_the_machine_runs) {
    for (int number = 1; number <= 9; ++number) {
        sut->command({{"do", "add_device"}, {"device", "event" + std::to_string(number)}});
    }
    sut->command({{"do", "add_device"}, {"device", "mouse0"}});
    EXPECT_EQ(listed_devices(), (std::vector<std::string>{"event0", "event1", "event2", "event3", "event4", "event5",
                                                          "event6", "event7", "event8", "event9", "mouse0"}));
    sut->command({{"do", "remove_device"}, {"device", "event3"}});
    Opened const gone(path("input/event3"), O_RDONLY | O_NONBLOCK);
    EXPECT_EQ(gone.error(), ENOENT);
    EXPECT_EQ(listed_devices().size(), 10U);
}

TEST_F(Input_devices_test, A_hang_up_wakes_epoll_and_ends_reads) {
    Opened const device(path("input/event0"), O_RDONLY | O_NONBLOCK);
    Watched const watched(device);
    EXPECT_EQ(watched.wait(0), 0U);
    sut->command({{"do", "hang_up"}});
    EXPECT_EQ(watched.wait(k_patience_ms), unsigned{EPOLLHUP | EPOLLERR});
    input_event record{};
    EXPECT_EQ(::read(device, &record, sizeof record), -1);
    EXPECT_EQ(errno, ENODEV);
    Opened const again(path("input/event0"), O_RDONLY | O_NONBLOCK);
    EXPECT_EQ(again.error(), ENODEV);
}

TEST_F(Input_devices_test, A_removed_device_hangs_up_under_its_readers) {
    Opened const device(path("input/event0"), O_RDONLY | O_NONBLOCK);
    Watched const watched(device);
    EXPECT_EQ(watched.wait(0), 0U);
    sut->command({{"do", "remove_device"}, {"device", "event0"}});
    EXPECT_EQ(watched.wait(k_patience_ms), unsigned{EPOLLHUP | EPOLLERR});
}

TEST_F(Input_devices_test, A_read_error_is_announced_by_epoll_and_comes_once) {
    Opened const device(path("input/event0"), O_RDONLY | O_NONBLOCK);
    Watched const watched(device);
    EXPECT_EQ(watched.wait(0), 0U);
    sut->command({{"do", "fault"}, {"file", "event0"}, {"operation", "read"}, {"errno", "EIO"}});
    EXPECT_EQ(watched.wait(k_patience_ms), unsigned{EPOLLIN});
    input_event record{};
    EXPECT_EQ(::read(device, &record, sizeof record), -1);
    EXPECT_EQ(errno, EIO);
    press("n");
    EXPECT_EQ(watched.wait(k_patience_ms), unsigned{EPOLLIN});
    EXPECT_EQ(read_record(device).code, KEY_N);
}

TEST_F(Input_devices_test, A_blocking_read_waits_for_the_press) {
    Opened const device(path("input/event0"), O_RDONLY);
    input_event record{};
    ssize_t size = 0;
    std::atomic<pid_t> reader_id{0};
    std::thread reader([&] {
        reader_id = ::gettid();
        size = ::read(device, &record, sizeof record);
    });
    await_blocked_read(reader_id);
    press("s");
    reader.join();
    EXPECT_EQ(size, 24);
    EXPECT_EQ(record.code, KEY_S);
}

TEST_F(Input_devices_test, A_blocking_read_is_interrupted_by_a_signal) {
    struct sigaction action {};
    action.sa_handler = [](int) {};  // without SA_RESTART
    ::sigaction(SIGUSR1, &action, nullptr);
    Opened const device(path("input/event0"), O_RDONLY);
    std::atomic<bool> ended{false};
    int error = 0;
    std::thread reader([&] {
        input_event record{};
        error = ::read(device, &record, sizeof record) < 0 ? errno : 0;
        ended = true;
    });
    while (!ended) {
        ::pthread_kill(reader.native_handle(), SIGUSR1);
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    reader.join();
    EXPECT_EQ(error, EINTR);
}

TEST_F(Input_devices_test, What_programs_do_with_a_device_is_told) {
    {
        Opened const device(path("input/event0"), O_RDONLY | O_NONBLOCK);
        press("n");
        read_record(device);
    }
    json const opened = sut->await_event("open", {{"file", "event0"}, {"pid", ::getpid()}});
    json const read = sut->await_event("read", {{"file", "event0"}, {"bytes", 24}});
    json const closed = sut->await_event("close", {{"file", "event0"}});
    EXPECT_LT(opened["t"], read["t"]);
    EXPECT_LT(read["t"], closed["t"]);
    EXPECT_LT(closed["t"], monotonic_ns());
}

}  // namespace
}  // namespace bench::hypervisor
