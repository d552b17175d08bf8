#include "tools/page/page_view.h"

#include "base/descriptor.h"
#include "base/system_error.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <fstream>
#include <thread>

#include <fcntl.h>
#include <grp.h>
#include <linux/futex.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace statectl {

namespace {

using status::Shared_word;

constexpr unsigned k_retries = 400;
constexpr auto k_pause = std::chrono::microseconds(50);

// Words of one structure, one after the other: layout.h says that there is nothing else in it.
template <template <class> class Structure>
void copy_words(Structure<Shared_word> const& shared, Structure<Number>& copy) {
    static_assert(sizeof shared == sizeof copy);
    auto const* from = reinterpret_cast<Shared_word const*>(&shared);
    auto* to = reinterpret_cast<Number*>(&copy);
    for (std::size_t i = 0; i < sizeof shared / sizeof(Number); ++i) {
        to[i] = from[i].load(std::memory_order_acquire);
    }
}

class Copier {
 public:
    explicit Copier(unsigned retries) : retries_(retries) {}

    /// A section or record as it was at one moment, or else as it is.
    template <template <class> class Structure>
    void operator()(Structure<Shared_word> const& shared, Structure<Number>& copy) {
        while (!is_copied(shared, copy)) {
            if (retries_ == 0) {
                is_half_written_ = true;
                return;
            }
            --retries_;
            std::this_thread::sleep_for(k_pause);
        }
    }

    /// The records that are in use, by their copies.
    template <template <class> class Structure, class In_use>
    void operator()(Structure<Shared_word> const* records, std::size_t count, std::vector<Structure<Number>>& copies,
                    In_use const& is_in_use) {
        for (std::size_t i = 0; i < count; ++i) {
            Structure<Number> copy{};
            (*this)(records[i], copy);
            if (is_in_use(copy)) {
                copies.push_back(copy);
            }
        }
    }

    /// Of something there was no such moment.
    bool is_half_written() const { return is_half_written_; }

 private:
    template <template <class> class Structure>
    static bool is_copied(Structure<Shared_word> const& shared, Structure<Number>& copy) {
        auto const before = shared.sequence.load(std::memory_order_acquire);
        copy_words(shared, copy);
        return before % 2 == 0 && shared.sequence.load(std::memory_order_relaxed) == before;
    }

