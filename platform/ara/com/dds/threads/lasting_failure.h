#ifndef ARA_COM_DDS_THREADS_LASTING_FAILURE_H
#define ARA_COM_DDS_THREADS_LASTING_FAILURE_H

#include <cstdint>
#include <exception>

namespace ara::com::dds {

/// Something that is tried again until it succeeds: the log tells of the first failure and of the end of them. One
/// thread at a time.
class Lasting_failure {
 public:
    /// The texts are followed by the cause, and by how often it failed; they are literals.
    Lasting_failure(char const* begun, char const* ended) : begun_(begun), ended_(ended) {}

    void failed(std::exception const& cause);
    void succeeded();

 private:
    char const* const begun_;
    char const* const ended_;
    std::uint64_t failures_{0};
};

}  // namespace ara::com::dds

#endif
