// The library tells a reader of events each name when it has read its last character; the iterator that it reads by
// tells on which line that was.

#include "tools/check_config/document.h"

#include "statemanager/config/json_conversion.h"

#include <utility>

namespace statectl::check_config {

namespace {

using nlohmann::json;

constexpr char const* k_configuration = "ap_statemanager";

/// Reads a text and counts its lines. Copies count on together.
class Line_counter {
 public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = char const*;
    using reference = char const&;

    Line_counter(char const* place, std::size_t& line) : place_(place), line_(&line) {}

    reference operator*() const { return *place_; }
    Line_counter& operator++() {
        *line_ += *place_ == '\n' ? 1 : 0;
        ++place_;
        return *this;
    }
    friend bool operator==(Line_counter const& left, Line_counter const& right) { return left.place_ == right.place_; }
    friend bool operator!=(Line_counter const& left, Line_counter const& right) { return !(left == right); }

 private:
    char const* place_;
    std::size_t* line_;
};

/// Notes on which line each value stands, and which names stand twice in an object.
class Line_reader : public nlohmann::json_sax<json> {
 public:
    std::size_t line{1};
    std::map<std::string, std::size_t> lines;
    std::vector<Document::Repeated> repeated;

    bool null() override { return value(); }
    bool boolean(bool /*unused*/) override { return value(); }
    bool number_integer(number_integer_t /*unused*/) override { return value(); }
    bool number_unsigned(number_unsigned_t /*unused*/) override { return value(); }
    bool number_float(number_float_t /*unused*/, string_t const& /*unused*/) override { return value(); }
    bool string(string_t& /*unused*/) override { return value(); }
    bool binary(binary_t& /*unused*/) override { return value(); }
    bool start_object(std::size_t /*unused*/) override { return begin(false); }
    bool start_array(std::size_t /*unused*/) override { return begin(true); }
    bool end_object() override { return end(); }
    bool end_array() override { return end(); }
    bool parse_error(std::size_t /*unused*/, std::string const& /*unused*/,
                     json::exception const& /*unused*/) override {
        return false;  // the text was parsed before
    }
    bool key(string_t& name) override {
        auto const& parent = open_.back().path;
        path_ = parent.empty() ? name : parent + '.' + name;
        auto const [place, is_new] = lines.emplace(path_, line);
        if (!is_new) {
            repeated.push_back({path_, line, place->second});
            forget_below(path_);
            lines[path_] = line;
        }
        return true;
    }

 private:
    struct Open {
        std::string path;
        bool is_list;
        std::size_t count;
    };

    void enter() {
        if (!open_.empty() && open_.back().is_list) {
            path_ = open_.back().path + '[' + std::to_string(open_.back().count++) + ']';
            lines.emplace(path_, line);
        }
    }
    bool value() {
        enter();
        return true;
    }
    bool begin(bool is_list) {
        enter();
        open_.push_back({path_, is_list, 0});
        return true;
    }
    bool end() {
        open_.pop_back();
        return true;
    }
    void forget_below(std::string const& path) {
        for (auto const* separator : {".", "["}) {
            auto const begin = path + separator;
            auto place = lines.lower_bound(begin);
            while (place != lines.end() && place->first.compare(0, begin.size(), begin) == 0) {
                place = lines.erase(place);
            }
        }
    }

    std::string path_;
    std::vector<Open> open_;
};

json const& member(json const& object, std::string const& name) {
    static json const none;
    auto const found = object.is_object() ? object.find(name) : object.end();
    return object.is_object() && found != object.end() ? *found : none;
}

}  // namespace

Document::Document(std::string_view text) : whole_(ximo::ap::statemanager::config::parse_document(text)) {
    Line_reader reader;
    json::sax_parse(Line_counter(text.data(), reader.line), Line_counter(text.data() + text.size(), reader.line),
                    &reader);
    lines_ = std::move(reader.lines);
    repeated_ = std::move(reader.repeated);
}

json const& Document::configuration() const {
    return member(whole_, k_configuration);
}

json const& Document::at(std::string const& path) const {
    auto const dot = path.find('.');
    auto const& first = member(configuration(), path.substr(0, dot));
    return dot == std::string::npos ? first : member(first, path.substr(dot + 1));
}

std::size_t Document::line_of(std::string const& path) const {
    for (auto whole = std::string(k_configuration) + '.' + path; !whole.empty();) {
        if (auto const found = lines_.find(whole); found != lines_.end()) {
            return found->second;
        }
        auto const cut = whole.find_last_of(".[");
        whole.resize(cut == std::string::npos ? 0 : cut);
    }
    return 1;
}

std::size_t Document::line_beside(std::string const& name) const {
    auto const found = lines_.find(name);
    return found == lines_.end() ? 1 : found->second;
}

}  // namespace statectl::check_config