    unsigned retries_;  // for all that is copied
    bool is_half_written_{false};
};

// What may be overwritten while it is copied is left out.
void add_events(status::Ring<Shared_word> const& ring, std::vector<status::Event<Number>>& events) {
    auto const count = ring.count.load(std::memory_order_acquire);
    auto const first = count > status::k_events ? count - status::k_events : 0;
    std::vector<status::Event<Number>> copies(count - first);
    for (auto number = first; number != count; ++number) {
        copy_words(ring.events[number % status::k_events], copies[number - first]);
    }
    auto const end = ring.count.load(std::memory_order_relaxed);
    auto const oldest = end < status::k_events ? 0 : end - status::k_events + 1;
    auto const lost = oldest > first ? std::min<Number>(oldest - first, copies.size()) : 0;
    events.insert(events.end(), copies.begin() + static_cast<std::ptrdiff_t>(lost), copies.end());
}

Number monotonic_now() {
    auto const time = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<Number>(std::chrono::nanoseconds(time).count());
}

[[noreturn]] void refuse(No_page::Kind kind, std::string const& path, std::string const& text) {
    throw No_page(kind, path + ": " + text);
}

/// Who may read what this user may not, as far as he can see.
std::string readers_text(std::string const& path) {
    struct stat directory {};
    if (::stat((path.substr(0, path.rfind('/')) + "/").c_str(), &directory) != 0 ||
        (directory.st_mode & S_IXGRP) == 0) {
        return {};
    }
    auto const* const group = ::getgrgid(directory.st_gid);
    return group == nullptr ? std::string()
                            : std::string(": members of the group \"") + group->gr_name + "\" may read it";
}

[[noreturn]] void refuse_to_open(std::string const& path, int error) {
    if (error == ENOENT || error == ENOTDIR) {
        refuse(No_page::Kind::missing, path,
               error == ENOENT ? "there is no status page" : base::system_error_text(error));
    }
    refuse(No_page::Kind::forbidden, path,
           base::system_error_text(error) + (error == EACCES ? readers_text(path) : std::string()));
}

// Its first words are constant, and the same in each layout; other layouts have other sizes.
void require_page(int file, std::string const& path) {
    status::Life<Number> life{};
    struct stat about {};
    if (::fstat(file, &about) != 0 || !S_ISREG(about.st_mode) || ::pread(file, &life, sizeof life, 0) != sizeof life) {
        refuse(No_page::Kind::not_a_page, path, "this is no whole status page");
    }
    if (life.magic != status::k_magic) {
        refuse(No_page::Kind::not_a_page, path, "this is no status page");
    }
    if (life.version != status::k_version) {
        refuse(No_page::Kind::other_version, path,
               "the page has layout " + std::to_string(life.version) + ", and this program reads layout " +
                   std::to_string(status::k_version));
    }
    if (life.bytes != sizeof(status::Page)) {
        refuse(No_page::Kind::not_a_page, path, "the page has another size than its layout says");
    }
    if (static_cast<Number>(about.st_size) < sizeof(status::Page)) {
        refuse(No_page::Kind::not_a_page, path, "this is no whole status page");
    }
}

Number inode_of(int file) {
    struct stat about {};
    return ::fstat(file, &about) == 0 ? about.st_ino : 0;
}

// A lock for writing, as the page's writer has it: a reader of the group can hold one for reading. Takes none itself.
bool has_writer(std::string const& path) {
    base::Descriptor const file(::open((path + status::k_lock).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct flock whole {};
    whole.l_type = F_RDLCK;
    whole.l_whence = SEEK_SET;
    return file.is_open() && ::fcntl(file.number(), F_OFD_GETLK, &whole) == 0 && whole.l_type != F_UNLCK;
}

bool is_process(Number pid) {
    return pid > 0 && pid <= INT_MAX && (::kill(static_cast<pid_t>(pid), 0) == 0 || errno == EPERM);
}

// One machine has one such text from boot to boot. What can't be asked for is taken to be the page's.
bool is_of_another_boot(status::Life<Number> const& life) {
    std::ifstream file("/proc/sys/kernel/random/boot_id");
    std::string boot;
    return std::getline(file, boot) && boot != text_of(life.boot);
}

// Nothing that the page tells goes on after what its daemon said last.
void stop_clock(Snapshot& page) {
    auto last = std::max({page.life.started, page.driver.beat, page.driver.ended});
    if (!page.events.empty()) {
        last = std::max(last, page.events.back().at);
    }
    page.silent = !page.is_foreign && page.now > last ? page.now - last : 0;
    page.now = last;
}

}  // namespace

std::vector<std::uint8_t> bytes_of(status::Bits<Number> const& bits) {
    std::vector<std::uint8_t> bytes(std::min<Number>(bits.length, status::k_bits));
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<std::uint8_t>(bits.bytes.words[i / 8] >> 8 * (i % 8));
    }
    return bytes;
}

Snapshot snapshot_of(status::Page const& page, unsigned retries) {
    Snapshot copy;
    copy.now = monotonic_now();
    Copier copier(retries);
    copy_words(page.life, copy.life);
    copier(page.driver, copy.driver);
    copier(page.server, copy.server);
    copier(page.services, copy.services);
    copier(page.network, copy.network);
    copier(page.clients.data(), page.clients.size(), copy.clients,
           [](auto const& client) { return client.since != 0; });
    copier(page.names.data(), page.names.size(), copy.names, [](auto const& name) { return name.used != 0; });
    auto const instances = std::min<Number>(copy.services.instances, status::k_instances);
    copier(page.instances.data(), instances, copy.instances, [](auto const&) { return true; });
    copy.is_half_written = copier.is_half_written();
    copy_words(page.counters, copy.counters);
    for (auto const* const ring : {&page.driver_ring, &page.server_ring, &page.services_ring, &page.network_ring}) {
        add_events(*ring, copy.events);
    }
    std::stable_sort(copy.events.begin(), copy.events.end(),
                     [](auto const& left, auto const& right) { return left.at < right.at; });
    return copy;
}

Page_view::Page_view(std::string const& path) : path_(path) {
    base::Descriptor const file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!file.is_open()) {
        refuse_to_open(path, errno);
    }
    require_page(file.number(), path);
    file_ = inode_of(file.number());
    void* const memory = ::mmap(nullptr, sizeof(status::Page), PROT_READ, MAP_SHARED, file.number(), 0);
    if (memory == MAP_FAILED) {
        refuse(No_page::Kind::forbidden, path, base::system_error_text(errno));
    }
    page_ = static_cast<status::Page const*>(memory);
}

Page_view::~Page_view() {
    ::munmap(const_cast<status::Page*>(page_), sizeof(status::Page));
}

Snapshot Page_view::snapshot() const {
    auto copy = snapshot_of(*page_, k_retries);
    copy.is_foreign = is_of_another_boot(copy.life);
    copy.is_alive =
        !copy.is_foreign && copy.driver.ended == 0 && !is_outdated() && has_writer(path_) && is_process(copy.life.pid);
    if (!copy.is_alive) {
        stop_clock(copy);
    }
    return copy;
}

void Page_view::await_events(Number seen, std::chrono::nanoseconds time) const {
    auto const seconds = std::chrono::duration_cast<std::chrono::seconds>(time);
    timespec const limit{seconds.count(), (time - seconds).count()};
    if (events() == seen) {
        ::syscall(SYS_futex, &page_->events, FUTEX_WAIT, static_cast<std::uint32_t>(seen), &limit, nullptr, 0);
    }
}

bool Page_view::is_outdated() const {
    struct stat about {};
    return ::stat(path_.c_str(), &about) == 0 && about.st_ino != file_;
}

}  // namespace statectl
