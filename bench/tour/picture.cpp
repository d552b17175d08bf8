#include "bench/tour/picture.h"

#include "bench/tour/band.h"

#include <algorithm>
#include <numeric>
#include <sstream>
#include <vector>

namespace bench::tour {

using vehicle::Event;
using vehicle::Kind;
using vehicle::Timeline;

namespace {

constexpr double k_top = 76;

Timeline in_order(Timeline events) {
    std::stable_sort(events.begin(), events.end(),
                     [](Event const& left, Event const& right) { return left.time < right.time; });
    return events;
}

/// Each life of the daemon with what is before it; what comes after the last one belongs to that.
std::vector<Timeline> lives(Timeline const& events) {
    std::vector<Timeline> lives(1);
    bool has_ended = false;
    for (auto const& event : events) {
        if (has_ended && event.kind == Kind::state_word) {
            lives.emplace_back();
            has_ended = false;
        }
        has_ended = has_ended || event.kind == Kind::ended;
        lives.back().push_back(event);
    }
    return lives;
}

}  // namespace

std::string draw(Timeline const& events) {
    auto const bands = lives(in_order(events));
    auto const start = bands.front().empty() ? 0 : bands.front().front().time;
    auto const height = std::accumulate(bands.begin(), bands.end(), k_top,
                                        [](double sum, Timeline const& band) { return sum + band_height(band); });
    std::ostringstream out;
    out << "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 " << k_band_width << ' ' << height
        << "\" font-family=\"DejaVu Sans, Helvetica, sans-serif\" font-size=\"12\">\n"
        << "<rect width=\"100%\" height=\"100%\" fill=\"#ffffff\"/>\n"
        << "<text x=\"24\" y=\"36\" font-size=\"20\" fill=\"#1a202c\">One tour through the states of the "
           "machine</text>\n"
        << "<text x=\"24\" y=\"56\" fill=\"#4a5568\">One band for each life of the daemon. Times in seconds since the "
           "first event; pauses are drawn shorter than they were.</text>\n";
    double y = k_top;
    for (auto const& band : bands) {
        out << "<g transform=\"translate(0," << y << ")\">\n" << draw_band(band, start) << "</g>\n";
        y += band_height(band);
    }
    out << "</svg>\n";
    return out.str();
}

}  // namespace bench::tour
