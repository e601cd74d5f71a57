# SPDX-License-Identifier: Apache-2.0
"""What the tests have in common: one daemon for all, clients of it, names of codes."""

import atexit
import unittest

from client import Client
from documents import Int64
from installation import Daemon, Installation

(SUCCESS, FAILED, NOT_CONNECTED, DEADLINE, CANCELLED, MALFORMED, NOT_LOGGED_IN, PERMISSION, OUT_OF_SCOPE, NOT_FOUND,
 CONFLICT, DUPLICATE, INVALID, STORAGE, UNSUPPORTED, EXHAUSTED) = range(16)

CATEGORY, GROUP, CONFIG, ACCOUNT, PRODUCT, INSTITUTION, SECURITY, EMAIL = (614, 625, 7131, 12203, 12224, 12231, 12237,
                                                                          23460)
HISTORY, STATE, AUDIT, FINDING, RESTORE = range(90001, 90006)
MODIFY, ADD, DELETE = 0, 2, 3
NO_INSTITUTION = 2147483647

_SHARED = {}


def installation():
    if not _SHARED:
        _SHARED["installation"] = Installation()
        atexit.register(_SHARED["installation"].close)
        _SHARED["daemon"] = Daemon(_SHARED["installation"])
        atexit.register(_SHARED["daemon"].stop)
    return _SHARED["installation"]


class Scene(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        self.authority = installation().authority
        self.port = _SHARED["daemon"].port

    def connect(self, port=None):
        client = Client(port or self.port, self.authority)
        self.addCleanup(client.close)
        return client

    def greeted(self):
        client = self.connect()
        self.assertEqual(client.hello()["type"], "welcome")
        return client

    def entered(self, user="admin"):
        client = self.greeted()
        reply = client.log_in(user, f"{user}123")
        self.assertEqual(reply["code"], SUCCESS, reply)
        return client

    def assert_refused(self, answer, code, *words):
        self.assertEqual(answer.code, code, answer.text)
        for word in words:
            self.assertIn(word, answer.text)
        self.assertEqual(answer.records, [])
        self.assertIsNone(answer.new_id)

    def assert_alive(self, client):
        client.send({"type": "ping", "id": Int64(4711)})
        self.assertEqual(client.receive(), {"type": "pong", "id": 4711})

    def groups(self, client):
        return {group["groupId"]: group for group in client.query(GROUP).records}

    def members(self, client, count):
        """Open accounts of one institution, as a group names them."""
        found = {}
        for record in client.query(ACCOUNT).records:
            account = record["account"]
            if record["stateCode"] != 5 and not record["excluded"] and account["institutionId"] != NO_INSTITUTION:
                found.setdefault(account["institutionId"], []).append(account)
                if len(found[account["institutionId"]]) == count:
                    return found[account["institutionId"]]
        raise AssertionError("no institution has so many accounts")

    def new_group(self, client, name, count=2):
        accounts = self.members(client, count)
        named = [{key: account[key] for key in ("brokerType", "accountId", "unitId")} for account in accounts]
        institution = accounts[0]["institutionId"]
        return {"_type": "nvservice::CAccountGroup", "groupName": name, "institutionId": institution, "accounts": named}

    def added(self, client, name):
        """A new group as the server gives it."""
        answer = client.operate(GROUP, ADD, self.new_group(client, name))
        self.assertEqual(answer.code, SUCCESS, answer.text)
        return self.group(client, answer.new_id)

    def group(self, client, number):
        records = client.query(GROUP, str(number)).records
        self.assertLessEqual(len(records), 1)
        return records[0] if records else None
