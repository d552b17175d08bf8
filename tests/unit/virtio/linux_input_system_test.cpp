// The real system calls, on FIFOs and plain files; what only a device can answer is shown beside the hypervisor.

#include "statemanager/virtio/linux_input_system.h"

#include "statemanager/virtio/virtio_interface.h"
#include "support/log_capture.h"
#include "support/temporary_directory.h"

#include <array>
#include <cerrno>
#include <filesystem>
#include <memory>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ximo::ap::statemanager::virtio {
namespace {

using ara::log::LogLevel;
using test_support::logged;
using test_support::Temporary_directory;
using testing::Contains;
using testing::IsSupersetOf;

class Linux_input_system_test : public testing::Test {
 protected:
    std::string make_fifo(std::string const& name) {
        EXPECT_EQ(::mkfifo(directory.file(name).c_str(), 0600), 0);
        return directory.file(name);
    }

    Temporary_directory directory;
    Linux_input_system sut;
};

TEST_F(Linux_input_system_test, A_directory_is_listed) {
    directory.write("event0", "");
    directory.write("mouse0", "");

    auto const names = sut.list_directory(directory.path().string());

    ASSERT_TRUE(names.has_value());
    EXPECT_THAT(*names, IsSupersetOf({"event0", "mouse0"}));
}

TEST_F(Linux_input_system_test, A_directory_that_is_missing_or_is_a_file_is_nothing) {
    EXPECT_EQ(sut.list_directory(directory.file("missing")), std::nullopt);
    EXPECT_EQ(sut.list_directory(directory.write("file", "")), std::nullopt);
}

TEST_F(Linux_input_system_test, Opening_reads_only_does_not_wait_and_is_not_inherited) {
    int const descriptor = sut.open_device(make_fifo("event0"));

    ASSERT_GE(descriptor, 0);
    EXPECT_EQ(::fcntl(descriptor, F_GETFL) & (O_ACCMODE | O_NONBLOCK), O_RDONLY | O_NONBLOCK);
    EXPECT_EQ(::fcntl(descriptor, F_GETFD), FD_CLOEXEC);
    EXPECT_EQ(sut.close_descriptor(descriptor), 0);
}

TEST_F(Linux_input_system_test, What_fails_gives_minus_one_and_the_reason) {
    Input_record_bytes record{};
    Epoll_events events{};
    EXPECT_EQ(sut.open_device(directory.file("missing")), -1);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(sut.read_record(-1, record), -1);
    EXPECT_EQ(errno, EBADF);
    EXPECT_EQ(sut.watch(-1, -1), -1);
    EXPECT_EQ(errno, EBADF);
    EXPECT_EQ(sut.wait(-1, events, 0), -1);
    EXPECT_EQ(errno, EBADF);
    EXPECT_EQ(sut.close_descriptor(-1), -1);
    EXPECT_EQ(errno, EBADF);
}

TEST_F(Linux_input_system_test, A_wait_reports_the_descriptor_that_has_input_and_a_read_takes_one_record) {
    std::string const path = make_fifo("event0");
    int const device = sut.open_device(path);
    int const writer = ::open(path.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
    int const epoll = sut.create_epoll();
    ASSERT_EQ(sut.watch(epoll, device), 0);
    Epoll_events events{};
    EXPECT_EQ(sut.wait(epoll, events, 0), 0);

    std::string const two_records(48, 'x');
    ASSERT_EQ(::write(writer, two_records.data(), two_records.size()), 48);
    EXPECT_EQ(sut.wait(epoll, events, 10'000), 1);

    EXPECT_EQ(events[0].data.fd, device);
    EXPECT_EQ(events[0].events, std::uint32_t{EPOLLIN});
    Input_record_bytes record{};
    EXPECT_EQ(sut.read_record(device, record), 24);
    EXPECT_EQ(record.back(), 'x');
    for (int const descriptor : {device, writer, epoll}) {
        EXPECT_EQ(sut.close_descriptor(descriptor), 0);
    }
}

TEST_F(Linux_input_system_test, Room_to_write_is_no_event) {
    std::array<int, 2> ends{};
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()), 0);
    int const epoll = sut.create_epoll();
    ASSERT_EQ(sut.watch(epoll, ends[0]), 0);
    Epoll_events events{};

    EXPECT_EQ(sut.wait(epoll, events, 0), 0);

    for (int const descriptor : {ends[0], ends[1], epoll}) {
        EXPECT_EQ(sut.close_descriptor(descriptor), 0);
    }
}

TEST_F(Linux_input_system_test, A_file_that_is_no_input_device_has_no_event_types) {
    int const descriptor = sut.open_device(directory.write("event0", ""));
    std::uint64_t types = 0;

    EXPECT_EQ(sut.read_event_types(descriptor, types), -1);
    EXPECT_THAT(errno, testing::AnyOf(ENOTTY, ENOSYS)) << "ENOSYS where an emulator answers";

    EXPECT_EQ(Virtio_interface::supported_event_types(descriptor), 0);
    EXPECT_EQ(Virtio_interface::supported_event_types(-1), 0);
    EXPECT_EQ(sut.close_descriptor(descriptor), 0);
}

TEST_F(Linux_input_system_test, A_reader_on_a_real_directory_without_devices_finds_none_and_keeps_no_directory_open) {
    test_support::Log_capture log;
    directory.write("event0", "");
    auto const count_open = [] {
        auto const begin = std::filesystem::directory_iterator("/proc/self/fd");
        return std::distance(begin, std::filesystem::directory_iterator());
    };
    auto const open_before = count_open();
    {
        Virtio_interface reader;
        EXPECT_FALSE(reader.init(directory.path().string()));
        EXPECT_EQ(count_open(), open_before + 2);  // epoll, and the file that has no keys
        EXPECT_FALSE(reader.init(directory.file("missing")));
    }
    EXPECT_THAT(log.messages(), Contains(logged(LogLevel::kError, "Virtio device input folder \"",
                                                directory.file("missing"), "\"not found")));
}

}  // namespace
}  // namespace ximo::ap::statemanager::virtio
