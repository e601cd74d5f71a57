# SPDX-License-Identifier: Apache-2.0
"""Connecting, log-in, keep-alive, order of messages, shutdown."""

import ssl
import struct
import unittest

from client import Client, Closed
from documents import Elements, Int64, encode
from installation import SERVER, Daemon
from scene import (ADD, EXHAUSTED, GROUP, INSTITUTION, INVALID, MALFORMED, NOT_LOGGED_IN, PERMISSION, SUCCESS,
                   UNSUPPORTED, Scene, installation)


class Connecting(Scene):
    def test_the_server_says_who_it_is(self):
        client = self.connect()
        welcome = client.hello(oldest=0, newest=7)
        self.assertEqual(list(welcome)[0], "type")
        self.assertEqual(welcome["type"], "welcome")
        self.assertEqual(welcome["protocol"], 2)
        self.assertEqual(welcome["serverName"], SERVER)
        self.assertNotEqual(welcome["systemTag"], "")
        self.assertEqual(welcome["sdkVersion"].split(".")[0], "2")
        self.assertEqual(welcome["keepAliveSeconds"], 20)

    def test_a_version_that_nobody_speaks_is_refused(self):
        for hello in {"oldest": 0, "newest": 0}, {"oldest": 3, "newest": 9}, {"sdk": "1.0"}:
            client = self.connect()
            refused = client.hello(**hello)
            self.assertEqual(refused["type"], "refused")
            self.assertEqual(refused["code"], UNSUPPORTED)
            self.assertEqual((refused["oldestProtocol"], refused["newestProtocol"]), (1, 2))
            self.assertTrue(client.is_closed_by_server())

    def test_the_client_speaks_first_and_says_hello(self):
        client = self.connect()
        client.send({"type": "ping", "id": Int64(1)})
        self.assertEqual(client.expect("refused")["code"], MALFORMED)
        self.assertTrue(client.is_closed_by_server())

    def test_an_unknown_authority_is_not_trusted(self):
        with self.assertRaises(ssl.SSLCertVerificationError):
            Client(self.port, None)

    def test_a_lost_frame_costs_the_connection(self):
        for length, code in (4, MALFORMED), (-1, MALFORMED), (4097, EXHAUSTED):
            client = self.greeted()
            client.send_bytes(struct.pack("<i", length) + b"\0")
            self.assertEqual(client.expect("fault")["code"], code)
            self.assertTrue(client.is_closed_by_server())

    def test_the_limits_are_wide_after_a_log_in(self):
        client = self.entered()
        client.send({"type": "ping", "id": Int64(1), "later": "x" * 60000})
        self.assertEqual(client.receive(), {"type": "pong", "id": 1})
        client.send({"type": "ping", "id": Int64(2), "later": "x" * 65537})
        end = client.expect("replyEnd")
        self.assertEqual((end["id"], end["code"]), (2, EXHAUSTED))
        client.send({"type": "ping", "id": Int64(3), "later": ["x" * 60000] * 2})
        self.assertEqual(client.expect("fault")["code"], EXHAUSTED)
        self.assert_alive(client)


