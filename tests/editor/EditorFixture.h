// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "editor/CAddAccountGroupDialog.h"
#include "editor/CSelectAccountDialog.h"
#include "support/UnexpectedLog.h"
#include "support/qav/CFakeTransport.h"
#include "support/qav/Modules.h"
#include "support/wq/ScriptedPresenter.h"
#include "support/wq/Widgets.h"

#include <QAV/CKolmClientCenter.h>
#include <QAV/CManagerSearchLineEdit.h>
#include <QAV/CUserCombobox.h>
#include <WQ/CComboBox.h>
#include <WQ/CLineEdit.h>
#include <WQ/CLoadingMaskWidget.h>
#include <WQ/CSimpleTextWidget.h>
#include <WQ/CStandardSimpleTable.h>
#include <nvservice/CAccountGroup.h>
#include <nvservice/CInstitutionInfo.h>
#include <nvservice/CKolmAccountInfo.h>
#include <nvservice/CProductInfo.h>
#include <nvservice/DataType.h>

#include <QObject>
#include <QPushButton>

#include <boost/make_shared.hpp>

#include <map>
#include <memory>
#include <set>

namespace editor_test
{

using support::buttonOf;
using support::clickButton;

const std::string Shanghai = "上海分系统";
const std::string ShanghaiTag = "SH";
const std::string Shenzhen = "深圳分系统";
const std::string ShenzhenTag = "SZ";

using AccountPtr = boost::shared_ptr<nvservice::CAccountInfo>;
using WrapperPtr = boost::shared_ptr<nvservice::CKolmAccountInfo>;
using QAV::AccountList;

/// A server that answers each query at once with what the test gave it for the data type, or keeps the query until the
/// test lets it go.
class AnsweringServer
{
public:
    AnsweringServer();

    boost::shared_ptr<support::CFakeTransport> transport;
    /// By data type; no entry: an empty, successful reply.
    std::map<int, QAV::ITransport::Reply> replies;
    /// Data types whose queries are kept.
    std::set<int> held;

    std::size_t waiting(int dataType) const;
    /// Answers the oldest kept query of a type with the reply that the test gave for it.
    void release(int dataType);
    void releaseWith(int dataType, QAV::ITransport::Reply reply);
    /// How many queries of a type have come.
    int queries(int dataType) const;
    /// The keys of all queries that have come.
    std::set<std::string> keys;

private:
    std::map<int, std::deque<QAV::ITransport::ReplyHandler>> m_waiting;
    std::map<int, int> m_count;
};

/// The client around the dialogs: a user, module switches and servers. Unexpected boxes and log lines fail the test.
class EditorFixture
{
public:
    static constexpr const char* AllModules =
        "return { mdl_portal = { mdl_portal_pb = true }, mdl_tradetype = { mdl_tradetype_future = true, "
        "mdl_tradetype_stock = true, mdl_tradetype_credit = true } }";

    EditorFixture();
    ~EditorFixture();

    void logIn(int institutionId = nvservice::NoInstitutionId, const std::string& tag = {},
               const std::set<int>& rights = {10037, 10041, 10089});
    AnsweringServer& addShanghai();
    AnsweringServer& addShenzhen();
    /// Each server gets its institutions and accounts: the ids of Shanghai start with 1, those of Shenzhen with 2.
    void addBothServers();

    QAV::CAddAccountGroupDialog& createDialog();
    /// Runs the dialog for a new group, the panel standing on `server`. `script` has to end it.
    int add(const QString& server, const support::ScriptedPresenter::Script& script);
    int edit(const boost::shared_ptr<nvservice::CAccountGroup>& group, const QString& server,
             const support::ScriptedPresenter::Script& script);
    /// `add` and `edit`, with everything loaded before `script`.
    int addLoaded(const QString& server, const support::ScriptedPresenter::Script& script);
    int editLoaded(const boost::shared_ptr<nvservice::CAccountGroup>& group, const QString& server,
                   const support::ScriptedPresenter::Script& script);
    int again(const support::ScriptedPresenter::Script& script);
    /// The same, and the dialog is closed after `script`.
    void lookAtNew(const QString& server, const std::function<void()>& script);
    void lookAt(const boost::shared_ptr<nvservice::CAccountGroup>& group, const QString& server,
                const std::function<void()>& script);
    /// Announces the picker, in which `script` chooses and which then is accepted.
    void expectPicker(const std::function<void(QAV::CSelectAccountDialog&)>& script);

    WQ::CLineEdit* nameEdit() const { return dialog->findChild<WQ::CLineEdit*>(); }
    QAV::CManagerSearchLineEdit* institutionEdit() const { return dialog->findChild<QAV::CManagerSearchLineEdit*>(); }
    WQ::CComboBox* systemCombo() const { return dialog->findChild<WQ::CComboBox*>(); }
    WQ::CStandardSimpleTable* table() const { return dialog->findChild<WQ::CStandardSimpleTable*>(); }
    WQ::CLoadingMaskWidget* mask() const { return dialog->findChild<WQ::CLoadingMaskWidget*>(); }
    WQ::CSimpleTextWidget* label(const QString& text) const;
    QString nameTip() const;
    QAbstractButton* button(const QString& text) const;
    /// A real click with the left mouse button.
    void click(const QString& buttonText);
    /// Types the institution's name and picks it.
    void chooseInstitution(const QString& name);
    void waitUntilLoaded();
    /// The texts of a row of the table, the hidden columns' too.
    QStringList row(int index) const;
    QStringList column(int column) const;
    /// What the dialog writes into a new group.
    boost::shared_ptr<nvservice::CAccountGroup> result(QString serverName = {}) const;

    support::UnexpectedLog log;
    AnsweringServer shanghai;
    AnsweringServer shenzhen;
    support::ScriptedPresenter boxes;
    std::unique_ptr<QAV::CAddAccountGroupDialog> dialog;
};

/// A test of the dialogs: for each function a client of its own.
class EditorTest : public QObject
{
    Q_OBJECT

protected slots:
    void init() { m_client = std::make_unique<EditorFixture>(); }
    void cleanup() { m_client.reset(); }

protected:
    std::unique_ptr<EditorFixture> m_client;
};

AccountPtr makeAccount(int type, const std::string& id, const std::string& tag, const std::string& unit = {});
WrapperPtr makeWrapper(const AccountPtr& account, int state = 0, bool excluded = false);
nvservice::IDataPtr makeInstitution(int id, const std::string& name, const std::string& tag);
nvservice::IDataPtr makeProduct(const std::string& name);
boost::shared_ptr<nvservice::CAccountGroup> makeGroup(const std::string& name, const std::string& tag,
                                                      int institutionId, AccountList accounts);

/// Checks the items with these texts in the open account box of the picker, by real keys and clicks.
void checkAccounts(QAV::CSelectAccountDialog& picker, const QStringList& searches);

} // namespace editor_test
