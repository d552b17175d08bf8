#include "aggregator_fixture.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace ximo::ap::statemanager::nm {
namespace {

TEST_F(Aggregator, Starts_with_the_fixed_first_byte_and_nothing_requested) {
    EXPECT_THAT(sut.get_user_data(), ElementsAre(0x80, 0, 0, 0, 0, 0));
    EXPECT_THAT(sut.get_application_bits(), ElementsAre(0, 0, 0, 0));
    EXPECT_THAT(sut.aggregate_application_bits(), ElementsAre(0, 0, 0, 0));
    EXPECT_THAT(sut.aggregate_ac_bits(), ElementsAre(0, 0, 0, 0));
    EXPECT_FALSE(sut.is_com_alive());
}

TEST_F(Aggregator, Keeps_the_user_data_behind_the_first_byte_when_set_up_again) {
    sut.request_cab_bits("app", {0x01});
    sut.request_cwu("app");

    sut.init(2);

    EXPECT_THAT(sut.get_user_data(), ElementsAre(0x80, 0, 0, 0x01, 0, 0));
    EXPECT_THAT(sut.get_application_bits(), ElementsAre(0x01, 0));
    EXPECT_THAT(sut.aggregate_application_bits(), ElementsAre(0x01, 0));
}

TEST_F(Aggregator, Copies_the_first_bytes_to_the_given_place) {
    sut.apply_user_data_bits({0x11, 0x22, 0x33}, 2, 2);

    EXPECT_THAT(sut.get_user_data(), ElementsAre(0x80, 0, 0x11, 0x22, 0, 0));
    EXPECT_THAT(log.messages(), ElementsAre(applying(3, 2)));
}

TEST_F(Aggregator, Changes_nothing_when_there_are_fewer_bytes_than_to_be_copied) {
    sut.apply_user_data_bits({0x11, 0x22}, 1, 3);

    EXPECT_THAT(sut.get_user_data(), ElementsAre(0x80, 0, 0, 0, 0, 0));
    EXPECT_THAT(
        log.messages(),
        ElementsAre(applying(2, 1), logged(LogLevel::kError, "Invalid bitvector size, below configured size: ", 3U)));
}

TEST_F(Aggregator, Takes_a_release_by_somebody_who_never_asked_as_one_of_nothing) {
    sut.request_cab_bits("app", {0x01});
    log.clear();
    sut.release_cab_bits("stranger", {0x01});
    EXPECT_THAT(log.messages(), ElementsAre(applying(4, 3), releasing_ac_bit("stranger"), applying(4, 1)));
    log.clear();
    sut.release_cwu("another");
    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kInfo, "CWU bit cleared by appId: ", "another"),
                                            releasing_ac_bit("another"), applying(4, 1)));
    log.clear();
    sut.release_ac_bit("third");
    EXPECT_THAT(log.messages(), ElementsAre(releasing_ac_bit("third"), applying(4, 1)));
    EXPECT_THAT(sut.get_user_data(), ElementsAre(0x80, 0, 0, 0x01, 0, 0));
}

using Bits = std::set<unsigned>;

Bit_vector bytes(Bits const& bits, std::size_t size) {
    Bit_vector vector(size);
    for (unsigned const bit : bits) {
        if (bit / 8 < size) {
            vector[bit / 8] = static_cast<std::uint8_t>(vector[bit / 8] | 1U << bit % 8);
        }
    }
    return vector;
}

/// Applications that ask for anything in any order, and what each holds, as sets: seven bytes of CAB bits, one AC bit,
/// and the CWU. Who holds neither CAB bits nor the CWU after a release of one of them loses the AC bit.
class Aggregator_in_any_order : public Aggregator {
 protected:
    struct Held {
        Bits cab;
        unsigned ac{0};
        bool cwu{false};

        bool is_active() const { return cwu || !cab.empty(); }
    };

    unsigned below(unsigned end) { return static_cast<unsigned>(random()) % end; }

