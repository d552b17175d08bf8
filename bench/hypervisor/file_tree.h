#ifndef BENCH_HYPERVISOR_FILE_TREE_H
#define BENCH_HYPERVISOR_FILE_TREE_H

#include "bench/hypervisor/model.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <sys/stat.h>

namespace bench::hypervisor {

/// One entry of the tree: a directory, an input device or a control file.
struct Node {
    std::uint64_t inode{0};
    std::string name;
    std::shared_ptr<Input_device> device;
    std::shared_ptr<Control_file> control_file;

    bool is_directory() const { return !device && !control_file; }
    struct stat attributes() const;
};

/// The model as directories and files: /input with a file for each device, /vmctl with the control files. A name keeps
/// its inode number for ever.
class File_tree {
 public:
    static constexpr std::uint64_t k_root = 1;
    static constexpr std::uint64_t k_input = 2;
    static constexpr std::uint64_t k_vmctl = 3;

    explicit File_tree(Model const& model) : model_(model) {}

    std::optional<Node> find(std::uint64_t inode);
    std::optional<Node> find(std::uint64_t directory, std::string const& name);
    std::vector<Node> entries(std::uint64_t directory);

 private:
    std::uint64_t inode_of(std::string const& name);

    Model const& model_;
    std::map<std::string, std::uint64_t> inodes_;
    std::uint64_t next_inode_{k_vmctl + 1};
};

}  // namespace bench::hypervisor

#endif
