#ifndef ARA_COM_TYPED_REPLY_H
#define ARA_COM_TYPED_REPLY_H

#include "ara/com/binding.h"
#include "tarq/com/exception.h"
#include "ximo/com/future.h"

#include <cstdint>
#include <exception>
#include <functional>
#include <type_traits>
#include <utility>

namespace ara::com {

/// Turns the outcome of a call into the value of a future.
template <class Value>
class Typed_reply : public Pending_reply {
 public:
    /// Reads the result from a reply; throws `tarq::com::Infrastructure_exception` when the reply is for another
    /// method.
    using Decode = std::function<Value(void const* reply)>;

    explicit Typed_reply(Decode decode) : decode_(std::move(decode)) {}

    ximo::com::Future<Value> future() { return promise_.get_future(); }

    void succeed(void const* reply) override {
        try {
            if constexpr (std::is_void_v<Value>) {
                decode_(reply);
                promise_.set_value();
            } else {
                promise_.set_value(decode_(reply));
            }
        } catch (std::exception const&) {
            promise_.set_exception(std::current_exception());
        }
    }

    void fail(std::exception_ptr cause) override { promise_.set_exception(std::move(cause)); }

 private:
    Decode decode_;
    ximo::com::Promise<Value> promise_;
};

/// Refuses a reply that carries another method's result.
template <class Union>
void expect_result(Union const& data, std::int32_t method) {
    if (data._d != method) {
        throw tarq::com::Infrastructure_exception("The reply carries the result of another method");
    }
}

/// The result in a method's part of a reply, a union whose case 0 it is.
template <class Union>
auto const& result_in(Union const& outcome) {
    expect_result(outcome, 0);
    return outcome._u.result;
}

/// A request to a method without its arguments.
template <class Request>
Request request_to(std::int32_t method) {
    Request request{};
    request.data._d = method;
    return request;
}

/// Calls what the request names and returns the future of the result, which `decode` takes from the reply's union.
template <class Reply, class Request, class Decode>
auto call(Connection& connection, Request request, Decode decode) {
    using Value = std::invoke_result_t<Decode, decltype(Reply::data) const&>;
    auto reply = std::make_unique<Typed_reply<Value>>([method = request.data._d, decode](void const* sample) {
        auto const& data = static_cast<Reply const*>(sample)->data;
        expect_result(data, method);
        return decode(data);
    });
    auto future = reply->future();
    connection.call(&request, std::move(reply));
    return future;
}

/// The same for a method without a result.
template <class Reply, class Request>
ximo::com::Future<void> call(Connection& connection, Request const& request) {
    return call<Reply>(connection, request, [](auto const& /*data*/) {});
}

}  // namespace ara::com

#endif
