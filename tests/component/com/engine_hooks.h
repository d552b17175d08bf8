#ifndef TESTS_COMPONENT_COM_ENGINE_HOOKS_H
#define TESTS_COMPONENT_COM_ENGINE_HOOKS_H

#include <atomic>
#include <functional>

namespace com_test {

/// What happens in functions of the engine, which this program calls through these: failures that it hardly ever has,
/// and events between its answer and the use of that.
struct Engine_hooks {
    std::atomic<int> writers_until_failure{-1};                           ///< one can't be made; negative: none
    std::atomic<int> readers_that_fail{0};                                ///< so many of the next can't be made
    std::atomic<std::function<void()> const*> before_writer{nullptr};     ///< is made; called once
    std::atomic<std::function<void()> const*> after_look{nullptr};        ///< at the clients of a reader; called once
    std::atomic<std::function<void()> const*> instead_of_offer{nullptr};  ///< which then fails; called once
};

Engine_hooks& engine_hooks();

}  // namespace com_test

#endif
