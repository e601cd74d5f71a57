// SPDX-License-Identifier: Apache-2.0
#include "service/ServiceFixture.h"

#include "service/import/Exporter.h"
#include "support/TestProgram.h"

#include <rapidcheck.h>

#include <QTextCodec>

using namespace testservice;
using service::CsvFormat;
using service::ECsvEncoding;
using service::EImportFile;
using service::EImportOutcome;
using service::ImportFiles;
using service::ImportOptions;
using service::ImportReport;

namespace
{

constexpr std::pair<EImportFile, std::optional<QByteArray> ImportFiles::*> AllFiles[] = {
    {EImportFile::Institutions, &ImportFiles::institutions}, {EImportFile::Categories, &ImportFiles::categories},
    {EImportFile::Securities, &ImportFiles::securities},     {EImportFile::Accounts, &ImportFiles::accounts},
    {EImportFile::Products, &ImportFiles::products},         {EImportFile::Groups, &ImportFiles::groups}};

ImportFiles exported(ServiceFixture& fixture, const CsvFormat& format)
{
    ImportFiles files;
    for (const auto& [file, content] : AllFiles) {
        files.*content = service::exportData({fixture.store().connection(), fixture.server(0)}, file, format).bytes;
    }
    return files;
}

ImportReport imported(ServiceFixture& fixture, const ImportFiles& files,
                      utils::ETextEncoding encoding = utils::ETextEncoding::Detected)
{
    ImportOptions options;
    options.serverName = "东分系统";
    options.encoding = encoding;
    return importData(fixture.store(), options, files);
}

/// What was refused, or changed although it is the same.
QStringList differences(const ImportReport& report)
{
    QStringList lines;
    for (const service::ImportRow& row : report.rows) {
        if (row.outcome != EImportOutcome::Unchanged) {
            lines << QString("%1 %2 %3").arg(row.line).arg(row.key.c_str(), row.reason.c_str());
        }
    }
    return lines;
}

const std::vector<CsvFormat>& allFormats()
{
    static const std::vector<CsvFormat> formats = {
        {ECsvEncoding::Utf8, false}, {ECsvEncoding::Utf8WithMark, false}, {ECsvEncoding::Gb18030, false},
        {ECsvEncoding::Utf8, true},  {ECsvEncoding::Utf8WithMark, true},  {ECsvEncoding::Gb18030, true}};
    return formats;
}

/// Names that pass the rules and that a careless writer or reader would spoil.
rc::Gen<std::string> names()
{
    static const std::vector<std::string> pieces = {"=", "+",      "-",   "@",  "'",    "\"",   "=\"",  ",",  ";",
                                                    " ", "0",      "007", "a",  "招商", "证券", "汽车", "𠮷", "\uFFFD",
                                                    "é", "\u3000", "＝",  "＋", "－",   "＠",   "﹦",   "−"};
    return rc::gen::map(rc::gen::container<std::vector<std::string>>(8, rc::gen::elementOf(pieces)),
                        [](const std::vector<std::string>& chosen) {
                            std::string name;
                            for (const std::string& piece : chosen) {
                                name += piece;
                            }
                            return name;
                        });
}

} // namespace

class ExportTest : public ServiceTest
{
    Q_OBJECT

private slots:
    void whateverNamesThereAreAnExportIsImportedAsItWas()
    {
        int number = 0;
        QVERIFY(rc::check("export and import", [&] {
            const auto name = [&number] { return *names() + std::to_string(++number) + *names(); };
            service::Connection& connection = m_fixture->store().connection();
            {
                service::Transaction transaction(connection, service::Transaction::EKind::Write);
                const service::ServerData data{connection, m_fixture->server(0)};
                service::putInstitution(data, First, name());
                CAccountInfo info = *account(EZVBrokerType::Gold, "000", "007");
                info.accountName = name();
                info.institutionId = First;
                service::putAccount(data, info, 0, false);
                service::putProduct(data, {7, name(), First, false});
                transaction.commit();
            }
            m_fixture->storedGroup(name());
            const QStringList before = m_fixture->content();
            const ImportReport report = imported(*m_fixture, exported(*m_fixture, *rc::gen::elementOf(allFormats())));
            RC_ASSERT(differences(report) == QStringList());
            RC_ASSERT(report.isStored);
            RC_ASSERT(m_fixture->content() == before);
        }));
    }

