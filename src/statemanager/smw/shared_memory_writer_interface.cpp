#include "statemanager/smw/shared_memory_writer_interface.h"

#include "ara/log/logging.h"

#include <exception>
#include <utility>

namespace ximo::ap::statemanager::smw {

Shared_memory_writer_interface::Shared_memory_writer_interface(std::string path)
    : path_(std::move(path)), file_(path_), stream_(&file_) {
    if (!file_.is_open()) {
        stream_.setstate(std::ios_base::failbit);
        ara::log::LogError() << "Invalid Shared memory file provided: " << path_ << "!";
        return;
    }
    stream_.exceptions(std::ios_base::badbit | std::ios_base::failbit);
    stream_.clear();
}

bool Shared_memory_writer_interface::write_to_memory(std::string data) {
    if (data.empty()) {
        ara::log::LogDebug() << "No data provided for shared memory write!";
        return true;
    }
    try {
        if (stream_.exceptions() != std::ios_base::goodbit) {
            stream_.clear();  // the failure of an earlier word is not this one's
        }
        stream_ << data << std::flush;
    } catch (std::exception const&) {
        ara::log::LogWarn() << "I/O exception while writing \"" << data << "\" to file: " << path_;
        return false;
    }
    return true;
}

void Shared_memory_writer_interface::close_file() {
    if (!stream_.fail() && !file_.close()) {
        stream_.setstate(std::ios_base::failbit);
    }
}

}  // namespace ximo::ap::statemanager::smw
