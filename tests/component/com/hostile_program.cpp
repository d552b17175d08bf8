// Sends requests to an instance of the COM-alive service that can't be decoded, and says how many. The argument is the
// instance.
#include "hostile_request.h"

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include <dds/dds.h>

namespace {

using Bytes = std::vector<std::uint8_t>;

dds_entity_t checked(dds_return_t result) {
    if (result < 0) {
        std::fprintf(stderr, "hostile: %s\n", dds_strretcode(result));
        std::exit(EXIT_FAILURE);
    }
    return result;
}

void append(Bytes& bytes, std::uint32_t number) {
    for (int shift = 0; shift < 32; shift += 8) {
        bytes.push_back(static_cast<std::uint8_t>(number >> shift));
    }
}

// The header of a request without its first four bytes, which the length of the sequence takes the place of.
Bytes header(std::string const& instance, std::uint32_t length_of_name) {
    Bytes bytes(20, 1);
    append(bytes, length_of_name);
    bytes.insert(bytes.end(), instance.begin(), instance.end());
    do {
        bytes.push_back(0);
    } while (bytes.size() % 4 != 0);
    return bytes;
}

Bytes request(std::string const& instance, std::uint32_t length_of_bits, std::size_t bits) {
    auto bytes = header(instance, static_cast<std::uint32_t>(instance.size() + 1));
    append(bytes, 1);
    append(bytes, length_of_bits);
    bytes.insert(bytes.end(), bits, 7);
    bytes.push_back(9);
    return bytes;
}

/// The same numbers each time.
class Noise {
 public:
    std::uint32_t operator()() {
        state_ = state_ * 1664525 + 1013904223;
        return state_ >> 16;
    }

 private:
    std::uint32_t state_{1};
};

std::vector<Bytes> requests(std::string const& instance) {
    std::vector<Bytes> all{
        {},
        {1, 2, 3},
        Bytes(20, 1),
        header(instance, 0),
        header(instance, 255),
        header(instance, 0xffffffff),
        header(std::string(300, 'x'), 301),
        header(instance, static_cast<std::uint32_t>(instance.size() + 1)),
        request(instance, 0xffffffff, 4),
        request(instance, 9, 4),
        request(instance, 1025, 1025),
        request(instance, 0x7fffffff, 1024),
    };
    Noise noise;
    for (std::size_t count = 0; count < 500; ++count) {
        Bytes bytes(noise() % 2000);
        for (auto& byte : bytes) {
            byte = static_cast<std::uint8_t>(noise());
        }
        all.push_back(std::move(bytes));
    }
    return all;
}

dds_entity_t make_writer(dds_entity_t participant, std::string const& instance) {
    auto const topic =
        checked(dds_create_topic(participant, &ximo_ap_statemanager_StateManagementComAliveInterface_Request_desc,
                                 "ximo/ap/statemanager/StateManagementComAliveInterface_Request", nullptr, nullptr));
    auto* partition = dds_create_qos();
    dds_qset_partition1(partition, instance.c_str());
    auto* quality = dds_create_qos();
    dds_qset_reliability(quality, DDS_RELIABILITY_RELIABLE, DDS_SECS(1));
    dds_qset_history(quality, DDS_HISTORY_KEEP_ALL, 0);
    auto const publisher = checked(dds_create_publisher(participant, partition, nullptr));
    auto const writer = checked(dds_create_writer(publisher, topic, quality, nullptr));
    dds_delete_qos(partition);
    dds_delete_qos(quality);
    return writer;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        return 2;
    }
    auto const participant = checked(dds_create_participant(DDS_DOMAIN_DEFAULT, nullptr, nullptr));
    auto const writer = make_writer(participant, argv[1]);
    dds_publication_matched_status_t status{};
    for (int look = 0; look < 5000 && status.current_count == 0; ++look) {
        checked(dds_get_publication_matched_status(writer, &status));
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    int sent = 0;
    for (auto& bytes : requests(argv[1])) {
        auto const size = static_cast<std::uint32_t>(bytes.size());
        ximo_ap_statemanager_StateManagementComAliveInterface_Request const request{{size, size, bytes.data(), false}};
        checked(dds_write(writer, &request));
        ++sent;
    }
    checked(dds_wait_for_acks(writer, DDS_SECS(5)));
    std::printf("%d sent to %u\n", sent, status.current_count);
    dds_delete(participant);
    return EXIT_SUCCESS;
}
