#!/usr/bin/env python3
"""An application that is asked before the machine stands by and after it is back, without a library:

    suspend_client.py NAME

The protocol is docs/notification.md: three messages over a local socket."""

import os
import socket
import struct
import sys
import time

SOCKET = os.environ.get("AP_STATEMANAGER_SOCKET", "/var/run/adaptive/ara_SM/ara_SM.socket")
TEXT, NUMBER, FRAME = 0, 1, 2
HEADER = struct.Struct("=IQ")
SUCCEEDED, INVALID = 0, 2
LONGEST = 65536


def element(value):
    kind, data = (NUMBER, struct.pack("=I", value)) if isinstance(value, int) else (TEXT, value.encode())
    return HEADER.pack(kind, len(data)) + data


def message(*values):
    body = b"".join(element(value) for value in values)
    return HEADER.pack(FRAME, len(body)) + body


def elements(body):
    while body:
        kind, length = HEADER.unpack_from(body)
        data, body = body[HEADER.size:HEADER.size + length], body[HEADER.size + length:]
        yield struct.unpack("=I", data)[0] if kind == NUMBER else data.decode()


def receive(connection, count):
    data = b""
    while len(data) < count:
        piece = connection.recv(count - len(data))
        if not piece:
            raise ConnectionError("the state manager has gone")
        data += piece
    return data


def requests(connection):
    """Each request, number and state, until the connection ends."""
    while True:
        kind, length = HEADER.unpack(receive(connection, HEADER.size))
        if kind != FRAME or length > LONGEST:
            raise ValueError("no message")
        number, state = elements(receive(connection, length))
        yield number, state


def go_to(state):
    """What the application has to save and to take up again."""
    print("going to", state, flush=True)


def main():
    name, state = sys.argv[1], "kOn"
    while True:
        try:
            with socket.socket(socket.AF_UNIX) as connection:
                connection.connect(SOCKET)
                connection.sendall(message("component_client_v1", name, state))
                for number, wanted in requests(connection):
                    if wanted in ("kPrepSD", "kOn"):
                        go_to(wanted)
                        state = wanted
                        connection.sendall(message(number, state, SUCCEEDED))
                    else:
                        connection.sendall(message(number, state, INVALID))
        except (OSError, ValueError, struct.error) as trouble:
            if not isinstance(trouble, (FileNotFoundError, ConnectionError)):
                print(trouble, file=sys.stderr)
            time.sleep(0.1)  # it is not there yet, or was restarted


if __name__ == "__main__":
    sys.exit("Usage: suspend_client.py NAME" if len(sys.argv) != 2 else main())
