// SPDX-License-Identifier: Apache-2.0
#include "TradeLimitEditor.h"
#include "support/TestProgram.h"

#include <WQ/CBaseDialog.h>

#include <QClipboard>
#include <QTemporaryDir>
#include <QTextCodec>

using namespace rule_editor_test;

/// Lists that come from spreadsheets and files, and go there.
class TradeLimitExchangeTest : public TradeLimitTest
{
    Q_OBJECT

    static QStringList reportLines(const QWidget& dialog)
    {
        WQ::IBaseHpfTableModel& model = *dialog.findChild<WQ::CStandardHpfTable*>("report")->dataModel();
        QStringList lines;
        for (int row = 0; row < model.rowCount(); ++row) {
            QStringList texts;
            for (int column = 0; column < model.columnCount(); ++column) {
                texts << model.index(row, column).data().toString();
            }
            lines << texts.join('|');
        }
        return lines;
    }

private slots:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        FixtureTest::init();
    }

    void pastedRowsAreAddedAtOnceWhenAllAreInOrder()
    {
        m_fixture->select({});
        QApplication::clipboard()->setText("000001\t平安银行\t白名单\n600000\t浦发银行\n");
        QTest::keyClick(m_fixture->table().view(), Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(m_fixture->written(), (QStringList{"000001 平安银行 1 0", "600000 浦发银行 0 0"}));
        QCOMPARE(m_fixture->tip(m_fixture->table()), QString("已加入2条"));
    }

    void pastedRowsThatAreRefusedAreReportedFirst()
    {
        m_fixture->load({"600000 浦发银行 1 0"});
        QApplication::clipboard()->setText("600000\n600001\n");
        m_boxes->expectDialog([&](WQ::CBaseDialog& dialog) {
            QCOMPARE(reportLines(dialog),
                     (QStringList{"1|600000||不导入|证券600000已在白名单中，同一证券不能同时在黑名单和白名单中",
                                  "2|600001||可导入|加入黑名单"}));
            QTest::mouseClick(dialog.findChild<QPushButton*>("take"), Qt::LeftButton);
        });
        m_fixture->window.click("paste");
        QCOMPARE(m_fixture->written(), (QStringList{"600000 浦发银行 1 0", "600001  0 0"}));
    }

    void pastingNothingSaysSo()
    {
        QApplication::clipboard()->setText(" \n");
        m_boxes->expectMessage(QMessageBox::Information, "导入名单", "剪贴板中没有证券");
        m_fixture->window.click("paste");
        QCOMPARE(m_fixture->written(), QStringList());
    }

    void anImportShowsWhatBecomesOfEachRowBeforeItAddsAny()
    {
        for (const char* theme : {"dark", "light"}) {
            TradeLimitEditor editor;
            useTheme(theme);
            const QString name = file("list.csv", "证券代码,证券名称,名单,方向\r\n=\"000001\",平安银行,白名单,买入\r\n"
                                                  "600000,浦发银行,灰名单,\r\n600519,贵州茅台,黑名单,卖出\r\n");
            m_boxes->expectDialog([&](WQ::CBaseDialog& dialog) {
                QCOMPARE(dialog.findChild<QLabel*>("summary")->text(),
                         QString("list.csv：共3行，可导入2行，不导入1行"));
                QCOMPARE(reportLines(dialog),
                         (QStringList{"2|000001|平安银行|可导入|加入白名单",
                                      "3|600000|浦发银行|不导入|“灰名单”不是名单，请填写黑名单或白名单",
                                      "4|600519|贵州茅台|可导入|加入黑名单"}));
                QCOMPARE(editor.written(), QStringList());
                takePicture(dialog, "import-report");
                QTest::mouseClick(dialog.findChild<QPushButton*>("take"), Qt::LeftButton);
            });
            importFile(editor, name);
            QCOMPARE(editor.written(), (QStringList{"000001 平安银行 1 1", "600519 贵州茅台 0 2"}));
            QVERIFY(m_boxes->verify());
        }
    }

    void theReportNamesAFileWithPercentSigns()
    {
        m_boxes->expectDialog([](WQ::CBaseDialog& dialog) {
            QCOMPARE(dialog.findChild<QLabel*>("summary")->text(),
                     QString("100%2 %3 %4.csv：共2行，可导入1行，不导入1行"));
            QTest::keyClick(&dialog, Qt::Key_Escape);
        });
        importFile(*m_fixture, file("100%2 %3 %4.csv", "600000\n600000\n"));
    }

    void anImportThatIsNotWantedChangesNothing()
    {
        m_boxes->expectDialog([](WQ::CBaseDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
        importFile(*m_fixture, file("list.csv", "600000"));
        QCOMPARE(m_fixture->written(), QStringList());
        QVERIFY(!m_fixture->window.part<QPushButton>("undo").isEnabled());
    }

    void anImportWithoutAGoodRowOffersNothingToTake()
    {
        m_boxes->expectDialog([](WQ::CBaseDialog& dialog) {
            QVERIFY(!dialog.findChild<QPushButton*>("take"));
            QTest::mouseClick(dialog.findChild<QPushButton*>("close"), Qt::LeftButton);
        });
        importFile(*m_fixture, file("list.csv", "浦发"));
        QCOMPARE(m_fixture->written(), QStringList());
    }

    void anImportIsOneStepOfUndo()
    {
        m_boxes->expectDialog(
            [](WQ::CBaseDialog& dialog) { QTest::mouseClick(dialog.findChild<QPushButton*>("take"), Qt::LeftButton); });
        importFile(*m_fixture, file("list.csv", "600000\n600001\n600002"));
        QCOMPARE(m_fixture->written().size(), 3);
        m_fixture->window.click("undo");
        QCOMPARE(m_fixture->written().size(), 0);
    }

    void filesThatCannotBeReadAreReported()
    {
        const QString missing = m_folder->filePath("none.csv");
        m_boxes->expectMessage(QMessageBox::Warning, "导入名单",
                               QStringLiteral("无法读取文件“%1”：No such file or directory").arg(missing));
        importFile(*m_fixture, missing);
        const QString picture = file("picture.csv", QByteArray("\x89PNG\r\n\xff\xfe\xfd", 9));
        m_boxes->expectMessage(QMessageBox::Warning, "导入名单",
                               QStringLiteral("“%1”：文件不是UTF-8或GB18030编码的文本").arg(picture));
        importFile(*m_fixture, picture);
        const QString broken = file("broken.csv", "600000\n\"600001\n");
        m_boxes->expectMessage(QMessageBox::Warning, "导入名单", "broken.csv：第2行：引号没有结束");
        importFile(*m_fixture, broken);
    }

    void aFileThatMayBeInEitherEncodingIsRefused()
    {
        const QString name = file("list.csv", QTextCodec::codecForName("GB18030")->fromUnicode("600519,茅台\n"));
        m_boxes->expectMessage(
            QMessageBox::Warning, "导入名单",
            QStringLiteral(
                "“%1”：文件既可以读作UTF-8，也可以读作GB18030编码的文本，无法判断。请另存为“CSV UTF-8”后再导入")
                .arg(name));
        importFile(*m_fixture, name);
        QCOMPARE(m_fixture->written(), QStringList());
    }

    void whatIsExportedCanBeImportedAgain()
    {
        const QStringList entries{"000001 平安银行 1 1", "600000 浦发银行 0 0", "127045 A,B转债 0 2"};
        m_fixture->load(entries);
        const QString name = m_folder->filePath("out.csv");
        QVERIFY(m_fixture->table().exportCsv(name));
        TradeLimitEditor other;
        m_boxes->expectDialog(
            [](WQ::CBaseDialog& dialog) { QTest::mouseClick(dialog.findChild<QPushButton*>("take"), Qt::LeftButton); });
        importFile(other, name);
        QCOMPARE(other.written(), entries);
    }

    void whatIsCopiedCanBePasted()
    {
        const QStringList entries{"000001 平安银行 1 1", "600000 浦发银行 0 0"};
        m_fixture->load(entries);
        m_fixture->select({0, 1});
        QTest::keyClick(m_fixture->table().view(), Qt::Key_C, Qt::ControlModifier);
        TradeLimitEditor other;
        other.window.click("paste");
        QCOMPARE(other.written(), entries);
    }

private:
    QString file(const char* name, const QByteArray& content)
    {
        QFile file(m_folder->filePath(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size()) {
            qFatal("the test's own file can't be written");
        }
        return file.fileName();
    }

    static void importFile(TradeLimitEditor& editor, const QString& fileName)
    {
        QVERIFY(QMetaObject::invokeMethod(&editor.pane(), "importFile", Q_ARG(QString, fileName)));
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

TEST_WITH_WIDGETS(TradeLimitExchangeTest)
#include "tst_trade_limit_exchange.moc"
