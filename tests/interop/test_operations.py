# SPDX-License-Identifier: Apache-2.0
"""Changes: what is stored, what is refused, what is answered again."""

import unittest
import uuid

from documents import Int64
from documented import complaint
from scene import (ADD, CANCELLED, CATEGORY, CONFIG, CONFLICT, DELETE, DUPLICATE, EMAIL, GROUP, INVALID, MALFORMED,
                   MODIFY, NO_INSTITUTION, NOT_FOUND, OUT_OF_SCOPE, PERMISSION, SECURITY, SUCCESS, UNSUPPORTED, Scene)


class Groups(Scene):
    def test_an_added_group_is_known_by_the_id_of_the_answer(self):
        client = self.entered()
        before = self.groups(client)
        sent = {**self.new_group(client, "互通新组"), "groupId": 4711, "institutionName": "随便",
                "later": {"colour": "red", "numbers": [1, Int64(2), 2.5]}}
        answer = client.operate(GROUP, ADD, sent)
        self.assertEqual((answer.code, answer.text, answer.records, answer.document), (SUCCESS, "", [], None))
        self.assertNotIn(answer.new_id, before)
        group = self.group(client, answer.new_id)
        self.assertEqual(group["groupId"], answer.new_id)
        self.assertEqual(group["groupName"], "互通新组")
        self.assertEqual(group["_rev"], 1)
        self.assertEqual(group["institutionId"], sent["institutionId"])
        self.assertNotIn(group["institutionName"], ("", "随便"))
        self.assertEqual([(each["brokerType"], each["accountId"], each["unitId"]) for each in group["accounts"]],
                         [(each["brokerType"], each["accountId"], each["unitId"]) for each in sent["accounts"]])
        self.assertTrue(all(each["accountName"] for each in group["accounts"]))
        self.assertEqual(group["later"], sent["later"])
        self.assertEqual(set(self.groups(client)) - set(before), {answer.new_id})
        known = {name: value for name, value in group.items() if name != "later"}
        self.assertIsNone(complaint(known))
        self.assertEqual(client.operate(GROUP, MODIFY, known).code, SUCCESS)

    def test_a_group_is_modified_by_sending_it_back(self):
        client = self.entered()
        group = self.added(client, "互通待改")
        group["later"] = "kept"
        group["groupName"] = "互通已改"
        group["accounts"].reverse()
        answer = client.operate(GROUP, MODIFY, group)
        self.assertEqual((answer.code, answer.new_id), (SUCCESS, None))
        changed = self.group(client, group["groupId"])
        self.assertEqual(changed, {**group, "_rev": 2})
        # What is absent has its default: the institution goes, and so does what the server did not know.
        bare = {key: changed[key] for key in ("_type", "_rev", "groupId", "groupName", "accounts")}
        self.assertEqual(client.operate(GROUP, MODIFY, bare).code, SUCCESS)
        emptied = self.group(client, group["groupId"])
        self.assertEqual((emptied["institutionId"], emptied["institutionName"]), (NO_INSTITUTION, ""))
        self.assertNotIn("later", emptied)
        self.assertEqual(emptied["_rev"], 3)

    def test_an_outdated_group_is_refused_and_nothing_changed(self):
        client, colleague = self.entered(), self.entered("bound")
        group = self.added(colleague, "互通争用")
        self.assertEqual(colleague.operate(GROUP, MODIFY, {**group, "groupName": "互通先到"}).code, SUCCESS)
        for operation in MODIFY, DELETE:
            self.assert_refused(client.operate(GROUP, operation, {**group, "groupName": "互通后到"}), CONFLICT, "bound")
        self.assertEqual(self.group(client, group["groupId"]), {**group, "groupName": "互通先到", "_rev": 2})
        for revision in Int64(0), Int64(3), Int64(-1):
            self.assert_refused(client.operate(GROUP, MODIFY, {**group, "_rev": revision}), CONFLICT)

    def test_a_group_is_deleted_once(self):
        client = self.entered()
        group = self.added(client, "互通待删")
        name = {"_type": group["_type"], "groupId": group["groupId"], "_rev": group["_rev"]}
        answer = client.operate(GROUP, DELETE, name)
        self.assertEqual((answer.code, answer.new_id), (SUCCESS, None))
        self.assertIsNone(self.group(client, group["groupId"]))
        self.assert_refused(client.query(CONFIG, str(group["groupId"])), NOT_FOUND)
        self.assert_refused(client.operate(GROUP, DELETE, name), NOT_FOUND)
        self.assert_refused(client.operate(GROUP, MODIFY, group), NOT_FOUND)
        again = self.added(client, "互通待删")
        self.assertGreater(again["groupId"], group["groupId"])

    def test_what_makes_no_sense_is_refused_with_its_code(self):
        client = self.entered()
        group = self.added(client, "互通占用")
        before = self.groups(client)
        new = self.new_group(client, "互通无效")
        account = new["accounts"][0]
        for record, code in (
            ({**new, "groupName": group["groupName"]}, DUPLICATE),
            ({**new, "groupName": ""}, INVALID),
            ({**new, "groupName": "a\0b"}, INVALID),
            ({**new, "accounts": []}, INVALID),
            ({**new, "accounts": [account, account]}, INVALID),
            ({**new, "accounts": [{**account, "accountId": "no such"}]}, INVALID),
            ({**new, "institutionId": 4711}, INVALID),
            ({**new, "_tag": "elsewhere"}, OUT_OF_SCOPE),
            ({"_type": "nvservice::CCategoryInfo"}, MALFORMED),
            ({"_type": "nvservice::CNobody"}, MALFORMED),
            ({"groupName": "互通无效"}, MALFORMED),
        ):
            self.assert_refused(client.operate(GROUP, ADD, record), code)
        for data_type, operation in (GROUP, 1), (GROUP, 4), (CONFIG, ADD), (CONFIG, DELETE), (EMAIL, ADD), (CATEGORY,
                                                                                                           MODIFY):
            self.assert_refused(client.operate(data_type, operation, new), UNSUPPORTED)
        self.assertEqual(self.groups(client), before)

    def test_rights_and_institution_are_the_servers_matter(self):
        admin = self.entered()
        new = self.new_group(admin, "互通无权")
        foreign = next(group for group in self.groups(admin).values() if group["institutionId"] != 1)
        viewer = self.entered("viewer")
        self.assert_refused(viewer.operate(GROUP, ADD, new), PERMISSION)
        self.assert_refused(self.entered("bound").operate(GROUP, DELETE, foreign), OUT_OF_SCOPE)
        self.assertEqual(self.group(admin, foreign["groupId"]), foreign)

    def test_one_operation_id_is_one_operation(self):
        client = self.entered()
        operation_id = str(uuid.uuid4())
        new = self.new_group(client, "互通一次")
        first = client.operate(GROUP, ADD, new, operation_id)
        self.assertEqual(first.code, SUCCESS)
        # Sent again on this connection, and on another one after a log-in.
        for again in client, self.entered():
            answer = again.operate(GROUP, ADD, new, operation_id)
            self.assertEqual((answer.code, answer.new_id), (SUCCESS, first.new_id))
        names = [group["groupName"] for group in self.groups(client).values()]
        self.assertEqual(names.count("互通一次"), 1)
        self.assert_refused(client.operate(GROUP, ADD, {**new, "groupName": "互通两次"}, operation_id), INVALID)
        # A refusal is repeated as well.
        other_id = str(uuid.uuid4())
        texts = {client.operate(GROUP, ADD, new, other_id).text for _ in range(2)}
        self.assertEqual(len(texts), 1)
        self.assertIn("互通一次", texts.pop())
        for wrong in "", "x" * 129:
            self.assert_refused(client.operate(GROUP, ADD, new, wrong), MALFORMED)

    def test_operations_of_a_connection_keep_their_order(self):
        client = self.entered()
        names = [f"互通次序{i}" for i in range(12)]
        messages = [client.operate_message(GROUP, ADD, self.new_group(client, name)) for name in names]
        look = client.query_message(GROUP)
        client.send(*messages, look)
        *added, found = client.answers(*messages, look)
        ids = [answer.new_id for answer in added]
        self.assertEqual(ids, sorted(ids))
        groups = {group["groupId"]: group["groupName"] for group in found.records}
        self.assertEqual([groups[number] for number in ids], names)

    def test_a_cancelled_operation_was_carried_out_or_not_as_it_is_answered(self):
        client = self.entered()
        new = [self.new_group(client, f"互通取消{i}") for i in range(6)]
        messages = [client.operate_message(GROUP, ADD, record) for record in new]
        client.send(*messages, *({"type": "cancel", "id": message["id"]} for message in messages))
        answers = client.answers(*messages)
        names = {group["groupName"] for group in self.groups(client).values()}
        self.assertLessEqual({answer.code for answer in answers}, {SUCCESS, CANCELLED})
        for record, answer in zip(new, answers):
            self.assertEqual(record["groupName"] in names, answer.code == SUCCESS)
        self.assertEqual(answers[-1].code, CANCELLED)


