#ifndef TESTS_UNIT_EXPLORATION_NOTIFIER_MODEL_H
#define TESTS_UNIT_EXPLORATION_NOTIFIER_MODEL_H

#include <array>
#include <optional>
#include <tuple>

namespace exploration {

enum Group : unsigned { dcm, applications, dem, k_groups };
enum class Mode : unsigned { none, on, prepare_sd };

/// What the notifier should do, as a table: the oracle that its requests are compared with in every point.
class Notifier_model {
 public:
    void request_standby();
    void request_resume();
    void check();
    void answered();

    bool is_running() const { return running_; }
    std::optional<Group> asked() const { return asked_; }
    Mode requested_from(Group group) const { return last_.at(group); }

    auto key() const { return std::tie(running_, requested_, last_, done_, asked_); }

 private:
    void ask(Group group);
    std::optional<Group> next_after(Group group) const;

    bool running_{false};
    Mode requested_{Mode::on};
    std::array<Mode, k_groups> last_{};
    std::optional<Group> done_;  ///< has answered, the next step was not taken yet
    std::optional<Group> asked_;
};

}  // namespace exploration

#endif
