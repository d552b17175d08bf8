#ifndef ARA_COM_DDS_ENTITIES_ENTITY_H
#define ARA_COM_DDS_ENTITIES_ENTITY_H

#include <string>

#include <dds/dds.h>

namespace ara::com::dds {

/// Throws `tarq::com::Infrastructure_exception` with what was tried and the engine's text for the code.
[[noreturn]] void throw_engine_error(std::string const& what, dds_return_t code);

/// An entity of the engine. It is deleted with this object, and the entities made below it before it; that waits for
/// their listeners that run.
class Entity {
 public:
    Entity() = default;
    /// Takes what a function of the engine made; throws as `throw_engine_error` when it made nothing.
    Entity(dds_entity_t made, std::string const& what);
    Entity(Entity&& other) noexcept;
    Entity& operator=(Entity&& other) noexcept;
    ~Entity() { reset(); }

    dds_entity_t get() const noexcept { return entity_; }
    void reset() noexcept;

 private:
    dds_entity_t entity_{0};
};

}  // namespace ara::com::dds

#endif
