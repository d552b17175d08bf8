#include "bench/tour/svg.h"

namespace bench::tour {

std::string escaped(std::string const& text) {
    std::string result;
    for (char const character : text) {
        if (character == '<' || character == '&') {
            result += character == '<' ? "&lt;" : "&amp;";
        } else {
            result += character;
        }
    }
    return result;
}

void put_text(std::ostream& out, double x, double y, std::string const& content, char const* fill, char const* anchor) {
    out << "<text x=\"" << x << "\" y=\"" << y << "\" fill=\"" << fill << "\" text-anchor=\"" << anchor << "\">"
        << escaped(content) << "</text>\n";
}

}  // namespace bench::tour
