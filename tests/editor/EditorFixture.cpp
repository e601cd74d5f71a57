// SPDX-License-Identifier: Apache-2.0
#include "editor/EditorFixture.h"

#include "support/qav/Client.h"

#include <QAbstractItemView>
#include <QtTest>

namespace editor_test
{

AnsweringServer::AnsweringServer() : transport(boost::make_shared<support::CFakeTransport>())
{
    transport->onQuery = [this](const nvservice::CKolmQueryDataReq& request,
                                const QAV::ITransport::ReplyHandler& handler) {
        ++m_count[request.dataType];
        keys.insert(request.queryKey);
        if (held.count(request.dataType) > 0) {
            m_waiting[request.dataType].push_back(handler);
        } else {
            handler(replies[request.dataType]);
        }
    };
}

std::size_t AnsweringServer::waiting(int dataType) const
{
    const auto queue = m_waiting.find(dataType);
    return queue == m_waiting.end() ? 0 : queue->second.size();
}

int AnsweringServer::queries(int dataType) const
{
    const auto count = m_count.find(dataType);
    return count == m_count.end() ? 0 : count->second;
}

void AnsweringServer::release(int dataType)
{
    releaseWith(dataType, replies[dataType]);
}

void AnsweringServer::releaseWith(int dataType, QAV::ITransport::Reply reply)
{
    QVERIFY2(waiting(dataType) > 0, "no such query waits");
    const auto handler = m_waiting[dataType].front();
    m_waiting[dataType].pop_front();
    handler(std::move(reply));
}

EditorFixture::EditorFixture()
{
    logIn();
    support::switchModules(AllModules);
}

EditorFixture::~EditorFixture()
{
    dialog.reset();
    support::centre().shutDown();
    support::logInAs({});
}

void EditorFixture::logIn(int institutionId, const std::string& tag, const std::set<int>& rights)
{
    const auto user = support::makeUser("admin", rights, institutionId);
    user->setSystemTag(tag);
    support::logInAs(user);
}

AnsweringServer& EditorFixture::addShanghai()
{
    shanghai.replies[nvservice::DataType::Institution] = support::replyWith(
        {makeInstitution(101, "远山基金", ShanghaiTag), makeInstitution(102, "招商银行", ShanghaiTag)});
    shanghai.replies[nvservice::DataType::Account] = support::replyWith(
        {makeWrapper(makeAccount(1, "10001", ShanghaiTag)), makeWrapper(makeAccount(2, "10002", ShanghaiTag)),
         makeWrapper(makeAccount(2, "10002", ShanghaiTag, "A")), makeWrapper(makeAccount(2, "10003", ShanghaiTag))});
    support::centre().addServer(Shanghai, ShanghaiTag, shanghai.transport);
    return shanghai;
}

AnsweringServer& EditorFixture::addShenzhen()
{
    shenzhen.replies[nvservice::DataType::Institution] =
        support::replyWith({makeInstitution(201, "南海信托", ShenzhenTag)});
    shenzhen.replies[nvservice::DataType::Account] = support::replyWith(
        {makeWrapper(makeAccount(2, "20001", ShenzhenTag)), makeWrapper(makeAccount(2, "20002", ShenzhenTag))});
    support::centre().addServer(Shenzhen, ShenzhenTag, shenzhen.transport);
    return shenzhen;
}

void EditorFixture::addBothServers()
{
    addShanghai();
    addShenzhen();
}

QAV::CAddAccountGroupDialog& EditorFixture::createDialog()
{
    dialog = std::make_unique<QAV::CAddAccountGroupDialog>(nullptr);
    return *dialog;
}

int EditorFixture::add(const QString& server, const support::ScriptedPresenter::Script& script)
{
    if (!dialog) {
        createDialog();
    }
    dialog->setServerName(server);
    boxes.expectDialog(script);
    return dialog->execDialog(true);
}

int EditorFixture::edit(const boost::shared_ptr<nvservice::CAccountGroup>& group, const QString& server,
                        const support::ScriptedPresenter::Script& script)
{
    if (!dialog) {
        createDialog();
    }
    dialog->setGroupInfo(group, server);
    boxes.expectDialog(script);
    return dialog->execDialog(false);
}

int EditorFixture::again(const support::ScriptedPresenter::Script& script)
{
    boxes.expectDialog(script);
    return dialog->execDialog(false);
}

int EditorFixture::addLoaded(const QString& server, const support::ScriptedPresenter::Script& script)
{
    return add(server, [&](WQ::CBaseDialog& shown) {
        waitUntilLoaded();
        script(shown);
    });
}

int EditorFixture::editLoaded(const boost::shared_ptr<nvservice::CAccountGroup>& group, const QString& server,
                              const support::ScriptedPresenter::Script& script)
{
    return edit(group, server, [&](WQ::CBaseDialog& shown) {
        waitUntilLoaded();
        script(shown);
    });
}

void EditorFixture::lookAtNew(const QString& server, const std::function<void()>& script)
{
    addLoaded(server, [&](WQ::CBaseDialog&) {
        script();
        click(QStringLiteral("关闭"));
    });
}

void EditorFixture::lookAt(const boost::shared_ptr<nvservice::CAccountGroup>& group, const QString& server,
                           const std::function<void()>& script)
{
    editLoaded(group, server, [&](WQ::CBaseDialog&) {
        script();
        click(QStringLiteral("关闭"));
    });
}

void EditorFixture::expectPicker(const std::function<void(QAV::CSelectAccountDialog&)>& script)
{
    boxes.expectDialog([script](WQ::CBaseDialog& shown) {
        auto* const picker = qobject_cast<QAV::CSelectAccountDialog*>(&shown);
        QVERIFY(picker);
        script(*picker);
        support::clickButton(*picker, QStringLiteral("确定"));
    });
}

WQ::CSimpleTextWidget* EditorFixture::label(const QString& text) const
{
    for (auto* const label : dialog->findChildren<WQ::CSimpleTextWidget*>()) {
        if (label->text() == text) {
            return label;
        }
    }
    return nullptr;
}

QString EditorFixture::nameTip() const
{
    for (const auto* const label : dialog->findChildren<WQ::CSimpleTextWidget*>()) {
        if (label->colorKey() == QLatin1String("clr_global_rise")) {
            return label->text();
        }
    }
    return QStringLiteral("no tip");
}

QAbstractButton* EditorFixture::button(const QString& text) const
{
    return support::buttonOf(*dialog, text);
}

void EditorFixture::click(const QString& buttonText)
{
    support::clickButton(*dialog, buttonText);
}

void EditorFixture::chooseInstitution(const QString& name)
{
    institutionEdit()->setFocus();
    institutionEdit()->selectAll();
    support::typeText(*institutionEdit(), name);
    QTest::keyClick(institutionEdit(), Qt::Key_Enter);
}

void EditorFixture::waitUntilLoaded()
{
    QTRY_VERIFY(mask()->isHidden());
}

QStringList EditorFixture::row(int index) const
{
    QStringList texts;
    for (int i = 0; i < 4; ++i) {
        texts << table()->itemText(table()->rowID(index), i);
    }
    return texts;
}

QStringList EditorFixture::column(int column) const
{
    return support::shown(*table(), column);
}

boost::shared_ptr<nvservice::CAccountGroup> EditorFixture::result(QString serverName) const
{
    const auto group = boost::make_shared<nvservice::CAccountGroup>();
    dialog->getGroupInfo(group, serverName);
    return group;
}

AccountPtr makeAccount(int type, const std::string& id, const std::string& tag, const std::string& unit)
{
    const auto account = boost::make_shared<nvservice::CAccountInfo>();
    account->brokerType = static_cast<nvservice::EZVBrokerType>(type);
    account->accountId = id;
    account->unitId = unit;
    account->setSystemTag(tag);
    return account;
}

WrapperPtr makeWrapper(const AccountPtr& account, int state, bool excluded)
{
    const auto wrapper = boost::make_shared<nvservice::CKolmAccountInfo>();
    wrapper->account = account;
    wrapper->stateCode = state;
    wrapper->excluded = excluded;
    wrapper->setSystemTag(account->getSystemTag());
    return wrapper;
}

nvservice::IDataPtr makeInstitution(int id, const std::string& name, const std::string& tag)
{
    const auto institution = boost::make_shared<nvservice::CInstitutionInfo>();
    institution->institutionId = id;
    institution->name = name;
    institution->setSystemTag(tag);
    return institution;
}

nvservice::IDataPtr makeProduct(const std::string& name)
{
    const auto product = boost::make_shared<nvservice::CProductInfo>();
    product->productName = name;
    return product;
}

boost::shared_ptr<nvservice::CAccountGroup> makeGroup(const std::string& name, const std::string& tag,
                                                      int institutionId, AccountList accounts)
{
    const auto group = boost::make_shared<nvservice::CAccountGroup>();
    group->groupId = 17;
    group->groupName = name;
    group->institutionId = institutionId;
    group->setSystemTag(tag);
    group->accounts = std::move(accounts);
    return group;
}

void checkAccounts(QAV::CSelectAccountDialog& picker, const QStringList& searches)
{
    auto* const box = picker.findChild<QAV::CUserCombobox*>();
    QTest::mouseClick(box, Qt::LeftButton);
    QVERIFY(box->isPopupOpen());
    auto* const search = box->findChild<QLineEdit*>(QStringLiteral("search"));
    auto* const items = box->findChild<QAbstractItemView*>(QStringLiteral("items"));
    for (const QString& text : searches) {
        search->clear();
        support::typeText(*search, text);
        QVERIFY2(items->model()->rowCount() > 0, qPrintable(text));
        QTest::mouseClick(items->viewport(), Qt::LeftButton, Qt::NoModifier,
                          items->visualRect(items->model()->index(0, 0)).center());
    }
    QTest::keyClick(search, Qt::Key_Escape);
    QVERIFY(!box->isPopupOpen());
}

} // namespace editor_test
