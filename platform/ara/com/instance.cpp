#include "ara/com/instance.h"

#include "tarq/com/exception.h"

#include <algorithm>
#include <cstddef>

namespace ara::com {

namespace {

constexpr std::size_t k_longest_name = 128;
constexpr char const* k_any = "*";

bool is_refused(char character) {
    auto const code = static_cast<unsigned char>(character);
    constexpr unsigned char k_delete = 0x7f;
    return code < ' ' || code == k_delete || std::string_view("*?[]\\,").find(character) != std::string_view::npos;
}

[[noreturn]] void refuse(std::string const& reason) {
    throw tarq::com::Invalid_argument_exception("Not an instance identifier: " + reason);
}

}  // namespace

InstanceIdentifier::InstanceIdentifier(std::string_view name) : name_(name) {
    if (name.empty()) {
        refuse("the name is empty");
    }
    if (name.size() > k_longest_name) {
        refuse("the name is longer than 128 bytes");
    }
    if (name.front() == ' ' || name.back() == ' ') {
        refuse("the name begins or ends with a blank");
    }
    if (std::any_of(name.begin(), name.end(), is_refused)) {
        refuse("the name holds a control character or one of * ? [ ] \\ ,");
    }
}

InstanceSpecifier::InstanceSpecifier(std::string_view text)
    : text_(text == k_any ? std::string(text) : InstanceIdentifier(text).ToString()) {}

bool InstanceSpecifier::matches(InstanceIdentifier const& instance) const {
    return text_ == k_any || text_ == instance.ToString();
}

}  // namespace ara::com
