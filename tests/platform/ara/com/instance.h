#ifndef ARA_COM_INSTANCE_H
#define ARA_COM_INSTANCE_H

#include <cstdint>
#include <string>
#include <string_view>

namespace ara::com {

/// The name of one instance of a service. Throws `tarq::com::Invalid_argument_exception` for an empty one.
class InstanceIdentifier {
 public:
    explicit InstanceIdentifier(std::string_view name);
    std::string const& ToString() const noexcept { return name_; }

 private:
    std::string name_;
};

/// "*" is any instance, every other text the name of one.
class InstanceSpecifier {
 public:
    explicit InstanceSpecifier(std::string_view text) : text_(text) {}
    bool matches(std::string const& instance) const { return text_ == "*" || text_ == instance; }

 private:
    std::string text_;
};

enum class MethodCallProcessingMode : std::uint8_t { kPoll = 0, kEvent = 1, kEventSingleThread = 2 };

}  // namespace ara::com

#endif
