// SPDX-License-Identifier: Apache-2.0
#include "service/admin/AdminFixture.h"

#include "service/import/Exporter.h"
#include "service/store/Securities.h"
#include "support/TestProgram.h"

#include <QDir>
#include <QTextCodec>

using namespace testservice;

namespace
{

const QString ExampleFiles = support::sourceFile("data/import-example");

/// A row of the report about a line of a file.
QJsonObject rowOf(const Outcome& outcome, const char* file, int line)
{
    for (const QJsonValue& row : outcome.json().object().value("rows").toArray()) {
        if (row.toObject().value("file") == QLatin1String(file) && row.toObject().value("line") == line) {
            return row.toObject();
        }
    }
    return {};
}

QJsonObject change(const char* column, const char* before, const char* after)
{
    return {{"column", column}, {"before", before}, {"after", after}};
}

/// Names that a careless writer or reader of CSV would spoil, everywhere where names may stand.
void putDifficultData(AdminFixture& fixture)
{
    service::Connection& connection = fixture.store().connection();
    service::Transaction transaction(connection, service::Transaction::EKind::Write);
    const service::ServerData data{connection, fixture.server(0)};
    service::putInstitution(data, 3, "2");
    service::putInstitution(data, 4, "带,逗号\"引号\"的机构");
    CAccountInfo info;
    info.brokerType = EZVBrokerType::Gold;
    info.accountId = "000";
    info.unitId = "007";
    info.accountName = "=\"公式\"";
    info.institutionId = 4;
    service::putAccount(data, info, 3, false);
    info.unitId = "008";
    info.accountName = "  前后空格 ";
    service::putAccount(data, info, 5, true);
    service::putProduct(data, {7, "无机构,产品", std::nullopt, true});
    service::putProduct(data, {8, "生僻字𠮷㐀产品", 4, false});
    service::putProductAccount(data, 8,
                               service::findAccounts(data, {account(EZVBrokerType::Gold, "000", "007")})[0]->row);
    nvservice::CSecurityInfo security;
    security.market = "SZ";
    security.securityCode = "000001";
    security.securityName = "平 安";
    security.traderType = static_cast<nvservice::EZvTraderType>(64);
    service::putSecurity(data, security);
    transaction.commit();
    fixture.storedGroup(" 名称有空格 ");
    fixture.exec("UPDATE account SET state_code = 5 WHERE account_id = '8001'"); // closed after it joined
    fixture.storedGroup("说\"你好\",再见", Second);
    fixture.storedGroup("无机构组", None);
    fixture.storedGroup("\uFFFD");
    fixture.storedGroup("=cmd|' /C calc'!A0");
}

} // namespace

class AdminDataTest : public AdminTest
{
    Q_OBJECT

private slots:
    void examplesAreImportedIntoANewServerOfANewDatabase()
    {
        const QTemporaryDir directory(directoryTemplate());
        const QString file = directory.filePath("new.db");
        const QStringList import = {"import",       "--store", file,          "--server",  "新分系统",
                                    "--new-server", "NEW",     "--directory", ExampleFiles};
        Outcome outcome = runAdmin(import + QStringList{"--dry-run"});
        COMPARE_OUTPUT(outcome, 0, "账号 第3行 新增 0000456789\n");
        QVERIFY(outcome.output.endsWith("：未导入\n"));
        QVERIFY2(!QFile::exists(file), "a dry run leaves no database behind");

        outcome = runAdmin(import + QStringList{"--as", "boss"});
        COMPARE_EXIT(outcome, 0);
        QCOMPARE(outcome.output, QString("新增 28，变更 0，不变 0，错误 0：已导入\n"));
        COMPARE_EXIT(runAdmin({"user", "add", "li", "--store", file}, "geheim-01\n"), 0);
        QVERIFY(support::RealService(file).engine().logIn("li", "geheim-01").error.isSuccess());

        outcome = runAdmin(import);
        COMPARE_ERROR(outcome, 1, "分系统“新分系统”已存在");
    }

