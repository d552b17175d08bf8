// Loaded before the engine of the communication it makes a machine that has no room for another reader: the one whose
// number stands in NO_READER (1 is the first that the process makes) can't be made.

#include <atomic>
#include <cstdint>
#include <cstdlib>

#include <dlfcn.h>

extern "C" std::int32_t dds_create_reader(std::int32_t participant, std::int32_t topic, void const* quality,
                                          void const* listener) {
    constexpr std::int32_t out_of_resources = -5;
    static std::atomic<long> made{0};
    auto const* const wanted = std::getenv("NO_READER");
    if (++made == (wanted != nullptr ? std::strtol(wanted, nullptr, 10) : 0)) {
        return out_of_resources;
    }
    using Create = std::int32_t (*)(std::int32_t, std::int32_t, void const*, void const*);
    static auto const real = reinterpret_cast<Create>(::dlsym(RTLD_NEXT, "dds_create_reader"));
    return real(participant, topic, quality, listener);
}
