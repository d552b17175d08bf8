#ifndef SIMULATION_CONTROL_FILES_H
#define SIMULATION_CONTROL_FILES_H

#include "simulation/stage.h"

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace simulation {

/// The files of other parts of the vehicle that the daemon writes into: the hypervisor's two control files and the
/// power-off channel. The daemon's open(2), write(2) and close(2) of such a path come here (kernel.cpp), all others go
/// to the kernel.
class Control_files {
 public:
    enum class Manner { takes, refuses, missing };
    using Reader = std::function<void(std::string_view bytes, bool is_taken)>;

    Control_files();
    ~Control_files();
    Control_files(Control_files const&) = delete;
    Control_files& operator=(Control_files const&) = delete;

    /// The one that lives, or null.
    static Control_files* current();

    void add(std::string const& path, Reader reader);

    /// Words are refused from now on, or taken again; one that is missing can't be opened.
    void behave(std::string const& path, Manner manner) { files_.at(path).manner = manner; }

    bool has(std::string const& path) const { return files_.count(path) != 0; }

    // As the system calls; the reason of a failure is in errno.
    int open(std::string const& path);
    bool is_open(int descriptor) const;
    long write(int descriptor, std::string_view bytes);
    void close(int descriptor) { open_.at(place(descriptor)) = nullptr; }

 private:
    struct File {
        Reader reader;
        Manner manner{Manner::takes};
    };

    // Far from the kernel's numbers.
    static constexpr int k_first_descriptor = 1 << 24;
    static std::size_t place(int descriptor) { return static_cast<std::size_t>(descriptor - k_first_descriptor); }

    std::map<std::string, File> files_;
    std::vector<File*> open_;
};

}  // namespace simulation

#endif
