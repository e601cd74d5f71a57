# SPDX-License-Identifier: Apache-2.0
"""History, audit, past states, restores and findings."""

import unittest
from urllib.parse import quote, urlencode

from documented import complaint
from documents import Int64
from scene import (ADD, AUDIT, CONFIG, CONFLICT, DELETE, FINDING, GROUP, HISTORY, INVALID, MODIFY, NOT_FOUND,
                   OUT_OF_SCOPE, PERMISSION, RESTORE, STATE, SUCCESS, Scene)


def conditions(**named):
    return urlencode({name.replace("_", "-"): value for name, value in named.items()}, quote_via=quote)


class Past(Scene):
    def page(self, client, data_type, **named):
        answer = client.query(data_type, conditions(**named))
        self.assertEqual((answer.code, answer.text), (SUCCESS, ""))
        for record in answer.records:
            self.assertEqual(record["_tag"], client.welcome["systemTag"])
            self.assertIsNone(complaint(record))
        return answer.records, (answer.document or {}).get("next")

    def pages(self, client, data_type, **named):
        records, cursor = self.page(client, data_type, **named)
        while cursor:
            more, cursor = self.page(client, data_type, **named, cursor=cursor)
            records += more
        return records

    def renamed(self, client, group, *names):
        for name in names:
            answer = client.operate(GROUP, MODIFY, {**group, "groupName": name})
            self.assertEqual(answer.code, SUCCESS, answer.text)
            group = self.group(client, group["groupId"])
        return group

    def test_a_history_is_read_page_by_page(self):
        client = self.entered()
        group = self.renamed(client, self.added(client, "往事一"), "往事二", "往事三")
        config = client.query(CONFIG, str(group["groupId"])).records[0]
        self.assertEqual(client.operate(CONFIG, MODIFY, config).code, SUCCESS)
        changes = self.pages(client, HISTORY, group=group["groupId"], page_size=1)
        self.assertEqual([(each["dataType"], each["_rev"]) for each in changes],
                         [(CONFIG, 2), (GROUP, 3), (GROUP, 2), (GROUP, 1)])
        self.assertEqual([each["groupName"] for each in changes], ["往事三", "往事三", "往事二", "往事一"])
        self.assertEqual({(each["userId"], each["userName"]) for each in changes}, {("admin", "系统管理员")})
        self.assertEqual([each["operation"] for each in changes], [MODIFY, MODIFY, MODIFY, ADD])
        late = self.pages(client, HISTORY, group=group["groupId"], since=changes[0]["changedAt"] + 1)
        self.assertEqual(late, [])
        viewer = self.entered("viewer")
        self.assertEqual([(each["dataType"], each["_rev"]) for each in self.pages(
            viewer, HISTORY, group=group["groupId"])], [(GROUP, 3), (GROUP, 2), (GROUP, 1)])
        for key in "", "group", "group=x", "group=1&group=1", "group=1&colour=red", "group=%4":
            self.assert_refused(client.query(HISTORY, key), INVALID)

    def test_a_past_state_is_read(self):
        client = self.entered()
        first = self.added(client, "旧状态")
        group = self.renamed(client, first, "新状态")
        number = group["groupId"]
        states, cursor = self.page(client, STATE, group=number)
        self.assertIsNone(cursor)
        self.assertEqual(states[0], group)
        self.assertEqual(states[1]["_type"], "nvservice::CAccountGroupRCConfig")
        self.assertEqual(self.page(client, STATE, group=number, group_revision=1)[0], [first])
        created = self.pages(client, HISTORY, group=number)[-1]["changedAt"]
        self.assert_refused(client.query(STATE, conditions(group=number, at=created - 1)), NOT_FOUND)
        self.assert_refused(client.query(STATE, conditions(group=number, group_revision=9)), NOT_FOUND)
        self.assert_refused(self.entered("viewer").query(STATE, conditions(group=number, config_revision=1)),
                            PERMISSION)
        self.assert_refused(self.entered("boundviewer").query(STATE, conditions(group=number)), OUT_OF_SCOPE)

    def test_the_audit_is_read_by_those_who_may(self):
        client = self.entered()
        group = self.renamed(client, self.added(client, "审计一"), "审计二")
        number = group["groupId"]
        refused = client.operate(GROUP, MODIFY, {**group, "_rev": Int64(1)})
        self.assertEqual(refused.code, CONFLICT)
        entries = self.pages(client, AUDIT, group=number, page_size=2, details=1)
        self.assertEqual([each["outcome"] for each in entries], [CONFLICT, SUCCESS, SUCCESS])
        self.assertEqual(entries[0]["outcomeText"], refused.text)
        self.assertEqual((entries[1]["before"]["groupName"], entries[1]["after"]), ("审计一", group))
        self.assertNotIn("before", entries[2])
        self.assertEqual(len({each["entryId"] for each in entries}), 3)
        self.assertEqual(self.pages(client, AUDIT, group=number, outcome="refused", user="admin")[0]["entryId"],
                         entries[0]["entryId"])
        self.assertEqual(self.pages(client, AUDIT, group=number, outcome="ok", operation=ADD)[0]["entryId"],
                         entries[2]["entryId"])
        self.assertEqual(self.pages(client, AUDIT, group=number, user="nobody"), [])
        self.assert_refused(self.entered("editor").query(AUDIT), PERMISSION)
        bound = self.entered("bound")
        self.assertLess(0, len(self.pages(bound, AUDIT, page_size=1000)) if group["institutionId"] == 1 else 1)
        self.assertTrue(all(each["groupId"] >= 0 for each in self.pages(bound, AUDIT)))

    def test_a_group_is_restored(self):
        client = self.entered()
        first = self.added(client, "原样")
        number = first["groupId"]
        group = self.renamed(client, first, "变样")
        preview, _ = self.page(client, RESTORE, group=number, group_revision=1)
        wanted, shown = preview
        self.assertEqual(wanted["obstacles"], [])
        self.assertEqual(shown["groupName"], "原样")
        self.assertEqual(self.group(client, number), group)
        self.assert_refused(self.entered("risk").operate(RESTORE, MODIFY, wanted), PERMISSION)
        answer = client.operate(RESTORE, MODIFY, wanted)
        self.assertEqual((answer.code, answer.new_id), (SUCCESS, None), answer.text)
        self.assertEqual(self.group(client, number), shown)
        self.assertEqual(shown, {**first, "_rev": 3})
        self.renamed(client, shown, "又变样")
        self.assert_refused(client.operate(RESTORE, MODIFY, wanted), CONFLICT)

    def test_a_deleted_group_is_restored_under_a_new_number(self):
        client = self.entered()
        first = self.added(client, "删后恢复")
        self.assertEqual(client.operate(GROUP, DELETE, first).code, SUCCESS)
        preview, _ = self.page(client, RESTORE, group=first["groupId"], group_revision=1)
        self.assertEqual((preview[0]["obstacles"], preview[0]["seenGroupRevision"]), ([], 0))
        answer = client.operate(RESTORE, MODIFY, preview[0])
        self.assertEqual(answer.code, SUCCESS, answer.text)
        self.assertGreater(answer.new_id, first["groupId"])
        self.assertEqual(self.group(client, answer.new_id), {**first, "groupId": answer.new_id})

    def test_obstacles_are_told_before_a_restore(self):
        client = self.entered()
        group = self.renamed(client, self.added(client, "占用的名称"), "让出的名称")
        self.added(client, "占用的名称")
        preview, _ = self.page(client, RESTORE, group=group["groupId"], group_revision=1)
        self.assertEqual(len(preview[0]["obstacles"]), 1)
        self.assertIn("占用的名称", preview[0]["obstacles"][0])
        self.assertEqual(client.operate(RESTORE, MODIFY, preview[0]).text, preview[0]["obstacles"][0])

    def test_findings_have_kinds_and_advice(self):
        client = self.entered()
        findings, cursor = self.page(client, FINDING)
        self.assertIsNone(cursor)
        missing = [each for each in findings if each["kind"] == "missing-category"]
        self.assertTrue(missing, findings)
        self.assertTrue(all(each["kindName"] and each["advice"] and each["text"] for each in findings))
        self.assertIn(missing[0]["groupId"], self.groups(client))
        self.assert_refused(self.entered("editor").query(FINDING), PERMISSION)
        own = {group for group in self.groups(self.entered("bound"))}
        self.assertTrue(all(each["groupId"] in own for each in self.page(self.entered("bound"), FINDING)[0]))


if __name__ == "__main__":
    unittest.main()
