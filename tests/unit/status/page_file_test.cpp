#include "status/page_file.h"

#include "base/descriptor.h"
#include "base/temporary_directory.h"
#include "status/driver_status.h"
#include "status/page_writer.h"
#include "tools/page/page_view.h"

#include <climits>
#include <cstddef>
#include <cstdint>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

namespace status {
namespace {

namespace fs = std::filesystem;
using statectl::No_page;
using statectl::Page_view;

constexpr std::uint64_t k_a_minute = 60'000'000'000;

Facts const k_facts{"/nowhere/ap_statemanager.json", 100, 3, true};

/// Somebody's lock on a file.
class Lock {
 public:
    Lock(std::string const& path, short kind) : file_(::open(path.c_str(), O_RDWR | O_CLOEXEC)) {
        struct flock whole {};
        whole.l_type = kind;
        whole.l_whence = SEEK_SET;
        EXPECT_EQ(::fcntl(file_.number(), F_OFD_SETLK, &whole), 0);
    }

 private:
    base::Descriptor file_;
};

class Status_page_file : public testing::Test {
 protected:
    static bool can_be_written(std::string const& where) { return Page_file(where, k_facts).is_written(); }

    /// What the reader says of what is at the path.
    std::string refusal() const {
        try {
            Page_view const view(path);
            return "";
        } catch (No_page const& error) {
            return error.what();
        }
    }

    /// Lays the bytes of a good page at the path, changed.
    void lay(std::function<void(std::vector<std::uint64_t>& words)> const& change) const {
        { Page_file const file(path, k_facts); }
        std::vector<std::uint64_t> words(sizeof(Page) / sizeof(std::uint64_t));
        std::ifstream(path, std::ios::binary).read(reinterpret_cast<char*>(words.data()), sizeof(Page));
        change(words);
        fs::remove(path);
        std::ofstream(path, std::ios::binary)
            .write(reinterpret_cast<char const*>(words.data()),
                   static_cast<std::streamsize>(words.size() * sizeof(std::uint64_t)));
    }

