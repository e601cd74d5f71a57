# SPDX-License-Identifier: Apache-2.0
"""Documents that break a rule of names, texts or types: refused, with the id of their request, and nothing stored."""

import unittest

from documents import Elements, Int64, Malformed, Raw, decode, encode
from scene import ADD, GROUP, INSTITUTION, INVALID, MALFORMED, SUCCESS, Scene

BROKEN = [b"\xff", b"\xc0\x80", b"\xc0\xaf", b"\xed\xa0\x80", b"\xf4\x90\x80\x80", b"\xe7\x94"]
DECIMAL128 = Raw(0x13, bytes(16))


class Decoding(unittest.TestCase):
    def test_this_client_is_as_strict(self):
        for elements in ([("x", 1), ("x", 2)], [("x", {"y": b"\xff"})], [(b"\xed\xa0\x80", 1)], [("x", DECIMAL128)],
                         [("x", Raw(0x04, encode({"1": 1})))], [("x", Raw(0x08, b"\x02"))]):
            with self.assertRaises(Malformed):
                decode(encode(Elements(elements)))
        document = {"a": 1, "b": Int64(2), "c": 2.5, "d": "甲\0", "e": [True, None, {"f": []}]}
        self.assertEqual(decode(encode(document)), document)
        for cut in range(len(encode(document))):
            with self.assertRaises(Malformed):
                decode(encode(document)[:cut])


class Refusals(Scene):
    def setUp(self):
        super().setUp()
        self.client = self.entered()
        self.record = self.new_group(self.client, "互通畸形")
        self.before = self.groups(self.client)

    def assert_malformed(self, message):
        self.client.send(message)
        end = self.client.expect("replyEnd")
        self.assertEqual((end["id"], end["code"], end["recordCount"]), (message["id"], MALFORMED, 0), end)
        self.assertNotEqual(end["text"], "")

    def assert_record_malformed(self, *elements):
        """With these elements in the record, in one of its accounts, and in what the server does not know."""
        account = self.record["accounts"][0]
        rest = Elements(self.record.items())
        for record in (Elements(rest + list(elements)),
                       {**self.record, "accounts": [Elements(list(account.items()) + list(elements))]},
                       {**self.record, "later": Elements(elements)},
                       {**self.record, "later": [1, {"deeper": Elements(elements)}]}):
            self.assert_malformed(self.client.operate_message(GROUP, ADD, record))

    def tearDown(self):
        self.assertEqual(self.groups(self.client), self.before)
        super().tearDown()

    def test_names_that_occur_twice(self):
        for name, value in (("_type", "nvservice::CAccountGroup"), ("_tag", self.client.welcome["systemTag"]),
                            ("_rev", Int64(1)), ("more", None), ("", 1)):
            self.assert_record_malformed((name, value), (name, value))
            self.assert_record_malformed((name, value), ("between", True), (name, 7))

    def test_known_fields_that_occur_twice(self):
        for name in "groupName", "accounts", "_type":
            record = Elements(list(self.record.items()) + [(name, self.record[name])])
            self.assert_malformed(self.client.operate_message(GROUP, ADD, record))

    def test_names_and_texts_that_are_not_utf8(self):
        for broken in BROKEN:
            self.assert_record_malformed((broken, 1))
            self.assert_record_malformed(("more", broken))
            self.assert_record_malformed(("more", Raw(0x0E, encode({"x": broken})[7:-1])))
            self.assert_malformed(self.client.operate_message(GROUP, ADD, {**self.record, "groupName": broken}))

    def test_arrays_that_are_not_numbered(self):
        for names in ("0", "0"), ("1", "0"), ("0", "2"), ("00",), ("",), ("x",):
            array = Raw(0x04, encode(Elements((name, 1) for name in names)))
            self.assert_malformed(self.client.operate_message(GROUP, ADD, {**self.record, "later": array}))

    def test_types_that_nobody_takes(self):
        for value in DECIMAL128, Raw(0x0F, encode({})), Raw(0x20, b""), Raw(0x08, b"\x02"):
            self.assert_record_malformed(("more", value))

    def test_values_that_no_field_holds(self):
        account = self.record["accounts"][0]
        for record in ({**self.record, "groupName": None}, {**self.record, "groupName": 5},
                       {**self.record, "institutionId": 1.0}, {**self.record, "institutionId": Int64(2**31)},
                       {**self.record, "institutionId": "1"}, {**self.record, "accounts": {}},
                       {**self.record, "accounts": [None]}, {**self.record, "_rev": "1"}, {**self.record, "_tag": 1},
                       {**self.record, "accounts": [{**account, "_type": "nvservice::CUserInfo"}]}):
            self.assert_malformed(self.client.operate_message(GROUP, ADD, record))

    def test_the_rules_hold_for_messages_and_requests_too(self):
        query = self.client.query_message(INSTITUTION)
        for extra in ("id", Int64(99)), ("type", "query"), ("request", query["request"]), ("later", b"\xff"):
            self.assert_malformed_elements(query, extra)
        for extra in ("dataType", GROUP), ("_type", "nvservice::CKolmQueryDataReq"), (b"\xff", 1):
            request = Elements(list(query["request"].items()) + [extra])
            self.assert_malformed({**query, "id": self.client.next_id(), "request": request})

    def assert_malformed_elements(self, message, extra):
        self.client.send(Elements(list(message.items()) + [extra]))
        end = self.client.expect("replyEnd")
        self.assertEqual((end["id"], end["code"]), (message["id"], MALFORMED))

    def test_a_zero_in_a_text_is_well_formed_and_not_stored(self):
        answer = self.client.operate(GROUP, ADD, {**self.record, "later": "a\0b"})
        self.assertEqual(answer.code, INVALID)
        self.assertEqual(self.client.query(INSTITUTION).code, SUCCESS)


if __name__ == "__main__":
    unittest.main()