    void dryRunShowsWhatEveryRowWouldChange()
    {
        m_fixture->storedGroup("组");
        writeFile(m_fixture->path("institutions.csv"), "机构编号,机构名称\n1,甲机构\n2,乙机构（新）\n3,丙机构\nx,坏\n");
        writeFile(m_fixture->path("accounts.csv"), "账号类型,账号,账号名称,所属机构,状态\n"
                                                   "期货账号,8001,户名8001,1,已销户\n"
                                                   "期货账号,8002,户名8002,1,正常\n");
        writeFile(m_fixture->path("groups.csv"),
                  "账号组名称,所属机构,账号类型,账号,账号单元\n组,1,期货账号,8002,\n组,1,证券账号,0010,01\n");
        const QStringList before = m_fixture->content();
        const Outcome outcome = m_fixture->run(QStringList{"import", "--server", "E", "--dry-run", "--json",
                                                           "--directory", QFileInfo(m_fixture->path("x")).path()});
        COMPARE_EXIT(outcome, 1);
        QCOMPARE(m_fixture->content(), before);
        const QJsonObject json = outcome.json().object();
        QCOMPARE(json.value("stored"), QJsonValue(false));
        QCOMPARE(json.value("added"), QJsonValue(1));
        QCOMPARE(json.value("changed"), QJsonValue(4));
        QCOMPARE(json.value("unchanged"), QJsonValue(2));
        QCOMPARE(json.value("refused"), QJsonValue(1));
        QCOMPARE(rowOf(outcome, "institutions", 2).value("outcome").toString(), QString("unchanged"));
        QCOMPARE(rowOf(outcome, "institutions", 3).value("changes").toArray(),
                 QJsonArray{change("机构名称", "乙机构", "乙机构（新）")});
        QCOMPARE(rowOf(outcome, "institutions", 4).value("outcome").toString(), QString("added"));
        QCOMPARE(rowOf(outcome, "institutions", 5).value("reason").toString(), QString("“机构编号”不是有效的编号：x"));
        QCOMPARE(rowOf(outcome, "accounts", 2).value("changes").toArray(),
                 QJsonArray{change("状态", "正常", "已销户")});
        QCOMPARE(rowOf(outcome, "groups", 2).value("changes").toArray(),
                 (QJsonArray{change("账号", "期货账号 8001", ""), change("账号", "", "期货账号 8002"),
                             change("账号", "", "证券账号 0010-01")}));
        const Outcome text = m_fixture->run(
            QStringList{"import", "--server", "E", "--dry-run", "--institutions", m_fixture->path("institutions.csv")});
        QVERIFY2(text.output.contains("机构 第3行 变更 乙机构（新）\n    机构名称：“乙机构” → “乙机构（新）”\n"),
                 qPrintable(text.output));
    }

    void badRowStoresNothingAndIsNamed()
    {
        writeFile(m_fixture->path("bad.csv"), "机构编号,机构名称\n7,好\nx,坏\n");
        const QStringList before = m_fixture->content();
        const Outcome outcome =
            m_fixture->run(QStringList{"import", "--server", "E", "--institutions", m_fixture->path("bad.csv")});
        COMPARE_OUTPUT(outcome, 1, "机构 第3行 错误 x");
        QVERIFY(!outcome.output.contains("第2行"));
        QVERIFY(outcome.errors.contains("未导入任何数据"));
        QCOMPARE(m_fixture->content(), before);
    }

    void changesAreAuditedInTheNameOfTheAdministrator()
    {
        writeFile(m_fixture->path("i.csv"), "机构编号,机构名称\n7,好\n");
        COMPARE_EXIT(m_fixture->run(QStringList{"import", "--server", "E", "--as", "boss", "--institutions",
                                                m_fixture->path("i.csv")}),
                     0);
        QCOMPARE(m_fixture->audit(1), QStringList{toolUserAsBoss() + " 2 institution|7 0"});
    }