class RiskSettings(Scene):
    def config(self, client, number):
        return client.query(CONFIG, str(number)).records[0]

    def test_a_configuration_is_replaced_as_a_whole(self):
        client = self.entered()
        number = self.added(client, "互通风控")["groupId"]
        config = self.config(client, number)
        self.assertEqual((config["_rev"], config["rcRule"], config["assetsRCs"], config["emailRCs"]),
                         (1, {**config["rcRule"], "lists": []}, [], []))
        stock = client.query(SECURITY, "1").records[0]
        entry = {"securityCode": stock["securityCode"], "securityName": stock["securityName"], "direction": 0,
                 "listKind": 1}
        limit = {"ruleId": -1, "scope": 1, "assetClass": 1, "measured": 1, "base": 5, "comparison": 0,
                 "threshold": 12.5, "unit": 0, "action": 1, "remark": "互通"}
        config["rcRule"]["lists"] = [{"traderType": 1, "entries": [entry]}]
        config["assetsRCs"] = [limit]
        config["ratProofSetting"]["washTradeForbidden"] = True
        answer = client.operate(CONFIG, MODIFY, config)
        self.assertEqual((answer.code, answer.text, answer.new_id), (SUCCESS, "", None))

        saved = self.config(client, number)
        self.assertIsNone(complaint(saved))
        self.assertEqual(saved["_rev"], 2)
        self.assertEqual(saved["rcRule"]["lists"], [{"traderType": 1, "entries": [entry]}])
        self.assertTrue(saved["ratProofSetting"]["washTradeForbidden"])
        self.assertGreater(saved["assetsRCs"][0]["ruleId"], 0)
        self.assertEqual({key: saved["assetsRCs"][0][key] for key in limit if key != "ruleId"},
                         {key: limit[key] for key in limit if key != "ruleId"})
        self.assertEqual((saved["assetsRCs"][0]["enabled"], saved["assetsRCs"][0]["categoryId"]), (True, -1))

        # Another log-in has read an older state.
        self.assert_refused(self.entered().operate(CONFIG, MODIFY, config), CONFLICT, "admin")
        self.assertEqual(self.config(client, number), saved)

        # Without rcRule all lists go, without the rest the limits and the ban.
        self.assertEqual(client.operate(CONFIG, MODIFY, {"_type": saved["_type"], "_rev": saved["_rev"],
                                                         "groupId": number}).code, SUCCESS)
        wiped = self.config(client, number)
        self.assertEqual((wiped["rcRule"]["lists"], wiped["assetsRCs"]), ([], []))
        self.assertFalse(wiped["ratProofSetting"]["washTradeForbidden"])

    def test_email_rules_of_a_group(self):
        client = self.entered()
        number = self.added(client, "互通邮件")["groupId"]

        def rules(*keys):
            each = {"ruleKind": "2", "accountKey": str(number), "subject": "告警", "recipients": ["a@example.com"]}
            return {"_type": "nvservice::CustomEmailRC", "_rev": self.config(client, number)["_rev"],
                    "emailRCs": [{**each, "ruleKey": key} for key in keys]}

        self.assertEqual(client.operate(EMAIL, MODIFY, rules("一", "二", "三")).code, SUCCESS)
        stored = self.config(client, number)["emailRCs"]
        self.assertEqual([rule["ruleKey"] for rule in stored], ["一", "二", "三"])
        self.assertEqual((stored[0]["recipients"], stored[0]["enabled"]), (["a@example.com"], True))
        self.assertEqual(client.operate(EMAIL, DELETE, rules("二")).code, SUCCESS)
        self.assertEqual([rule["ruleKey"] for rule in self.config(client, number)["emailRCs"]], ["一", "三"])
        outdated = {**rules("四"), "_rev": Int64(1)}
        self.assert_refused(self.entered().operate(EMAIL, MODIFY, outdated), CONFLICT)
        self.assertEqual(client.operate(EMAIL, DELETE, rules("")).code, SUCCESS)
        self.assertEqual(self.config(client, number)["emailRCs"], [])
        self.assert_refused(client.operate(EMAIL, MODIFY, {**rules("五"), "emailRCs": []}), INVALID)


if __name__ == "__main__":
    unittest.main()
