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

/// An editor in a client with one server.
struct ListOnServer : OneServer, TradeLimitEditor {
};

} // namespace

/// Securities that are found while the user types.
class SecurityLookUpTest : public support::FixtureTest<ListOnServer, support::WatchedTest>
{
    Q_OBJECT

private slots:
    void theSecuritiesOfTheTradeTypeAreLoadedWithTheFirstLetter()
    {
        m_fixture->load({});
        QVERIFY(m_fixture->isSilent());
        type(m_fixture->edit(), "60");
        QVERIFY(offers().isEmpty());
        m_fixture->takeQuery(nvservice::DataType::Security, "1").handler(securities());
        QTRY_COMPARE(offers(), (QStringList{"600000 浦发银行", "600519 贵州茅台", "160000 六零基金"}));
        QTest::keyClicks(&m_fixture->edit(), "05");
        QCOMPARE(offers(), QStringList("600519 贵州茅台"));
        QTest::keyClicks(&m_fixture->edit(), "5");
        QVERIFY(!QApplication::activePopupWidget());
        QVERIFY(m_fixture->isSilent());
    }

    void securitiesAreFoundByCodeNameAndPinyin()
    {
        loadSecurities();
        const std::pair<const char*, const char*> cases[] = {
            {"0519", "600519 贵州茅台"},    {"茅台", "600519 贵州茅台"}, {"gzmt", "600519 贵州茅台"},
            {"GuiZhou", "600519 贵州茅台"}, {"5118", "511880 银华日利"}, {"rb2501", nullptr}};
        for (const auto& [typed, offer] : cases) {
            m_fixture->edit().clear();
            type(m_fixture->edit(), typed);
            QCOMPARE(offers(), offer ? QStringList(offer) : QStringList());
        }
        m_fixture->edit().clear();
        type(m_fixture->edit(), "yh");
        QCOMPARE(offers(), (QStringList{"000001 平安银行", "511880 银华日利", "600000 浦发银行"}));
        for (const char* theme : {"dark", "light"}) {
            useTheme(theme);
            takePicture(m_fixture->window, "trade-limit-look-up");
        }
    }

    void theVeryCodeStandsFirst()
    {
        loadSecurities();
        type(m_fixture->edit(), "60000");
        QCOMPARE(offers(), (QStringList{"600000 浦发银行", "160000 六零基金"}));
        m_fixture->edit().clear();
        type(m_fixture->edit(), "160000");
        QCOMPARE(offers(), QStringList("160000 六零基金"));
    }

