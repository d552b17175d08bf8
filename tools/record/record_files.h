#ifndef TOOLS_RECORD_RECORD_FILES_H
#define TOOLS_RECORD_RECORD_FILES_H

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>

namespace statectl::record {

struct Record_limits {
    std::size_t file_bytes{std::size_t{1} << 20U};  ///< from which on the next file is begun
    std::size_t files{16};                          ///< that are kept
    std::size_t waiting{4'096};                     ///< lines that wait for a disk that takes none
};

/// The files that the recorder writes, for one thread. Nothing here fails: what a disk does not take waits, is tried
/// again with the next `write`, and what has no room to wait is not taken.
///
///     files.add(line);
///     files.write(first_line, true);
class Record_files {
 public:
    explicit Record_files(std::string directory, Record_limits limits = {});
    ~Record_files();
    Record_files(Record_files const&) = delete;
    Record_files& operator=(Record_files const&) = delete;

    /// A line without its end; a file may begin with one that `begins_life`.
    /// Says whether there was room for it.
    bool add(std::string const& line, bool begins_life = false);
    bool has_room() const { return lines_.size() < limits_.waiting; }

    /// Hands the lines to the system, and to the disk when `at_once`, or when that was not done within the last second.
    /// A new file begins with `first_line`, if the line that comes next can't be its first.
    void write(std::string const& first_line, bool at_once);

    /// Why nothing is written; empty while all is well.
    std::string const& trouble() const { return trouble_; }

 private:
    struct Line {
        std::string text;
        bool begins_life;
    };

    bool is_ready(std::string const& first_line);
    bool is_locked();
    bool is_open(std::uint64_t number);
    bool is_writable();
    void end_torn_line();
    void begin_file(std::string const& first_line);
    void remove_oldest(std::uint64_t newest) const;
    bool is_handed_over(std::string const& first_line);
    void sync(bool at_once);
    bool is_kept();
    bool is_synced();
    bool fails(char const* what);

    std::string const directory_;
    Record_limits const limits_;
    std::deque<Line> lines_;
    std::size_t done_{0};  ///< bytes of the first of them that are written
    std::string life_;     ///< the line of the life that was handed over last
    int lock_{-1};
    int file_{-1};
    std::uint64_t number_{0};
    std::size_t size_{0};
    bool is_dirty_{false};
    bool is_failing_{false};  ///< to sync, the last time
    std::int64_t synced_{0};  ///< when, in nanoseconds
    std::string trouble_;
};

}  // namespace statectl::record

#endif