class LogIn(Scene):
    def test_the_user_comes_with_name_and_rights(self):
        client = self.greeted()
        reply = client.log_in("admin", "admin123")
        self.assertEqual((reply["code"], reply["text"]), (SUCCESS, ""))
        user = reply["user"]
        self.assertEqual(user["_type"], "nvservice::CUserInfo")
        self.assertEqual(user["_tag"], client.welcome["systemTag"])
        self.assertEqual(user["userId"], "admin")
        self.assertLessEqual({10717, 10719, 10721, 10041}, set(user["rights"]))
        self.assertEqual(user["institutionId"], 2147483647)

    def test_a_refusal_does_not_say_why(self):
        client = self.greeted()
        replies = [
            client.log_in("risk", "wrong"),
            client.log_in("nobody", "wrong"),
            client.log_in("disabled", "disabled123"),
        ]
        self.assertEqual({reply["code"] for reply in replies}, {NOT_LOGGED_IN})
        self.assertEqual(len({reply["text"] for reply in replies}), 1)
        self.assertFalse(any("user" in reply for reply in replies))
        self.assert_refused(client.query(GROUP), NOT_LOGGED_IN)
        self.assertEqual(client.log_in("risk", "risk123")["user"]["userId"], "risk")
        self.assertEqual(client.query(INSTITUTION).code, SUCCESS)
        # Another user on the same connection, and a refused one, who leaves it without a user.
        self.assertEqual(client.log_in("viewer", "viewer123")["user"]["rights"], [])
        self.assertEqual(client.log_in("viewer", "wrong")["code"], NOT_LOGGED_IN)
        self.assert_refused(client.query(GROUP), NOT_LOGGED_IN)

    def test_texts_come_in_the_language_of_the_log_in(self):
        english, chinese = self.greeted(), self.greeted()
        self.assertEqual(english.log_in("anglais", "x", language="en")["text"], "Wrong user name or password")
        self.assertEqual(chinese.log_in("chinois", "x", language="zh")["text"], "用户名或密码错误")
        self.assertEqual(chinese.log_in("français", "x", language="fr")["text"], "用户名或密码错误")
        self.assertEqual(english.log_in("viewer", "viewer123")["code"], SUCCESS)
        self.assert_refused(english.operate(GROUP, ADD, self.new_group(self.entered(), "语言")), PERMISSION, "Add account")

    def test_a_log_in_that_cannot_be_read_is_answered_as_one(self):
        client = self.greeted()
        for fields in {"user": "admin"}, {"user": "admin", "password": 7}, {"user": b"\xff", "password": "x"}, \
                {"user": "admin", "password": "x", "language": 7}:
            client.send({"type": "logIn", "id": Int64(9), **fields})
            reply = client.expect("logInReply")
            self.assertEqual((reply["id"], reply["code"]), (9, MALFORMED))

    def test_a_user_is_locked_after_five_refusals_and_for_a_while(self):
        client = self.greeted()
        for _ in range(5):
            self.assertEqual(client.log_in("editor", "wrong")["code"], NOT_LOGGED_IN)
        locked = client.log_in("editor", "editor123")
        self.assertEqual(locked["code"], EXHAUSTED)
        self.assertRegex(locked["text"], r"\d+秒")
        self.assertEqual(client.log_in("futures", "futures123")["code"], SUCCESS)
        # The lock ends by itself, whatever is tried meanwhile.
        codes = set()
        while SUCCESS not in codes:
            with self.connect() as another:
                another.hello()
                codes.add(another.log_in("editor", "editor123")["code"])
        self.assertLessEqual(codes, {SUCCESS, EXHAUSTED})

    def test_too_many_log_ins_at_a_time_are_told_to_come_back(self):
        clients = [self.greeted() for _ in range(8)]
        for client in clients:
            client.send({"type": "logIn", "id": Int64(1), "user": "deleter", "password": "deleter123"})
        replies = [client.expect("logInReply") for client in clients]
        self.assertEqual({reply["code"] for reply in replies}, {SUCCESS, EXHAUSTED})
        busy = next(client for client, reply in zip(clients, replies) if reply["code"] == EXHAUSTED)
        self.assertEqual(busy.log_in("deleter", "deleter123")["code"], SUCCESS)

    def test_twenty_refusals_in_a_row_end_the_connection(self):
        client = self.greeted()
        for _ in range(20):  # a lock, which comes after some of them, counts as well
            self.assertIn(client.log_in("boundviewer", "wrong")["code"], {NOT_LOGGED_IN, EXHAUSTED})
        self.assertEqual(client.expect("fault")["code"], EXHAUSTED)
        self.assertTrue(client.is_closed_by_server())


