#include "call_stacks.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <string_view>

#include <cxxabi.h>
#include <elfutils/libdwfl.h>

namespace faults {

namespace {

constexpr std::size_t k_deepest = 60;

Dwfl_Callbacks const* callbacks() {
    static Dwfl_Callbacks const all = [] {
        Dwfl_Callbacks result{};
        result.find_elf = dwfl_linux_proc_find_elf;
        // Separate files with debugging information are not looked for: the tables for exceptions are in the program.
        result.find_debuginfo = [](Dwfl_Module*, void**, char const*, Dwarf_Addr, char const*, char const*, GElf_Word,
                                   char**) { return -1; };
        return result;
    }();
    return &all;
}

int add_frame(Dwfl_Frame* frame, void* frames) {
    auto& addresses = *static_cast<std::vector<std::uint64_t>*>(frames);
    Dwarf_Addr address = 0;
    bool is_activation = false;
    if (!dwfl_frame_pc(frame, &address, &is_activation)) {
        return DWARF_CB_ABORT;
    }
    addresses.push_back(is_activation ? address : address - 1);
    return addresses.size() < k_deepest ? DWARF_CB_OK : DWARF_CB_ABORT;
}

std::string readable(char const* symbol) {
    int status = 0;
    std::unique_ptr<char, void (*)(void*)> const name(abi::__cxa_demangle(symbol, nullptr, nullptr, &status),
                                                      &std::free);
    std::string text = status == 0 ? name.get() : symbol;
    constexpr std::string_view unnamed = "(anonymous namespace)::";
    for (auto place = text.find(unnamed); place != std::string::npos; place = text.find(unnamed)) {
        text.erase(place, unnamed.size());
    }
    constexpr std::size_t k_longest = 100;  // of templates only the begin
    return text.substr(0, std::min(text.find('('), k_longest));
}

// FNV-1a.
void mix(std::uint64_t& hash, void const* data, std::size_t size) {
    auto const* const bytes = static_cast<unsigned char const*>(data);
    for (std::size_t place = 0; place < size; ++place) {
        hash = (hash ^ bytes[place]) * 1099511628211U;
    }
}

}  // namespace

Call_stacks::Call_stacks(pid_t pid) : pid_(pid), session_(dwfl_begin(callbacks()), &dwfl_end) {
    if (!session_) {
        throw std::runtime_error(std::string("libdw: ") + dwfl_errmsg(-1));
    }
}

Call_stacks::~Call_stacks() = default;

void Call_stacks::look_up_libraries() {
    dwfl_report_begin(session_.get());
    dwfl_linux_proc_report(session_.get(), pid_);
    dwfl_report_end(session_.get(), nullptr, nullptr);
    if (!is_attached_) {
        is_attached_ = dwfl_linux_proc_attach(session_.get(), pid_, true) == 0;
    }
}

// False when a frame lies in no library that is known.
bool Call_stacks::walk(pid_t thread, std::vector<std::uint64_t>& addresses) const {
    addresses.clear();
    dwfl_getthread_frames(session_.get(), thread, &add_frame, &addresses);
    for (auto const address : addresses) {
        if (dwfl_addrmodule(session_.get(), address) == nullptr) {
            return false;
        }
    }
    return !addresses.empty();
}

Call_stack Call_stacks::of(pid_t thread, long call) {
    Call_stack stack;
    if (!walk(thread, stack.addresses)) {
        look_up_libraries();
        walk(thread, stack.addresses);
    }
    stack.id = 14695981039346656037U;
    mix(stack.id, &call, sizeof call);
    for (auto const address : stack.addresses) {
        auto* const module = dwfl_addrmodule(session_.get(), address);
        Dwarf_Addr start = 0;
        char const* const name =
            module == nullptr ? "?"
                              : dwfl_module_info(module, nullptr, &start, nullptr, nullptr, nullptr, nullptr, nullptr);
        std::uint64_t const offset = address - start;
        mix(stack.id, name, std::strlen(name));
        mix(stack.id, &offset, sizeof offset);
        stack.is_of_loader = stack.is_of_loader || std::strstr(name, "/ld-linux") != nullptr;
    }
    return stack;
}

std::vector<std::string> Call_stacks::names(Call_stack const& stack) const {
    std::vector<std::string> result;
    for (auto const address : stack.addresses) {
        auto* const module = dwfl_addrmodule(session_.get(), address);
        if (module == nullptr) {
            result.emplace_back("?");
            continue;
        }
        char const* const path =
            dwfl_module_info(module, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
        char const* const symbol = dwfl_module_addrname(module, address);
        result.push_back(std::filesystem::path(path).filename().string() + ' ' +
                         (symbol == nullptr ? "?" : readable(symbol)));
    }
    return result;
}

}  // namespace faults