    base::Temporary_directory directory;
    std::string path{directory.path().string() + "/status/page"};
};

TEST_F(Status_page_file, Is_made_whole_with_what_is_known_at_the_start) {
    Page_file const file(path, k_facts);
    ASSERT_TRUE(file.is_written());
    auto const page = Page_view(path).snapshot();
    EXPECT_TRUE(page.is_alive);
    EXPECT_FALSE(page.is_half_written);
    EXPECT_EQ(page.life.pid, static_cast<std::uint64_t>(::getpid()));
    EXPECT_EQ(page.life.number, 1U);
    EXPECT_EQ(page.life.period_ms, 100U);
    EXPECT_EQ(page.life.nm_usage, 1U);
    EXPECT_EQ(page.life.knockout, 3U);
    EXPECT_LE(now() - page.life.started, k_a_minute);
    EXPECT_LE(static_cast<std::uint64_t>(std::time(nullptr)) * 1'000'000'000 - page.life.started_real + k_a_minute,
              2 * k_a_minute);
    EXPECT_EQ(page.services.sending, 1U);
    EXPECT_EQ(statectl::text_of(page.life.configuration), k_facts.configuration);
    EXPECT_EQ(page.life.digest, 0U);
    struct stat about {};
    ASSERT_EQ(::stat(path.c_str(), &about), 0);
    EXPECT_GE(static_cast<std::size_t>(about.st_blocks) * 512, sizeof(Page)) << "all its space is there";
    EXPECT_EQ(about.st_mode & 0777U & ~0640U, 0U);
    EXPECT_EQ(fs::exists(path + ".new"), false);
}

TEST_F(Status_page_file, Tells_configurations_apart_by_their_bytes) {
    auto const configuration = directory.path().string() + "/configuration";
    auto const digest = [&](std::string const& text) {
        std::ofstream(configuration) << text;
        Page_file const file(path, {configuration, 100, 3, true});
        return Page_view(path).snapshot().life.digest;
    };
    EXPECT_EQ(digest(""), 0xcbf29ce484222325U);
    EXPECT_EQ(digest("a"), 0xaf63dc4c8601ec8cU);
    // Of one that the daemon would refuse, no more than the first 16 MiB.
    std::string large((std::size_t{16} << 20U) + 1, 'a');
    auto const before = digest(large);
    large.back() = 'b';
    EXPECT_EQ(digest(large), before);
}

TEST_F(Status_page_file, Tells_that_network_management_is_not_used) {
    Page_file const file(path, {"/nowhere", 100, 3, false});
    EXPECT_EQ(Page_view(path).snapshot().life.nm_usage, 0U);
}

TEST_F(Status_page_file, Is_made_although_a_daemon_was_killed_while_it_made_its_own) {
    fs::create_directories(fs::path(path).parent_path());
    std::ofstream(path + ".new") << "half of one";
    EXPECT_TRUE(can_be_written(path));
}

// What it has closed once may be somebody else's.
TEST_F(Status_page_file, Leaves_the_descriptors_of_others_alone_when_it_could_not_be_made) {
    fs::create_directories(path + ".new/full");
    std::optional<Page_file> file(std::in_place, path, k_facts);
    base::Descriptor const other(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    file.reset();
    EXPECT_GE(::fcntl(other.number(), F_GETFD), 0);
}

TEST_F(Status_page_file, Stays_when_its_writer_has_gone_and_is_the_previous_one_then) {
    { Page_file const first(path, k_facts); }
    EXPECT_FALSE(Page_view(path).snapshot().is_alive);
    Page_file const second(path, k_facts);
    EXPECT_EQ(Page_view(path).snapshot().life.number, 2U);
    EXPECT_EQ(Page_view(path + k_previous).snapshot().life.number, 1U);
}

TEST_F(Status_page_file, Belongs_to_one_writer) {
    Page_file const first(path, k_facts);
    auto const* const written = page();
    EXPECT_FALSE(can_be_written(path));
    EXPECT_EQ(page(), written);
    EXPECT_FALSE(fs::exists(path + k_previous));
}

TEST_F(Status_page_file, Is_the_previous_one_of_nobody_when_the_next_one_can_not_be_made) {
    { Page_file const first(path, k_facts); }
    fs::create_directories(path + ".new/full");
    Page_file const second(path, k_facts);
    EXPECT_FALSE(second.is_written());
    EXPECT_THAT(refusal(), testing::HasSubstr("there is no status page"));
    EXPECT_EQ(Page_view(path + k_previous).snapshot().life.number, 1U);
    fs::remove_all(path + ".new");
    EXPECT_TRUE(can_be_written(path)) << "the lock is free";
}

TEST_F(Status_page_file, Is_that_of_a_daemon_that_runs_with_the_writers_lock_and_process_until_the_loop_ends) {
    auto const is_alive = [this] { return Page_view(path).snapshot().is_alive; };
    for (std::uint64_t const nobody : {std::uint64_t{0}, std::uint64_t{INT_MAX}, std::uint64_t{INT_MAX} + 1, ~0UL}) {
        lay([nobody](auto& words) { words[4] = nobody; });
        Lock const held(path + k_lock, F_WRLCK);
        EXPECT_FALSE(is_alive()) << "process " << nobody;
    }
    lay([](auto&) {});
    {
        Lock const held(path + k_lock, F_WRLCK);
        EXPECT_TRUE(is_alive());
    }
    {
        Lock const held(path + k_lock, F_RDLCK);
        EXPECT_FALSE(is_alive()) << "a reader's lock";
    }
    fs::remove(path + k_lock);
    EXPECT_FALSE(is_alive()) << "no lock";
    Page_file const file(path, k_facts);
    EXPECT_TRUE(is_alive());
    EXPECT_FALSE(Page_view(path + k_previous).snapshot().is_alive);
    loop_ended();
    EXPECT_FALSE(is_alive());
}

TEST_F(Status_page_file, Whose_daemon_has_gone_tells_times_up_to_what_it_said_last) {
    auto const last_said = [this](std::function<void()> const& say) {
        {
            Page_file const file(path, k_facts);
            say();
        }
        auto const before = now();
        auto const page = Page_view(path).snapshot();
        EXPECT_GE(page.now + page.silent, before);
        return page;
    };
    auto page = last_said([] {});
    EXPECT_EQ(page.now, page.life.started);
    page = last_said([] { beat(false, false); });
    EXPECT_EQ(page.now, page.driver.beat);
    page = last_said([] {
        beat(false, false);
        key_dropped(1);
    });
    EXPECT_EQ(page.now, page.events.back().at);
    page = last_said([] {
        beat(false, false);
        loop_ended();
    });
    EXPECT_EQ(page.now, page.events.back().at);
    EXPECT_NE(page.driver.ended, 0U);
}

TEST_F(Status_page_file, Of_another_boot_or_machine_is_told_as_such_and_nobody_runs) {
    lay([](auto&) {});
    EXPECT_FALSE(Page_view(path).snapshot().is_foreign);
    lay([](auto& words) { words[offsetof(Life<std::uint64_t>, boot) / sizeof(std::uint64_t)] ^= 1U; });
    Lock const held(path + k_lock, F_WRLCK);
    auto const page = Page_view(path).snapshot();
    EXPECT_TRUE(page.is_foreign);
    EXPECT_FALSE(page.is_alive);
    EXPECT_EQ(page.now, page.life.started);
    EXPECT_EQ(page.silent, 0U);
}

TEST_F(Status_page_file, Of_another_boot_is_known_by_any_word_of_it_and_lives_are_counted_anew) {
    constexpr auto k_boot = offsetof(Life<std::uint64_t>, boot) / sizeof(std::uint64_t);
    for (std::size_t word = 0; word < sizeof(Life<std::uint64_t>::boot) / sizeof(std::uint64_t); ++word) {
        lay([word](auto& words) { words[k_boot + word] ^= 1U; });
        EXPECT_TRUE(Page_view(path).snapshot().is_foreign) << word;
        Page_file const next(path, k_facts);
        EXPECT_EQ(Page_view(path).snapshot().life.number, 1U) << word;
    }
}

TEST_F(Status_page_file, Leaves_a_reader_of_the_life_before_with_what_he_has) {
    auto first = std::make_unique<Page_file>(path, k_facts);
    Page_view const view(path);
    EXPECT_FALSE(view.is_outdated());
    first.reset();
    Page_file const second(path, k_facts);
    EXPECT_TRUE(view.is_outdated());
    EXPECT_EQ(view.snapshot().life.number, 1U);
    EXPECT_FALSE(view.snapshot().is_alive);
}

TEST_F(Status_page_file, Is_no_matter_where_it_can_not_be_made) {
    EXPECT_FALSE(can_be_written(directory.path().string() + "/no/such/page"));
    std::ofstream(directory.path().string() + "/file") << "in the way";
    EXPECT_FALSE(can_be_written(directory.path().string() + "/file/page"));
    fs::create_directories(path + ".new/full");
    EXPECT_FALSE(can_be_written(path));
    fs::remove_all(path + ".new");
    fs::remove(path + k_lock);
    fs::create_directory(path + k_lock);
    EXPECT_FALSE(can_be_written(path));
    EXPECT_EQ(page(), nullptr);
    beat(true, true);  // goes nowhere
}

TEST_F(Status_page_file, Waits_for_no_pipe) {
    fs::create_directories(fs::path(path).parent_path());
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    EXPECT_THAT(refusal(), testing::HasSubstr("no whole status page"));
    ASSERT_EQ(::mkfifo((path + k_lock).c_str(), 0600), 0);
    Page_file const file(path, {path, 100, 3, true});
}

TEST_F(Status_page_file, Is_read_by_those_who_know_its_layout_and_no_others) {
    EXPECT_THAT(refusal(), testing::HasSubstr("there is no status page"));
    lay([](auto& words) { words[0] = 0; });
    EXPECT_THAT(refusal(), testing::HasSubstr("this is no status page"));
    lay([](auto& words) { words[1] = k_version + 1; });
    EXPECT_THAT(refusal(), testing::HasSubstr("the page has layout 5, and this program reads layout 4"));
    lay([](auto& words) {
        words[1] = 1;
        words.resize(words.size() / 2);
    });
    EXPECT_THAT(refusal(), testing::HasSubstr("the page has layout 1, and this program reads layout 4"));
    lay([](auto& words) { words[2] = 1; });
    EXPECT_THAT(refusal(), testing::HasSubstr("another size"));
    lay([](auto& words) { words.resize(words.size() - 1); });
    EXPECT_THAT(refusal(), testing::HasSubstr("no whole status page"));
    lay([](auto& words) { words.resize(0); });
    EXPECT_THAT(refusal(), testing::HasSubstr("no whole status page"));
    lay([](auto&) {});
    EXPECT_EQ(refusal(), "");
}

}  // namespace
}  // namespace status
