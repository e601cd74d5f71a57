#include "support/UnexpectedLog.h"
#include "support/qav/CFakeTransport.h"

#include <QAV/CKolmClientCenter.h>
#include <QAV/CManagerSearchLineEdit.h>
#include <QAV/CUserManager.h>
#include <WQ/CEventDeliverer.h>
#include <nvservice/DataType.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QBoxLayout>
#include <QThread>
#include <QtTest>

#include <boost/make_shared.hpp>

#include <atomic>
#include <functional>
#include <memory>

namespace
{

constexpr int EditId = 4;
constexpr int None = nvservice::NoInstitutionId;

/// What holds the edit and hears of its events.
class Holder : public QWidget, public WQ::CEventDeliverer
{
public:
    bool handleEvent(int type, int id, int, QString, void*) override
    {
        if (id == EditId && type == WQ::ManagerSelectionChanged)
            ++changes;
        else if (id == EditId && type == WQ::ManagerDataLoaded)
            ++loads;
        else
            ++others;
        if (onEvent)
            onEvent(type);
        return true;
    }

    int changes = 0;
    int loads = 0;
    int others = 0;
    std::function<void(int type)> onEvent;
};

nvservice::IDataPtr institution(int id, const std::string& name, const std::string& tag)
{
    const auto record = boost::make_shared<nvservice::CInstitutionInfo>();
    record->institutionId = id;
    record->name = name;
    record->setSystemTag(tag);
    return record;
}

QAV::CKolmClientCenter& center()
{
    return *utils::CSingletonT<QAV::CKolmClientCenter>::instance();
}

void typeChinese(QWidget* edit, const QString& text)
{
    QInputMethodEvent event;
    event.setCommitString(text);
    QCoreApplication::sendEvent(edit, &event);
}

} // namespace

/// The institution search edit.
class TestManagerSearchLineEdit : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void itAsksItsServerForInstitutions();
    void withoutATagItAsksAllServers();
    void everyTagIsAnsweredThroughTheEventLoop();
    void aFailedLoadIsReportedAsLoadedToo_data();
    void aFailedLoadIsReportedAsLoadedToo();
    void afterAFailureItGoesOnWithWhatItHad();
    void onlyTheReplyToTheLastTagCounts();
    void typingCompletesByNamePinyinAndInitials_data();
    void typingCompletesByNamePinyinAndInitials();
    void onlyInstitutionsOfTheTagAreOffered();
    void withoutATagTheServersAreNamed();
    void theWholeNameChoosesAndAnythingElseChoosesNone();
    void aNameOfTwoServersChoosesThatOfTheTag();
    void enterTakesTheOnlyMatch();
    void enterTakesThePickedMatch();
    void aClickOnAMatchChoosesIt();
    void leavingTheEditSettlesTheText_data();
    void leavingTheEditSettlesTheText();
    void theProgramsChoiceIsNoEvent();
    void anIdIsChosenWhenTheDataHaveCome();
    void anUnknownIdChoosesNone();
    void theChoiceStaysAcrossALoadAndGoesWithAForeignTag();
    void aBoundUserIsOfferedHisInstitutionOnly();
    void nullAndForeignRecordsAreSkipped();
    void aReplyAfterDestructionFindsNobody();
    void theHandlerOfTheChoiceMaySetTheTag();

private:
    void load(const std::string& tag);
    QStringList matches() const;
    int chosen() const;

    std::unique_ptr<support::UnexpectedLog> m_log;
    boost::shared_ptr<support::CFakeTransport> m_shanghai;
    boost::shared_ptr<support::CFakeTransport> m_shenzhen;
    std::unique_ptr<Holder> m_holder;
    QAV::CManagerSearchLineEdit* m_edit = nullptr;
    QLineEdit* m_other = nullptr;
    QAV::ITransport::Reply m_shanghaiReply;
};

