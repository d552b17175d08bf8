#ifndef TARQ_COM_RUNTIME_COMPONENT_SINGLETON_H
#define TARQ_COM_RUNTIME_COMPONENT_SINGLETON_H

#include <string>

namespace tarq::com::runtime {

/// The communication runtime of the process: make one before the first skeleton, proxy or lookup and let it outlive
/// them. The engine and its threads start with the first of these, not here, and end with this object; where a process
/// has several of them, with the last.
class Component_singleton {
 public:
    /// Both arguments are kept for other platforms and mean nothing here.
    Component_singleton(bool monitored, std::string const& name);

    /// Shuts the engine down from any state: lookups report no more, pending calls fail, offers are withdrawn, handlers
    /// that run are waited for. Never throws. From no handler.
    ~Component_singleton();
    Component_singleton(Component_singleton const&) = delete;
    Component_singleton& operator=(Component_singleton const&) = delete;
};

}  // namespace tarq::com::runtime

#endif
