// Functions of the engine, in front of its own.

#include "engine_hooks.h"

#include <array>
#include <string_view>

#include <dds/dds.h>
#include <dlfcn.h>

namespace com_test {

Engine_hooks& engine_hooks() {
    static Engine_hooks hooks;
    return hooks;
}

namespace {

template <class Function>
Function real(char const* name) {
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

bool is_of_offers(dds_entity_t writer) {
    std::array<char, 64> name{};
    return dds_get_name(dds_get_topic(writer), name.data(), name.size()) > 0 &&
           std::string_view(name.data()) == "ara/com/ServiceOffer";
}

}  // namespace
}  // namespace com_test

extern "C" dds_entity_t dds_create_writer(dds_entity_t publisher, dds_entity_t topic, dds_qos_t const* quality,
                                          dds_listener_t const* listener) {
    static auto const real = com_test::real<decltype(&dds_create_writer)>("dds_create_writer");
    if (auto const* const before_writer = com_test::engine_hooks().before_writer.exchange(nullptr)) {
        (*before_writer)();
    }
    return real(publisher, topic, quality, listener);
}

extern "C" dds_return_t dds_write_ts(dds_entity_t writer, void const* sample, dds_time_t time) {
    static auto const real = com_test::real<decltype(&dds_write_ts)>("dds_write_ts");
    auto& instead_of_offer = com_test::engine_hooks().instead_of_offer;
    if (instead_of_offer != nullptr && com_test::is_of_offers(writer)) {
        (*instead_of_offer.exchange(nullptr))();
        return DDS_RETCODE_OUT_OF_RESOURCES;
    }
    return real(writer, sample, time);
}
