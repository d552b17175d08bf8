#include "ara/com/dds/dds_binding.h"

namespace ara::com::dds {

std::shared_ptr<Binding> make_binding() {
    return nullptr;
}

}  // namespace ara::com::dds
