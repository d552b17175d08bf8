#include "status/server_status.h"

#include "status/page_writer.h"

#include <algorithm>

#include <sys/socket.h>

namespace status {

namespace {

using Shared_client = Client<Shared_word>;
using Shared_name = Name<Shared_word>;

// Searches begin where a number points: connections are small numbers that follow each other, so that nearly every
// search ends at its first record.
template <class Records, class Wanted>
auto* find_from(Records& records, std::size_t number, Wanted const& is_wanted) {
    for (std::size_t i = 0; i < records.size(); ++i) {
        auto& record = records[(number + i) % records.size()];
        if (is_wanted(record)) {
            return &record;
        }
    }
    return static_cast<decltype(records.data())>(nullptr);
}

std::uint64_t number_of(int connection) {
    return static_cast<std::uint64_t>(connection);
}

Shared_client* client_at(Page& page, int connection) {
    return find_from(page.clients, number_of(connection), [connection](Shared_client const& client) {
        return own(client.since) != 0 && own(client.connection) == number_of(connection);
    });
}

// The record of the name, a new one if it has none; null when there is no room.
Shared_name* name_record(Page& page, std::string_view name) {
    auto const digest = digest_of(name);
    auto* const record = find_from(page.names, digest, [name, digest](Shared_name const& known) {
        return own(known.used) == 0 || (own(known.digest) == digest && holds(known.name, name));
    });
    if (record != nullptr && own(record->used) == 0) {
        Change const change(record->sequence);
        put(record->name, name);
        put(record->digest, digest);
        put(record->used, 1U);
        add(page.server.names);
    }
    return record;
}

Shared_name* name_of(Page& page, Shared_client const& client) {
    auto const record = own(client.name_record);
    return record < k_names ? &page.names[record] : nullptr;
}

template <class Action>
void count(Page& page, Shared_client const& client, Action const& action) {
    if (auto* const name = name_of(page, client)) {
        Change const change(name->sequence);
        action(*name);
    }
}

// The name of a client, for its events.
std::array<char, k_longest_name> name_bytes(Shared_client const& client) {
    std::array<char, k_longest_name> bytes{};
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<char>(own(client.name.words[i / 8]) >> 8 * (i % 8));
    }
    return bytes;
}

void tell_of(Page& page, Shared_client const& client, Event_kind kind, Numbers numbers = {}) {
    auto const bytes = name_bytes(client);
    std::string_view const name(bytes.data(), bytes.size());
    numbers.third = own(client.name_digest);
    tell(page, page.server_ring, now(), kind, numbers, name.substr(0, name.find('\0')));
}

// Who the other end is, as the system knows it: one call that does not wait.
ucred peer_of(int connection) {
    ucred peer{0, static_cast<uid_t>(-1), static_cast<gid_t>(-1)};
    socklen_t size = sizeof peer;
    ::getsockopt(connection, SOL_SOCKET, SO_PEERCRED, &peer, &size);
    return peer;
}

void fill(Page& page, Shared_client& client, int connection, std::string_view name, std::string_view state) {
    auto const peer = peer_of(connection);
    auto const* const record = name_record(page, name);
    Change const change(client.sequence);
    put(client.since, now());
    put(client.connection, number_of(connection));
    put(client.pid, static_cast<std::uint64_t>(peer.pid));
    put(client.uid, std::uint64_t{peer.uid});
    put(client.name_record, record == nullptr ? k_names : static_cast<std::uint64_t>(record - page.names.data()));
    put(client.name_digest, digest_of(name));
    put(client.answer, Answer::not_asked);
    put(client.status, 0U);
    put(client.asked_at, 0U);
    put(client.answered_at, 0U);
    put(client.state, state);
    put(client.name, name);
}

bool is_open(Shared_client const& client) {
    return own(client.answer) == static_cast<std::uint64_t>(Answer::open);
}

void leave(Page& page, Shared_client& client) {
    bool const vanished = is_open(client);
    tell_of(page, client, vanished ? Event_kind::client_vanished : Event_kind::client_left);
    count(page, client, [vanished](Shared_name& name) {
        subtract(name.connections);
        add(name.vanished, vanished ? 1 : 0);
    });
    Change const change(client.sequence);
    put(client.since, 0U);
    put(client.answer, Answer::not_asked);
}

// An answer to a request that is open, or whose time was over.
void record_answer(Page& page, Shared_client& client, std::uint8_t result) {
    auto const time = now() - own(client.asked_at);
    bool const is_late = !is_open(client);
    auto const answer = is_late ? Answer::late : result == 0 ? Answer::in_time : Answer::failed;
    {
        Change const change(client.sequence);
        put(client.answer, answer);
        put(client.status, std::uint64_t{result});
        put(client.answered_at, own(client.asked_at) + time);
    }
    count(page, client, [&](Shared_name& name) {
        add(answer == Answer::late ? name.late : answer == Answer::failed ? name.failed : name.in_time);
        put(name.longest, std::max(own(name.longest), time));
        add(name.total, is_late ? 0 : time);
    });
    tell_of(page, client, is_late ? Event_kind::client_late : Event_kind::client_answered, {result, time});
}

// What is still open when a request ends: its time is over, or a newer one has come first.
void close_open(Page& page, Answer how) {
    auto left = own(page.server.clients);
    for (auto& client : page.clients) {
        if (left == 0) {
            return;
        }
        if (own(client.since) == 0) {
            continue;
        }
        --left;
        if (!is_open(client)) {
            continue;
        }
        {
            Change const change(client.sequence);
            put(client.answer, how);
        }
        if (how == Answer::timed_out) {
            count(page, client, [](Shared_name& name) { add(name.timed_out); });
            tell_of(page, client, Event_kind::client_timed_out);
        }
    }
}

}  // namespace