    void whatIsExportedCanBeImportedAgainAndChangesNothing_data()
    {
        const support::DataRows<QStringList> row("format");
        row("UTF-8", {"--encoding", "utf-8"});
        row("UTF-8 with mark", {"--encoding", "utf-8-bom"});
        row("GB18030", {"--encoding", "gb18030"});
        row("for spreadsheets", {"--spreadsheet"});
    }
    void whatIsExportedCanBeImportedAgainAndChangesNothing()
    {
        QFETCH(QStringList, format);
        putDifficultData(*m_fixture);
        const QString directory = m_fixture->path("out");
        COMPARE_EXIT(m_fixture->run(QStringList{"export", "--server", "E", "--directory", directory} + format), 0);
        QCOMPARE(QDir(directory).entryList(QDir::Files),
                 (QStringList{"accounts.csv", "categories.csv", "groups.csv", "institutions.csv", "products.csv",
                              "securities.csv"}));
        const QStringList before = m_fixture->content();
        const Outcome again =
            m_fixture->run(QStringList{"import", "--server", "E", "--json", "--directory", directory});
        COMPARE_EXIT(again, 0);
        const QJsonObject report = again.json().object();
        QCOMPARE(report.value("unchanged"), QJsonValue(4 + 3 + 1 + 10 + 2 + 5));
        QCOMPARE(report.value("rows").toArray().size(), report.value("unchanged").toInt());
        QCOMPARE(m_fixture->content(), before);
    }

    void exportFillsAnotherServerWithTheSame_data()
    {
        const support::DataRows<QStringList, QStringList> row("before", "server");
        row("that the import creates", {}, {"--server", "新", "--new-server", "N"});
        row("that is empty so far", {"server", "add", "新", "N"}, {"--server", "N"});
    }
    void exportFillsAnotherServerWithTheSame()
    {
        QFETCH(QStringList, before);
        QFETCH(QStringList, server);
        putDifficultData(*m_fixture);
        const QString first = m_fixture->path("first");
        const QString second = m_fixture->path("second");
        COMPARE_EXIT(
            m_fixture->run(QStringList{"export", "--server", "E", "--directory", first, "--encoding", "gb18030"}), 0);
        if (!before.isEmpty()) {
            COMPARE_EXIT(m_fixture->run(before), 0);
        }
        COMPARE_EXIT(m_fixture->run(QStringList{"import", "--directory", first} + server), 0);
        COMPARE_EXIT(
            m_fixture->run(QStringList{"export", "--server", "N", "--directory", second, "--encoding", "gb18030"}), 0);
        const QStringList names = QDir(first).entryList(QDir::Files);
        QCOMPARE(names.size(), 6);
        for (const QString& name : names) {
            QCOMPARE(readFile(second + '/' + name), readFile(first + '/' + name));
        }
    }

    void encodingsAreWhatTheirNamesSay()
    {
        const auto exported = [this](const QString& encoding) {
            const QString name = m_fixture->path("x.csv");
            const Outcome outcome = m_fixture->run(
                QStringList{"export", "--server", "E", "--institutions", name, "--force", "--encoding", encoding});
            return outcome.exitCode == 0 ? readFile(name) : outcome.errors.toUtf8();
        };
        const QString text = "机构编号,机构名称\r\n1,甲机构\r\n2,乙机构\r\n";
        QCOMPARE(exported("utf-8"), text.toUtf8());
        QCOMPARE(exported("utf-8-bom"), QByteArray("\xEF\xBB\xBF") + text.toUtf8());
        QCOMPARE(QTextCodec::codecForName("GB18030")->toUnicode(exported("gb18030")), text);
        QVERIFY(exported("latin1").contains("--encoding 应为"));
    }

