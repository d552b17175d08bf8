#include "ara/log/told_levels.h"

#include <cstdlib>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>

namespace ara::log {

namespace {

std::string pipe_directory() {
    auto const* const directory = std::getenv("DLT_PIPE_DIR");
    return directory != nullptr ? directory : "/tmp";
}

}  // namespace

Told_levels::Told_levels() : directory_(pipe_directory()) {}

Told_levels& Told_levels::instance() {
    static auto& told = *new Told_levels;
    return told;
}

void Told_levels::add(std::string context, std::uint8_t level) {
    Told_level told{std::move(context), static_cast<std::int8_t>(level), pipe()};
    base::Lock_guard const lock(mutex_);
    told_.push_back(std::move(told));
    has_some_ = true;
}

std::vector<Told_level> Told_levels::take() {
    if (!has_some_.exchange(false)) {
        return {};
    }
    base::Lock_guard const lock(mutex_);
    return std::exchange(told_, {});
}

Pipe_identity Told_levels::pipe() const {
    struct statx file {};
    if (::statx(AT_FDCWD, (directory_ + "/dlt").c_str(), 0, STATX_INO | STATX_BTIME, &file) != 0) {
        return {};
    }
    return {file.stx_dev_major, file.stx_dev_minor, file.stx_ino, static_cast<std::uint64_t>(file.stx_btime.tv_sec),
            file.stx_btime.tv_nsec};
}

}  // namespace ara::log
