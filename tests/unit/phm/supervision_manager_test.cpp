#include "statemanager/phm/supervision_manager.h"

#include "status/page_writer.h"
#include "support/log_capture.h"
#include "support/virtual_slot.h"

#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

namespace ximo::ap::statemanager::phm {
namespace {

using ara::log::LogLevel;
using test_support::logged;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

struct Health_management {
    std::vector<std::pair<unsigned, unsigned>> reports;
    bool broken{false};
    bool defective{false};
};

class Entity : public ara::phm::SupervisionEntityInterface {
 public:
    explicit Entity(Health_management& health) : health_(health) {}
    void ReportCheckpoint(std::uint32_t checkpoint, std::uint32_t instance) override {
        health_.reports.emplace_back(checkpoint, instance);
        if (health_.broken) {
            throw std::runtime_error("not delivered");
        }
        if (health_.defective) {
            throw std::logic_error("a defect");
        }
    }

 private:
    Health_management& health_;
};

class Supervision : public testing::Test {
 protected:
    Health_management health;
    Supervision_manager sut{std::make_unique<Entity>(health)};
    test_support::Log_capture log;
};

TEST_F(Supervision, Reports_checkpoint_one_silently) {
    sut.report_alive_status();
    EXPECT_THAT(health.reports, ElementsAre(Pair(1, 1)));
    EXPECT_THAT(log.messages(), IsEmpty());
}

TEST_F(Supervision, Stops_for_good_after_the_first_failure) {
    health.broken = true;
    sut.report_alive_status();
    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kError, "AliveSupervision: caught ", "not delivered"),
                                            logged(LogLevel::kError, "Stopping AliveSupervision reporting to PHM!")));
    log.clear();
    health.broken = false;
    sut.report_alive_status();
    EXPECT_EQ(health.reports.size(), 1U);
    EXPECT_THAT(log.messages(), IsEmpty());
}

TEST_F(Supervision, Tells_the_status_page_once_that_it_has_stopped) {
    auto const page = std::make_unique<status::Page>();
    status::set_page(page.get());
    sut.report_alive_status();
    EXPECT_EQ(page->driver.supervision_stopped, 0U);
    health.broken = true;
    auto const before = status::now();
    sut.report_alive_status();
    auto const at = page->driver.supervision_stopped.load();
    EXPECT_GE(at, before);
    sut.report_alive_status();
    EXPECT_EQ(page->driver.supervision_stopped, at);
    EXPECT_EQ(page->events, 1U);
    status::set_page(nullptr);
}

TEST_F(Supervision, Passes_other_exceptions_on_and_goes_on_reporting) {
    health.defective = true;
    EXPECT_THROW(sut.report_alive_status(), std::logic_error);
    health.defective = false;
    sut.report_alive_status();
    EXPECT_EQ(health.reports.size(), 2U);
}

TEST(Supervision_without_an_entity, Reports_nothing) {
    test_support::Log_capture log;
    Supervision_manager(nullptr).report_alive_status();
    EXPECT_THAT(log.messages(), IsEmpty());
}

TEST(Supervision_manager_interface_of, Health_management_has_one_operation_after_its_destructor) {
    EXPECT_EQ(test_support::virtual_slot(&Supervision_manager_interface::report_alive_status), 1U);
}

}  // namespace
}  // namespace ximo::ap::statemanager::phm
