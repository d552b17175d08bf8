#ifndef ARA_COM_INSTANCE_H
#define ARA_COM_INSTANCE_H

#include <cstdint>
#include <string>
#include <string_view>

namespace ara::com {

/// The name under which one instance of a service is offered.
class InstanceIdentifier {
 public:
    /// Throws `tarq::com::Invalid_argument_exception` for a name that is empty, longer than 128 bytes, begins or ends
    /// with a blank, or holds control characters or one of * ? [ ] \ and the comma, which mean more than themselves on
    /// the wire.
    explicit InstanceIdentifier(std::string_view name);

    std::string const& ToString() const noexcept { return name_; }

 private:
    std::string name_;
};

inline bool operator==(InstanceIdentifier const& left, InstanceIdentifier const& right) {
    return left.ToString() == right.ToString();
}
inline bool operator<(InstanceIdentifier const& left, InstanceIdentifier const& right) {
    return left.ToString() < right.ToString();
}

/// Which instances a lookup wants: "*" is any, every other text is the name of one.
class InstanceSpecifier {
 public:
    /// Throws as `InstanceIdentifier` does, except for "*".
    explicit InstanceSpecifier(std::string_view text);

    std::string const& ToString() const noexcept { return text_; }
    bool matches(InstanceIdentifier const& instance) const;

 private:
    std::string text_;
};

/// How a skeleton takes its calls. Only kEvent is supported: each call is dispatched as it arrives.
enum class MethodCallProcessingMode : std::uint8_t { kPoll = 0, kEvent = 1, kEventSingleThread = 2 };

}  // namespace ara::com

#endif
