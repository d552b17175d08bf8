// Offers services that nobody has, as many as it is told, and knows the offers' type and the engine only. Arguments:
// how many participants, how many offers each makes, and the interface, of which each offer is another instance. Prints
// "ready" when all are written, and ends with its standard input.
#include "service_offer.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <string>

#include <dds/dds.h>

namespace {

dds_entity_t checked(dds_return_t result) {
    if (result < 0) {
        std::fprintf(stderr, "flood: %s\n", dds_strretcode(result));
        std::exit(EXIT_FAILURE);
    }
    return result;
}

template <std::size_t size>
void put(std::string const& text, char (&place)[size]) {
    std::copy_n(text.c_str(), std::min(text.size() + 1, size), place);
}

void offer_all(dds_entity_t participant, int count, std::string const& interface_name) {
    auto const topic =
        checked(dds_create_topic(participant, &ara_com_ServiceOffer_desc, "ara/com/ServiceOffer", nullptr, nullptr));
    auto* quality = dds_create_qos();
    dds_qset_reliability(quality, DDS_RELIABILITY_RELIABLE, DDS_SECS(10));
    dds_qset_durability(quality, DDS_DURABILITY_TRANSIENT_LOCAL);
    dds_qset_writer_data_lifecycle(quality, false);
    auto const writer = checked(dds_create_writer(participant, topic, quality, nullptr));
    dds_delete_qos(quality);
    dds_guid_t identity;
    checked(dds_get_guid(participant, &identity));
    for (int number = 0; number < count; ++number) {
        ara_com_ServiceOffer offer{};
        put(interface_name, offer.interface_name);
        put("offer " + std::to_string(100000 + number), offer.instance_name);
        std::copy(std::begin(identity.v), std::end(identity.v), std::begin(offer.participant));
        offer.version = 1;
        checked(dds_write(writer, &offer));
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        return 2;
    }
    for (int participant = 0; participant < std::atoi(argv[1]); ++participant) {
        offer_all(checked(dds_create_participant(DDS_DOMAIN_DEFAULT, nullptr, nullptr)), std::atoi(argv[2]), argv[3]);
    }
    std::printf("{\"event\":\"ready\"}\n");
    std::fflush(stdout);
    while (std::getchar() != EOF) {
    }
    dds_delete(DDS_CYCLONEDDS_HANDLE);
    return EXIT_SUCCESS;
}