    void spreadsheetFormKeepsZeros()
    {
        const QString name = m_fixture->path("x.csv");
        COMPARE_EXIT(m_fixture->run(QStringList{"export", "--server", "E", "--accounts", name, "--spreadsheet"}), 0);
        QVERIFY(readFile(name).contains("证券账号,=\"0010\",=\"01\",户名0010,1,正常,否\r\n"));
    }

    void exportReplacesNothingUnlessForced()
    {
        const QString name = m_fixture->path("x.csv");
        writeFile(name, "mine");
        const QStringList arguments = {"export", "--server", "E", "--institutions", name};
        COMPARE_ERROR(m_fixture->run(arguments), 1, "文件已存在");
        QCOMPARE(readFile(name), QByteArray("mine"));
        COMPARE_EXIT(m_fixture->run(arguments + QStringList{"--force"}), 0);
        QVERIFY(readFile(name).startsWith("机构编号"));
        QCOMPARE(beside(name), QStringList());
    }

    void exportThatCannotWriteOneFileLeavesNone()
    {
        COMPARE_ERROR(
            m_fixture->run(QStringList{"export", "--server", "E", "--institutions", m_fixture->path("good.csv"),
                                       "--accounts", m_fixture->path("no/such/directory.csv")}),
            1, "无法写入");
        QVERIFY(!QFile::exists(m_fixture->path("good.csv")));
        QCOMPARE(beside(m_fixture->path("good.csv")), QStringList());
    }

    void categoriesMayComeInAnyOrder()
    {
        writeFile(m_fixture->path("c.csv"), "分类编号,分类名称,分类类型,系统类型,上级分类\n"
                                            "103,孙,0,1,102\n102,子,0,1,101\n101,父,2,1,\n11,股票,0,1,101\n");
        const Outcome outcome =
            m_fixture->run(QStringList{"import", "--server", "E", "--json", "--categories", m_fixture->path("c.csv")});
        COMPARE_EXIT(outcome, 0);
        QCOMPARE(outcome.json().object().value("added"), QJsonValue(3));
        QCOMPARE(rowOf(outcome, "categories", 5).value("changes").toArray(), QJsonArray{change("上级分类", "", "101")});
        QCOMPARE(m_fixture->column("SELECT CAST(category_id AS TEXT) || '<' || coalesce(CAST(parent_id AS TEXT), '')"
                                   " FROM category WHERE server_id = 1 ORDER BY category_id"),
                 std::string("11<101,12<,13<,101<,102<101,103<102"));
        QCOMPARE(m_fixture->number("SELECT count(*) FROM audit WHERE data_type = 614"), 4);
    }

    void encodingOfAFileIsDetectedOrNamed()
    {
        writeFile(m_fixture->path("s.csv"), QTextCodec::codecForName("GB18030")->fromUnicode(
                                                "market,security_code,security_name\nSH,600519,茅台\n"));
        const QStringList arguments = {"import", "--server", "E", "--securities", m_fixture->path("s.csv")};
        COMPARE_OUTPUT(m_fixture->run(arguments), 1, "请用 --encoding 指定");
        COMPARE_EXIT(m_fixture->run(arguments + QStringList{"--encoding", "utf-16"}), 2);
        COMPARE_EXIT(m_fixture->run(arguments + QStringList{"--encoding", "gb18030"}), 0);
        QCOMPARE(m_fixture->text("SELECT name FROM security WHERE security_code = '600519'"), std::string("茅台"));
    }

