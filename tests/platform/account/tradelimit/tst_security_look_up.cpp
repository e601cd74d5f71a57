// SPDX-License-Identifier: Apache-2.0
#include "TradeLimitEditor.h"
#include "support/TestProgram.h"

#include <nvservice/CSecurityInfo.h>
#include <nvservice/DataType.h>

#include <boost/make_shared.hpp>

using namespace rule_editor_test;
using nvservice::EZvTraderType;

namespace
{

nvservice::IDataPtr makeSecurity(const char* code, const char* name, EZvTraderType traderType = EZvTraderType::Stock)
{
    const auto security = boost::make_shared<nvservice::CSecurityInfo>();
    security->securityCode = code;
    security->securityName = name;
    security->market = "SH";
    security->traderType = traderType;
    return security;
}

QAV::ITransport::Reply securities()
{
    return support::replyWith({makeSecurity("600000", "浦发银行"), makeSecurity("000001", "平安银行"),
                               makeSecurity("600519", "贵州茅台"), makeSecurity("160000", "六零基金"),
                               makeSecurity("rb2501", "螺纹钢2501", EZvTraderType::Future),
                               makeSecurity("511880", "银华日利", EZvTraderType::None)});
}

} // namespace

/// Securities that are found while the user types.
class SecurityLookUpTest : public support::WatchedTest
{
    Q_OBJECT

private slots:
    void init()
    {
        WatchedTest::init();
        m_server = std::make_unique<OneServer>();
    }

    void cleanup()
    {
        m_server.reset();
        WatchedTest::cleanup();
    }

    void theSecuritiesOfTheTradeTypeAreLoadedWithTheFirstLetter()
    {
        TradeLimitEditor editor;
        editor.load({});
        QVERIFY(m_server->isSilent());
        type(editor.edit(), "60");
        QVERIFY(offers().isEmpty());
        m_server->takeQuery(nvservice::DataType::Security, "1").handler(securities());
        QTRY_COMPARE(offers(), (QStringList{"600000 浦发银行", "600519 贵州茅台", "160000 六零基金"}));
        QTest::keyClicks(&editor.edit(), "05");
        QCOMPARE(offers(), QStringList("600519 贵州茅台"));
        QTest::keyClicks(&editor.edit(), "5");
        QVERIFY(!QApplication::activePopupWidget());
        QVERIFY(m_server->isSilent());
    }

    void securitiesAreFoundByCodeNameAndPinyin()
    {
        TradeLimitEditor editor;
        loadSecurities(editor);
        const std::pair<const char*, const char*> cases[] = {
            {"0519", "600519 贵州茅台"},    {"茅台", "600519 贵州茅台"}, {"gzmt", "600519 贵州茅台"},
            {"GuiZhou", "600519 贵州茅台"}, {"5118", "511880 银华日利"}, {"rb2501", nullptr}};
        for (const auto& [typed, offer] : cases) {
            editor.edit().clear();
            type(editor.edit(), typed);
            QCOMPARE(offers(), offer ? QStringList(offer) : QStringList());
        }
        editor.edit().clear();
        type(editor.edit(), "yh");
        QCOMPARE(offers(), (QStringList{"000001 平安银行", "511880 银华日利", "600000 浦发银行"}));
        for (const char* theme : {"dark", "light"}) {
            useTheme(theme);
            takePicture(editor.window, "trade-limit-look-up");
        }
    }

    void theVeryCodeStandsFirst()
    {
        TradeLimitEditor editor;
        loadSecurities(editor);
        type(editor.edit(), "60000");
        QCOMPARE(offers(), (QStringList{"600000 浦发银行", "160000 六零基金"}));
        editor.edit().clear();
        type(editor.edit(), "160000");
        QCOMPARE(offers(), QStringList("160000 六零基金"));
    }

