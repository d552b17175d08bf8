#ifndef ARA_COM_DDS_ENGINE_CLOSING_H
#define ARA_COM_DDS_ENGINE_CLOSING_H

#include <memory>
#include <utility>

namespace ara::com::dds {

/// An object of the binding's interface that closes a part of the engine when it goes.
template <class Interface, class Part_type>
class Closing : public Interface {
 public:
    explicit Closing(std::shared_ptr<Part_type> part) : part_(std::move(part)) {}
    ~Closing() override { part_->close(); }
    Closing(Closing const&) = delete;
    Closing& operator=(Closing const&) = delete;

 protected:
    Part_type& part() const noexcept { return *part_; }

 private:
    std::shared_ptr<Part_type> const part_;
};

}  // namespace ara::com::dds

#endif
