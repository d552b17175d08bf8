#include "bench/vm/emulator.h"

#include <fcntl.h>
#include <linux/kvm.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace bench::vm {

namespace {

using Words = std::vector<std::string>;

void append(Words& words, Words const& more) {
    words.insert(words.end(), more.begin(), more.end());
}

// The device may be there and refuse, for instance inside another virtual machine.
bool can_make_machines() {
    int const kvm = ::open("/dev/kvm", O_RDWR | O_CLOEXEC);
    int const machine = kvm < 0 ? -1 : ::ioctl(kvm, KVM_CREATE_VM, 0);
    ::close(machine);
    ::close(kvm);
    return machine >= 0;
}

// The machine is an aarch64 one: only there the processor can run it itself. Where instructions are counted, each takes
// 4 ns of the machine's time, while it rests that goes on with this machine's, and one thread translates for all of its
// processors.
Words processor(Machine_options const& options, Host const& host) {
    if (host.is_aarch64 && host.has_kvm) {
        return {"-accel", "kvm", "-cpu", "host"};
    }
    // Translated code is kept: 256 MB hold all that a boot runs.
    if (options.counts_instructions) {
        return {"-accel", "tcg,thread=single,tb-size=256", "-cpu", "cortex-a72", "-icount", "shift=2,sleep=on"};
    }
    return {"-accel", "tcg,thread=multi,tb-size=256", "-cpu", "cortex-a72"};
}

Words line(std::string const& name, std::string const& device, std::string const& directory) {
    return {"-chardev", "socket,id=" + name + ",path=" + directory + "/" + name + ",server=on,wait=off", "-device",
            device + ",chardev=" + name};
}

Words kernel(Machine_options const& options) {
    std::string words = "console=ttyAMA0 quiet audit=0 rdinit=/init systemd.show_status=0";
    words += options.with_vehicle ? " systemd.wants=vehicle.target" : "";
    words += options.disk.empty() ? "" : " systemd.wants=ap_statemanager_recorder.service";
    words += options.kernel_options.empty() ? "" : " " + options.kernel_options;
    return {"-kernel", options.image + "/kernel", "-initrd", options.image + "/initrd", "-append", words};
}

// What the machine's disk has taken outlives the emulator, however that ends; this machine's own need not have it.
Words disk(Machine_options const& options) {
    if (options.disk.empty()) {
        return {};
    }
    return {"-drive", "if=none,id=disk,format=raw,cache=unsafe,file=" + options.disk, "-device",
            "virtio-blk-pci,drive=disk"};
}

}  // namespace

Host this_host() {
#ifdef __aarch64__
    constexpr bool is_aarch64 = true;
#else
    constexpr bool is_aarch64 = false;
#endif
    return {is_aarch64, can_make_machines()};
}

std::vector<std::string> command_line(Machine_options const& options, std::string const& directory, Host const& host) {
    Words words{"qemu-system-aarch64",
                "-machine",
                "virt",
                "-smp",
                std::to_string(options.processors),
                "-m",
                std::to_string(options.memory_mb)};
    append(words, processor(options, host));
    append(words, {"-nodefaults", "-display", "none", "-no-reboot", "-nic", "none"});
    append(words, kernel(options));
    // The keyboard sits in a slot of its own, so that it can be pulled out.
    append(words,
           {"-device", "pcie-root-port,id=slot1,chassis=1", "-device", "virtio-keyboard-pci,id=keyboard,bus=slot1"});
    append(words, disk(options));
    // The machine's console driver turns round until the emulator has taken each 16 bytes of the log. A thread that has
    // to wake up for each of them would cost the machine one of its processors.
    append(words, {"-device", "virtio-serial-pci,ioeventfd=off"});
    append(words, line("log", "virtconsole", directory));
    append(words, line("state", "virtserialport,name=vmctl.state", directory));
    append(words, line("restart", "virtserialport,name=vmctl.restart", directory));
    append(words, line("poweroff", "virtserialport,name=vehicle.poweroff", directory));
    append(words, line("shell", "virtserialport,name=vehicle.shell", directory));
    append(words, line("journal", "virtserialport,name=vehicle.journal", directory));
    append(words,
           {"-qmp", "unix:" + directory + "/control,server=on,wait=off", "-serial", "file:" + directory + "/console"});
    return words;
}

}  // namespace bench::vm