void TestManagerSearchLineEdit::init()
{
    m_log = std::make_unique<support::UnexpectedLog>();
    m_log->expect(QStringLiteral("This plugin does not support"));
    m_shanghai = boost::make_shared<support::CFakeTransport>();
    m_shenzhen = boost::make_shared<support::CFakeTransport>();
    m_shanghaiReply = support::replyWith({institution(11, "远山基金", "SH"), institution(12, "招商银行", "SH"),
                                          institution(13, "招商证券", "SH"), institution(14, "同名机构", "SH")});
    m_shanghai->onQuery = [this](const nvservice::CKolmQueryDataReq&, const auto& handler) {
        handler(m_shanghaiReply);
    };
    m_shenzhen->onQuery = [](const nvservice::CKolmQueryDataReq&, const auto& handler) {
        handler(support::replyWith({institution(21, "重庆信托", "SZ"), institution(22, "同名机构", "SZ")}));
    };
    center().addServer("上海分系统", "SH", m_shanghai);
    center().addServer("深圳分系统", "SZ", m_shenzhen);

    m_holder = std::make_unique<Holder>();
    m_edit = new QAV::CManagerSearchLineEdit(EditId, m_holder.get());
    m_edit->setDependUser(false);
    m_other = new QLineEdit(m_holder.get());
    auto* const layout = new QVBoxLayout(m_holder.get());
    layout->addWidget(m_edit);
    layout->addWidget(m_other);
    m_holder->show();
    QApplication::setActiveWindow(m_holder.get());
    m_edit->setFocus();
}

void TestManagerSearchLineEdit::cleanup()
{
    m_holder.reset();
    center().shutDown();
    utils::CSingletonT<QAV::CUserManager>::instance()->setUserInfo({});
    const QStringList unexpected = m_log->unexpected();
    m_log.reset();
    QCOMPARE(unexpected, QStringList());
}

void TestManagerSearchLineEdit::load(const std::string& tag)
{
    const int before = m_holder->loads;
    m_edit->setSystemTag(tag);
    QTRY_COMPARE(m_holder->loads, before + 1);
}

QStringList TestManagerSearchLineEdit::matches() const
{
    const QWidget* const popup = QApplication::activePopupWidget();
    const auto* const view = qobject_cast<const QAbstractItemView*>(popup);
    QStringList texts;
    for (int row = 0; view && row < view->model()->rowCount(); ++row)
        texts << view->model()->index(row, 0).data().toString();
    return texts;
}

int TestManagerSearchLineEdit::chosen() const
{
    QString tag("old");
    const int id = m_edit->getCurrentManagerId(tag);
    if ((id == None) != tag.isEmpty())
        return -1;
    return id;
}

void TestManagerSearchLineEdit::itAsksItsServerForInstitutions()
{
    int dataType = 0;
    m_shanghai->onQuery = [&](const nvservice::CKolmQueryDataReq& request, const auto& handler) {
        dataType = request.dataType;
        handler(m_shanghaiReply);
    };
    bool othersAsked = false;
    m_shenzhen->onQuery = [&](const nvservice::CKolmQueryDataReq&, const auto&) { othersAsked = true; };
    load("SH");
    QCOMPARE(dataType, nvservice::DataType::Institution);
    QVERIFY(!othersAsked);
}

void TestManagerSearchLineEdit::withoutATagItAsksAllServers()
{
    load("");
    QTest::keyClick(m_edit, Qt::Key_Down);
    QCOMPARE(matches().size(), 6);
}

void TestManagerSearchLineEdit::everyTagIsAnsweredThroughTheEventLoop()
{
    for (const char* const tag : {"SH", "SH", "SZ", "", "unknown"}) {
        const int before = m_holder->loads;
        m_edit->setSystemTag(tag);
        QCOMPARE(m_holder->loads, before);
        QTRY_COMPARE(m_holder->loads, before + 1);
    }
    QCOMPARE(m_holder->changes, 0);
}

