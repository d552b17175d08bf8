#ifndef TESTS_COMPONENT_COM_ENGINE_HOOKS_H
#define TESTS_COMPONENT_COM_ENGINE_HOOKS_H

#include <atomic>
#include <functional>

namespace com_test {

/// What happens in functions of the engine, which this program calls through these: failures that it hardly ever has,
/// and events between its answer and the use of that.
struct Engine_hooks {
    std::atomic<std::function<void()> const*> before_writer{nullptr};     ///< is made; called once
    std::atomic<std::function<void()> const*> instead_of_offer{nullptr};  ///< which then fails; called once
};

Engine_hooks& engine_hooks();

}  // namespace com_test

#endif
