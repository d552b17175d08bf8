#ifndef TARQ_COM_EXCEPTION_H
#define TARQ_COM_EXCEPTION_H

#include <stdexcept>

namespace tarq::com {

class Infrastructure_exception : public std::runtime_error {
 public:
    using std::runtime_error::runtime_error;
};

class Service_not_available_exception : public Infrastructure_exception {
 public:
    Service_not_available_exception() : Infrastructure_exception("Service not available exception") {}
};

class Invalid_argument_exception : public std::invalid_argument {
 public:
    using std::invalid_argument::invalid_argument;
};

}  // namespace tarq::com

#endif
