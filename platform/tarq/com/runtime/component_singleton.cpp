#include "tarq/com/runtime/component_singleton.h"

#include "ara/com/dds/dds_binding.h"

namespace tarq::com::runtime {

Component_singleton::Component_singleton(bool /*monitored*/, std::string const& /*name*/)
    : binding_(ara::com::dds::make_binding()) {
    ara::com::use_binding(binding_);
}

Component_singleton::~Component_singleton() {
    ara::com::use_binding(nullptr);
}

}  // namespace tarq::com::runtime
