# SPDX-License-Identifier: Apache-2.0
"""A client of the data service, written from docs/wire-protocol.md."""

import socket
import ssl
import struct
import uuid

from documents import Binary, Int64, Malformed, decode, decode_all, encode

LONGEST_MESSAGE = 16252928
RECORDS_SUBTYPE = 0x80
SECONDS = 60

QUERY_CLASS = "nvservice::CKolmQueryDataReq"
OPERATE_CLASS = "nvservice::COperateDataReq"


class Closed(Exception):
    """The server has ended the connection."""


class Answer:
    def __init__(self, code, text, total=0, records=(), new_id=None, document=None):
        self.code = code
        self.text = text
        self.total = total
        self.records = list(records)
        self.new_id = new_id
        self.document = document


class Client:
    def __init__(self, port, authority):
        context = ssl.create_default_context(cafile=authority)
        context.minimum_version = ssl.TLSVersion.TLSv1_2
        plain = socket.create_connection(("localhost", port), SECONDS)
        try:
            self._socket = context.wrap_socket(plain, server_hostname="localhost")
        except OSError:
            plain.close()
            raise
        self._read = b""
        self._last_id = 0
        self.welcome = None

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def close(self):
        self._socket.close()

    # Messages

    def send(self, *messages):
        self.send_bytes(b"".join(encode(message) for message in messages))

    def send_bytes(self, data):
        self._socket.sendall(data)

    def next_id(self):
        self._last_id += 1
        return Int64(self._last_id)

    def _take(self, size):
        while len(self._read) < size:
            try:
                more = self._socket.recv(65536)
            except (ConnectionResetError, ssl.SSLEOFError):
                more = b""
            if not more:
                raise Closed()
            self._read += more
        taken, self._read = self._read[:size], self._read[size:]
        return taken

    def receive_any(self):
        head = self._take(4)
        length = struct.unpack("<i", head)[0]
        if not 5 <= length <= LONGEST_MESSAGE:
            raise Malformed("length of a message")
        message = decode(head + self._take(length - 4))
        if next(iter(message)) != "type":
            raise Malformed("a message begins with its type")
        return message

    def receive(self):
        """The next message; pings are answered and passed over."""
        while True:
            message = self.receive_any()
            if message["type"] != "ping":
                return message
            self.send({"type": "pong", "id": message["id"]})

    def expect(self, kind):
        message = self.receive()
        if message["type"] != kind:
            raise AssertionError(f"{kind} expected: {message}")
        return message

    def is_closed_by_server(self):
        try:
            while True:
                self.receive_any()
        except Closed:
            return True

    # Course

    def hello(self, oldest=1, newest=2, sdk="2.0"):
        self.send(
            {
                "type": "hello",
                "oldestProtocol": oldest,
                "newestProtocol": newest,
                "sdkVersion": sdk,
                "client": "interop 1.0",
            }
        )
        message = self.receive()
        self.welcome = message if message["type"] == "welcome" else None
        return message

    def log_in(self, user, password, **more):
        number = self.next_id()
        self.send({"type": "logIn", "id": number, "user": user, "password": password, **more})
        reply = self.expect("logInReply")
        if reply["id"] != number:
            raise AssertionError(f"answer to {number} expected: {reply}")
        return reply

    def query_message(self, data_type, key=""):
        request = {"_type": QUERY_CLASS, "dataType": data_type, "queryKey": key}
        return {"type": "query", "id": self.next_id(), "request": request}

    def operate_message(self, data_type, operation, record, operation_id=None):
        request = {
            "_type": OPERATE_CLASS,
            "dataType": data_type,
            "operation": operation,
            "operationId": str(uuid.uuid4()) if operation_id is None else operation_id,
            "data": record,
        }
        return {"type": "operate", "id": self.next_id(), "request": request}

    def listen(self, position=None):
        """Asks for changes, and gives what the server says at first."""
        self.send({"type": "listen"} if position is None else {"type": "listen", "position": position})
        return self.expect("changed")

    def query(self, data_type, key=""):
        message = self.query_message(data_type, key)
        self.send(message)
        return self.answers(message)[0]

    def operate(self, data_type, operation, record, operation_id=None):
        message = self.operate_message(data_type, operation, record, operation_id)
        self.send(message)
        return self.answers(message)[0]

    def answers(self, *requests):
        """The answers to requests, in the order of the requests, however their messages are mixed."""
        wanted = [request["id"] for request in requests]
        begun, done = {}, {}
        while len(done) < len(wanted):
            message = self.receive()
            number = message.get("id")
            if number not in wanted or number in done:
                raise AssertionError(f"nobody asked for {message}")
            if message["type"] == "replyBegin":
                if number in begun:
                    raise AssertionError("begun twice")
                begun[number] = (message["totalCount"], [])
            elif message["type"] == "replyChunk":
                records = message["records"]
                if not isinstance(records, Binary) or records.subtype != RECORDS_SUBTYPE:
                    raise AssertionError("records are not binary of their subtype")
                begun[number][1].extend(decode_all(bytes(records)))
            elif message["type"] == "replyEnd":
                total, records = begun.get(number, (0, []))
                if message["recordCount"] != len(records):
                    raise AssertionError(f"{message['recordCount']} records said, {len(records)} came")
                code, text = message["code"], message["text"]
                if (code == 0) != (text == ""):
                    raise AssertionError(f"code {code} with text {text!r}")
                extra = message.get("newId"), message.get("document")
                done[number] = Answer(code, text, total, records if code == 0 else [], *extra)
            else:
                raise AssertionError(f"unexpected {message}")
        return [done[number] for number in wanted]
