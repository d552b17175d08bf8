// The schema asks for what the daemon means, not for what it takes: whole numbers in their range, no unknown member.

#include "tools/check_config/members.h"

#include <limits>

namespace statectl::check_config {

namespace {

using nlohmann::ordered_json;

ordered_json number(std::uint32_t largest) {
    return {{"type", "integer"}, {"minimum", 0}, {"maximum", largest}};
}

ordered_json instances(Member const& member) {
    ordered_json name{
        {"type", "string"}, {"pattern", R"(^[^ *?\[\]\\,]([^*?\[\]\\,]*[^ *?\[\]\\,])?$)"}, {"maxLength", 128}};
    ordered_json element{{"type", "object"},
                         {"properties", {{member.element, name}}},
                         {"required", ordered_json::array({member.element})},
                         {"additionalProperties", false}};
    return {{"type", "array"}, {"minItems", 1}, {"items", element}};
}

ordered_json plain_type(Member const& member) {
    switch (member.kind) {
        case Kind::number:
            return number(std::numeric_limits<std::uint32_t>::max());
        case Kind::flag:
            return {{"type", "boolean"}};
        case Kind::text:
            return {{"type", "string"}};
        case Kind::bytes:
            return {{"type", "array"}, {"items", number(std::numeric_limits<std::uint8_t>::max())}};
        case Kind::instances:
            return instances(member);
        case Kind::section:
            break;  // holds others
    }
    return {{"type", "object"}};
}

using Type_of = ordered_json (*)(Member const& member);

ordered_json described(Member const& member, Type_of type_of) {
    ordered_json described{{"description", member.meaning}};
    described.update(type_of(member));
    described.update(member.keywords);
    if (!member.is_required && member.value != nullptr) {
        described["default"] = default_of(member);
    }
    return described;
}

ordered_json object_of(std::string const& section, Type_of type_of) {
    ordered_json object{{"type", "object"}, {"properties", ordered_json::object()}};
    auto required = ordered_json::array();
    for (auto const& member : members_of(section)) {
        object["properties"][member.name] = described(member, type_of);
        if (member.is_required) {
            required.push_back(member.name);
        }
    }
    if (!required.empty()) {
        object["required"] = required;
    }
    object["additionalProperties"] = false;
    return object;
}

ordered_json type_in_root(Member const& member) {
    return member.kind == Kind::section ? object_of(member.name, plain_type) : plain_type(member);
}

}  // namespace

ordered_json schema() {
    return {{"$schema", "https://json-schema.org/draft/2020-12/schema"},
            {"title", "Configuration of the machine state manager, ap_statemanager.json(5)"},
            {"type", "object"},
            {"properties", {{"$schema", {{"type", "string"}}}, {"ap_statemanager", object_of("", type_in_root)}}},
            {"required", ordered_json::array({"ap_statemanager"})},
            {"additionalProperties", false}};
}

}  // namespace statectl::check_config
