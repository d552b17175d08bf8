// A client of the COM-alive service that knows docs/wire.md, the IDL files and the DDS engine, and nothing of the
// binding. Arguments: the instance, the AC number, what is to be wrong with the request if anything ("late": its reader
// of replies is made a while after it was sent), and CAB bits.
// Prints the remote exception code of the reply and the number of the method that it answers.
#include "service_offer.h"
#include "state_management_com_alive_interface.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <dds/dds.h>

namespace {

using Request = ximo_ap_statemanager_StateManagementComAliveInterface_Request;
using Reply = ximo_ap_statemanager_StateManagementComAliveInterface_Reply;

constexpr char const* k_interface = "ximo::ap::statemanager::StateManagementComAliveInterface";

dds_entity_t checked(dds_return_t result) {
    if (result < 0) {
        std::fprintf(stderr, "stranger: %s\n", dds_strretcode(result));
        std::exit(EXIT_FAILURE);
    }
    return result;
}

template <class Condition>
void await(Condition const& condition, char const* what) {
    auto const deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) {
            std::printf("no %s\n", what);
            std::exit(EXIT_FAILURE);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

using Quality = std::unique_ptr<dds_qos_t, decltype(&dds_delete_qos)>;

Quality reliable(bool for_late_joiners) {
    Quality quality(dds_create_qos(), dds_delete_qos);
    dds_qset_reliability(quality.get(), DDS_RELIABILITY_RELIABLE, DDS_MSECS(100));
    if (for_late_joiners) {
        dds_qset_durability(quality.get(), DDS_DURABILITY_TRANSIENT_LOCAL);
    } else {
        dds_qset_history(quality.get(), DDS_HISTORY_KEEP_ALL, 0);
    }
    return quality;
}

Quality partition(std::string const& name) {
    Quality quality(dds_create_qos(), dds_delete_qos);
    dds_qset_partition1(quality.get(), name.c_str());
    return quality;
}

template <class Sample>
bool take(dds_entity_t reader, Sample& sample, dds_sample_info_t& info) {
    void* slot = &sample;
    return checked(dds_take(reader, &slot, &info, 1, 1)) == 1;
}

bool is_offered(dds_entity_t offers, std::string const& instance) {
    ara_com_ServiceOffer offer{};
    dds_sample_info_t info;
    while (take(offers, offer, info)) {
        if (info.valid_data && info.instance_state == DDS_IST_ALIVE && offer.version == 1 &&
            std::strcmp(offer.interface_name, k_interface) == 0 && instance == offer.instance_name) {
            return true;
        }
    }
    return false;
}

bool is_matched_by_reader(dds_entity_t writer) {
    dds_publication_matched_status_t status;
    checked(dds_get_publication_matched_status(writer, &status));
    return status.current_count > 0;
}

bool is_matched_by_writer(dds_entity_t reader) {
    dds_subscription_matched_status_t status;
    checked(dds_get_subscription_matched_status(reader, &status));
    return status.current_count > 0;
}

std::string hexadecimal(dds_guid_t const& guid) {
    std::string text;
    for (auto const byte : guid.v) {
        std::array<char, 3> digits{};
        std::snprintf(digits.data(), digits.size(), "%02x", byte);
        text += digits.data();
    }
    return text;
}

Request make_request(dds_guid_t const& writer, std::string const& instance, std::uint8_t number,
                     std::vector<std::uint8_t>& bits, std::string const& fault) {
    Request request{};
    std::memcpy(&request.header.requestId.writer_guid, writer.v, sizeof writer.v);
    request.header.requestId.sequence_number = {0, 1};
    std::strncpy(request.header.instanceName, instance.c_str(), sizeof request.header.instanceName - 1);
    request.data._d = 1;
    request.data._u.requestComAlive.cab_bits = {static_cast<std::uint32_t>(bits.size()),
                                                static_cast<std::uint32_t>(bits.size()), bits.data(), false};
    request.data._u.requestComAlive.ac_number = number;
    if (fault == "method") {
        request.data = {};
        request.data._d = 77;
    } else if (fault == "instance") {
        std::strncpy(request.header.instanceName, "other", sizeof request.header.instanceName - 1);
    } else if (fault == "identity") {
        std::memset(&request.header.requestId, 255, sizeof request.header.requestId);
    }
    return request;
}

void call(dds_entity_t participant, std::string const& instance, std::uint8_t number, std::string const& fault,
          std::vector<std::uint8_t> bits) {
    auto const requests =
        checked(dds_create_topic(participant, &ximo_ap_statemanager_StateManagementComAliveInterface_Request_desc,
                                 "ximo/ap/statemanager/StateManagementComAliveInterface_Request", nullptr, nullptr));
    auto const replies =
        checked(dds_create_topic(participant, &ximo_ap_statemanager_StateManagementComAliveInterface_Reply_desc,
                                 "ximo/ap/statemanager/StateManagementComAliveInterface_Reply", nullptr, nullptr));
    auto const publisher = checked(dds_create_publisher(participant, partition(instance).get(), nullptr));
    auto const writer = checked(dds_create_writer(publisher, requests, reliable(false).get(), nullptr));
    dds_guid_t guid;
    checked(dds_get_guid(writer, &guid));
    auto const subscriber = checked(dds_create_subscriber(participant, partition(hexadecimal(guid)).get(), nullptr));
    auto const make_reader = [&] {
        return checked(dds_create_reader(subscriber, replies, reliable(false).get(), nullptr));
    };
    auto reader = fault == "late" ? DDS_ENTITY_NIL : make_reader();
    await([&] { return is_matched_by_reader(writer); }, "reader of requests came");
    await([&] { return reader == DDS_ENTITY_NIL || is_matched_by_writer(reader); }, "writer of replies came");

    auto const request = make_request(guid, instance, number, bits, fault);
    checked(dds_write(writer, &request));
    if (reader == DDS_ENTITY_NIL) {
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        reader = make_reader();
    }
    Reply reply{};
    dds_sample_info_t info;
    await([&] { return take(reader, reply, info) && info.valid_data; }, "reply came");
    auto const& related = reply.header.relatedRequestId;
    bool const is_ours = std::memcmp(&related, &request.header.requestId, sizeof related) == 0;
    std::printf("%s: exception %d, method %d\n", is_ours ? "reply" : "reply to another request",
                static_cast<int>(reply.header.remoteEx), reply.data._d);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 4) {
        return 2;
    }
    std::string const instance = argv[1];
    std::vector<std::uint8_t> bits;
    for (int word = 4; word < argc; ++word) {
        bits.push_back(static_cast<std::uint8_t>(std::stoi(argv[word])));
    }
    auto const participant = checked(dds_create_participant(DDS_DOMAIN_DEFAULT, nullptr, nullptr));
    auto const topic =
        checked(dds_create_topic(participant, &ara_com_ServiceOffer_desc, "ara/com/ServiceOffer", nullptr, nullptr));
    auto const offers = checked(dds_create_reader(participant, topic, reliable(true).get(), nullptr));
    await([&] { return is_offered(offers, instance); }, "offer came");
    call(participant, instance, static_cast<std::uint8_t>(std::stoi(argv[2])), argv[3], bits);
    dds_delete(participant);
    return EXIT_SUCCESS;
}
