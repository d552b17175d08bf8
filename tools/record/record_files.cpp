// The recorder's loop calls `add` for each news and `write` once a look.

#include "tools/record/record_files.h"

#include "base/system_error.h"
#include "tools/record/records.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace statectl::record {

namespace {

constexpr mode_t k_mode = 0640;
constexpr std::int64_t k_second = 1'000'000'000;

std::int64_t now() {
    return std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count();
}

}  // namespace

Record_files::Record_files(std::string directory, Record_limits limits)
    : directory_(std::move(directory)), limits_(limits) {}

Record_files::~Record_files() {
    ::close(file_);
    ::close(lock_);
}

bool Record_files::add(std::string const& line, bool begins_life) {
    if (has_room()) {
        lines_.push_back({line + '\n', begins_life});
        return true;
    }
    return false;
}

void Record_files::write(std::string const& first_line, bool at_once) {
    if (is_ready(first_line) && is_writable() && is_handed_over(first_line)) {
        sync(at_once);
        if (!is_dirty_) {
            trouble_.clear();
        }
    }
}

bool Record_files::fails(char const* what) {
    trouble_ = directory_ + ": " + what + ": " + base::system_error_text(errno);
    return false;
}

// Two that write would tear each other's lines. The lock goes with the process.
bool Record_files::is_locked() {
    if (lock_ < 0) {
        lock_ = ::open(directory_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (lock_ < 0) {
            return fails("the directory can't be opened");
        }
    }
    return ::flock(lock_, LOCK_EX | LOCK_NB) == 0 || fails("another recorder writes here, or it can't be locked");
}

// The newest file is gone on with, unless there is none.
bool Record_files::is_ready(std::string const& first_line) {
    if (file_ >= 0) {
        return true;
    }
    if (!is_locked()) {
        return false;
    }
    try {
        auto const numbers = file_numbers(directory_);
        if (!is_open(numbers.empty() ? 1 : numbers.back())) {
            return false;
        }
    } catch (std::system_error const& error) {
        errno = error.code().value();
        return fails("the directory can't be read");
    }
    if (size_ == 0) {
        begin_file(first_line);
    } else {
        end_torn_line();
    }
    return true;
}

bool Record_files::is_open(std::uint64_t number) {
    int const file = ::open(file_name(directory_, number).c_str(),
                            O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, k_mode);
    struct stat about {};
    if (file < 0 || ::fstat(file, &about) != 0) {
        auto const error = errno;
        ::close(file);
        errno = error;
        return fails("no file can be written");
    }
    ::close(file_);
    file_ = file;
    number_ = number;
    size_ = static_cast<std::size_t>(about.st_size);
    ::fsync(lock_);  // the file's name as well
    return true;
}

// A disk that has become read-only under an open file takes what is written to it, and never keeps it.
bool Record_files::is_writable() {
    struct statvfs about {};
    if ((lines_.empty() && !is_dirty_) || ::fstatvfs(file_, &about) != 0 || (about.f_flag & ST_RDONLY) == 0) {
        return true;
    }
    errno = EROFS;
    return fails("nothing can be written");
}

void Record_files::end_torn_line() {
    char last = 0;
    if (::pread(file_, &last, 1, static_cast<off_t>(size_ - 1)) == 1 && last != '\n') {
        lines_.push_front({"\n", false});
    }
}

// Lines that wait before another life's are of the one before.
void Record_files::begin_file(std::string const& first_line) {
    if (lines_.empty() || lines_.front().begins_life) {
        return;
    }
    bool const is_of_earlier =
        !life_.empty() && std::any_of(lines_.begin(), lines_.end(), [](Line const& line) { return line.begins_life; });
    lines_.push_front({is_of_earlier ? life_ : first_line + '\n', true});
}

// Where the names can't be read, the files stay until the next time.
void Record_files::remove_oldest(std::uint64_t newest) const {
    try {
        for (auto const number : file_numbers(directory_)) {
            if (number + limits_.files <= newest) {
                ::unlink(file_name(directory_, number).c_str());
            }
        }
    } catch (std::system_error const&) {
        return;
    }
}

bool Record_files::is_handed_over(std::string const& first_line) {
    while (!lines_.empty()) {
        if (done_ == 0 && size_ >= limits_.file_bytes) {
            if (!is_kept() || !is_open(number_ + 1)) {
                return false;
            }
            remove_oldest(number_);
            begin_file(first_line);
        }
        auto const& line = lines_.front().text;
        auto const count = ::write(file_, line.data() + done_, line.size() - done_);
        if (count <= 0) {
            return fails("nothing can be written");
        }
        is_dirty_ = true;
        size_ += static_cast<std::size_t>(count);
        done_ += static_cast<std::size_t>(count);
        if (done_ == line.size()) {
            life_ = lines_.front().begins_life ? line : life_;
            lines_.pop_front();
            done_ = 0;
        }
    }
    return true;
}

void Record_files::sync(bool at_once) {
    if (is_dirty_ && (at_once || now() - synced_ >= k_second)) {
        is_synced();
    }
}

// All of the file, before the next one is begun. A disk that fails is tried again after a second.
bool Record_files::is_kept() {
    bool const is_too_early = is_failing_ && now() - synced_ < k_second;
    return !is_dirty_ || (!is_too_early && is_synced());
}

bool Record_files::is_synced() {
    synced_ = now();
    is_dirty_ = is_failing_ = ::fdatasync(file_) != 0;
    return !is_dirty_ || fails("the disk does not take what was written");
}

}  // namespace statectl::record
