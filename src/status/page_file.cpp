#include "status/page_file.h"

#include "base/descriptor.h"
#include "status/page_writer.h"

#include <array>
#include <chrono>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace status {

namespace {

constexpr mode_t k_directory_mode = 0750;  // less what the umask takes, as with the files
constexpr mode_t k_file_mode = 0640;
constexpr int k_no_lock = -1;
constexpr std::size_t k_largest_configuration = std::size_t{16} << 20U;

std::string directory_of(std::string const& path) {
    return path.substr(0, path.rfind('/'));
}

// Held by the open file, so that it goes with the process, however that ends.
int locked(std::string const& path) {
    int const file = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW, k_file_mode);
    struct flock whole {};
    whole.l_type = F_WRLCK;
    whole.l_whence = SEEK_SET;
    if (file >= 0 && ::fcntl(file, F_OFD_SETLK, &whole) != 0) {
        ::close(file);
        return k_no_lock;
    }
    return file;
}

// A file that has all its space, mapped; null when that can't be had.
Page* new_page(std::string const& path) {
    ::unlink(path.c_str());
    base::Descriptor const file(::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, k_file_mode));
    if (!file.is_open() || ::posix_fallocate(file.number(), 0, sizeof(Page)) != 0) {
        return nullptr;
    }
    void* const memory =
        ::mmap(nullptr, sizeof(Page), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_POPULATE, file.number(), 0);
    return memory == MAP_FAILED ? nullptr : static_cast<Page*>(memory);
}

std::string first_line(char const* path) {
    base::Descriptor const file(::open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    std::array<char, 64> bytes{};
    auto const count = file.is_open() ? ::read(file.number(), bytes.data(), bytes.size()) : 0;
    std::string const text(bytes.data(), count > 0 ? static_cast<std::size_t>(count) : 0);
    return text.substr(0, text.find('\n'));
}

std::uint64_t digest_of_file(std::string const& path) {
    base::Descriptor const file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat about {};
    if (!file.is_open() || ::fstat(file.number(), &about) != 0 || !S_ISREG(about.st_mode)) {
        return 0;
    }
    auto digest = k_no_bytes;
    std::array<char, 4096> bytes;
    std::size_t total = 0;
    for (ssize_t count = 0;
         total < k_largest_configuration && (count = ::read(file.number(), bytes.data(), bytes.size())) > 0;) {
        total += static_cast<std::size_t>(count);
        digest = digest_of({bytes.data(), static_cast<std::size_t>(count)}, digest);
    }
    return digest;
}

// The page of the life before, if it was in this boot. It is nobody's any more, so its words may be read plainly.
std::uint64_t number_after(std::string const& path, Life<Shared_word> const& mine) {
    base::Descriptor const file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW));
    Life<std::uint64_t> before{};
    if (!file.is_open() || ::read(file.number(), &before, sizeof before) != sizeof before || before.magic != k_magic ||
        before.version != k_version) {
        return 1;
    }
    for (std::size_t i = 0; i < before.boot.words.size(); ++i) {
        if (before.boot.words[i] != own(mine.boot.words[i])) {
            return 1;
        }
    }
    return before.number + 1;
}

void write_life(Life<Shared_word>& life, std::string const& path, Facts const& facts) {
    auto const real = std::chrono::system_clock::now().time_since_epoch();
    put(life.started, now());
    put(life.started_real, static_cast<std::uint64_t>(std::chrono::nanoseconds(real).count()));
    put(life.pid, static_cast<std::uint64_t>(::getpid()));
    put(life.period_ms, facts.period_ms);
    put(life.nm_usage, facts.nm_usage ? 1U : 0U);
    put(life.knockout, facts.knockout_cycles);
    put(life.digest, digest_of_file(facts.configuration));
    put(life.boot, first_line("/proc/sys/kernel/random/boot_id"));
    put(life.program, STATUS_PROGRAM_VERSION);
    put(life.configuration, facts.configuration);
    put(life.number, number_after(path, life));
    put(life.bytes, sizeof(Page));
    put(life.version, k_version);
    put(life.magic, k_magic);
}

// A new page at the path; null when that can't be had. The page before is out of the way in any case: under the held
// lock it would be taken for this life's.
Page* published(std::string const& path, Facts const& facts) {
    auto const new_path = path + ".new";
    auto* const page = new_page(new_path);
    if (page != nullptr) {
        write_life(page->life, path, facts);
        put(page->driver.since, own(page->life.started));
        put(page->driver.condition, Condition::network_manager);
        put(page->services.sending, 1U);
    }
    ::rename(path.c_str(), (path + k_previous).c_str());
    if (page != nullptr && ::rename(new_path.c_str(), path.c_str()) == 0) {
        return page;
    }
    if (page != nullptr) {
        ::munmap(page, sizeof(Page));
    }
    ::unlink(new_path.c_str());
    return nullptr;
}

}  // namespace

Page_file::Page_file(std::string const& path, Facts const& facts) : lock_(k_no_lock) {
    ::mkdir(directory_of(path).c_str(), k_directory_mode);
    lock_ = locked(path + k_lock);
    if (lock_ == k_no_lock) {
        return;
    }
    page_ = published(path, facts);
    if (page_ == nullptr) {
        ::close(lock_);
        lock_ = k_no_lock;
        return;
    }
    set_page(page_);
}

Page_file::~Page_file() {
    if (page_ != nullptr) {
        set_page(nullptr);
        ::munmap(page_, sizeof(Page));
    }
    if (lock_ != k_no_lock) {
        ::close(lock_);
    }
}

}  // namespace status
