#ifndef TOOLS_CHECK_CONFIG_DOCUMENT_H
#define TOOLS_CHECK_CONFIG_DOCUMENT_H

#include <cstddef>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace statectl::check_config {

/// A configuration file as text and as values, with the line of each. A place is told by a path:
/// "ap_statemanager.NmUserDataConfig.CABBytes", "ap_statemanager.CWURequestConfig[0]".
class Document {
 public:
    /// A member that stands in its object for the second time, or a later one: the one that counts.
    struct Repeated {
        std::string path;
        std::size_t line;
        std::size_t first_line;
    };

    /// Throws what the daemon's parser throws for a text that it does not take.
    explicit Document(std::string_view text);

    nlohmann::json const& whole() const { return whole_; }

    /// The configuration object; null when there is none.
    nlohmann::json const& configuration() const;

    /// A member of the configuration object, as "NmUserDataConfig.CABBytes"; null when it is missing.
    nlohmann::json const& at(std::string const& path) const;

    /// The line of a value below the configuration object, from 1; the nearest one around it for a value that is
    /// missing.
    std::size_t line_of(std::string const& path) const;

    /// The line of a member beside the configuration object.
    std::size_t line_beside(std::string const& name) const;

    std::vector<Repeated> const& repeated() const { return repeated_; }

 private:
    nlohmann::json whole_;
    std::map<std::string, std::size_t> lines_;
    std::vector<Repeated> repeated_;
};

}  // namespace statectl::check_config

#endif
