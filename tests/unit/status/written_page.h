#ifndef TESTS_UNIT_STATUS_WRITTEN_PAGE_H
#define TESTS_UNIT_STATUS_WRITTEN_PAGE_H

#include "status/page_writer.h"
#include "tools/page/page_view.h"

#include <memory>

#include <gmock/gmock.h>

namespace status {

/// A page in this process's memory, which everything that is written goes to.
class Written_page : public testing::Test {
 protected:
    Written_page() : written(std::make_unique<Page>()) { set_page(written.get()); }
    ~Written_page() override { set_page(nullptr); }

    statectl::Snapshot read(unsigned retries = 3) const { return statectl::snapshot_of(*written, retries); }

    std::unique_ptr<Page> written;
};

}  // namespace status

#endif