    void step() {
        auto const* const key = std::array<char const*, 3>{"one", "two", "three"}.at(below(3));
        auto& application = applications[key];
        Bits bits;
        for (auto count = below(3); count > 0; --count) {
            bits.insert(below(2) == 0 ? below(3) : below(64));
        }
        auto const ac = static_cast<std::uint8_t>(below(20) == 0 ? 255 : below(19));
        switch (below(6)) {
            case 0:
                sut.request_cab_bits(key, bytes(bits, 8));
                bits.erase(bits.lower_bound(56), bits.end());
                application.cab.insert(bits.begin(), bits.end());
                told = {applying(4, 3)};
                break;
            case 1:
                release_cab(key, below(3) == 0 ? application.cab : bits);
                break;
            case 2:
                sut.set_ac_bit(key, ac);
                application.ac = ac;
                told = {applying(4, 1)};
                break;
            case 3:
                sut.release_ac_bit(key);
                release_ac(key);
                break;
            case 4:
                sut.request_cwu(key);
                application.cwu = true;
                told = {logged(LogLevel::kInfo, "CWU bit set by appId: ", key)};
                break;
            default:
                sut.release_cwu(key);
                application.cwu = false;
                if (!any([](auto const& held) { return held.cwu; })) {
                    told.push_back(logged(LogLevel::kInfo, "CWU bit cleared by appId: ", key));
                }
                release_ac_of_inactive(key);
        }
    }

    void release_cab(char const* key, Bits const& bits) {
        sut.release_cab_bits(key, bytes(bits, 8));
        for (unsigned const bit : Bits(bits)) {
            applications[key].cab.erase(bit);
        }
        told = {applying(4, 3)};
        release_ac_of_inactive(key);
    }

    void release_ac_of_inactive(char const* key) {
        if (!applications[key].is_active()) {
            release_ac(key);
        }
    }

    void release_ac(char const* key) {
        applications[key].ac = 0;
        told.push_back(releasing_ac_bit(key));
        told.push_back(applying(4, 1));
    }

    template <class Condition>
    bool any(Condition const& condition) const {
        return std::any_of(applications.begin(), applications.end(),
                           [&](auto const& entry) { return condition(entry.second); });
    }

    Bits all_cab() const {
        Bits all;
        for (auto const& [key, held] : applications) {
            all.insert(held.cab.begin(), held.cab.end());
        }
        return all;
    }

    Bits all_ac() const {
        Bits all;
        for (auto const& [key, held] : applications) {
            if (held.ac >= 1 && held.ac <= 16) {
                all.insert(held.ac - 1);
            }
        }
        return all;
    }

    Bit_vector user_data() const {
        Bits all{7};
        if (any([](auto const& held) { return held.cwu; })) {
            all.insert(6);
        }
        for (unsigned const bit : all_ac()) {
            all.insert(8 + bit);
        }
        for (unsigned const bit : all_cab()) {
            all.insert(24 + bit);
        }
        return bytes(all, 6);
    }

    std::map<std::string, Held> applications;
    std::vector<test_support::Log_message> told;
    std::mt19937 random{1};
};

TEST_F(Aggregator_in_any_order, Holds_what_sets_say) {
    for (int number = 0; number < 3000; ++number) {
        log.clear();
        told.clear();
        step();
        ASSERT_EQ(sut.get_user_data(), user_data()) << "step " << number;
        ASSERT_EQ(sut.get_application_bits(), bytes(all_cab(), 4)) << "step " << number;
        ASSERT_EQ(sut.aggregate_ac_bits(), bytes(all_ac(), 4)) << "step " << number;
        ASSERT_EQ(sut.is_com_alive(), any([](auto const& held) { return held.is_active(); })) << "step " << number;
        ASSERT_EQ(log.messages(), told) << "step " << number;
    }
}

}  // namespace
}  // namespace ximo::ap::statemanager::nm
