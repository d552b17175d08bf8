#ifndef TESTS_SOAK_LOSSES_H
#define TESTS_SOAK_LOSSES_H

#include <cstdint>
#include <string>

namespace soak {

/// Calls to the network manager that may not have reached it.
class Losses {
 public:
    /// A call was lost, or may have been.
    void note() { lost_ = Lost::something; }

    /// The same, and calls may get lost for as long as it takes to hear of the manager's offer.
    void lose();

    /// A resume asks for all that is held, but does not give back what a lost call should have.
    void hear_state_word(std::string const& word);

    /// Whether the manager may miss something that is held; know of something that is not held any more.
    bool may_miss_holds() const { return lost_ == Lost::something || lost_ == Lost::until_resumed; }
    bool may_miss_releases() const { return lost_ != Lost::nothing; }

 private:
    enum class Lost {
        nothing,
        something,
        until_resumed,  ///< a resume asks again just now
        releases,       ///< what is held was asked for again, what is not may still be
    };

    Lost lost_{Lost::nothing};
    std::int64_t lossy_until_{0};
};

}  // namespace soak

#endif