void TestManagerSearchLineEdit::aFailedLoadIsReportedAsLoadedToo_data()
{
    QTest::addColumn<QString>("tag");
    QTest::newRow("the server fails") << "SH";
    QTest::newRow("one of two servers fails") << "";
    QTest::newRow("nobody knows the tag") << "XX";
}

void TestManagerSearchLineEdit::aFailedLoadIsReportedAsLoadedToo()
{
    QFETCH(QString, tag);
    m_shanghaiReply = support::replyWithError(utils::EErrorCode::StorageFailure, "数据库忙");
    load(tag.toStdString());
    QVERIFY(!m_edit->toolTip().isEmpty());
    m_shanghaiReply = support::replyWith({});
    load("SH");
    QVERIFY(m_edit->toolTip().isEmpty());
}

void TestManagerSearchLineEdit::afterAFailureItGoesOnWithWhatItHad()
{
    load("");
    m_shanghaiReply = support::replyWithError(utils::EErrorCode::Failed, "断线");
    load("");
    QTest::keyClick(m_edit, Qt::Key_Down);
    QCOMPARE(matches().size(), 6);
}

void TestManagerSearchLineEdit::onlyTheReplyToTheLastTagCounts()
{
    m_shanghai->onQuery = {};
    m_edit->setSystemTag("SH");
    m_edit->setSystemTag("SH");
    const auto first = m_shanghai->takeQuery();
    const auto second = m_shanghai->takeQuery();
    second.handler(support::replyWith({institution(2, "第二", "SH")}));
    first.handler(support::replyWith({institution(1, "第一", "SH")}));
    QTRY_COMPARE(m_holder->loads, 1);
    center().shutDown();
    QCoreApplication::processEvents();
    QCOMPARE(m_holder->loads, 1);
    QTest::keyClick(m_edit, Qt::Key_Down);
    QCOMPARE(matches(), QStringList("第二"));
}

void TestManagerSearchLineEdit::typingCompletesByNamePinyinAndInitials_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("name") << "招商" << QStringList({"招商银行", "招商证券"});
    QTest::newRow("pinyin") << "zhaoshangy" << QStringList("招商银行");
    QTest::newRow("initials") << "zszq" << QStringList("招商证券");
    QTest::newRow("inside") << "jijin" << QStringList("远山基金");
    QTest::newRow("nothing") << "xyz" << QStringList();
}

void TestManagerSearchLineEdit::typingCompletesByNamePinyinAndInitials()
{
    QFETCH(QString, typed);
    QFETCH(QStringList, expected);
    load("SH");
    if (typed.front().unicode() < 0x80)
        QTest::keyClicks(m_edit, typed);
    else
        typeChinese(m_edit, typed);
    QCOMPARE(matches(), expected);
}

void TestManagerSearchLineEdit::onlyInstitutionsOfTheTagAreOffered()
{
    load("");
    load("SZ");
    QTest::keyClick(m_edit, Qt::Key_Down);
    QCOMPARE(matches(), QStringList({"重庆信托", "同名机构"}));
}

void TestManagerSearchLineEdit::withoutATagTheServersAreNamed()
{
    load("");
    QTest::keyClicks(m_edit, "tmjg");
    QCOMPARE(matches(), QStringList({"同名机构 (上海分系统)", "同名机构 (深圳分系统)"}));
    QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Down);
    QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Down);
    QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Enter);
    QString tag;
    QCOMPARE(m_edit->getCurrentManagerId(tag), 22);
    QCOMPARE(tag, QString("SZ"));
    QCOMPARE(m_edit->getText(), QString("同名机构"));
}

void TestManagerSearchLineEdit::theWholeNameChoosesAndAnythingElseChoosesNone()
{
    load("SH");
    typeChinese(m_edit, "招商银");
    QCOMPARE(chosen(), None);
    QCOMPARE(m_holder->changes, 0);
    typeChinese(m_edit, "行");
    QCOMPARE(chosen(), 12);
    QCOMPARE(m_holder->changes, 1);
    QTest::keyClick(m_edit, 'x');
    QCOMPARE(chosen(), None);
    QCOMPARE(m_holder->changes, 2);
    QTest::keyClick(m_edit, 'y');
    QCOMPARE(m_holder->changes, 2);
    QCOMPARE(m_holder->others, 0);
}

