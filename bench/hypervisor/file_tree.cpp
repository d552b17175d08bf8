#include "bench/hypervisor/file_tree.h"

#include <algorithm>

#include <unistd.h>

namespace bench::hypervisor {

namespace {

template <class Condition>
std::optional<Node> first_of(std::vector<Node> const& nodes, Condition condition) {
    auto const found = std::find_if(nodes.begin(), nodes.end(), condition);
    return found == nodes.end() ? std::nullopt : std::optional<Node>(*found);
}

}  // namespace

struct stat Node::attributes() const {
    struct stat result {};
    result.st_ino = inode;
    result.st_uid = ::getuid();
    result.st_gid = ::getgid();
    result.st_nlink = is_directory() ? 2 : 1;
    if (is_directory()) {
        result.st_mode = S_IFDIR | 0755;
    } else {
        result.st_mode = S_IFREG | (device ? 0666 : 0222);
    }
    return result;
}

std::uint64_t File_tree::inode_of(std::string const& name) {
    auto const [entry, is_new] = inodes_.try_emplace(name, next_inode_);
    next_inode_ += is_new ? 1 : 0;
    return entry->second;
}

std::vector<Node> File_tree::entries(std::uint64_t directory) {
    std::vector<Node> result;
    if (directory == k_root) {
        result = {{k_input, "input", {}, {}}, {k_vmctl, "vmctl", {}, {}}};
    }
    if (directory == k_input) {
        for (auto const& device : model_.devices()) {
            result.push_back({inode_of(device->name()), device->name(), device, {}});
        }
    }
    if (directory == k_vmctl) {
        for (auto const& file : model_.control_files()) {
            result.push_back({inode_of(file->name()), file->name(), {}, file});
        }
    }
    return result;
}

std::optional<Node> File_tree::find(std::uint64_t inode) {
    if (inode == k_root) {
        return Node{k_root, "", {}, {}};
    }
    for (std::uint64_t const directory : {k_root, k_input, k_vmctl}) {
        if (auto node = first_of(entries(directory), [&](Node const& entry) { return entry.inode == inode; })) {
            return node;
        }
    }
    return std::nullopt;
}

std::optional<Node> File_tree::find(std::uint64_t directory, std::string const& name) {
    return first_of(entries(directory), [&](Node const& entry) { return entry.name == name; });
}

}  // namespace bench::hypervisor
