#ifndef TARQ_COM_RUNTIME_COMPONENT_SINGLETON_H
#define TARQ_COM_RUNTIME_COMPONENT_SINGLETON_H

#include <string>

namespace tarq::com::runtime {

/// Nothing has to be started or ended.
class Component_singleton {
 public:
    Component_singleton(bool /*monitored*/, std::string const& /*name*/) {}
    ~Component_singleton() {}  // not trivial: users keep one without calling it
    Component_singleton(Component_singleton const&) = delete;
    Component_singleton& operator=(Component_singleton const&) = delete;
};

}  // namespace tarq::com::runtime

#endif
