// The chooser of a build in which two of the machines don't exist: their rows are left empty.

#include "statemanager/config/config_chooser.h"

#include <cstddef>
#include <string>
#include <utility>

#include <gtest/gtest.h>

namespace ximo::ap::statemanager::config {
namespace {

TEST(Config_chooser_with_empty_rows, Takes_a_machine_without_a_name_for_none_of_them) {
    for (auto const& [name, file] :
         {std::pair("", "ap_statemanager.json"), std::pair("java", "ap_statemanager_jo.json"),
          std::pair("another", "ap_statemanager.json")}) {
        Config_chooser const sut([machine = std::string(name)](char* buffer, std::size_t size) {
            buffer[machine.copy(buffer, size)] = '\0';
            return 0;
        });
        EXPECT_EQ(sut.get_config_path(), Config_chooser::s_default_config_folder + file) << name;
    }
}

}  // namespace
}  // namespace ximo::ap::statemanager::config
