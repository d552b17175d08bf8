#ifndef ARA_PHM_PHM_CLIENT_H
#define ARA_PHM_PHM_CLIENT_H

#include <string>
#include <utility>

namespace ara::phm {

/// Identity under which a process is supervised.
class Phm_client_interface {
 public:
    Phm_client_interface() = default;
    virtual ~Phm_client_interface() = default;
    Phm_client_interface(Phm_client_interface const&) = delete;
    Phm_client_interface& operator=(Phm_client_interface const&) = delete;

    virtual std::string const& instance_id() const = 0;
};

/// The identity taken from configuration; any text is one, the empty text too.
class Phm_client : public Phm_client_interface {
 public:
    explicit Phm_client(std::string instance_id) : instance_id_(std::move(instance_id)) {}

    std::string const& instance_id() const override { return instance_id_; }

 private:
    std::string instance_id_;
};

}  // namespace ara::phm

#endif
