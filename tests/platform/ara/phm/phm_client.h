#ifndef ARA_PHM_PHM_CLIENT_H
#define ARA_PHM_PHM_CLIENT_H

#include <string>
#include <utility>

namespace ara::phm {

/// The identity under which a process is supervised.
class Phm_client {
 public:
    explicit Phm_client(std::string instance_id) : instance_id_(std::move(instance_id)) {}
    std::string const& instance_id() const { return instance_id_; }

 private:
    std::string instance_id_;
};

}  // namespace ara::phm

#endif
