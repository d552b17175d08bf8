#ifndef XIMO_COM_FUTURE_H
#define XIMO_COM_FUTURE_H

#include <future>

namespace ximo::com {

/// What a method of a service answers with. The standard library's pair: a promise is set once, by any thread, and a
/// future waits for it.
template <class Value>
using Promise = std::promise<Value>;

template <class Value>
using Future = std::future<Value>;

}  // namespace ximo::com

#endif
