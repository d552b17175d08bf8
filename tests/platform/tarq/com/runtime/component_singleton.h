#ifndef TARQ_COM_RUNTIME_COMPONENT_SINGLETON_H
#define TARQ_COM_RUNTIME_COMPONENT_SINGLETON_H

#include "told/told.h"

#include <string>

namespace tarq::com::runtime {

/// Nothing has to be started or ended; both are told.
class Component_singleton {
 public:
    Component_singleton(bool monitored, std::string const& name) {
        told::tell({"com", (monitored ? "start monitored '" : "start '") + name + "'"});
    }
    ~Component_singleton() { told::tell({"com", "end"}); }
    Component_singleton(Component_singleton const&) = delete;
    Component_singleton& operator=(Component_singleton const&) = delete;
};

}  // namespace tarq::com::runtime

#endif