    void namesThatNewOnesMayNotHaveStay()
    {
        for (const char* name : {"a\tb", "a\r\nb", "\u200B", "\t=x", " ", ""}) {
            m_fixture->storedGroup(name);
        }
        for (const CsvFormat& format : allFormats()) {
            const ImportReport report = imported(*m_fixture, exported(*m_fixture, format));
            QCOMPARE(differences(report), QStringList());
            QCOMPARE(report.count(EImportOutcome::Unchanged), 2 + 3 + 8 + 6);
        }
    }

    void groupsWithClosedAccountsFillANewServer()
    {
        m_fixture->storedGroup("甲组");
        m_fixture->storedGroup("乙组", Second);
        m_fixture->exec("UPDATE account SET state_code = 5 WHERE account_id = '8001'");
        m_fixture->exec("UPDATE account SET excluded = 1 WHERE account_id = '9001'");
        const ImportFiles files = exported(*m_fixture, {});
        ImportOptions options;
        options.serverName = "新分系统";
        options.newSystemTag = "NEW";
        const ImportReport report = importData(m_fixture->store(), options, files);
        QVERIFY2(report.isStored, qPrintable(differences(report).join('\n')));
        const service::SubSystem server{m_fixture->number("SELECT id FROM sub_system WHERE system_tag = 'NEW'"),
                                        "新分系统", "NEW"};
        for (const auto& [file, content] : AllFiles) {
            QCOMPARE(service::exportData({m_fixture->store().connection(), server}, file, {}).bytes, *(files.*content));
        }
    }

    void nothingInAFileForSpreadsheetsIsAFormula()
    {
        m_fixture->storedGroup("=cmd|' /C calc'!A0");
        m_fixture->storedGroup("＋甲");
        const QByteArray groups = *exported(*m_fixture, {ECsvEncoding::Utf8, true}).groups;
        QCOMPARE(QString(groups), QString("账号组名称,所属机构,账号类型,账号,账号单元\r\n"
                                          "'=cmd|' /C calc'!A0,1,期货账号,=\"8001\",\r\n"
                                          "'＋甲,1,期货账号,=\"8001\",\r\n"));
    }

    void everyFileWithItsHeaderTellsItsEncoding()
    {
        for (const CsvFormat& format : allFormats()) {
            const ImportFiles files = exported(*m_fixture, format);
            for (const auto& [file, content] : AllFiles) {
                const auto encoding = format.encoding == ECsvEncoding::Gb18030 ? utils::ETextEncoding::Gb18030
                                                                               : utils::ETextEncoding::Utf8;
                QString expected;
                QVERIFY(utils::decodeText(*(files.*content), encoding, expected).isSuccess());
                QString text;
                QVERIFY(utils::decodeText(*(files.*content), utils::ETextEncoding::Detected, text).isSuccess());
                QCOMPARE(text, expected);
            }
        }
    }

    void aFileThatMayBeInEitherEncodingIsRefusedUntilItIsNamed()
    {
        ImportFiles files;
        files.institutions =
            QTextCodec::codecForName("GB18030")->fromUnicode("institution_id,institution_name\n7,朔原证券\n");
        const QStringList before = m_fixture->content();
        ImportReport report = imported(*m_fixture, files);
        QVERIFY(!report.isStored);
        QCOMPARE(differences(report),
                 QStringList{"0  文件既可以读作UTF-8，也可以读作GB18030编码的文本，请用 --encoding 指定"});
        QCOMPARE(m_fixture->content(), before);
        report = imported(*m_fixture, files, utils::ETextEncoding::Gb18030);
        QVERIFY(report.isStored);
        QCOMPARE(m_fixture->text("SELECT name FROM institution WHERE institution_id = 7"), std::string("朔原证券"));
        report = imported(*m_fixture, files, utils::ETextEncoding::Utf8);
        QCOMPARE(m_fixture->text("SELECT name FROM institution WHERE institution_id = 7"), std::string("˷ԭ֤ȯ"));
    }
};

TEST_WITHOUT_WIDGETS(ExportTest)
#include "tst_export.moc"
