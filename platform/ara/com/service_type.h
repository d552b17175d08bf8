#ifndef ARA_COM_SERVICE_TYPE_H
#define ARA_COM_SERVICE_TYPE_H

#include <chrono>
#include <cstddef>
#include <cstdint>

namespace ara::com {

/// An IDL type in the standard C mapping, as the engine's IDL compiler describes it.
struct Topic_type {
    void const* descriptor;  ///< the compiler's `<type>_desc`
    std::size_t size;        ///< of the mapped struct, in bytes
};

/// What the binding must know of a service interface; one constant object for each, beside its interface. A request
/// begins with a `dds_rpc_RequestHeader`, a reply with a `dds_rpc_ReplyHeader`; the binding fills and reads these. A
/// union by method number follows, which only the interface's own code reads and writes.
struct Service_type {
    char const* name;
    Topic_type request;
    Topic_type reply;
    std::size_t reply_union;               ///< offset of the reply's union, which begins with its discriminator
    std::chrono::seconds longest_call{2};  ///< from the call to the end of its future, connecting included
};

/// The union's discriminator in a reply that carries no result: it selects the default member.
inline constexpr std::int32_t k_no_operation = -1;

/// An event or a field's notification of a service interface.
struct Event_type {
    char const* service;
    char const* name;
    Topic_type sample;
    bool is_field;  ///< a new subscriber is given the newest value at once
};

}  // namespace ara::com

#endif