    void badCategoriesAndSecuritiesAreRefused()
    {
        writeFile(m_fixture->path("c.csv"),
                  "分类编号,分类名称,系统类型,上级分类\n"
                  "101,甲,1,102\n102,乙,1,101\n103,丙,1,999\n104,,1,\n105,丁,x,\n11,股票,1,11\n");
        writeFile(m_fixture->path("s.csv"), "市场,证券代码,证券名称,系统类型,交易类型\n"
                                            "SZ,000001,好,1,证券\nSZ,000001,又,1,\nSZ,六百,坏,1,\nSZ,1E+5,坏,1,\n"
                                            "SZ,2,坏,1,3\n,3,坏,1,\nSZ,4,坏,-1,\n");
        const QStringList before = m_fixture->content();
        const Outcome outcome =
            m_fixture->run(QStringList{"import", "--server", "E", "--categories", m_fixture->path("c.csv"),
                                       "--securities", m_fixture->path("s.csv")});
        COMPARE_EXIT(outcome, 1);
        QCOMPARE(outcome.output.split('\n').filter("错误 ").join('\n'),
                 QString("证券分类 第2行 错误 101 上级分类形成循环\n"
                         "证券分类 第3行 错误 102 上级分类形成循环\n"
                         "证券分类 第4行 错误 103 上级分类“999”不存在\n"
                         "证券分类 第5行 错误 104 “分类名称”不能为空\n"
                         "证券分类 第6行 错误 105 “系统类型”应为数字：x\n"
                         "证券分类 第7行 错误 11 上级分类形成循环\n"
                         "证券 第3行 错误 000001 与第2行重复\n"
                         "证券 第4行 错误 六百 “六百”不是证券代码，代码只能由字母、数字和 . - _ & 组成\n"
                         "证券 第5行 错误 1E+5 证券代码已被电子表格改写为科学计数法：1E+5\n"
                         "证券 第6行 错误 2 交易类型“3”无效\n"
                         "证券 第7行 错误 3 “市场”不能为空\n"
                         "证券 第8行 错误 4 “系统类型”应为数字：-1\n"
                         "新增 1，变更 0，不变 0，错误 12：未导入"));
        QCOMPARE(m_fixture->content(), before);
    }

    void securitiesTakeNewValues()
    {
        writeFile(m_fixture->path("s.csv"), "市场,证券代码,证券名称,系统类型,交易类型\nSZ,000001,旧名,1,证券\n");
        const QStringList arguments = {"import", "--server", "E", "--json", "--securities", m_fixture->path("s.csv")};
        COMPARE_EXIT(m_fixture->run(arguments), 0);
        writeFile(m_fixture->path("s.csv"), "市场,证券代码,证券名称,系统类型,交易类型\nSZ,000001,新名,1,任意\n");
        const Outcome outcome = m_fixture->run(arguments);
        COMPARE_EXIT(outcome, 0);
        QCOMPARE(rowOf(outcome, "securities", 2).value("changes").toArray(),
                 (QJsonArray{change("证券名称", "旧名", "新名"), change("交易类型", "证券", "任意")}));
        QCOMPARE(m_fixture->text("SELECT security_code || name || CAST(trader_type AS TEXT) FROM security"),
                 std::string("000001新名0"));
    }

    void numberOfAnInstitutionGoesBeforeANameThatLooksLikeOne()
    {
        m_fixture->exec("UPDATE institution SET name = '2' WHERE institution_id = 1");
        writeFile(m_fixture->path("a.csv"), "账号类型,账号,所属机构\n期货账号,77,2\n");
        COMPARE_EXIT(m_fixture->run(QStringList{"import", "--server", "E", "--accounts", m_fixture->path("a.csv")}), 0);
        QCOMPARE(m_fixture->number("SELECT institution_id FROM account WHERE account_id = '77'"), 2);
    }

    void filesHaveToBeNamedAndReadable()
    {
        COMPARE_EXIT(m_fixture->run("import --server E"), 2);
        COMPARE_EXIT(m_fixture->run("import --server E --accounts /no/such/file.csv"), 2);
        COMPARE_EXIT(m_fixture->run(QStringList{"import", "--server", "E", "--directory", m_fixture->path("none")}), 2);
        COMPARE_EXIT(m_fixture->run("export --server E"), 2);
    }
};

TEST_WITHOUT_WIDGETS(AdminDataTest)
#include "tst_admin_data.moc"
