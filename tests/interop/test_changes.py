# SPDX-License-Identifier: Apache-2.0
"""What the server tells of changes."""

import uuid

from documented import complaint
from documents import Int64
from scene import ADD, GROUP, NOT_LOGGED_IN, SUCCESS, UNSUPPORTED, Scene


class Changes(Scene):
    def add_group(self, client, operation_id=None):
        group = self.new_group(client, "组" + str(uuid.uuid4()))
        answer = client.operate(GROUP, ADD, group, operation_id)
        self.assertEqual(answer.code, SUCCESS, answer.text)
        return group["groupName"], answer.new_id

    def test_who_listens_hears_of_a_change_once(self):
        listener, other = self.entered(), self.entered()
        first = listener.listen()
        self.assertEqual((first["complete"], first["changes"]), (True, []))
        name, number = self.add_group(other)
        changed = listener.expect("changed")
        self.assertTrue(changed["complete"])
        self.assertEqual([change["groupName"] for change in changed["changes"]], [name])
        change = changed["changes"][0]
        self.assertIsNone(complaint(change))
        self.assertEqual((change["dataType"], change["groupId"], change["operation"]), (GROUP, number, ADD))
        again = self.entered().listen(changed["position"])
        self.assertEqual(again["changes"], [])

    def test_a_position_brings_what_was_missed(self):
        client = self.entered()
        position = client.listen()["position"]
        client.close()
        names = {self.add_group(self.entered())[0] for _ in range(3)}
        missed = self.entered().listen(position)
        self.assertEqual({change["groupName"] for change in missed["changes"]}, names)

    def test_after_an_unknown_position_anything_may_have_changed(self):
        changed = self.entered().listen("of another server")
        self.assertEqual((changed["complete"], changed["changes"]), (False, []))

    def test_a_user_without_a_log_in_hears_nothing(self):
        client = self.greeted()
        client.send({"type": "listen"})
        self.assertEqual(client.expect("fault")["code"], NOT_LOGGED_IN)

    def test_version_one_has_no_changes(self):
        client = self.connect()
        self.assertEqual(client.hello(newest=1)["protocol"], 1)
        self.assertEqual(client.log_in("admin", "admin123")["code"], SUCCESS)
        client.send({"type": "listen"})
        self.assertEqual(client.expect("fault")["code"], UNSUPPORTED)
        self.add_group(self.entered())
        client.send({"type": "ping", "id": Int64(1)})
        self.assertEqual(client.receive()["type"], "pong")
