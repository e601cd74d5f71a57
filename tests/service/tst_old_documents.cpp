// SPDX-License-Identifier: Apache-2.0
#include "service/RiskSamples.h"
#include "service/ServiceFixture.h"
#include "support/BsonMacros.h"
#include "support/TestProgram.h"

#include "service/store/Query.h"

#include <nvservice/Codec.h>

using namespace testservice;
namespace DataType = nvservice::DataType;

class OldDocumentsTest : public ServiceTest
{
    Q_OBJECT

    /// Fields that were stored before names and texts were checked: one twice, names and texts that are no UTF-8.
    static bson::BSONObj oldFields()
    {
        return BSON("kept" << 7 << "twice" << 1 << "twice" << 2 << "text"
                           << "a\xFFz"
                           << "na\xC0me" << true << "inner"
                           << BSON("x" << "\xED\xA0\x80"
                                       << "x" << 1));
    }

    static bson::BSONObj oldFieldsRepaired()
    {
        const std::string mark = "\xEF\xBF\xBD";
        return BSON("kept" << 7 << "twice" << 1 << "text"
                           << "a" + mark + "z" << "na" + mark + "me" << true << "inner"
                           << BSON("x" << mark + mark + mark));
    }

    static void storeBytes(ServiceFixture& fixture, const char* sql, const bson::BSONObj& document, int groupId)
    {
        service::Query query(fixture.store().connection(), QString(sql));
        query.bind(QByteArray(document.objdata(), document.objsize())).bind(groupId).run();
        QCOMPARE(query.affected(), 1);
    }

    static std::string shown(const bson::BSONObj& document) { return document.toString(); }

private slots:
    void aGroupWithOldFieldsIsServedRepairedAmongTheOthers()
    {
        const GroupPtr good = m_fixture->storedGroup("好");
        const GroupPtr old = m_fixture->storedGroup("旧");
        storeBytes(*m_fixture, "UPDATE account_group SET extra = ? WHERE group_id = ?", oldFields(), old->groupId);

        const service::Reply all = m_fixture->query(DataType::AccountGroup);
        COMPARE_CODE(all, EErrorCode::Success);
        QCOMPARE(groupNames(all), (std::vector<std::string>{"好", "旧"}));
        QCOMPARE(shown(all.records.at(1)->unknownFields), shown(oldFieldsRepaired()));
        const service::Reply one = m_fixture->query(DataType::AccountGroup, std::to_string(old->groupId));
        QCOMPARE(shown(one.records.at(0)->unknownFields), shown(oldFieldsRepaired()));
        nvservice::IDataPtr decoded;
        QVERIFY(nvservice::decodeRecord(nvservice::encodeRecord(*one.records.at(0)), decoded).isSuccess());

        // What was served can be sent back, and is stored as it was served.
        COMPARE_CODE(m_fixture->operate(EZvDataOperation::Modify, decoded), EErrorCode::Success);
        service::Query stored(m_fixture->store().connection(),
                              QStringLiteral("SELECT extra FROM account_group WHERE group_id = ?"));
        QVERIFY(stored.bind(old->groupId).runAndNext());
        const QByteArray extra = stored.blob(0);
        QCOMPARE(shown(bson::BSONObj(extra.constData(), static_cast<std::size_t>(extra.size()))),
                 shown(oldFieldsRepaired()));
    }

    void aRiskConfigurationWithOldFieldsIsServedRepairedAndCanBeSaved()
    {
        const int id = m_fixture->storedGroup("组")->groupId;
        bson::BSONObjBuilder body;
        body.append("_type", "nvservice::CAccountGroupRCConfig").append("_rev", 1).append("_rev", 5);
        body.append("rcRule", BSON("lists" << BSON_ARRAY(BSON("traderType" << 1 << "entries" << bson::BSONArray()
                                                                           << "more\xFF" << 1))
                                           << "_tag"
                                           << "E"
                                           << "_tag"
                                           << "W"));
        body.appendElements(oldFields());
        storeBytes(*m_fixture, "UPDATE group_risk_config SET body = ? WHERE group_id = ?", body.obj(), id);

        const service::Reply reply = m_fixture->query(DataType::GroupRiskConfig, std::to_string(id));
        COMPARE_CODE(reply, EErrorCode::Success);
        const auto config = boost::dynamic_pointer_cast<nvservice::CAccountGroupRCConfig>(reply.records.at(0));
        QCOMPARE(shown(config->unknownFields), shown(oldFieldsRepaired()));
        QCOMPARE(config->revision(), std::int64_t{1});
        QCOMPARE(config->rcRule.lists.size(), std::size_t{1});
        QCOMPARE(shown(config->rcRule.lists[0].unknownFields), shown(BSON("more\xEF\xBF\xBD" << 1)));

        config->ratProofSetting.washTradeForbidden = true;
        COMPARE_CODE(m_fixture->operateOn(DataType::GroupRiskConfig, EZvDataOperation::Modify, config),
                     EErrorCode::Success);
        const RiskConfigPtr saved = m_fixture->config(id);
        QVERIFY(saved->ratProofSetting.washTradeForbidden);
        QCOMPARE(shown(saved->unknownFields), shown(oldFieldsRepaired()));
    }

    void suchFieldsAreRefusedOnTheWayIn_data()
    {
        const support::DataRows<QByteArray> add("document");
        const auto row = [&add](const char* name, const bson::BSONObj& document) {
            add(name, QByteArray(document.objdata(), document.objsize()));
        };
        row("twice", BSON("x" << 1 << "x" << 2));
        row("name", BSON("x\xFF" << 1));
        row("text", BSON("x" << "\xC0\x80"));
        row("inside", BSON("x" << BSON_ARRAY(BSON("y" << "\xED\xA0\x80"))));
    }
    void suchFieldsAreRefusedOnTheWayIn()
    {
        QFETCH(QByteArray, document);
        const bson::BSONObj fields =
            bson::BSONObj(document.constData(), static_cast<std::size_t>(document.size())).getOwned();
        const GroupPtr record = m_fixture->storedGroup("组");
        const RiskConfigPtr config = m_fixture->config(record->groupId);
        const auto rules = everyEmailRule(record->groupId);

        const auto added = group("新", First, {future("8001")});
        added->unknownFields = fields;
        record->accounts[0]->unknownFields = fields;
        config->rcRule.list(nvservice::EZvTraderType::Stock).unknownFields = fields;
        rules->emailRCs[0].unknownFields = fields;
        const service::Reply replies[] = {
            m_fixture->operate(EZvDataOperation::Add, added),
            m_fixture->operate(EZvDataOperation::Modify, record),
            m_fixture->operateOn(DataType::GroupRiskConfig, EZvDataOperation::Modify, config),
            m_fixture->operateOn(DataType::EmailRule, EZvDataOperation::Delete, rules),
        };
        for (const service::Reply& reply : replies) {
            COMPARE_CODE(reply, EErrorCode::Malformed);
        }
        QCOMPARE(m_fixture->text("SELECT max(name) FROM account_group"), std::string("组"));
        QCOMPARE(m_fixture->number("SELECT count(*) FROM group_risk_config_history"), 0);
        QCOMPARE(m_fixture->number("SELECT max(revision) FROM account_group"), 1);
    }
};

TEST_WITHOUT_WIDGETS(OldDocumentsTest)
#include "tst_old_documents.moc"
