#ifndef TESTS_UNIT_RECORDER_DISK_H
#define TESTS_UNIT_RECORDER_DISK_H

#include <string>
#include <vector>

namespace statectl::record {

/// What the program asked of the disk: this program's `fdatasync` tells it here.
struct Disk {
    bool is_failing{false};
    int failed_syncs{0};
    std::vector<std::string> synced;  ///< files, each with the size it had then
};

extern Disk disk;

}  // namespace statectl::record

#endif
