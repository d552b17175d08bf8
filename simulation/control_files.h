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
    enum class Manner { takes, refuses, is_deaf, missing };
    using Reader = std::function<void(std::string_view bytes, Manner manner)>;

    explicit Control_files(Stage& stage);
    ~Control_files();
    Control_files(Control_files const&) = delete;
    Control_files& operator=(Control_files const&) = delete;

    /// The one that lives, or null.
    static Control_files* current();

    void add(std::string const& path, Reader reader);

    /// From now on words are refused, taken, or taken by a file that is deaf and does nothing with them, each after a
    /// time for which the writer waits; one that is missing can't be opened.
    void behave(std::string const& path, Manner manner, Time after = Time(0)) {
        files_.at(path).manner = manner;
        files_.at(path).after = after;
    }

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
        Time after{0};
    };

    // Far from the kernel's numbers.
    static constexpr int k_first_descriptor = 1 << 24;
    static std::size_t place(int descriptor) { return static_cast<std::size_t>(descriptor - k_first_descriptor); }

    Stage& stage_;
    std::map<std::string, File> files_;
    std::vector<File*> open_;
};

}  // namespace simulation

#endif
