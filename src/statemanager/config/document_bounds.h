#ifndef STATEMANAGER_CONFIG_DOCUMENT_BOUNDS_H
#define STATEMANAGER_CONFIG_DOCUMENT_BOUNDS_H

#include <cstddef>
#include <string_view>

namespace ximo::ap::statemanager::config {

/// Levels of nesting below the document itself. The configuration needs four.
constexpr std::size_t k_deepest = 32;

/// Values of a document, the document itself among them: two for each application instance, so room for some 15,000. A
/// list or an object that is empty counts as two.
constexpr std::size_t k_most_values = 32768;

/// Throws `std::runtime_error` for a text that no parser needs to look at: one with more levels or values than a
/// configuration may have. One pass over the text, before it is parsed; whether it is JSON is for the parser to say.
void require_bounds(std::string_view text);

}  // namespace ximo::ap::statemanager::config

#endif
