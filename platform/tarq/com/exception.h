#ifndef TARQ_COM_EXCEPTION_H
#define TARQ_COM_EXCEPTION_H

#include <cstdint>
#include <stdexcept>

namespace tarq::com {

/// A call, an offer or a lookup failed on its way. Calls throw it, or their futures do.
class Infrastructure_exception : public std::runtime_error {
 public:
    using std::runtime_error::runtime_error;
};

/// Nobody offers the instance, or its offer went while the call was under way.
class Service_not_available_exception : public Infrastructure_exception {
 public:
    Service_not_available_exception() : Infrastructure_exception("Service not available exception") {}
};

/// No answer within the time that a call has.
class Timeout_exception : public Infrastructure_exception {
 public:
    using Infrastructure_exception::Infrastructure_exception;
};

/// How a server answers a call; the numbers stand on the wire.
enum class Remote_exception_code : std::int32_t {
    kOk = 0,
    kUnsupported = 1,
    kInvalidArgument = 2,
    kOutOfResources = 3,
    kUnknownOperation = 4,
    kUnknownException = 5,
};

/// The server refused the call, or its handler threw. The text tells which.
class Remote_exception : public Infrastructure_exception {
 public:
    explicit Remote_exception(Remote_exception_code code);

    Remote_exception_code code() const noexcept { return code_; }

 private:
    Remote_exception_code code_;
};

/// A text that can't name an instance, or a processing mode that is not supported.
class Invalid_argument_exception : public std::invalid_argument {
 public:
    using std::invalid_argument::invalid_argument;
};

}  // namespace tarq::com

#endif
