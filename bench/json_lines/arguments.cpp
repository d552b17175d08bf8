#include "bench/json_lines/arguments.h"

#include <cstring>

namespace bench {

namespace {

// Linux numbers its errors from 1 to 133 (EHWPOISON).
constexpr int k_last_errno = 133;

Command_error wrong_type(std::string const& name, char const* expected) {
    return Command_error{"\"" + name + "\" must be " + expected};
}

std::int64_t checked_number(nlohmann::json const& value, std::string const& name, std::int64_t lowest,
                            std::int64_t highest) {
    std::string const range = "a whole number from " + std::to_string(lowest) + " to " + std::to_string(highest);
    if (!value.is_number_integer()) {
        throw wrong_type(name, range.c_str());
    }
    bool const beyond = value.is_number_unsigned() && value.get<std::uint64_t>() > INT64_MAX;
    auto const number = value.get<std::int64_t>();
    if (beyond || number < lowest || number > highest) {
        throw wrong_type(name, range.c_str());
    }
    return number;
}

}  // namespace

int errno_of(std::string const& name) {
    for (int number = 1; number <= k_last_errno; ++number) {
        char const* const known = ::strerrorname_np(number);
        if (known != nullptr && name == known) {
            return number;
        }
    }
    return 0;
}

std::string errno_name(int number) {
    char const* const known = ::strerrorname_np(number);
    return known != nullptr ? known : std::to_string(number);
}

Arguments::Arguments(nlohmann::json const& command) : command_(command) {
    taken_ = {"do", "id"};
}

nlohmann::json const* Arguments::find(std::string const& name) {
    taken_.insert(name);
    auto const member = command_.find(name);
    return member == command_.end() ? nullptr : &*member;
}

std::optional<std::string> Arguments::optional_text(std::string const& name) {
    nlohmann::json const* const value = find(name);
    if (value == nullptr) {
        return std::nullopt;
    }
    if (!value->is_string()) {
        throw wrong_type(name, "a text");
    }
    return value->get<std::string>();
}

std::string Arguments::text(std::string const& name) {
    auto value = optional_text(name);
    if (!value) {
        throw Command_error("\"" + name + "\" is missing");
    }
    return *value;
}

std::string Arguments::text_or(std::string const& name, std::string const& otherwise) {
    return optional_text(name).value_or(otherwise);
}

bool Arguments::flag_or(std::string const& name, bool otherwise) {
    nlohmann::json const* const value = find(name);
    if (value == nullptr) {
        return otherwise;
    }
    if (!value->is_boolean()) {
        throw wrong_type(name, "true or false");
    }
    return value->get<bool>();
}

std::optional<std::int64_t> Arguments::optional_number(std::string const& name, std::int64_t lowest,
                                                       std::int64_t highest) {
    nlohmann::json const* const value = find(name);
    if (value == nullptr) {
        return std::nullopt;
    }
    return checked_number(*value, name, lowest, highest);
}

std::int64_t Arguments::number(std::string const& name, std::int64_t lowest, std::int64_t highest) {
    auto const value = optional_number(name, lowest, highest);
    if (!value) {
        throw Command_error("\"" + name + "\" is missing");
    }
    return *value;
}

std::int64_t Arguments::number_or(std::string const& name, std::int64_t otherwise, std::int64_t lowest,
                                  std::int64_t highest) {
    return optional_number(name, lowest, highest).value_or(otherwise);
}

std::optional<int> Arguments::optional_errno(std::string const& name) {
    nlohmann::json const* const value = find(name);
    if (value == nullptr) {
        return std::nullopt;
    }
    int const number = value->is_string() ? errno_of(value->get<std::string>())
                                          : static_cast<int>(checked_number(*value, name, 1, k_last_errno));
    if (number == 0) {
        throw wrong_type(name, "the name or number of a system error, such as \"EIO\"");
    }
    return number;
}

std::optional<std::vector<std::string>> Arguments::optional_texts(std::string const& name) {
    nlohmann::json const* const value = find(name);
    if (value == nullptr) {
        return std::nullopt;
    }
    std::vector<std::string> texts;
    if (!value->is_array()) {
        throw wrong_type(name, "a list of texts");
    }
    for (nlohmann::json const& element : *value) {
        if (!element.is_string()) {
            throw wrong_type(name, "a list of texts");
        }
        texts.push_back(element.get<std::string>());
    }
    return texts;
}

void Arguments::end() const {
    for (auto const& member : command_.items()) {
        if (taken_.count(member.key()) == 0) {
            throw Command_error("\"" + member.key() + "\" is not known to this command");
        }
    }
}

}  // namespace bench