void client_connected(int connection, std::string_view name, std::string_view state) {
    auto* const page = status::page();
    if (page == nullptr) {
        return;
    }
    auto* const client = find_from(page->clients, number_of(connection),
                                   [](Shared_client const& record) { return own(record.since) == 0; });
    Change const change(page->server.sequence);
    if (client == nullptr) {
        add(page->server.clients_untold);
        return;
    }
    fill(*page, *client, connection, name, state);
    add(page->server.clients);
    if (name_of(*page, *client) == nullptr) {
        add(page->server.names_untold);
    }
    count(*page, *client, [](Shared_name& record) { add(record.connections); });
    tell_of(*page, *client, Event_kind::client_connected);
}

// One that was asked and goes still counts as unanswered: the request waits for its time.
void client_left(int connection) {
    auto* const page = status::page();
    auto* const client = page == nullptr ? nullptr : client_at(*page, connection);
    if (client != nullptr) {
        Change const change(page->server.sequence);
        leave(*page, *client);
        subtract(page->server.clients);
    }
}

void server_failed() {
    if (auto* const page = status::page()) {
        Change const change(page->server.sequence);
        add(page->server.failures);
        put(page->server.in_progress, 0U);
        for (auto& client : page->clients) {
            if (own(client.since) != 0) {
                leave(*page, client);
            }
        }
        put(page->server.clients, 0U);
    }
}

void request_began(std::string_view mode, std::chrono::steady_clock::time_point deadline) {
    if (auto* const page = status::page()) {
        auto& server = page->server;
        Change const change(server.sequence);
        close_open(*page, Answer::replaced);
        auto const end = std::chrono::nanoseconds(deadline.time_since_epoch()).count();
        put(server.in_progress, 1U);
        put(server.asked_at, now());
        put(server.deadline, static_cast<std::uint64_t>(end));
        put(server.asked, 0U);
        put(server.unanswered, 0U);
        put(server.mode, mode);
        add(server.requests);
    }
}

void client_asked(int connection) {
    auto* const page = status::page();
    auto* const client = page == nullptr ? nullptr : client_at(*page, connection);
    if (client == nullptr) {
        return;
    }
    Change const change(page->server.sequence);
    add(page->server.asked);
    add(page->server.unanswered);
    {
        Change const of_client(client->sequence);
        put(client->answer, Answer::open);
        put(client->asked_at, own(page->server.asked_at));
        put(client->answered_at, 0U);
    }
    count(*page, *client, [](Shared_name& name) { add(name.asked); });
}

void request_ended(Answer how) {
    if (auto* const page = status::page()) {
        Change const change(page->server.sequence);
        close_open(*page, how);
        put(page->server.in_progress, 0U);
        auto const at = now();
        put(page->server.ended_at, at);
        put(page->server.ended_how, how);
        tell(*page, page->server_ring, at, Event_kind::request_ended, {static_cast<std::uint64_t>(how)});
    }
}

void client_answered(int connection, std::string_view state, std::uint8_t result) {
    auto* const page = status::page();
    auto* const client = page == nullptr ? nullptr : client_at(*page, connection);
    if (client == nullptr) {
        return;
    }
    {
        Change const change(client->sequence);
        put(client->state, state);
    }
    if (is_open(*client)) {
        Change const change(page->server.sequence);
        subtract(page->server.unanswered);
        record_answer(*page, *client, result);
    } else if (own(client->answer) == static_cast<std::uint64_t>(Answer::timed_out)) {
        record_answer(*page, *client, result);
    }
}

void client_out_of_turn(std::string_view name) {
    if (auto* const page = status::page()) {
        tell(*page, page->server_ring, now(), Event_kind::client_out_of_turn, {0, 0, digest_of(name)}, name);
    }
}

}  // namespace status
