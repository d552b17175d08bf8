#ifndef ARA_COM_DDS_OFFERS_PROCESS_SPACE_H
#define ARA_COM_DDS_OFFERS_PROCESS_SPACE_H

#include <string>

namespace ara::com::dds {

/// A text that two processes have in common exactly when one can name the other by its number: the machine since it
/// was started, and the process namespace. Empty when the system does not tell.
std::string process_space();

}  // namespace ara::com::dds

#endif
