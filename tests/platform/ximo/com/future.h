#ifndef XIMO_COM_FUTURE_H
#define XIMO_COM_FUTURE_H

#include <future>

namespace ximo::com {

template <class Value>
using Promise = std::promise<Value>;
template <class Value>
using Future = std::future<Value>;

}  // namespace ximo::com

#endif
