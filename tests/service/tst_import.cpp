// SPDX-License-Identifier: Apache-2.0
#include "service/ServiceFixture.h"

#include "service/engine/UserRights.h"
#include "service/import/Importer.h"
#include "support/TestProgram.h"

#include <QFile>
#include <QTextCodec>

using namespace testservice;
using service::EImportOutcome;
using service::ImportFiles;
using service::ImportOptions;
using service::ImportReport;

class ImportTest : public ServiceTest
{
    Q_OBJECT

    static QByteArray example(const char* name)
    {
        QFile file(support::sourceFile(QStringLiteral("data/import-example/%1").arg(QLatin1String(name))));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    static ImportFiles examples()
    {
        ImportFiles files;
        files.institutions = example("institutions.csv");
        files.accounts = example("accounts.csv");
        files.products = example("products.csv");
        files.groups = example("groups.csv");
        return files;
    }

    static ImportOptions into(const char* server, const char* newTag = "")
    {
        ImportOptions options;
        options.serverName = server;
        options.newSystemTag = newTag;
        return options;
    }

    /// "文件 行 结果 原因" of the refused rows.
    static QStringList refusals(const ImportReport& report)
    {
        static const char* const files[] = {"institutions", "categories", "securities",
                                            "accounts",     "products",   "groups"};
        QStringList lines;
        for (const service::ImportRow& row : report.rows) {
            if (row.outcome == EImportOutcome::Refused) {
                lines
                    << QString("%1 %2 %3").arg(files[static_cast<int>(row.file)]).arg(row.line).arg(row.reason.c_str());
            }
        }
        return lines;
    }

private slots:
    void examplesAreImportedIntoANewServerAndCanBeUsed()
    {
        const ImportReport report = importData(m_fixture->store(), into("新分系统", "NEW"), examples());
        QVERIFY2(report.error.isSuccess(), qPrintable(refusals(report).join('\n')));
        QVERIFY(report.isStored);
        QCOMPARE(report.count(EImportOutcome::Added), 18);
        QVERIFY(report.notes.isEmpty());

        utils::NVError error;
        const auto engines = service::DataEngine::openAll(m_fixture->storePtr(), error);
        service::StoredUser boss = service::userWithEveryRight("boss");
        const std::int64_t server = m_fixture->number("SELECT id FROM sub_system WHERE system_tag = 'NEW'");
        boss.row = service::insertUser({m_fixture->store().connection(), {server, "新分系统", "NEW"}}, boss);
        const auto session = boost::make_shared<service::Session>(boss, server);
        const service::Reply groups = query(*engines.back(), session, nvservice::DataType::AccountGroup);
        QCOMPARE(groupNames(groups), (std::vector<std::string>{"稳健股票组", "溆原期货自营组"}));
        const auto first = boost::dynamic_pointer_cast<CAccountGroup>(groups.records[0]);
        QCOMPARE(first->institutionName, std::string("菡塘资产管理有限公司"));
        QCOMPARE(first->accounts.size(), std::size_t{3});
        QCOMPARE(first->accounts[0]->getKey(), std::string("NEW|2|0000456789|01"));
        QCOMPARE(first->accounts[1]->accountName, std::string("菡塘稳健一号证券户单元二,备用"));
        first->groupName = "改名";
        COMPARE_CODE(operate(*engines.back(), session, EZvDataOperation::Modify, first), EErrorCode::Success);
        QCOMPARE(m_fixture->number("SELECT count(*) FROM audit WHERE login = 'import' AND outcome = 0"), 15);
        for (const auto& record : groups.records) {
            const int id = boost::dynamic_pointer_cast<CAccountGroup>(record)->groupId;
            const int config = nvservice::DataType::GroupRiskConfig;
            QCOMPARE(query(*engines.back(), session, config, std::to_string(id)).totalCount, 1);
        }
        QCOMPARE(m_fixture->number("SELECT count(*) FROM account WHERE state_code = 5 AND account_id = '00120009'"), 1);
        QCOMPARE(m_fixture->number("SELECT count(*) FROM product WHERE excluded = 1 AND product_id = 2003"), 1);
    }

    void sameFilesAgainChangeNothing()
    {
        importData(m_fixture->store(), into("新分系统", "NEW"), examples());
        const QStringList before = m_fixture->content();
        const ImportReport report = importData(m_fixture->store(), into("新分系统"), examples());
        QVERIFY(report.error.isSuccess());
        QCOMPARE(report.count(EImportOutcome::Unchanged), 18);
        QCOMPARE(m_fixture->content(), before);
    }

    void changedRowsAreReportedAuditedAndGetANewRevision()
    {
        importData(m_fixture->store(), into("新分系统", "NEW"), examples());
        ImportFiles files;
        files.accounts = example("accounts.csv").replace("溆原期货旧户", "溆原期货新名");
        files.groups = QByteArray("账号组名称,所属机构,账号类型,账号,账号单元\n"
                                  "溆原期货自营组,101,1,00120001,\n"
                                  "稳健股票组,102,3,0600123456,\n");
        const ImportReport report = importData(m_fixture->store(), into("新分系统"), files);
        QVERIFY2(report.error.isSuccess(), qPrintable(refusals(report).join('\n')));
        QCOMPARE(report.count(EImportOutcome::Changed), 2);
        QCOMPARE(m_fixture->text("SELECT revision FROM account_group WHERE name = '稳健股票组'"), std::string("2"));
        QCOMPARE(m_fixture->text("SELECT revision FROM account_group WHERE name = '溆原期货自营组'"), std::string("1"));
        QCOMPARE(m_fixture->number("SELECT count(*) FROM audit WHERE operation = 0 AND length(before_body) > 5"), 2);
    }

    void dryRunReportsTheSameAndStoresNothing()
    {
        const QStringList before = m_fixture->content();
        ImportOptions options = into("新分系统", "NEW");
        options.dryRun = true;
        const ImportReport dry = importData(m_fixture->store(), options, examples());
        QVERIFY(dry.error.isSuccess());
        QVERIFY(!dry.isStored);
        QCOMPARE(m_fixture->content(), before);
        options.dryRun = false;
        const ImportReport real = importData(m_fixture->store(), options, examples());
        QCOMPARE(dry.rows.size(), real.rows.size());
        for (std::size_t i = 0; i < dry.rows.size(); ++i) {
            QCOMPARE(dry.rows[i].line, real.rows[i].line);
            QCOMPARE(dry.rows[i].key, real.rows[i].key);
            QCOMPARE(static_cast<int>(dry.rows[i].outcome), static_cast<int>(real.rows[i].outcome));
        }
    }

    void everyEncodingAndLineEndGivesTheSameContent_data()
    {
        const support::DataRows<QByteArray, QByteArray, QByteArray> row("codec", "prefix", "lineEnd");
        for (const char* lineEnd : {"\n", "\r\n", "\r"}) {
            const QByteArray end(lineEnd);
            const QString name = end.toHex();
            row("UTF-8 " + name, "UTF-8", {}, end);
            row("UTF-8 with mark " + name, "UTF-8", "\xEF\xBB\xBF", end);
            row("GB18030 " + name, "GB18030", {}, end);
        }
    }
    void everyEncodingAndLineEndGivesTheSameContent()
    {
        QFETCH(QByteArray, codec);
        QFETCH(QByteArray, prefix);
        QFETCH(QByteArray, lineEnd);
        const auto recoded = [&](const QByteArray& utf8) {
            QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
            const QString text = QString::fromUtf8(utf8).replace("\n", QString::fromLatin1(lineEnd));
            return QByteArray(prefix +
                              QTextCodec::codecForName(codec)->fromUnicode(text.constData(), text.size(), &state));
        };
        ServiceFixture plain;
        ServiceFixture other;
        QVERIFY(importData(plain.store(), into("新分系统", "NEW"), examples()).isStored);
        ImportFiles files = examples();
        for (auto* file : {&files.institutions, &files.accounts, &files.products, &files.groups}) {
            *file = recoded(**file);
        }
        const ImportReport report = importData(other.store(), into("新分系统", "NEW"), files);
        QVERIFY2(report.isStored, qPrintable(refusals(report).join('\n')));
        const QRegularExpression tables("^(institution|account|product|product_account|account_group_member)\\|");
        QVERIFY(plain.content().filter(tables).size() > 30);
        QCOMPARE(other.content().filter(tables), plain.content().filter(tables));
    }

    void oneBadRowStoresNothingAndEveryBadRowSaysWhy()
    {
        QVERIFY(importData(m_fixture->store(), into("新分系统", "NEW"), examples()).isStored);
        const QStringList before = m_fixture->content();
        ImportFiles files = examples();
        *files.institutions += "x,坏编号\n103,溆原证券有限责任公司\n101,再来一次\n104,\n105\n";
        *files.accounts += "火星账号,1,,,,,\n"
                           "证券账号,0000456789,,重复,102,正常,否\n"
                           "证券账号,,,没有账号,102,正常,否\n"
                           "证券账号,4.57E+11,,被改写,102,正常,否\n"
                           "证券账号,77,,机构不对,999,正常,否\n"
                           "证券账号,78,,状态不对,102,睡觉,否\n"
                           "证券账号,79,,标志不对,102,正常,也许\n";
        *files.products += "0,零号,,否,,,\n2003,菡塘储备二号,101,是,,,\n2004,溆原自营,101,否,,,\n"
                           "2005,跨机构,102,否,期货账号,00120001,\n2006,没有的账号,102,否,期货账号,nix,\n";
        *files.groups += "稳健股票组,102,证券账号,0000456789,02\n"
                         "稳健股票组,101,信用账号,0600123456,\n"
                         "跨机构组,102,期货账号,00120001,\n"
                         "销户组,101,期货账号,00120009,\n"
                         "排除组,101,股票期权账号,A000000088,\n"
                         ",101,期货账号,00120001,\n"
                         "没有的账号组,101,期货账号,nix,\n";
        const ImportReport report = importData(m_fixture->store(), into("新分系统"), files);
        QVERIFY(!report.isStored);
        QCOMPARE(static_cast<int>(report.error.code()), static_cast<int>(EErrorCode::InvalidValue));
        QCOMPARE(m_fixture->content(), before);
        const QStringList expected = {"institutions 4 “机构编号”不是有效的编号：x",
                                      "institutions 5 机构名称“溆原证券有限责任公司”已被机构101使用",
                                      "institutions 6 与第2行重复",
                                      "institutions 7 “机构名称”不能为空",
                                      "institutions 8 列数与表头不符",
                                      "accounts 9 账号类型“火星账号”无效",
                                      "accounts 10 与第3行重复",
                                      "accounts 11 “账号”不能为空",
                                      "accounts 12 账号已被电子表格改写为科学计数法：4.57E+11",
                                      "accounts 13 所属机构“999”不存在",
                                      "accounts 14 “状态”应为数字、“正常”或“已销户”：睡觉",
                                      "accounts 15 “排除”应为“是”或“否”：也许",
                                      "products 7 “产品编号”不是有效的编号：0",
                                      "products 8 同一产品的名称、所属机构或排除标志前后不一致",
                                      "products 9 产品名称“溆原自营”已被产品2002使用",
                                      "products 10 账号不属于产品的所属机构",
                                      "products 11 账号“nix”不存在",
                                      "groups 6 与第3行重复",
                                      "groups 7 同一账号组的所属机构前后不一致",
                                      "groups 8 账号“00120001”不属于账号组的所属机构",
                                      "groups 9 账号“00120009”已销户，不能加入账号组",
                                      "groups 10 账号“A000000088”不允许加入账号组",
                                      "groups 11 账号组名称不能为空",
                                      "groups 12 账号“nix”不存在"};
        QCOMPARE(refusals(report), expected);
    }

    void namesAndCodesThatNobodyCanReadAreRefused()
    {
        importData(m_fixture->store(), into("新分系统", "NEW"), examples());
        ImportFiles files;
        files.groups = QByteArray("账号组名称,所属机构,账号类型,账号\n\u3164,101,期货账号,00120001\n"
                                  "\u2800,101,期货账号,00120001\n甲\u200b组,101,期货账号,00120001\n");
        files.institutions = QByteArray("机构编号,机构名称\n9,\uffa0\n");
        files.securities = QByteArray("市场,证券代码,证券名称\nSH,60 0000,甲\nSH,\u115f,乙\n");
        const QString hidden = "不能包含控制字符或不可见字符，只能使用看得见的文字、数字、符号和空格";
        QCOMPARE(refusals(importData(m_fixture->store(), into("新分系统"), files)),
                 (QStringList{"institutions 2 “机构名称”" + hidden,
                              "securities 2 “60 0000”不是证券代码，代码只能由字母、数字和 . - _ & 组成",
                              "securities 3 “证券代码”" + hidden, "groups 2 账号组名称" + hidden,
                              "groups 3 账号组名称" + hidden, "groups 4 账号组名称" + hidden}));
    }

    void accountInAGroupCannotMoveToAnotherInstitution()
    {
        importData(m_fixture->store(), into("新分系统", "NEW"), examples());
        ImportFiles files;
        files.accounts = QByteArray("账号类型,账号,所属机构\n期货账号,00120001,102\n期货账号,00120009,102\n");
        const ImportReport report = importData(m_fixture->store(), into("新分系统"), files);
        QCOMPARE(refusals(report), QStringList{"accounts 2 账号已在账号组或产品中，不能变更所属机构"});
    }

    void productTakesNewAccountsAndAttributesWithOneAuditRow()
    {
        importData(m_fixture->store(), into("新分系统", "NEW"), examples());
        ImportFiles files;
        files.products = QByteArray("产品编号,产品名称,所属机构,排除,账号类型,账号,账号单元\n"
                                    "2001,菡塘稳健一号,102,是,证券账号,0000456789,02\n"
                                    "2001,菡塘稳健一号,102,是,证券账号,0000456789,01\n"
                                    "2002,溆原自营,101,否,期货账号,00120001,\n"
                                    "2003,菡塘储备二号,,是,期货账号,00120001,\n");
        const ImportReport report = importData(m_fixture->store(), into("新分系统"), files);
        QVERIFY2(report.isStored, qPrintable(refusals(report).join('\n')));
        QCOMPARE(report.count(EImportOutcome::Changed), 3);
        QCOMPARE(report.count(EImportOutcome::Unchanged), 1);
        QCOMPARE(m_fixture->number("SELECT count(*) FROM product_account WHERE product_id = 2001"), 4);
        QCOMPARE(m_fixture->number("SELECT excluded FROM product WHERE product_id = 2001"), 1);
        QCOMPARE(m_fixture->number("SELECT count(*) FROM product WHERE institution_id IS NULL"), 1);
        QCOMPARE(m_fixture->number("SELECT count(*) FROM audit WHERE data_type = 12224 AND operation = 0"), 2);

        files.products = QByteArray("产品编号,产品名称,所属机构\n2001,菡塘稳健一号,101\n");
        QCOMPARE(refusals(importData(m_fixture->store(), into("新分系统"), files)),
                 QStringList{"products 2 产品中已有其他机构的账号，不能变更所属机构"});
    }

    void headerMayBeEnglishInAnyOrderAndUnknownColumnsAreNamed()
    {
        ImportFiles files;
        files.accounts = QByteArray("Institution,Remark,Account ID,unit_id,account-type\n1,x,000777,,2\n");
        const ImportReport report = importData(m_fixture->store(), into("东分系统"), files);
        QVERIFY2(report.isStored, qPrintable(refusals(report).join('\n')));
        QCOMPARE(report.notes, QStringList{"列“Remark”未使用"});
        QCOMPARE(m_fixture->number("SELECT count(*) FROM account WHERE account_id = '000777' AND institution_id = 1"),
                 1);
    }

    void fileThatCannotBeReadIsRefusedAsAWhole_data()
    {
        const support::DataRows<QByteArray, QString> row("bytes", "reason");
        row("empty", {}, "文件是空的");
        row("neither encoding", "账号\xFF\xFF\n", "文件不是UTF-8或GB18030编码的文本");
        row("binary", QByteArray("PK\0\0\1", 5), "文件不是UTF-8或GB18030编码的文本");
        row("no such column", "机构编号,名字\n1,x\n", "缺少列“机构名称”");
        row("column twice", "机构编号,机构名称,机构名称\n", "列“机构名称”重复");
        row("quote without end", "机构编号,机构名称\n1,\"x\n", "第2行：引号没有结束");
        row("text behind a quote", "机构编号,机构名称\n1,\"x\"y\n", "第2行：引号后有多余的内容");
    }
    void fileThatCannotBeReadIsRefusedAsAWhole()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, reason);
        ImportFiles files;
        files.institutions = bytes;
        const ImportReport report = importData(m_fixture->store(), into("东分系统"), files);
        QVERIFY(!report.isStored);
        QCOMPARE(refusals(report), QStringList{"institutions 0 " + reason});
    }

    void serverMustExistOrBeCreated()
    {
        const QStringList before = m_fixture->content();
        QCOMPARE(static_cast<int>(importData(m_fixture->store(), into("没有"), examples()).error.code()),
                 static_cast<int>(EErrorCode::NotFound));
        QCOMPARE(static_cast<int>(importData(m_fixture->store(), into("东分系统", "X"), examples()).error.code()),
                 static_cast<int>(EErrorCode::Duplicate));
        QCOMPARE(static_cast<int>(importData(m_fixture->store(), into("别名", "E"), examples()).error.code()),
                 static_cast<int>(EErrorCode::Duplicate));
        QCOMPARE(m_fixture->content(), before);
    }

    void failureOfTheDiskStoresNothing()
    {
        int remaining = -1;
        service::StoreOptions options;
        options.faultHook = failureAfter(remaining);
        ServiceFixture fixture(options);
        const QStringList before = fixture.content();
        int failures = 0;
        for (int statement = 0;; ++statement) {
            remaining = statement;
            const ImportReport report = importData(fixture.store(), into("新分系统", "NEW"), examples());
            remaining = -1;
            if (report.isStored) {
                break;
            }
            ++failures;
            QCOMPARE(static_cast<int>(report.error.code()), static_cast<int>(EErrorCode::StorageFailure));
            QCOMPARE(fixture.content(), before);
        }
        QVERIFY(failures > 50);
    }
};

TEST_WITHOUT_WIDGETS(ImportTest)
#include "tst_import.moc"