    void aChosenSecurityIsAddedWithItsName()
    {
        TradeLimitEditor editor;
        loadSecurities(editor);
        type(editor.edit(), "yh");
        QTest::keyClick(&editor.edit(), Qt::Key_Down);
        QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Down);
        QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Down);
        QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Return);
        QCOMPARE(editor.edit().text(), QString("511880 银华日利"));
        QCOMPARE(editor.written(), QStringList());
        QTest::keyClick(&editor.edit(), Qt::Key_Return);
        QCOMPARE(editor.written(), QStringList("511880 银华日利 0 0"));
        QCOMPARE(editor.edit().text(), QString());
    }

    void aCompleteCodeGetsItsNameWithoutChoosing()
    {
        TradeLimitEditor editor;
        loadSecurities(editor);
        type(editor.edit(), "000001");
        QTest::keyClick(&editor.edit(), Qt::Key_Return);
        QCOMPARE(editor.written(), QStringList("000001 平安银行 0 0"));
        QCOMPARE(editor.tip(editor.edit()), QString());
    }

    void aNameThatOnlyOneSecurityHasIsEnough()
    {
        TradeLimitEditor editor;
        loadSecurities(editor);
        for (const char* typed : {"贵州茅台", "pfyh"}) {
            editor.edit().setText(typed);
            QTest::keyClick(&editor.edit(), Qt::Key_Return);
        }
        QCOMPARE(editor.written(), (QStringList{"600519 贵州茅台 0 0", "600000 浦发银行 0 0"}));
    }

    void aTextThatSeveralSecuritiesHaveIsRefused()
    {
        TradeLimitEditor editor;
        loadSecurities(editor);
        type(editor.edit(), "yh");
        QTest::keyClick(&editor.edit(), Qt::Key_Return);
        QCOMPARE(editor.tip(editor.edit()), QString("与“yh”相符的证券不止一个，请从列表中选择"));
        QCOMPARE(editor.written(), QStringList());
    }

    void aTextThatNoSecurityHasIsRefused()
    {
        TradeLimitEditor editor;
        loadSecurities(editor);
        editor.edit().setText("没有的");
        QTest::keyClick(&editor.edit(), Qt::Key_Return);
        QCOMPARE(editor.tip(editor.edit()), QString("没有找到与“没有的”相符的证券，请输入证券代码"));
        QCOMPARE(editor.written(), QStringList());
    }

    void anUnknownCodeIsRefused()
    {
        TradeLimitEditor editor;
        loadSecurities(editor);
        type(editor.edit(), "60000");
        QTest::keyClick(&editor.edit(), Qt::Key_Return);
        QCOMPARE(editor.written(), QStringList());
        QCOMPARE(editor.tip(editor.edit()), QString("证券列表中没有“60000”，只能使用列表中的证券代码"));
    }

    void anyCodeIsTakenWhereThereAreNoSecuritiesOfTheTradeType()
    {
        TradeLimitEditor editor;
        editor.load({});
        type(editor.edit(), "6");
        m_server->takeQuery(nvservice::DataType::Security, "1")
            .handler(support::replyWith({makeSecurity("600300", "任意", EZvTraderType::None)}));
        QTRY_VERIFY(!offers().isEmpty());
        QTest::keyClicks(&editor.edit(), "00000");
        QTest::keyClick(&editor.edit(), Qt::Key_Return);
        QCOMPARE(editor.written(), QStringList("600000  0 0"));
    }

    void codesCanBeTypedBeforeTheListIsThere()
    {
        TradeLimitEditor editor;
        editor.load({});
        type(editor.edit(), "600000");
        QTest::keyClick(&editor.edit(), Qt::Key_Return);
        QCOMPARE(editor.written(), QStringList("600000  0 0"));
        QCOMPARE(editor.tip(editor.edit()), QString());
        m_server->takeQuery(nvservice::DataType::Security, "1").handler(securities());
    }

    void codesCanBeTypedWhenTheListCannotBeLoaded()
    {
        TradeLimitEditor editor;
        editor.load({});
        type(editor.edit(), "60");
        m_server->takeQuery(nvservice::DataType::Security, "1")
            .handler(support::replyWithError(utils::EErrorCode::Failed, "服务忙"));
        QTRY_COMPARE(editor.edit().toolTip(), QString("证券列表加载失败：服务忙，仍可直接输入证券代码"));
        QTest::keyClicks(&editor.edit(), "0000");
        QVERIFY(m_server->isSilent());
        QTest::keyClick(&editor.edit(), Qt::Key_Return);
        QCOMPARE(editor.written(), QStringList("600000  0 0"));
        // The next text is a new chance.
        type(editor.edit(), "6");
        m_server->takeQuery(nvservice::DataType::Security, "1").handler(securities());
        QTRY_COMPARE(offers().size(), 3);
        QCOMPARE(editor.edit().toolTip(), QString());
    }

    void anotherServersSecuritiesAreLoadedAnew()
    {
        TradeLimitEditor editor;
        loadSecurities(editor);
        nvservice::CAccountGroupRCRule rule;
        rule.setSystemTag("unknown");
        editor.widget().setAccountGroupRCRule(rule);
        type(editor.edit(), "6");
        QTRY_VERIFY(!editor.edit().toolTip().isEmpty());
        QVERIFY(offers().isEmpty());
        // Back on the first server.
        loadSecurities(editor);
    }

    void aReplyToADestroyedEditorFindsNobody()
    {
        auto editor = std::make_unique<TradeLimitEditor>();
        editor->load({});
        type(editor->edit(), "6");
        auto query = m_server->takeQuery(nvservice::DataType::Security, "1");
        editor.reset();
        query.handler(securities());
        // The service thread has delivered it when the centre has shut down.
        m_server.reset();
        QCoreApplication::processEvents();
        QVERIFY(offers().isEmpty());
    }

    void pastedCodesGetTheirNames()
    {
        TradeLimitEditor editor;
        loadSecurities(editor);
        QApplication::clipboard()->setText("000001\n600519\t茅台");
        editor.window.click("paste");
        QCOMPARE(editor.written(), (QStringList{"000001 平安银行 0 0", "600519 茅台 0 0"}));
    }

private:
    /// Types one letter, lets the securities come, and takes the letter away again.
    void loadSecurities(TradeLimitEditor& editor)
    {
        editor.load({});
        type(editor.edit(), "6");
        m_server->takeQuery(nvservice::DataType::Security, "1").handler(securities());
        QTRY_VERIFY(!offers().isEmpty());
        QTest::keyClick(&editor.edit(), Qt::Key_Backspace);
        QVERIFY(offers().isEmpty());
    }

    std::unique_ptr<OneServer> m_server;
};

TEST_WITH_WIDGETS(SecurityLookUpTest)
#include "tst_security_look_up.moc"
