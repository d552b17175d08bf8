#include "bench/json_lines/line_exchange.h"

#include "bench/json_lines/clock.h"

#include <array>
#include <cerrno>
#include <string>
#include <utility>

#include <sys/epoll.h>
#include <unistd.h>

namespace bench {

namespace {

std::string to_line(nlohmann::json const& message) {
    return message.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

}  // namespace

Line_exchange::Line_exchange(int input, int output, Command_table const& commands)
    : input_(input), output_(output), commands_(commands), queue_(output) {}

void Line_exchange::attach(sd_event* loop) {
    loop_ = loop;
    attach_input();
    attach_output();
}

void Line_exchange::attach_input() {
    sd_event_source* source = nullptr;
    int result = sd_event_add_io(loop_, &source, input_, EPOLLIN, &on_input, this);
    if (result == -EPERM) {
        // A regular file can't be waited for; it can always be read.
        result = sd_event_add_defer(loop_, &source, &on_input_always, this);
        require(result, "sd_event_add_defer");
        sd_event_source_set_enabled(source, SD_EVENT_ON);
    }
    require(result, "sd_event_add_io");
    input_source_.reset(source);
}

void Line_exchange::attach_output() {
    sd_event_source* source = nullptr;
    if (sd_event_add_io(loop_, &source, output_, EPOLLOUT, &on_output, this) >= 0) {
        output_source_.reset(source);
        sd_event_source_set_enabled(source, SD_EVENT_OFF);
    }
}

void Line_exchange::send(nlohmann::json const& message) {
    queue_.send(to_line(message));
    if (queue_.dropped() != reported_drops_ && !queue_.waiting()) {
        std::uint64_t const lost = queue_.dropped() - std::exchange(reported_drops_, queue_.dropped());
        queue_.send(to_line({{"event", "lost"}, {"count", lost}, {"t", monotonic_ns()}}));
    }
    if (output_source_) {
        sd_event_source_set_enabled(output_source_.get(), queue_.waiting() ? SD_EVENT_ON : SD_EVENT_OFF);
    }
}

void Line_exchange::receive() {
    std::array<char, 4096> bytes{};
    ssize_t const count = ::read(input_, bytes.data(), bytes.size());
    if (count < 0 && (errno == EAGAIN || errno == EINTR)) {
        return;
    }
    if (count > 0) {
        lines_.add({bytes.data(), static_cast<std::size_t>(count)});
        answer_waiting_lines();
        return;
    }
    if (auto const last = lines_.rest()) {
        send(commands_.answer(*last));
    }
    sd_event_exit(loop_, 0);
}

void Line_exchange::answer_waiting_lines() {
    while (auto const line = lines_.next()) {
        if (line->find_first_not_of(" \t\r") != std::string::npos) {
            send(commands_.answer(*line));
        }
    }
}

int Line_exchange::on_input(sd_event_source* /*source*/, int /*descriptor*/, std::uint32_t /*events*/, void* self) {
    static_cast<Line_exchange*>(self)->receive();
    return 0;
}

int Line_exchange::on_input_always(sd_event_source* /*source*/, void* self) {
    static_cast<Line_exchange*>(self)->receive();
    return 0;
}

int Line_exchange::on_output(sd_event_source* source, int /*descriptor*/, std::uint32_t /*events*/, void* self) {
    auto& queue = static_cast<Line_exchange*>(self)->queue_;
    queue.flush();
    if (!queue.waiting()) {
        sd_event_source_set_enabled(source, SD_EVENT_OFF);
    }
    return 0;
}

}  // namespace bench
