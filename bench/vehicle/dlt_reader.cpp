// The constructor starts the daemon and connects; from then on a thread of the client's is in libdlt's loop, which
// calls `received` for each message, and any thread takes what has been kept. The end shuts the socket down, which
// ends that loop.

#include "bench/vehicle/dlt_reader.h"

#include "base/mutex.h"
#include "bench/vehicle/dlt_message.h"

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string_view>
#include <thread>
#include <utility>

#include <dlt/dlt_client.h>
#include <sys/socket.h>
#include <unistd.h>

namespace bench::vehicle {

namespace {

constexpr int k_port = 3490;  // DLT's own
constexpr std::chrono::seconds k_patience{10};

std::string write_configuration(int default_level) {
    std::string path = "/tmp/dlt.conf";
    std::ofstream(path) << "LoggingMode = 2\nLoggingFilename = /tmp/dlt-daemon.log\nLoggingLevel = 3\n"
                           "ControlSocketPath = /tmp/dlt-ctrl.sock\nBindAddress = ::ffff:127.0.0.1\n"
                           "SendContextRegistration = 1\nRingbufferMinSize = 500000\nRingbufferMaxSize = 10000000\n"
                           "RingbufferStepSize = 500000\nContextLogLevel = "
                        << default_level << '\n';
    return path;
}

bool is_control(DltMessage const& message) {
    return DLT_IS_HTYP_UEH(message.standardheader->htyp) &&
           DLT_GET_MSIN_MSTP(message.extendedheader->msin) == DLT_TYPE_CONTROL;
}

}  // namespace

class Dlt_reader::Client {
 public:
    explicit Client(std::ostream* trace) : trace_(trace) {
        ::dlt_client_init_port(&client_, k_port, 0);
        client_.mode = DLT_CLIENT_MODE_TCP;
        ::dlt_client_set_server_ip(&client_, const_cast<char*>("127.0.0.1"));  // NOLINT(*-const-cast): not written to
        ::dlt_client_register_message_callback(&Client::received);
    }

    ~Client() {
        if (thread_.joinable()) {
            ::shutdown(client_.sock, SHUT_RDWR);
            thread_.join();
        }
        ::dlt_client_cleanup(&client_, 0);
        if (trace_ != nullptr) {
            trace_->flush();  // the world's first process ends without it
        }
    }
    Client(Client const&) = delete;
    Client& operator=(Client const&) = delete;

    bool connect() {
        if (::dlt_client_connect(&client_, 0) != DLT_RETURN_OK) {
            return false;
        }
        thread_ = std::thread([this] { ::dlt_client_main_loop(&client_, this, 0); });
        return true;
    }

    Timeline take() {
        base::Lock_guard const lock(mutex_);
        return std::exchange(messages_, {});
    }

    bool set_level(std::string application, std::string context, std::uint8_t level) {
        return ::dlt_client_send_log_level(&client_, application.data(), context.data(), level) == DLT_RETURN_OK;
    }

    std::string announcements() {
        base::Lock_guard const lock(mutex_);
        return announcements_;
    }

 private:
    static int received(DltMessage* message, void* self) {
        if (message != nullptr) {
            static_cast<Client*>(self)->keep(*message);
        }
        return 0;
    }

    void keep(DltMessage& message) {
        base::Lock_guard const lock(mutex_);
        store(message);
        reader_.add(headers_of(message).substr(sizeof(DltStorageHeader)));
        reader_.add(payload_of(message));
        while (auto const whole = reader_.next()) {
            if (auto event = to_event(*whole)) {
                messages_.push_back(*std::move(event));
            }
        }
        if (is_control(message)) {
            announcements_.append(payload_of(message));
        }
    }

    void store(DltMessage& message) {
        if (trace_ != nullptr) {
            ::dlt_set_storageheader(message.storageheader, "ECU1");
            *trace_ << headers_of(message) << payload_of(message);
        }
    }

    static std::string_view headers_of(DltMessage const& message) {
        return {reinterpret_cast<char const*>(message.headerbuffer), static_cast<std::size_t>(message.headersize)};
    }

    static std::string_view payload_of(DltMessage const& message) {
        return {reinterpret_cast<char const*>(message.databuffer), static_cast<std::size_t>(message.datasize)};
    }

    std::ostream* const trace_;
    DltClient client_{};
    std::thread thread_;
    base::Mutex mutex_;
    dlt::Reader reader_ GUARDED_BY(mutex_);
    Timeline messages_ GUARDED_BY(mutex_);
    std::string announcements_ GUARDED_BY(mutex_);
};

Dlt_reader::Dlt_reader(int default_level, std::ostream* trace) {
    auto const configuration = write_configuration(default_level);
    daemon_ = std::make_unique<Child_process>(
        std::vector<std::string>{"dlt-daemon", "-c", configuration, "-p", std::to_string(k_port)},
        std::vector<std::string>{});
    client_ = std::make_unique<Client>(trace);
    auto const deadline = std::chrono::steady_clock::now() + k_patience;
    while (!std::filesystem::is_fifo("/tmp/dlt") || !client_->connect()) {
        if (std::chrono::steady_clock::now() > deadline) {
            throw std::runtime_error("dlt-daemon did not start; see /tmp/dlt-daemon.log of its machine");
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
}

Dlt_reader::~Dlt_reader() {
    client_.reset();
    daemon_->signal(SIGTERM);
    daemon_.reset();
    std::error_code ignored;
    std::filesystem::remove("/tmp/dlt", ignored);
}

std::string Dlt_reader::announcements() {
    return client_->announcements();
}

bool Dlt_reader::set_level(std::string const& application, std::string const& context, std::uint8_t level) {
    return client_->set_level(application, context, level);
}

Timeline Dlt_reader::take() {
    return client_->take();
}

}  // namespace bench::vehicle
