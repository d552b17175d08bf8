#include "plan.h"

#include <cstring>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace faults {

std::vector<Fault> read_plan(std::string const& file) {
    std::ifstream in(file);
    std::vector<Fault> plan;
    Fault fault;
    int way = 0;
    while (in >> fault.call >> fault.site >> fault.position >> way >> fault.value) {
        fault.way = static_cast<Way>(way);
        plan.push_back(fault);
    }
    return plan;
}

void write_plan(std::string const& file, std::vector<Fault> const& faults) {
    std::ofstream out(file);
    for (auto const& fault : faults) {
        out << fault.call << ' ' << fault.site << ' ' << fault.position << ' ' << static_cast<int>(fault.way) << ' '
            << fault.value << '\n';
    }
    if (!out.flush()) {
        throw std::runtime_error(file + " can't be written");
    }
}

// A line for each site, its frames behind tabs; the last line says that nothing is missing.
void write_report(std::string const& file, Report const& report) {
    std::ofstream out(file);
    for (auto const& site : report.sites) {
        out << "site " << site.id << ' ' << site.call << ' ' << static_cast<int>(site.subject) << ' '
            << site.is_nonblocking << ' ' << site.count;
        for (auto const& frame : site.frames) {
            out << '\t' << frame;
        }
        out << '\n';
    }
    out << "end " << report.hits << ' ' << report.watcher << std::endl;
}

namespace {

Site site_in(std::istringstream& words) {
    Site site;
    int subject = 0;
    words >> site.id >> site.call >> subject >> site.is_nonblocking >> site.count;
    site.subject = static_cast<Subject>(subject);
    std::string frame;
    std::getline(words, frame, '\t');
    while (std::getline(words, frame, '\t')) {
        site.frames.push_back(frame);
    }
    return site;
}

}  // namespace

Report read_report(std::string const& file) {
    Report report;
    std::ifstream in(file);
    for (std::string line; std::getline(in, line);) {
        std::istringstream words(line);
        std::string what;
        words >> what;
        if (what == "site") {
            report.sites.push_back(site_in(words));
        } else if (!in.eof()) {  // a whole line
            words >> report.hits >> report.watcher;
        }
    }
    return report;
}

std::string text_of(Fault const& fault) {
    auto const* const call = call_of(fault.call);
    std::string const name = call == nullptr ? std::to_string(fault.call) : call->name;
    switch (fault.way) {
        case Way::fails:
            return name + ' ' + ::strerrorname_np(fault.value);
        case Way::is_short:
            return name + " short";
        default:
            return name + " SIGTERM";
    }
}

}  // namespace faults
