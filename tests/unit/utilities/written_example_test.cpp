// The page that others write clients by shows three messages byte by byte; these are the bytes that we send.

#include "utilities/protocol.h"
#include "utilities/serialization.h"

#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace utilities {
namespace {

/// The bytes of an indented line of the page, up to its explanation; none for any other line.
Bytes bytes_of(std::string const& line) {
    static std::regex const indented("^ {4,}((?:[0-9a-f]{2} {1,2})*[0-9a-f]{2})(?: {2,}.*|$)");
    std::smatch found;
    Bytes bytes;
    if (std::regex_match(line, found, indented)) {
        std::istringstream digits(found[1]);
        for (unsigned byte = 0; digits >> std::hex >> byte;) {
            bytes.push_back(static_cast<std::uint8_t>(byte));
        }
    }
    return bytes;
}

/// Each run of such lines is a message.
std::vector<Bytes> messages_of_page() {
    std::ifstream page(NOTIFICATION_PAGE);
    std::vector<Bytes> messages;
    bool inside = false;
    for (std::string line; std::getline(page, line);) {
        auto const bytes = bytes_of(line);
        if (!bytes.empty() && !inside) {
            messages.emplace_back();
        }
        inside = !bytes.empty();
        if (inside) {
            messages.back().insert(messages.back().end(), bytes.begin(), bytes.end());
        }
    }
    return messages;
}

TEST(Written_example, Shows_the_bytes_of_the_three_messages) {
    Type_length_values const introduction{Type_length_value(get_protocol_version_one()), Type_length_value("radio"),
                                          Type_length_value(get_default_non_connected_state())};
    Type_length_values const request{Type_length_value(1U), Type_length_value("kPrepSD")};
    Type_length_values const answer{Type_length_value(1U), Type_length_value("kPrepSD"), Type_length_value(0U)};

    EXPECT_THAT(messages_of_page(),
                testing::ElementsAre(serialize(introduction), serialize(request), serialize(answer)));
}

}  // namespace
}  // namespace utilities
