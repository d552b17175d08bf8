#include "ara/com/dds/entities/entity.h"

#include "tarq/com/exception.h"

#include <utility>

namespace ara::com::dds {

void throw_engine_error(std::string const& what, dds_return_t code) {
    throw tarq::com::Infrastructure_exception(what + ": " + dds_strretcode(code));
}

Entity::Entity(dds_entity_t made, std::string const& what) : entity_(made) {
    if (made < 0) {
        throw_engine_error(what, made);
    }
}

Entity::Entity(Entity&& other) noexcept : entity_(std::exchange(other.entity_, 0)) {}

Entity& Entity::operator=(Entity&& other) noexcept {
    if (this != &other) {
        reset();
        entity_ = std::exchange(other.entity_, 0);
    }
    return *this;
}

void Entity::reset() noexcept {
    if (entity_ > 0) {
        dds_delete(std::exchange(entity_, 0));
    }
}

}  // namespace ara::com::dds
