#include "bus_connection.h"

#include "base/system_error.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string_view>
#include <utility>

namespace ara::exec {

namespace {

constexpr char const* k_service = "org.freedesktop.systemd1";
constexpr char const* k_object = "/org/freedesktop/systemd1";
constexpr char const* k_interface = "org.freedesktop.systemd1.Manager";
constexpr char const* k_no_connection = "no connection to the system bus";

std::uint64_t microseconds_until(std::chrono::steady_clock::time_point deadline) {
    auto const left =
        std::chrono::duration_cast<std::chrono::microseconds>(deadline - std::chrono::steady_clock::now());
    return left.count() > 0 ? static_cast<std::uint64_t>(left.count()) : 1;  // 0 means libsystemd's own default
}

bool is_over(std::chrono::steady_clock::time_point deadline) {
    return std::chrono::steady_clock::now() >= deadline;
}

std::string_view or_empty(char const* text) {
    return text != nullptr ? text : "";
}

std::string text_of(sd_bus_error const& error) {
    return std::string(error.message != nullptr ? error.message : or_empty(error.name));
}

// The manager itself declined: an error of its own, or one about rights or arguments.
bool is_refusal(std::string_view name) {
    return name.substr(0, std::strlen(k_service)) == k_service || name == SD_BUS_ERROR_ACCESS_DENIED ||
           name == SD_BUS_ERROR_INVALID_ARGS || name == SD_BUS_ERROR_INTERACTIVE_AUTHORIZATION_REQUIRED ||
           name == SD_BUS_ERROR_AUTH_FAILED;
}

}  // namespace

void StateClient::Connection::check(int result, char const* what) {
    if (result < 0) {
        throw Broken(std::string(what) + ": " + base::system_error_text(-result));
    }
}

void StateClient::Connection::connect(Deadline deadline) {
    try {
        open();
        is_greeted(deadline);
    } catch (Broken const&) {
        close();
    }
}

// What libsystemd opens has still to be greeted by the bus; it would wait for that as long as the bus takes.
void StateClient::Connection::open() {
    if (!bus_) {
        sd_bus* opened = nullptr;
        check(sd_bus_open_system(&opened), k_no_connection);
        bus_.reset(opened);
    }
}

void StateClient::Connection::close() {
    newest_request_.reset();
    bus_.reset();
}

// False when the deadline is over and nothing was left to be done.
bool StateClient::Connection::progress(Deadline deadline) {
    auto const done = sd_bus_process(bus_.get(), nullptr);
    check(done, k_no_connection);
    if (done > 0) {
        return true;
    }
    if (is_over(deadline)) {
        return false;
    }
    auto const waited = sd_bus_wait(bus_.get(), microseconds_until(deadline));
    check(waited == -EINTR ? 0 : waited, k_no_connection);
    return true;
}

Message StateClient::Connection::new_call(char const* method) {
    sd_bus_message* message = nullptr;
    check(sd_bus_message_new_method_call(bus_.get(), &message, k_service, k_object, k_interface, method),
          "request could not be made");
    return Message(message);
}

int StateClient::Connection::on_answer(sd_bus_message* answer, void* call, sd_bus_error* /*error*/) {
    static_cast<Call*>(call)->answer.reset(sd_bus_message_ref(answer));
    return 1;
}

std::unique_ptr<StateClient::Connection::Call> StateClient::Connection::send(Message message, std::string name) {
    auto call = std::make_unique<Call>();
    call->name = std::move(name);
    sd_bus_slot* slot = nullptr;
    constexpr std::uint64_t no_limit = UINT64_MAX;
    check(sd_bus_call_async(bus_.get(), &slot, message.get(), &Connection::on_answer, call.get(), no_limit),
          "request could not be made");
    call->slot.reset(slot);
    return call;
}

template <class Condition>
bool StateClient::Connection::progress_until(Condition const& is_met, Deadline deadline) {
    while (!is_met()) {
        if (!progress(deadline)) {
            return false;
        }
    }
    return true;
}

bool StateClient::Connection::is_greeted(Deadline deadline) {
    return progress_until([this] { return sd_bus_is_ready(bus_.get()) != 0; }, deadline);
}

bool StateClient::Connection::is_answered(Call const& call, Deadline deadline) {
    return progress_until([&call] { return call.answer != nullptr; }, deadline);
}

bool StateClient::Connection::is_answered(Call const& call, std::chrono::microseconds patience) {
    constexpr std::chrono::microseconds longest_step = std::chrono::seconds(1);
    while (patience.count() > 0) {
        auto const step = std::min(patience, longest_step);
        if (is_answered(call, std::chrono::steady_clock::now() + step)) {
            return true;
        }
        patience -= step;
    }
    return false;
}

// A call that was not answered stays where it is; the others are settled.
Answer StateClient::Connection::answer_to(std::unique_ptr<Call>& call, Deadline deadline) {
    if (!is_greeted(deadline)) {
        throw std::runtime_error(std::string(k_no_connection) + ": " + base::system_error_text(ETIMEDOUT));
    }
    if (!is_answered(*call, deadline)) {
        throw std::runtime_error("no answer from execution management in time");
    }
    auto const settled = std::move(call);
    auto const* const error = sd_bus_message_get_error(settled->answer.get());
    if (error == nullptr) {
        return {std::move(settled->answer), {}};
    }
    if (is_refusal(or_empty(error->name))) {
        return {nullptr, error->name};
    }
    auto const failure = "no answer from execution management: " + text_of(*error);
    if (sd_bus_is_open(bus_.get()) <= 0) {
        throw Broken(failure);
    }
    throw std::runtime_error(failure);
}

void StateClient::Connection::finish(std::chrono::microseconds patience) {
    auto const request = std::move(newest_request_);
    if (!request) {
        return;
    }
    try {
        auto const* const error =
            is_answered(*request, patience) ? sd_bus_message_get_error(request->answer.get()) : nullptr;
        if (error != nullptr) {
            auto const* const outcome = is_refusal(or_empty(error->name)) ? "refused" : "failed";
            std::fprintf(stderr, "%s: %s: %s\n", request->name.c_str(), outcome, text_of(*error).c_str());
        } else if (!request->answer) {
            std::fprintf(stderr, "%s: no answer\n", request->name.c_str());
        }
    } catch (std::exception const& failure) {
        std::fprintf(stderr, "%s: %s\n", request->name.c_str(), failure.what());
    }
}

}  // namespace ara::exec