    void aChosenSecurityIsAddedWithItsName()
    {
        loadSecurities();
        type(m_fixture->edit(), "yh");
        QTest::keyClick(&m_fixture->edit(), Qt::Key_Down);
        QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Down);
        QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Down);
        QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Return);
        QCOMPARE(m_fixture->edit().text(), QString("511880 银华日利"));
        QCOMPARE(m_fixture->written(), QStringList());
        QTest::keyClick(&m_fixture->edit(), Qt::Key_Return);
        QCOMPARE(m_fixture->written(), QStringList("511880 银华日利 0 0"));
        QCOMPARE(m_fixture->edit().text(), QString());
    }

    void aCompleteCodeGetsItsNameWithoutChoosing()
    {
        loadSecurities();
        type(m_fixture->edit(), "000001");
        QTest::keyClick(&m_fixture->edit(), Qt::Key_Return);
        QCOMPARE(m_fixture->written(), QStringList("000001 平安银行 0 0"));
        QCOMPARE(m_fixture->tip(m_fixture->edit()), QString());
    }

    void aNameThatOnlyOneSecurityHasIsEnough()
    {
        loadSecurities();
        for (const char* typed : {"贵州茅台", "pfyh"}) {
            m_fixture->edit().setText(typed);
            QTest::keyClick(&m_fixture->edit(), Qt::Key_Return);
        }
        QCOMPARE(m_fixture->written(), (QStringList{"600519 贵州茅台 0 0", "600000 浦发银行 0 0"}));
    }

    void aTextThatSeveralSecuritiesHaveIsRefused()
    {
        loadSecurities();
        type(m_fixture->edit(), "yh");
        QTest::keyClick(&m_fixture->edit(), Qt::Key_Return);
        QCOMPARE(m_fixture->tip(m_fixture->edit()), QString("与“yh”相符的证券不止一个，请从列表中选择"));
        QCOMPARE(m_fixture->written(), QStringList());
    }

    void aTextThatNoSecurityHasIsRefused()
    {
        loadSecurities();
        m_fixture->edit().setText("没有的");
        QTest::keyClick(&m_fixture->edit(), Qt::Key_Return);
        QCOMPARE(m_fixture->tip(m_fixture->edit()), QString("没有找到与“没有的”相符的证券，请输入证券代码"));
        QCOMPARE(m_fixture->written(), QStringList());
    }

    void anUnknownCodeIsRefused()
    {
        loadSecurities();
        type(m_fixture->edit(), "60000");
        QTest::keyClick(&m_fixture->edit(), Qt::Key_Return);
        QCOMPARE(m_fixture->written(), QStringList());
        QCOMPARE(m_fixture->tip(m_fixture->edit()), QString("证券列表中没有“60000”，只能使用列表中的证券代码"));
    }

    void anyCodeIsTakenWhereThereAreNoSecuritiesOfTheTradeType()
    {
        m_fixture->load({});
        type(m_fixture->edit(), "6");
        m_fixture->takeQuery(nvservice::DataType::Security, "1")
            .handler(support::replyWith({makeSecurity("600300", "任意", EZvTraderType::None)}));
        QTRY_VERIFY(!offers().isEmpty());
        QTest::keyClicks(&m_fixture->edit(), "00000");
        QTest::keyClick(&m_fixture->edit(), Qt::Key_Return);
        QCOMPARE(m_fixture->written(), QStringList("600000  0 0"));
    }

    void codesCanBeTypedBeforeTheListIsThere()
    {
        m_fixture->load({});
        type(m_fixture->edit(), "600000");
        QTest::keyClick(&m_fixture->edit(), Qt::Key_Return);
        QCOMPARE(m_fixture->written(), QStringList("600000  0 0"));
        QCOMPARE(m_fixture->tip(m_fixture->edit()), QString());
        m_fixture->takeQuery(nvservice::DataType::Security, "1").handler(securities());
    }

    void codesCanBeTypedWhenTheListCannotBeLoaded()
    {
        m_fixture->load({});
        type(m_fixture->edit(), "60");
        m_fixture->takeQuery(nvservice::DataType::Security, "1")
            .handler(support::replyWithError(utils::EErrorCode::Failed, "服务忙"));
        QTRY_COMPARE(m_fixture->edit().toolTip(), QString("证券列表加载失败：服务忙，仍可直接输入证券代码"));
        QTest::keyClicks(&m_fixture->edit(), "0000");
        QVERIFY(m_fixture->isSilent());
        QTest::keyClick(&m_fixture->edit(), Qt::Key_Return);
        QCOMPARE(m_fixture->written(), QStringList("600000  0 0"));
        // The next text is a new chance.
        type(m_fixture->edit(), "6");
        m_fixture->takeQuery(nvservice::DataType::Security, "1").handler(securities());
        QTRY_COMPARE(offers().size(), 3);
        QCOMPARE(m_fixture->edit().toolTip(), QString());
    }

    void anotherServersSecuritiesAreLoadedAnew()
    {
        loadSecurities();
        nvservice::CAccountGroupRCRule rule;
        rule.setSystemTag("unknown");
        m_fixture->widget().setAccountGroupRCRule(rule);
        type(m_fixture->edit(), "6");
        QTRY_VERIFY(!m_fixture->edit().toolTip().isEmpty());
        QVERIFY(offers().isEmpty());
        // Back on the first server.
        loadSecurities();
    }

    void aReplyToADestroyedEditorFindsNobody()
    {
        auto editor = std::make_unique<TradeLimitEditor>();
        editor->load({});
        type(editor->edit(), "6");
        auto query = m_fixture->takeQuery(nvservice::DataType::Security, "1");
        editor.reset();
        query.handler(securities());
        // The service thread has delivered it when the centre has shut down.
        m_fixture.reset();
        QCoreApplication::processEvents();
        QVERIFY(offers().isEmpty());
    }

    void pastedCodesGetTheirNames()
    {
        loadSecurities();
        QApplication::clipboard()->setText("000001\n600519\t茅台");
        m_fixture->window.click("paste");
        QCOMPARE(m_fixture->written(), (QStringList{"000001 平安银行 0 0", "600519 茅台 0 0"}));
    }

private:
    /// Types one letter, lets the securities come, and takes the letter away again.
    void loadSecurities()
    {
        m_fixture->load({});
        type(m_fixture->edit(), "6");
        m_fixture->takeQuery(nvservice::DataType::Security, "1").handler(securities());
        QTRY_VERIFY(!offers().isEmpty());
        QTest::keyClick(&m_fixture->edit(), Qt::Key_Backspace);
        QVERIFY(offers().isEmpty());
    }
};

TEST_WITH_WIDGETS(SecurityLookUpTest)
#include "tst_security_look_up.moc"