void TestManagerSearchLineEdit::aNameOfTwoServersChoosesThatOfTheTag()
{
    load("");
    load("SZ");
    typeChinese(m_edit, "同名机构");
    QCOMPARE(chosen(), 22);
}

void TestManagerSearchLineEdit::enterTakesTheOnlyMatch()
{
    load("SH");
    QTest::keyClicks(m_edit, "zs");
    QTest::keyClick(m_edit, Qt::Key_Enter);
    QCOMPARE(chosen(), None);
    QCOMPARE(m_edit->text(), QString());
    QTest::keyClicks(m_edit, "zszq");
    QTest::keyClick(m_edit, Qt::Key_Enter);
    QCOMPARE(chosen(), 13);
    QCOMPARE(m_edit->text(), QString("招商证券"));
    QCOMPARE(m_holder->changes, 1);
    QVERIFY(!QApplication::activePopupWidget());
}

void TestManagerSearchLineEdit::enterTakesThePickedMatch()
{
    load("SH");
    QTest::keyClicks(m_edit, "zs");
    QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Down);
    QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Enter);
    QCOMPARE(chosen(), 12);
    QCOMPARE(m_edit->text(), QString("招商银行"));
    QCOMPARE(m_holder->changes, 1);
}

void TestManagerSearchLineEdit::aClickOnAMatchChoosesIt()
{
    load("SH");
    QTest::mouseClick(m_edit, Qt::LeftButton);
    auto* const view = qobject_cast<QAbstractItemView*>(QApplication::activePopupWidget());
    QVERIFY(view);
    QTest::mouseClick(view->viewport(), Qt::LeftButton, Qt::NoModifier,
                      view->visualRect(view->model()->index(1, 0)).center());
    QCOMPARE(m_edit->text(), QString("远山基金"));
    QCOMPARE(chosen(), 11);
    QCOMPARE(m_holder->changes, 1);
}

void TestManagerSearchLineEdit::leavingTheEditSettlesTheText_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("id");
    QTest::newRow("the only match is taken") << "ysjj"
                                             << "远山基金" << 11;
    QTest::newRow("of several none is taken") << "zs"
                                              << "" << None;
    QTest::newRow("no match goes") << "xyz"
                                   << "" << None;
    QTest::newRow("blanks go") << "  "
                               << "" << None;
}

void TestManagerSearchLineEdit::leavingTheEditSettlesTheText()
{
    QFETCH(QString, typed);
    QFETCH(QString, text);
    QFETCH(int, id);
    load("SH");
    QTest::keyClicks(m_edit, typed);
    QWidget* const list = QApplication::activePopupWidget();
    QTest::keyClick(list ? list : m_edit, Qt::Key_Tab);
    QVERIFY(m_other->hasFocus());
    QCOMPARE(m_edit->text(), text);
    QCOMPARE(chosen(), id);
    QVERIFY(!QApplication::activePopupWidget());
}

void TestManagerSearchLineEdit::theProgramsChoiceIsNoEvent()
{
    load("SH");
    m_edit->setCurrentManagerId(12);
    QCOMPARE(chosen(), 12);
    QCOMPARE(m_edit->text(), QString("招商银行"));
    m_edit->setCurrentManagerId(None);
    QCOMPARE(chosen(), None);
    QCOMPARE(m_edit->text(), QString());
    QCOMPARE(m_holder->changes, 0);
}

void TestManagerSearchLineEdit::anIdIsChosenWhenTheDataHaveCome()
{
    m_edit->setSystemTag("SH");
    m_edit->setCurrentManagerId(13);
    QCOMPARE(chosen(), 13);
    QTRY_COMPARE(m_holder->loads, 1);
    QCOMPARE(chosen(), 13);
    QCOMPARE(m_edit->text(), QString("招商证券"));
    QCOMPARE(m_holder->changes, 0);
}

