#include "statemanager/nm/nm_data_aggregator.h"

#include "ara/log/logging.h"

#include <algorithm>

namespace ximo::ap::statemanager::nm {

namespace {

constexpr std::uint8_t k_first_byte = 0x80;

}  // namespace

void Nm_data_aggregator::init(std::uint32_t size) {
    size_ = size;
    user_data_.resize(layout_.user_data_bytes);
    if (!user_data_.empty()) {
        user_data_.front() = k_first_byte;
    }
    application_bits_.resize(size);
}

Bit_vector Nm_data_aggregator::aggregate_application_bits() const {
    Bit_vector all(size_);
    for (auto const& [key, application] : applications_) {
        all |= application.get_application_bits();
    }
    return all;
}

Bit_vector Nm_data_aggregator::aggregate_ac_bits() const {
    Bit_vector all(size_);
    for (auto const& [key, application] : applications_) {
        all |= application.get_ac_bits();
    }
    return all;
}

void Nm_data_aggregator::apply_user_data_bits(Bit_vector const& bits, std::uint32_t offset, std::uint32_t count) {
    ara::log::LogInfo() << "Applying user data bits size: " << bits.size() << " at offset " << offset;
    if (count > bits.size()) {
        ara::log::LogError() << "Invalid bitvector size, below configured size: " << count;
        return;
    }
    // The configuration's own check of the layout lets sums pass that wrap around.
    if (offset > user_data_.size() || count > user_data_.size() - offset) {
        ara::log::LogError() << "NM user data has no room for " << count << " bytes at offset " << offset;
        return;
    }
    std::copy_n(bits.begin(), count, user_data_.begin() + offset);
}

void Nm_data_aggregator::request_cab_bits(std::string const& key, Bit_vector const& bits) {
    applications_[key].set_app_bits(bits);
    apply_application_bits();
}

void Nm_data_aggregator::release_cab_bits(std::string const& key, Bit_vector const& bits) {
    applications_[key].release_app_bits(bits);
    apply_application_bits();
    release_ac_bit_of_inactive(key);
}

void Nm_data_aggregator::set_ac_bit(std::string const& key, std::uint8_t n) {
    applications_[key].set_ac_bit(n);
    apply_ac_bits();
}

void Nm_data_aggregator::release_ac_bit(std::string const& key) {
    ara::log::LogInfo() << "Releasing AC bit for application " << key;
    applications_[key].release_ac_bits();
    apply_ac_bits();
}

void Nm_data_aggregator::request_cwu(std::string const& key) {
    applications_[key].set_cwu_flag(true);
    if (change_cwu_bit(true)) {
        ara::log::LogInfo() << "CWU bit set by appId: " << key;
    }
}

void Nm_data_aggregator::release_cwu(std::string const& key) {
    applications_[key].set_cwu_flag(false);
    if (!is_cwu_active() && change_cwu_bit(false)) {
        ara::log::LogInfo() << "CWU bit cleared by appId: " << key;
    }
    release_ac_bit_of_inactive(key);
}

bool Nm_data_aggregator::is_com_alive() const {
    return std::any_of(applications_.begin(), applications_.end(),
                       [](auto const& entry) { return entry.second.is_app_active(); });
}

void Nm_data_aggregator::apply_application_bits() {
    application_bits_ = aggregate_application_bits();
    apply_user_data_bits(application_bits_, layout_.cab_offset, layout_.cab_bytes);
}

void Nm_data_aggregator::apply_ac_bits() {
    apply_user_data_bits(aggregate_ac_bits(), layout_.ac_offset, layout_.ac_bytes);
}

bool Nm_data_aggregator::is_cwu_active() const {
    return std::any_of(applications_.begin(), applications_.end(),
                       [](auto const& entry) { return entry.second.is_cwu_active(); });
}

void Nm_data_aggregator::release_ac_bit_of_inactive(std::string const& key) {
    if (!applications_[key].is_app_active()) {
        release_ac_bit(key);
    }
}

// False, and an error, when the user data has no such bit.
bool Nm_data_aggregator::change_cwu_bit(bool set) {
    auto const byte = layout_.cwu_bit_position / 8;
    if (byte >= user_data_.size()) {
        ara::log::LogError() << "NM user data has no bit at the CWU bit position " << layout_.cwu_bit_position;
        return false;
    }
    unsigned const bit = 1U << (layout_.cwu_bit_position % 8);
    unsigned const before = user_data_[byte];
    user_data_[byte] = static_cast<std::uint8_t>(set ? before | bit : before & ~bit);
    return true;
}

}  // namespace ximo::ap::statemanager::nm
