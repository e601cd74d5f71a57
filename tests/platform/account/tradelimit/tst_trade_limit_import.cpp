// SPDX-License-Identifier: Apache-2.0
#include "support/TestProgram.h"
#include "tradelimit/TradeLimitImport.h"

using namespace QAV;
using nvservice::EZVRCDirection;
using nvservice::EZVRCListKind;
using nvservice::EZvTraderType;

/// Texts that come from a spreadsheet.
class TradeLimitImportTest : public QObject
{
    Q_OBJECT

    /// One line per row: line number, code, accepted, result.
    static QStringList report(const TradeLimitImport& import)
    {
        QStringList lines;
        for (const TradeLimitImportRow& row : import.rows) {
            lines << QStringLiteral("%1 %2 %3 %4").arg(row.line).arg(row.code, row.accepted ? "+" : "-", row.result);
        }
        return lines;
    }

    static TradeLimitImport read(const QString& text, const CTradeLimitBook& book, QChar separator = ',',
                                 const TradeLimitImportDefaults& defaults = {})
    {
        return readTradeLimits(text, separator, book, defaults);
    }

private slots:
    void rowsWithoutAHeaderAreCodeNameListDirection()
    {
        CTradeLimitBook book(EZvTraderType::Stock);
        const TradeLimitImport import = read("000001\t平安银行\t白名单\t买入\n600000\t浦发银行\t黑\tsell", book, '\t');
        QCOMPARE(report(import), (QStringList{"1 000001 + 加入白名单", "2 600000 + 加入黑名单"}));
        QCOMPARE(import.entries[0].securityCode, std::string("000001"));
        QCOMPARE(import.entries[0].securityName, std::string("平安银行"));
        QVERIFY(import.entries[0].listKind == EZVRCListKind::White);
        QVERIFY(import.entries[0].direction == EZVRCDirection::Buy);
        QVERIFY(import.entries[1].direction == EZVRCDirection::Sell);
    }

    void aHeaderSaysWhatStandsWhere()
    {
        CTradeLimitBook book(EZvTraderType::Stock);
        const TradeLimitImport import = read("方向,备注,名单,证券代码\n卖出,x,白名单,600000\n", book);
        QCOMPARE(report(import), QStringList("2 600000 + 加入白名单"));
        QVERIFY(import.entries[0].direction == EZVRCDirection::Sell);
        QVERIFY(import.entries[0].securityName.empty());
    }

    void whatARowDoesNotSayIsTakenFromTheDefaults()
    {
        CTradeLimitBook book(EZvTraderType::Stock);
        TradeLimitImportDefaults defaults;
        defaults.entry.listKind = EZVRCListKind::White;
        defaults.entry.direction = EZVRCDirection::Buy;
        defaults.nameOf = [](const QString& code) { return code == "600000" ? QString("浦发银行") : QString(); };
        const TradeLimitImport import = read("600000\n600001", book, ',', defaults);
        QCOMPARE(report(import), (QStringList{"1 600000 + 加入白名单", "2 600001 + 加入白名单"}));
        QCOMPARE(import.entries[0].securityName, std::string("浦发银行"));
        QVERIFY(import.entries[1].securityName.empty());
        QVERIFY(import.entries[1].direction == EZVRCDirection::Buy);
    }

    void eachRowHasItsOwnResult()
    {
        CTradeLimitBook book(EZvTraderType::Stock);
        nvservice::CTradeLimitEntry present;
        present.securityCode = "600000";
        present.listKind = EZVRCListKind::White;
        book.load({present});
        const QString text = "600000,,黑名单\n600000,,白名单\n600001,,灰名单\n600002,,,向上\n,无代码\n浦发\n" +
                             QString(10000, '6') + "\n600003," + QString(100, 'n') + "\n600004";
        QCOMPARE(report(read(text, book)),
                 (QStringList{"1 600000 - 证券600000已在白名单中，同一证券不能同时在黑名单和白名单中",
                              "2 600000 - 证券600000已在白名单中", "3 600001 - “灰名单”不是名单，请填写黑名单或白名单",
                              "4 600002 - “向上”不是方向，请填写双向、买入或卖出", "5  - 请输入证券代码",
                              "6 浦发 - “浦发”不是证券代码，代码只能由字母、数字和 . - _ & 组成",
                              "7 " + QString(64, '6') + "… - 证券代码不能超过32个字符",
                              "8 600003 - 证券名称不能超过64个字符", "9 600004 + 加入黑名单"}));
    }

    void rowsThatContradictARowAboveAreRefused()
    {
        CTradeLimitBook book(EZvTraderType::Future);
        const TradeLimitImport import = read("rb2501,,黑名单\nRB2501,,白名单\nrb2501,,黑名单", book);
        QCOMPARE(report(import),
                 (QStringList{"1 rb2501 + 加入黑名单",
                              "2 RB2501 - 第1行已将该证券加入黑名单，同一证券不能同时在黑名单和白名单中",
                              "3 rb2501 - 与第1行重复"}));
        QCOMPARE(import.refusedCount(), std::size_t(2));
    }

    void tradeTypesWithoutADirectionRefuseOne()
    {
        CTradeLimitBook book(EZvTraderType::Future);
        QCOMPARE(report(read("rb2501,,黑名单,买入\nrb2505,,黑名单,双向", book)),
                 (QStringList{"1 rb2501 - 该类账号的名单不区分方向", "2 rb2505 + 加入黑名单"}));
    }

    void aTextThatCannotBeReadHasNoRows()
    {
        CTradeLimitBook book(EZvTraderType::Stock);
        const TradeLimitImport import = read("600000\n\"600001\n", book);
        QCOMPARE(import.problem, QString("第2行：引号没有结束"));
        QVERIFY(import.rows.empty());
        QVERIFY(import.entries.empty());
    }
};

TEST_WITHOUT_WIDGETS(TradeLimitImportTest)
#include "tst_trade_limit_import.moc"
