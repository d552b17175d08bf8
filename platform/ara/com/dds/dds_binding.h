#ifndef ARA_COM_DDS_DDS_BINDING_H
#define ARA_COM_DDS_DDS_BINDING_H

#include "ara/com/binding.h"

#include <memory>

namespace ara::com::dds {

/// ara::com on Cyclone DDS. The engine starts with the first use.
std::shared_ptr<Binding> make_binding();

}  // namespace ara::com::dds

#endif
