// Who wants to know of offers, and is forgotten again.

#include "ara/com/dds/known_offers.h"

#include "ara/com/dds/engine.h"

#include <atomic>
#include <cstddef>
#include <future>
#include <memory>

#include <gtest/gtest.h>

namespace com_test {
namespace {

using namespace ara::com::dds;  // NOLINT(google-build-using-namespace): what is tested is a part of it

std::atomic<int> g_blocks{0};

/// Counts what is in use.
template <class Value>
struct Counting_allocator {
    using value_type = Value;

    Counting_allocator() = default;
    template <class Other>
    explicit Counting_allocator(Counting_allocator<Other> const& /*other*/) {}

    Value* allocate(std::size_t count) {
        ++g_blocks;
        return std::allocator<Value>().allocate(count);
    }
    void deallocate(Value* block, std::size_t count) {
        --g_blocks;
        std::allocator<Value>().deallocate(block, count);
    }
};

class Idle_observer : public Offer_observer {
 public:
    void offers_changed(Known_offer_list const& /*offers*/) override {}
};

void await_what_was_posted(Engine& engine) {
    std::promise<void> done;
    engine.strand()->post([&done] { done.set_value(); });
    done.get_future().wait();
}

// The memory of an object goes with the last weak reference to it.
TEST(Known_offers_test, Proxies_that_come_and_go_leave_nothing_behind_although_no_offer_changes) {
    Engine engine;
    for (int number = 0; number < 100; ++number) {
        auto const observer = std::allocate_shared<Idle_observer>(Counting_allocator<Idle_observer>());
        engine.offers().add(observer, "an::Interface", ara::com::InstanceSpecifier("*"));
        await_what_was_posted(engine);
    }
    EXPECT_LE(g_blocks, 1);
}

}  // namespace
}  // namespace com_test
