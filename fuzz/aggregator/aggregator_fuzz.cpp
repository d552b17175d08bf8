// The network's bits of a configuration that the parser takes, with applications that ask for anything: they are what
// sets say, whatever the layout.
//
// The input is a configuration and, behind the first byte that is zero, a script: a byte for the application and the
// call, then those that it needs.
//
//     0 request CAB bits: count, bytes   1 release CAB bits: count, bytes   2 request the CWU
//     3 release the CWU                  4 set the AC bit: number           5 release the AC bit
#include "require.h"
#include "statemanager/config/state_manager_json_parser.h"
#include "statemanager/nm/nm_data_aggregator.h"

#include <algorithm>
#include <array>
#include <set>
#include <string>

#include <sys/mman.h>
#include <unistd.h>

namespace {

using fuzz::require;
using ximo::ap::statemanager::Bit_vector;
using ximo::ap::statemanager::config::Nm_user_data_config;
using ximo::ap::statemanager::config::State_manager_config;
using ximo::ap::statemanager::config::State_manager_json_parser;
using ximo::ap::statemanager::nm::Nm_data_aggregator;

using Bits = std::set<std::size_t>;

constexpr std::size_t k_size = 4;        // bytes of all applications together, as the service handler has it
constexpr std::size_t k_bits_kept = 56;  // of one application
constexpr std::size_t k_longest = 1024;  // bytes of user data that the service handler takes

Nm_user_data_config layout_of(std::uint8_t const* data, std::size_t size) {
    int const file = ::memfd_create("fuzz", MFD_CLOEXEC);
    require(::write(file, data, size) == static_cast<ssize_t>(size));
    State_manager_config config;
    State_manager_json_parser::parse("/proc/self/fd/" + std::to_string(file), config);
    ::close(file);
    return config.get_nm_user_data_config();
}

/// Two applications, what they hold, and the user data as each call leaves it: an area is written anew when something
/// of it may have changed.
class Script {
 public:
    Script(Nm_user_data_config const& layout, std::uint8_t const* data, std::size_t size)
        : layout_(layout), sut_(layout), user_data_(layout.user_data_bytes), next_(data), end_(data + size) {
        sut_.init(k_size);
        if (!user_data_.empty()) {
            user_data_.front() = 0x80;
        }
    }

    void play() {
        check();
        while (next_ != end_) {
            step();
            check();
        }
    }

 private:
    struct Held {
        Bits cab;
        unsigned ac{0};
        bool cwu{false};

        bool is_active() const { return cwu || !cab.empty(); }
    };

    void step() {
        auto const code = take();
        std::string const key = (code & 0x80U) != 0 ? "radio" : "alarm";
        auto& held = held_.at(code >> 7U);
        switch (code % 6) {
            case 0: {
                auto const bytes = take_bytes();
                sut_.request_cab_bits(key, bytes);
                for (auto const bit : bits_of(bytes)) {
                    held.cab.insert(bit);
                }
                return write_cab();
            }
            case 1: {
                auto const bytes = take_bytes();
                sut_.release_cab_bits(key, bytes);
                for (auto const bit : bits_of(bytes)) {
                    held.cab.erase(bit);
                }
                write_cab();
                return forget_ac_of_inactive(held);
            }
            case 2:
                sut_.request_cwu(key);
                held.cwu = true;
                return write_cwu(true);
            case 3:
                sut_.release_cwu(key);
                held.cwu = false;
                if (!held_[0].cwu && !held_[1].cwu) {
                    write_cwu(false);
                }
                return forget_ac_of_inactive(held);
            case 4:
                held.ac = take();
                sut_.set_ac_bit(key, static_cast<std::uint8_t>(held.ac));
                return write_ac();
            default:
                sut_.release_ac_bit(key);
                held.ac = 0;
                write_ac();
        }
    }

    void check() const {
        require(sut_.get_user_data() == user_data_);
        require(sut_.is_com_alive() == (held_[0].is_active() || held_[1].is_active()));
        require(sut_.get_application_bits() == bytes_of(all_cab()));
        require(sut_.aggregate_ac_bits() == bytes_of(all_ac()));
    }

    Bits all_cab() const {
        Bits all = held_[0].cab;
        all.insert(held_[1].cab.begin(), held_[1].cab.end());
        return all;
    }
    Bits all_ac() const {
        Bits all;
        for (auto const& held : held_) {
            if (held.ac >= 1 && held.ac <= 16) {
                all.insert(held.ac - 1);
            }
        }
        return all;
    }

    void forget_ac_of_inactive(Held& held) {
        if (!held.is_active()) {
            held.ac = 0;
            write_ac();
        }
    }

    void write_cab() { write(all_cab(), layout_.cab_offset, layout_.cab_bytes); }
    void write_ac() { write(all_ac(), layout_.ac_offset, layout_.ac_bytes); }
    // An area that has no room, or more bytes than there are, is left alone.
    void write(Bits const& bits, std::size_t offset, std::size_t count) {
        if (count <= k_size && offset + count <= user_data_.size()) {
            auto const bytes = bytes_of(bits);
            std::copy(bytes.begin(), bytes.begin() + static_cast<long>(count),
                      user_data_.begin() + static_cast<long>(offset));
        }
    }
    void write_cwu(bool set) {
        std::size_t const byte = layout_.cwu_bit_position / 8;
        if (byte < user_data_.size()) {
            auto const bit = static_cast<std::uint8_t>(1U << layout_.cwu_bit_position % 8U);
            auto const without = static_cast<std::uint8_t>(user_data_[byte] & ~unsigned{bit});
            user_data_[byte] = static_cast<std::uint8_t>(set ? without | bit : without);
        }
    }

    static Bits bits_of(Bit_vector const& bytes) {
        Bits bits;
        for (std::size_t bit = 0; bit < std::min(8 * bytes.size(), k_bits_kept); ++bit) {
            if ((bytes[bit / 8] >> bit % 8 & 1U) != 0) {
                bits.insert(bit);
            }
        }
        return bits;
    }
    static Bit_vector bytes_of(Bits const& bits) {
        Bit_vector bytes(k_size);
        for (auto const bit : bits) {
            if (bit < 8 * k_size) {
                bytes[bit / 8] = static_cast<std::uint8_t>(bytes[bit / 8] | 1U << bit % 8);
            }
        }
        return bytes;
    }

    std::uint8_t take() { return next_ == end_ ? std::uint8_t{0} : *next_++; }
    Bit_vector take_bytes() {
        std::size_t const wanted = take() % 10U;
        auto const count = std::min(wanted, static_cast<std::size_t>(end_ - next_));
        Bit_vector bytes(next_, next_ + count);
        next_ += count;
        return bytes;
    }

    Nm_user_data_config const layout_;
    Nm_data_aggregator sut_;
    Bit_vector user_data_;
    std::array<Held, 2> held_;
    std::uint8_t const* next_;
    std::uint8_t const* end_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    auto const* const end_of_text = std::find(data, data + size, 0);
    auto const length = static_cast<std::size_t>(end_of_text - data);
    auto const layout = layout_of(data, length);
    if (layout.user_data_bytes <= k_longest) {
        auto const rest = std::min(length + 1, size);
        Script(layout, data + rest, size - rest).play();
    }
    return 0;
}
