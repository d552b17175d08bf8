#include "tools/check_config/check.h"

#include "statemanager/config/config_chooser.h"
#include "statemanager/config/configuration_file.h"
#include "tools/check_config/words.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <exception>
#include <filesystem>

namespace statectl::check_config {

namespace {

using ximo::ap::statemanager::config::Config_chooser;
using ximo::ap::statemanager::config::Configuration_file;

// What gethostname(2) says on a machine of a name.
Config_chooser::Host_name_reader named(std::string const& host) {
    return [host](char* buffer, std::size_t size) {
        std::strncpy(buffer, host.c_str(), size);
        bool const fits = host.size() < size;
        errno = fits ? errno : ENAMETOOLONG;
        return fits ? 0 : -1;
    };
}

void check_host(Question const& question, Answer& answer) {
    if (!question.host) {
        return;
    }
    answer.read_file = Config_chooser(named(*question.host)).get_config_path();
    auto const own = std::filesystem::path(question.file).filename();
    auto const read = std::filesystem::path(*answer.read_file).filename();
    if (own != read) {
        answer.findings.push_back(
            {0, "a machine named " + *question.host + " reads " + *answer.read_file + ", not " + own.string()});
    }
}

void check_limit(Question const& question, Answer& answer) {
    if (question.limit_seconds && answer.times->suspend > *question.limit_seconds) {
        answer.findings.push_back({0, "a suspend may take " + seconds_text(answer.times->suspend) +
                                          " s, more than the limit of " + seconds_text(*question.limit_seconds) +
                                          " s"});
    }
}

void check_document(Question const& question, Answer& answer) {
    try {
        Document const document(Configuration_file(question.file).read());
        Scene const scene{document, answer.verdict, question.unit};
        for (auto* const look :
             {check_names, check_types, check_values, check_layout, check_instances, check_paths, check_times}) {
            look(scene, answer.findings);
        }
    } catch (std::exception const&) {
        // What can't be read or is no document: the daemon has said so.
        return;
    }
}

}  // namespace

Answer check(Question const& question) {
    Answer answer;
    answer.verdict = ask_daemon(question.file);
    check_document(question, answer);
    if (answer.verdict.is_taken) {
        answer.times = times_of(*answer.verdict.config);
        check_limit(question, answer);
    }
    check_host(question, answer);
    std::stable_sort(answer.findings.begin(), answer.findings.end(), [](Finding const& left, Finding const& right) {
        return (left.line == 0) != (right.line == 0) ? right.line == 0 : left.line < right.line;
    });
    return answer;
}

}  // namespace statectl::check_config
