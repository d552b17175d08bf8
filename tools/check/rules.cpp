#include "tools/check/rules.h"

namespace statectl::check {

std::vector<Rule> const& rules() {
    static auto const& all = *[] {
        auto* const collected = new std::vector<Rule>;
        for (auto const& group : {introduction_rules(), answer_rules(), request_rules(), life_rules()}) {
            collected->insert(collected->end(), group.begin(), group.end());
        }
        return collected;
    }();
    return all;
}

Verdict judge(Rule const& rule, Start const& start, Limits const& limits) {
    Verdict verdict{rule.name, rule.text, Outcome::holds, "", {}};
    Scene scene(start, limits);
    try {
        rule.check(scene);
    } catch (Broken const& broken) {
        verdict.outcome = Outcome::broken;
        verdict.why = broken.what();
    } catch (Not_checkable const& reason) {
        verdict.outcome = Outcome::not_checked;
        verdict.why = reason.what();
    } catch (utilities::Exception_frame_too_long const& error) {
        verdict.outcome = Outcome::broken;
        verdict.why = std::string("what it sends is no message: ") + error.what();
    } catch (std::out_of_range const& error) {
        verdict.outcome = Outcome::broken;
        verdict.why = std::string("what it sends is no message: ") + error.what();
    }
    verdict.longest_answer = scene.longest_answer();
    return verdict;
}

}  // namespace statectl::check