void TestManagerSearchLineEdit::anUnknownIdChoosesNone()
{
    m_edit->setSystemTag("SH");
    m_edit->setCurrentManagerId(21); // of another server
    QTRY_COMPARE(m_holder->loads, 1);
    QCOMPARE(chosen(), None);
    QCOMPARE(m_edit->text(), QString());
}

void TestManagerSearchLineEdit::theChoiceStaysAcrossALoadAndGoesWithAForeignTag()
{
    load("");
    m_edit->setCurrentManagerId(12);
    load("SH");
    QCOMPARE(chosen(), 12);
    m_edit->setSystemTag("SZ");
    QCOMPARE(chosen(), None);
    QCOMPARE(m_edit->text(), QString());
    QTRY_COMPARE(m_holder->loads, 3);
    QCOMPARE(m_holder->changes, 0);
}

void TestManagerSearchLineEdit::aBoundUserIsOfferedHisInstitutionOnly()
{
    const auto user = boost::make_shared<nvservice::CUserInfo>();
    user->institutionId = 13;
    utils::CSingletonT<QAV::CUserManager>::instance()->setUserInfo(user);
    load("SH");
    m_edit->setDependUser(true);
    QTest::keyClick(m_edit, Qt::Key_Down);
    QCOMPARE(matches(), QStringList("招商证券"));
    QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Escape);
    m_edit->setDependUser(false);
    QTest::keyClick(m_edit, Qt::Key_Down);
    QCOMPARE(matches().size(), 4);
}

void TestManagerSearchLineEdit::nullAndForeignRecordsAreSkipped()
{
    m_shanghaiReply = support::replyWith({nullptr, boost::make_shared<nvservice::CUserInfo>(),
                                          institution(None, "没有编号", "SH"), institution(11, "远山基金", "")});
    load("SH");
    QTest::keyClick(m_edit, Qt::Key_Down);
    // A record without a tag is of the server that was asked.
    QCOMPARE(matches(), QStringList("远山基金"));
}

void TestManagerSearchLineEdit::aReplyAfterDestructionFindsNobody()
{
    m_shanghai->onQuery = {};
    for (const bool queued : {false, true}) {
        auto* const edit = new QAV::CManagerSearchLineEdit(EditId, m_holder.get());
        edit->setSystemTag("SH");
        const auto query = m_shanghai->takeQuery();
        if (queued) {
            // The reply has left the service thread and waits for the user-interface thread.
            query.handler(m_shanghaiReply);
            std::atomic<bool> passed{false};
            center().getClientByName("nobody")->queryData_async(
                boost::make_shared<nvservice::CKolmQueryDataReq>(),
                [&](const auto&, const auto&, int, const auto&) { passed = true; });
            while (!passed)
                QThread::yieldCurrentThread();
        }
        delete edit;
        query.handler(m_shanghaiReply);
    }
    center().shutDown();
    QCoreApplication::processEvents();
    QCOMPARE(m_holder->loads, 0);
}

void TestManagerSearchLineEdit::theHandlerOfTheChoiceMaySetTheTag()
{
    load("");
    m_holder->onEvent = [&](int type) {
        if (type == WQ::ManagerSelectionChanged)
            m_edit->setSystemTag("SZ");
    };
    QTest::keyClicks(m_edit, "cqxt");
    QTest::keyClick(m_edit, Qt::Key_Enter);
    QTRY_COMPARE(m_holder->loads, 2);
    QCOMPARE(chosen(), 21);
    QCOMPARE(m_edit->text(), QString("重庆信托"));
    QCOMPARE(m_holder->changes, 1);
}

QTEST_MAIN(TestManagerSearchLineEdit)
#include "tst_manager_search_line_edit.moc"
