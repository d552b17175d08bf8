#include "tarq/com/exception.h"

namespace tarq::com {

namespace {

char const* text_of(Remote_exception_code code) {
    switch (code) {
        case Remote_exception_code::kUnsupported:
            return "The service does not support the call";
        case Remote_exception_code::kInvalidArgument:
            return "The service refused the arguments of the call";
        case Remote_exception_code::kOutOfResources:
            return "The service is overloaded";
        case Remote_exception_code::kUnknownOperation:
            return "The service does not know the method";
        case Remote_exception_code::kUnknownException:
            return "The service failed to handle the call";
        case Remote_exception_code::kOk:
            break;
    }
    return "The service answered with a code that is not known";
}

}  // namespace

Remote_exception::Remote_exception(Remote_exception_code code) : Infrastructure_exception(text_of(code)), code_(code) {}

}  // namespace tarq::com
