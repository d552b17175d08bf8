# Shared by the stories, which run inside the container, use the daemon's unit as an operator would and write what they
# saw: source it, then call the functions.
# shellcheck shell=bash
exec >/opt/result/story 2>&1

within() { # within SECONDS CONDITION...: tries until the condition holds; a busy machine has much longer than that
    local end=$((SECONDS + 10 + 3 * $1))
    shift
    until "$@" >/dev/null 2>&1; do
        [ $SECONDS -lt "$end" ] || return 1
        sleep 0.02
    done
}

sees() { # sees WHAT SECONDS CONDITION...
    local what=$1
    shift
    if within "$@"; then
        echo "seen: $what"
    else
        echo "NOT SEEN: $what"
        journalctl --no-pager -u ap_statemanager -u hypervisor -n 60 >/opt/result/journal 2>&1
        echo "the end"
        sync
        exec systemctl poweroff --force --force
    fi
}

property() { systemctl show --value -p "$1" ap_statemanager.service; }
is() { [ "$(property "$1")" = "$2" ]; }
has_written() { grep -q "\"text\":\"$1\"" /opt/result/events; }
times_written() { grep -c "\"text\":\"$1\"" /opt/result/events; }
has_written_times() { [ "$(times_written "$1")" -ge "$2" ]; }
beats_after() { [ "$(property WatchdogTimestampMonotonic)" -gt "$1" ]; }
# A key that comes while the daemon is still starting up would go with the transition to running, in the first cycle.
cycles() {
    sees "it is in its first cycle" 2 beats_after "$(property WatchdogTimestampMonotonic)"
    sees "and in another one" 2 beats_after "$(property WatchdogTimestampMonotonic)"
}
is_another_process() { [ "$(property MainPID)" != "$1" ] && is ActiveState active; }
first_process_stands_still() { grep -q '^State:.T' /proc/1/status; }
first_process_goes_on() { ! first_process_stands_still; }
press() { echo "{\"do\":\"press\",\"key\":\"$1\"}" >/run/keys; }

# outside WHAT SECONDS: has something done to the container that can't be done from inside (see the script container).
outside() { echo "$1 $2" >/opt/result/outside; }

# as_installed: the daemon as the user that the unit names, with the paths of the shipped configuration. The kernel's own
# /sys takes no files from here: a file system of the container's stands for it, with the kernel's directories in it.
as_installed() {
    local directory
    systemd-sysusers /opt/project/deploy/sysusers/ap-statemanager.conf
    install -D -m 644 -t /etc/tmpfiles.d /opt/project/deploy/tmpfiles/ap-statemanager.conf
    install -m 644 -t /etc/adaptive /opt/project/deploy/config/ap_statemanager.json
    sed -i -e '/^ReadWritePaths=/d' -e '/^User=/d' -e '/^Group=/d' -e '/^SupplementaryGroups=/d' \
        /etc/systemd/system/ap_statemanager.service.d/container.conf
    mkdir /run/sys
    mount -t tmpfs -o mode=755 tmpfs /run/sys
    for directory in /sys/*; do
        mkdir "/run/sys/${directory##*/}"
        mount --rbind "$directory" "/run/sys/${directory##*/}"
    done
    mount --rbind /run/sys /sys
    systemctl daemon-reload
}

# The driver makes its control files, as a driver does: for root. They are plain files here, with the words back to back.
driver_comes() {
    mkdir /sys/vmctl
    install -m 644 /dev/null /sys/vmctl/set_status
    install -m 644 /dev/null /sys/vmctl/command_request
}
driver_goes() { rm -r /sys/vmctl; }
holds() { [ "$(cat "/sys/vmctl/$1")" = "$2" ]; }
rights_are() { [ "$(stat -c '%A %U %G' /sys/vmctl/*)" = "$1"$'\n'"$1" ]; }

# ends WORD: the last line of a story that the machine itself ends; who started the container looks for the word.
ends() {
    echo "the end: $1"
    sync
}
