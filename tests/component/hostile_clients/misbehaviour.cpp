#include "misbehaviour.h"

#include "support/passed_descriptor.h"

#include <algorithm>
#include <cstring>

#include <sys/socket.h>
#include <unistd.h>

namespace hostile {

using utilities::Bytes;
using utilities::Type_length_value;

namespace {

using Connection = Hostile_connection;

std::string name_of(Connection const& client) {
    return "hostile " + std::to_string(client.number);
}

Bytes introduction_of(Connection const& client) {
    return utilities::serialize(
        {Type_length_value("component_client_v1"), Type_length_value(name_of(client)), Type_length_value("kOn")});
}

Bytes frame_that_announces(std::uint64_t length) {
    Bytes header(utilities::k_header_size);
    header[0] = 2;
    std::memcpy(header.data() + 4, &length, sizeof length);
    return header;
}

/// Not random: the same in every run.
Bytes noise(unsigned seed, std::size_t count) {
    Bytes bytes(count);
    for (auto& byte : bytes) {
        seed = seed * 1'103'515'245U + 12'345U;
        byte = static_cast<std::uint8_t>(seed >> 16U);
    }
    return bytes;
}

void nothing(Connection& /*client*/) {}

void introduce(Connection& client) {
    client.introduce(name_of(client));
}

/// Notices when the server has gone away.
void look(Connection& client) {
    client.take_request();
}

void close(Connection& client) {
    client.close();
}

void send_first_bytes(Connection& client, std::size_t count) {
    auto bytes = introduction_of(client);
    bytes.resize(std::min(count, bytes.size()));
    client.send_bytes(bytes);
}

void send_next_byte(Connection& client) {
    auto const bytes = introduction_of(client);
    if (client.turns < bytes.size()) {
        client.send_bytes({bytes[client.turns]});
    }
    look(client);
}

void send_element_beyond_frame(Connection& client) {
    auto frame = frame_that_announces(16);
    Bytes const element{0, 0, 0, 0, 200, 0, 0, 0, 0, 0, 0, 0, 'a', 'b', 'c', 'd'};
    frame.insert(frame.end(), element.begin(), element.end());
    client.send_bytes(frame);
}

void send_descriptors(Connection& client) {
    test_support::send_with_descriptor(client.descriptor(), introduction_of(client), STDOUT_FILENO, MSG_DONTWAIT);
}

template <class Reaction>
auto for_each_request(Reaction reaction) {
    return [reaction](Connection& client) {
        if (auto const request = client.take_request()) {
            reaction(client, *request);
        }
    };
}

void answer_the_one_before(Connection& client, Connection::Request const& request) {
    if (client.kept) {
        client.answer(client.kept->number, client.kept->state);
    }
    client.kept = request;
}

void answer_with(Connection& client, utilities::Type_length_values const& message) {
    client.send(message);
}

std::vector<Misbehaviour> make_all() {
    using Request = Connection::Request;
    return {
        // Before anybody knows who it is.
        {"says nothing", nothing, look},
        {"goes at once", close, nothing},
        {"stops in the header of its introduction", [](auto& client) { send_first_bytes(client, 7); }, look},
        {"stops in the middle of its introduction", [](auto& client) { send_first_bytes(client, 40); }, look},
        {"goes after some bytes of its introduction",
         [](auto& client) {
             send_first_bytes(client, client.lives % 80);
             client.close();
         },
         nothing},
        {"introduces itself byte by byte", nothing, send_next_byte},
        {"introduces itself with too few elements",
         [](auto& client) {
             client.send({Type_length_value("component_client_v1"), Type_length_value("short")});
         },
         look},
        {"introduces itself with nothing", [](auto& client) { client.send({}); }, look},
        {"announces more than 64 KiB", [](auto& client) { client.send_bytes(frame_that_announces(65'537)); }, look},
        {"announces more than there is in the world",
         [](auto& client) { client.send_bytes(frame_that_announces(~std::uint64_t{0})); }, look},
        {"announces 64 KiB and sends no more", [](auto& client) { client.send_bytes(frame_that_announces(65'536)); },
         look},
        {"sends an element longer than its frame", send_element_beyond_frame, look},
        {"sends noise", [](auto& client) { client.send_bytes(noise(client.number + client.lives, 500)); }, look},
        {"sends an answer first", [](auto& client) { client.answer(1, "kOn"); }, look},
        {"sends descriptors along", send_descriptors, look},
        // With a name.
        {"has no name", [](auto& client) { client.introduce(""); }, look},
        {"has a name of 60,000 characters", [](auto& client) { client.introduce(std::string(60'000, 'n')); }, look},
        {"has zeros in its name", [](auto& client) { client.introduce(std::string("a\0b\xff", 4)); }, look},
        {"has the name of another", [](auto& client) { client.introduce("hostile 0"); }, look},
        {"goes after its introduction",
         [](auto& client) {
             introduce(client);
             client.close();
         },
         nothing},
        {"introduces itself over and over", introduce, introduce},
        {"is in another state", [](auto& client) { client.introduce(name_of(client), "kOff"); }, look},
        // When asked, or not asked.
        {"never reads", introduce, nothing},
        {"never answers", introduce, look},
        {"goes when it is asked", introduce, for_each_request([](auto& client, Request const&) { client.close(); })},
        {"closes its way out", introduce,
         for_each_request([](auto& client, Request const&) { ::shutdown(client.descriptor(), SHUT_WR); })},
        {"closes its way in",
         [](auto& client) {
             introduce(client);
             ::shutdown(client.descriptor(), SHUT_RD);
         },
         [](auto& client) { client.answer(client.turns, "kOn"); }},
        {"answers too late", introduce, for_each_request(answer_the_one_before)},
        {"answers with a wrong number", introduce,
         for_each_request([](auto& client, Request const& asked) { client.answer(asked.number + 7, asked.state); })},
        {"answers ten times", introduce, for_each_request([](auto& client, Request const& asked) {
             for (int i = 0; i < 10; ++i) {
                 client.answer(asked.number, asked.state);
             }
         })},
        {"answers without a status", introduce, for_each_request([](auto& client, Request const& asked) {
             answer_with(client, {Type_length_value(asked.number), Type_length_value(asked.state)});
         })},
        {"answers with text for a number", introduce, for_each_request([](auto& client, Request const& asked) {
             answer_with(client, {Type_length_value("1"), Type_length_value(asked.state), Type_length_value(0U)});
         })},
        {"answers with a status that there is not", introduce,
         for_each_request([](auto& client, Request const& asked) { client.answer(asked.number, asked.state, 255); })},
        {"answers with a state of 60,000 characters", introduce,
         for_each_request(
             [](auto& client, Request const& asked) { client.answer(asked.number, std::string(60'000, 's')); })},
        {"stops in the middle of its answer", introduce, for_each_request([](auto& client, Request const& asked) {
             auto bytes = utilities::serialize({Type_length_value(asked.number), Type_length_value(asked.state)});
             bytes.resize(bytes.size() / 2);
             client.send_bytes(bytes);
         })},
        {"floods with answers", introduce,
         [](auto& client) {
             for (int i = 0; i < 50 && !client.is_closed(); ++i) {
                 client.answer(1, "kOn");
             }
         }},
        {"floods with noise", introduce, [](auto& client) { client.send_bytes(noise(client.turns, 4096)); }},
    };
}

}  // namespace

std::vector<Misbehaviour> const& all_misbehaviours() {
    static std::vector<Misbehaviour> const all = make_all();
    return all;
}

}  // namespace hostile