class Order(Scene):
    def test_a_ping_is_answered_with_its_id(self):
        client = self.greeted()
        for number in 1, 1, 2**62:
            client.send({"type": "ping", "id": Int64(number)})
            self.assertEqual(client.receive(), {"type": "pong", "id": number})
        client.send({"type": "ping", "id": 5})
        self.assertEqual(client.receive(), {"type": "pong", "id": 5})

    def test_the_id_of_a_ping_is_no_id_of_a_request(self):
        client = self.entered()
        query = client.query_message(INSTITUTION)
        client.send(query, {"type": "ping", "id": query["id"]})
        kinds = []
        while sorted(set(kinds)) != ["pong", "replyBegin", "replyChunk", "replyEnd"]:
            message = client.receive()
            self.assertEqual(message["id"], query["id"])
            kinds.append(message["type"])

    def test_an_unknown_message_is_unsupported(self):
        client = self.entered()
        client.send({"type": "dance", "id": Int64(77), "more": [1]})
        end = client.expect("replyEnd")
        self.assertEqual((end["id"], end["code"], end["recordCount"]), (77, UNSUPPORTED, 0))
        client.send({"type": "dance"})
        self.assertEqual(client.expect("fault")["code"], UNSUPPORTED)
        self.assert_alive(client)

    def test_what_only_a_server_says_and_a_second_hello_are_out_of_order(self):
        client = self.entered()
        for message in ({"type": "pong", "id": Int64(1)}, {"type": "closing", "graceMilliseconds": 1, "text": ""},
                        {"type": "replyBegin", "id": Int64(1), "totalCount": 1}):
            client.send(message)
            if message["type"] != "pong":  # either side may send one
                self.assertEqual(client.expect("fault")["code"], MALFORMED)
        self.assertEqual(client.hello()["code"], MALFORMED)
        self.assert_alive(client)

    def test_an_id_that_is_under_way_is_refused_and_the_first_request_answered(self):
        client = self.entered()
        first = client.query_message(GROUP)
        second = {**client.query_message(INSTITUTION), "id": first["id"]}
        client.send(first, second)
        self.assertEqual(client.expect("fault")["code"], INVALID)
        answer = client.answers(first)[0]
        self.assertEqual({record["_type"] for record in answer.records}, {"nvservice::CAccountGroup"})
        # After its answer nobody remembers it.
        client.send(second)
        self.assertEqual(client.answers(second)[0].records[0]["_type"], "nvservice::CInstitutionInfo")

    def test_elements_are_free_in_order_and_unknown_ones_passed_over(self):
        client = self.entered()
        request = Elements([("queryKey", ""), ("later", {"x": [None, 1.5]}), ("dataType", Int64(INSTITUTION)),
                            ("_type", "nvservice::CKolmQueryDataReq")])
        message = {"type": "query", "id": 5, "more": True, "request": request}
        client.send(message)
        self.assertGreater(len(client.answers(message)[0].records), 0)

    def test_what_has_no_id_or_kind_is_a_fault(self):
        client = self.entered()
        query = client.query_message(INSTITUTION)
        for message in ({"type": "query", "request": query["request"]}, {"id": Int64(3), "type": "query"}, {},
                        {"type": "query", "id": Int64(0), "request": query["request"]},
                        {"type": "query", "id": Int64(-3), "request": query["request"]}):
            client.send(message)
            self.assertEqual(client.expect("fault")["code"], MALFORMED)
        self.assert_alive(client)


class Stopping(Scene):
    def test_the_server_pings_says_farewell_and_ends(self):
        daemon = Daemon(installation(), keep_alive=2)
        self.addCleanup(daemon.stop)
        client = self.connect(daemon.port)
        self.assertEqual(client.hello()["keepAliveSeconds"], 2)
        self.assertEqual(client.log_in("admin", "admin123")["code"], SUCCESS)
        ping = client.receive_any()
        self.assertEqual(ping["type"], "ping")
        self.assertGreater(ping["id"], 0)
        client.send({"type": "pong", "id": ping["id"]})
        query = client.query_message(GROUP)
        client.send(query)
        self.assertGreater(len(client.answers(query)[0].records), 0)
        self.assertEqual(daemon.stop(), 0)
        closing = client.expect("closing")
        self.assertGreater(closing["graceMilliseconds"], 0)
        self.assertNotEqual(closing["text"], "")
        with self.assertRaises(Closed):
            client.receive()


if __name__ == "__main__":
    unittest.main()
