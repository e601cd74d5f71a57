# SPDX-License-Identifier: Apache-2.0
"""Every query, its records judged by the document."""

import unittest

from documented import CLASSES, complaint
from scene import (ACCOUNT, CANCELLED, CATEGORY, CONFIG, EMAIL, GROUP, INSTITUTION, INVALID, NOT_FOUND, OUT_OF_SCOPE,
                   PRODUCT, SECURITY, SUCCESS, UNSUPPORTED, Scene)


class Queries(Scene):
    def records(self, client, data_type, key, name):
        answer = client.query(data_type, key)
        self.assertEqual((answer.code, answer.text), (SUCCESS, ""))
        self.assertEqual(answer.total, len(answer.records))
        self.assertIsNone(answer.document)
        for record in answer.records:
            self.assertEqual(record["_type"], f"nvservice::{name}")
            self.assertEqual(record["_tag"], client.welcome["systemTag"])
            self.assertIsNone(complaint(record))
        return answer.records

    def test_the_document_has_the_classes(self):
        self.assertGreaterEqual(len(CLASSES), 19)
        self.assertEqual(
            list(CLASSES["CAccountGroup"].items()),
            [("groupId", "int32"), ("groupName", "text"), ("accounts", "array of CAccountInfo"),
             ("institutionId", "int32"), ("institutionName", "text")])
        wrong = {"_type": "nvservice::CAccountGroup", "accounts": [{"brokerType": 3}, {"brokerType": "3"}]}
        self.assertEqual(complaint(wrong), "record.accounts.1.brokerType is 3, none of "
                         + complaint(wrong).rpartition("none of ")[2])
        self.assertIn("is not in the document", complaint({"_type": "nvservice::CAccountGroup", "color": 1}))

    def test_groups(self):
        client = self.entered()
        groups = self.records(client, GROUP, "", "CAccountGroup")
        self.assertGreater(len(groups), 3)
        self.assertEqual(len({group["groupId"] for group in groups}), len(groups))
        for group in groups:
            self.assertGreaterEqual(group["_rev"], 1)
            self.assertNotEqual(group["groupName"], "")
            self.assertGreater(len(group["accounts"]), 0)
            for account in group["accounts"]:
                self.assertEqual(account["_tag"], group["_tag"])
                self.assertNotEqual(account["accountId"], "")
        one = groups[1]
        self.assertEqual(self.records(client, GROUP, str(one["groupId"]), "CAccountGroup"), [one])
        self.assertEqual(self.records(client, GROUP, "999999", "CAccountGroup"), [])
        for key in "x", "1 ", "01", "1\0":
            self.assert_refused(client.query(GROUP, key), INVALID)

    def test_accounts(self):
        client = self.entered()
        accounts = self.records(client, ACCOUNT, "", "CKolmAccountInfo")
        self.assertGreater(len(accounts), 50)
        names = [(each["account"]["brokerType"], each["account"]["accountId"], each["account"]["unitId"])
                 for each in accounts]
        self.assertEqual(len(set(names)), len(names))
        self.assertTrue(any(each["stateCode"] == 5 for each in accounts))
        members = {(account["brokerType"], account["accountId"], account["unitId"])
                   for group in self.groups(client).values() for account in group["accounts"]}
        self.assertLessEqual(members, set(names))

    def test_products(self):
        client = self.entered()
        lists = self.records(client, PRODUCT, "", "CKolmProductsResp")
        self.assertGreaterEqual(len(lists), 1)
        products = [product for each in lists for product in each["products"]]
        self.assertGreater(len(products), 1)
        self.assertEqual({product["_type"] for product in products}, {"nvservice::CProductInfo"})
        self.assertTrue(any(product["accounts"] for product in products))

    def test_categories(self):
        client = self.entered()
        categories = self.records(client, CATEGORY, "-1_-1", "CCategoryInfo")
        self.assertEqual(self.records(client, CATEGORY, "", "CCategoryInfo"), categories)
        numbers = {each["categoryId"] for each in categories}
        self.assertEqual(len(numbers), len(categories))
        self.assertLessEqual({each["parentId"] for each in categories}, numbers | {-1})
        self.assert_refused(client.query(CATEGORY, "1"), INVALID)

    def test_institutions(self):
        client = self.entered()
        institutions = self.records(client, INSTITUTION, "", "CInstitutionInfo")
        names = {each["institutionId"]: each["name"] for each in institutions}
        for group in self.groups(client).values():
            self.assertEqual(group["institutionName"], names.get(group["institutionId"], ""))
        bound = self.entered("bound")
        self.assertEqual([each["institutionId"] for each in self.records(bound, INSTITUTION, "", "CInstitutionInfo")],
                         [1])

    def test_securities(self):
        client = self.entered()
        securities = self.records(client, SECURITY, "", "CSecurityInfo")
        stocks = self.records(client, SECURITY, "1", "CSecurityInfo")
        self.assertEqual(stocks, [each for each in securities if each["traderType"] in (0, 1)])
        self.assertTrue(0 < len(stocks) < len(securities))
        self.assert_refused(client.query(SECURITY, "stocks"), INVALID)

    def test_risk_configurations(self):
        client = self.entered()
        filled = 0
        for number in self.groups(client):
            config, = self.records(client, CONFIG, str(number), "CAccountGroupRCConfig")
            self.assertEqual(config["groupId"], number)
            self.assertGreaterEqual(config["_rev"], 1)
            filled += 1 if config["rcRule"]["lists"] or config["assetsRCs"] else 0
        self.assertGreater(filled, 0)
        self.assert_refused(client.query(CONFIG, "999999"), NOT_FOUND)
        for key in "", "x":
            self.assert_refused(client.query(CONFIG, key), INVALID)

    def test_what_cannot_be_queried(self):
        client = self.entered()
        for data_type in 0, 1, EMAIL, 2**31 - 1, -1:
            self.assert_refused(client.query(data_type), UNSUPPORTED)

    def test_a_bound_user_sees_one_institution(self):
        bound = self.entered("bound")
        self.added(bound, "互通本机构")
        everything = self.groups(self.entered())
        own = self.groups(bound)
        self.assertEqual({group["institutionId"] for group in own.values()}, {1})
        self.assertEqual(set(own), {number for number, group in everything.items() if group["institutionId"] == 1})
        foreign = next(number for number in everything if number not in own)
        self.assertEqual(bound.query(GROUP, str(foreign)).records, [])
        self.assert_refused(bound.query(CONFIG, str(foreign)), OUT_OF_SCOPE)

    def test_a_cancelled_query_ends_with_its_own_code_and_costs_nobody_else(self):
        client = self.entered()
        wanted = client.query(SECURITY).records
        queries = [client.query_message(SECURITY) for _ in range(40)]
        # The last ones wait for those before them.
        client.send(*queries, {"type": "cancel", "id": queries[-1]["id"]}, {"type": "cancel", "id": queries[-2]["id"]},
                    {"type": "cancel", "id": client.next_id()})
        answers = client.answers(*queries)
        for answer in answers[:-2]:
            self.assertEqual(answer.records, wanted)
        for answer in answers[-2:]:
            self.assert_refused(answer, CANCELLED)
        # An answer that has ended stays as it was.
        client.send({"type": "cancel", "id": queries[0]["id"]})
        self.assert_alive(client)


if __name__ == "__main__":
    unittest.main()
