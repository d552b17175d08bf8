#include "bench/console/console.h"

#include "bench/console/network_keys.h"
#include "bench/console/screen.h"
#include "bench/json_lines/clock.h"
#include "bench/process/end_signals.h"

#include <algorithm>
#include <chrono>
#include <clocale>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <map>
#include <string>

#include <fcntl.h>
#include <unistd.h>

#define NCURSES_WIDECHAR 1
#define NCURSES_NOMACROS
#include <ncurses.h>

namespace bench::console {

namespace {

constexpr std::chrono::milliseconds k_frame{50};
constexpr std::chrono::milliseconds k_late{3'000};
constexpr int k_control_c = 3;
constexpr int k_tab = '\t';

/// The terminal as the console needs it, and as it was when this goes.
class Terminal {
 public:
    explicit Terminal(std::string const& messages) {
        std::setlocale(LC_ALL, "C.UTF-8");
        // What the neighbours say on standard error would stand in the middle of the screen.
        standard_error_ = ::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0);
        int const file = ::open(messages.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
        ::dup2(file, STDERR_FILENO);
        ::close(file);
        ::initscr();
        ::raw();
        ::noecho();
        ::keypad(stdscr, TRUE);
        ::nodelay(stdscr, TRUE);
        ::curs_set(0);
        if (::has_colors()) {
            ::start_color();
            ::use_default_colors();
            ::init_pair(1, COLOR_GREEN, -1);
            ::init_pair(2, COLOR_YELLOW, -1);
            ::init_pair(3, COLOR_RED, -1);
        }
    }
    ~Terminal() {
        ::endwin();
        ::dup2(standard_error_, STDERR_FILENO);
        ::close(standard_error_);
    }
    Terminal(Terminal const&) = delete;
    Terminal& operator=(Terminal const&) = delete;

    static Canvas blank_canvas() {
        return {static_cast<std::size_t>(std::max(getmaxy(stdscr), 0)),
                static_cast<std::size_t>(std::max(getmaxx(stdscr), 0))};
    }

    static void show(Canvas const& canvas) {
        for (std::size_t row = 0; row < canvas.rows(); ++row) {
            for (std::size_t column = 0; column < canvas.columns(); ++column) {
                auto const& cell = canvas.at(row, column);
                ::attrset(static_cast<int>(attributes(cell.style)));
                wchar_t const text[2] = {cell.character, L'\0'};
                ::mvaddwstr(static_cast<int>(row), static_cast<int>(column), text);
            }
        }
        ::refresh();
    }

 private:
    static chtype attributes(Style style) {
        switch (style) {
            case Style::dim:
                return A_DIM;
            case Style::title:
                return A_BOLD;
            case Style::lit:
                return A_REVERSE | A_BOLD;
            case Style::good:
                return static_cast<chtype>(COLOR_PAIR(1));
            case Style::warning:
                return static_cast<chtype>(COLOR_PAIR(2));
            case Style::bad:
                return static_cast<chtype>(COLOR_PAIR(3)) | A_BOLD;
            case Style::plain:
                break;
        }
        return A_NORMAL;
    }

    int standard_error_;
};

/// The console from its first picture to the key that leaves it.
class Session {
 public:
    Session(vehicle::Machine& machine, services::User_data_layout const& layout) : machine_(machine) {
        hand_.applications = machine.applications();
        hand_.layout = layout;
    }

    int run() {
        machine_.start_daemon();
        while (!is_over_ && noted_end_signal() == 0) {
            machine_.watch(k_frame);
            for (auto const& event : machine_.take_events()) {
                view_.hear(event);
            }
            view_.show_clients(machine_.clients(), monotonic_ns());
            for (int key = ::getch(); key != ERR; key = ::getch()) {
                try_to_handle(key);
            }
            auto canvas = Terminal::blank_canvas();
            draw(canvas, view_, level_, hand_);
            Terminal::show(canvas);
        }
        return is_over_ ? EXIT_SUCCESS : k_signal_status + noted_end_signal();
    }

 private:
    // A machine that is off, a client that does not answer: that is told, and the console goes on.
    void try_to_handle(int key) {
        view_.show_trouble("");
        try {
            handle(key);
        } catch (std::exception const& error) {
            view_.show_trouble(error.what());
        }
    }

    void handle(int key) {
        static auto const& keys = *new std::map<int, std::string>{{'r', "r"}, {'n', "n"},     {'s', "s"},
                                                                  {'p', "p"}, {'o', "power"}, {KEY_F(10), "power"}};
        static auto const& manners = *new std::map<int, std::string>{
            {'w', "well"}, {'l', "late"}, {'i', "silent"}, {'f', "failing"}, {'c', "crashing"}};
        auto const pressed = keys.find(key);
        auto const manner = manners.find(key);
        if (pressed != keys.end()) {
            machine_.press(pressed->second);
        } else if (manner != manners.end()) {
            behave(manner->second);
        } else if (key == k_tab) {
            view_.select_next_client();
        } else if (key >= '1' && key <= '6') {
            level_ = key - '0';
        } else if (key == 'x') {
            stop_or_start();
        } else if (key == 'q' || key == k_control_c) {
            is_over_ = true;
        } else {
            handle_network_key(key, machine_, view_, hand_);
        }
    }

    // For the client that is selected; its answer to the state manager may be due by this at once.
    void behave(std::string const& manner) {
        if (!view_.clients().empty()) {
            auto const& client = view_.clients().at(view_.selected_client()).name;
            machine_.tell(client, {{"do", "behave"}, {"as", manner}, {"delay_ms", k_late.count()}});
        }
    }

    void stop_or_start() {
        if (view_.exit_status()) {
            view_.begin_life();
            machine_.start_daemon();
        } else {
            machine_.signal_daemon(SIGTERM);
        }
    }

    vehicle::Machine& machine_;
    Machine_view view_;
    Network_hand hand_;
    int level_{4};
    bool is_over_{false};
};

}  // namespace

int run(vehicle::Machine& machine, std::string const& messages, services::User_data_layout const& layout) {
    note_end_signals();  // the terminal is to be given back
    Terminal const terminal(messages);
    return Session(machine, layout).run();
}

}  // namespace bench::console
