#ifndef STATUS_SERVICES_STATUS_H
#define STATUS_SERVICES_STATUS_H

#include "status/layout.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// What happens under the lock of the applications' requests. See page_writer.h.
namespace status {

/// Before any other thread can call: the instances that have one of the services.
void provided(Hold service, std::vector<std::string> const& instances);

/// Network management has been found.
void manager_found();

/// Network management is told what applications ask for, or, in a suspend, not.
void sending(bool sends);

// An application asks for something, or gives it back. A name that has no record is none of an application.
void ecu_requested(std::string_view name);
void ecu_released(std::string_view name);
void com_requested(std::string_view name, std::vector<std::uint8_t> const& bits, std::uint64_t ac_number);
void com_released(std::string_view name, std::vector<std::uint8_t> const& bits);
void cwu_requested(std::string_view name, std::uint64_t ac_number);
void cwu_released(std::string_view name);

/// What is requested of network management for all applications, and what the network is told.
void cab_pattern(std::vector<std::uint8_t> const& bits);
void user_data(std::vector<std::uint8_t> const& bytes);

}  // namespace status

#endif
