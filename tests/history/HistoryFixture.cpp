// SPDX-License-Identifier: Apache-2.0
#include "HistoryFixture.h"

#include "support/qav/Client.h"
#include "support/qav/ServiceThread.h"
#include "support/wq/Widgets.h"

#include <WQ/CComboBox.h>
#include <WQ/EmptyReason.h>

#include <QAbstractButton>
#include <QLabel>
#include <QtTest>

#include <boost/make_shared.hpp>

namespace history_test
{

namespace DataType = nvservice::DataType;

HistoryFixture::HistoryFixture()
{
    groups = {makeGroup(7, "稳健一号"), makeGroup(8, "进取二号"), makeGroup(9, "厦门对冲")};
    shanghai = boost::make_shared<support::CFakeTransport>();
    connect(*shanghai);
    support::centre().addServer(Shanghai, "SH", shanghai);
}

HistoryFixture::~HistoryFixture()
{
    panel.reset();
    support::centre().shutDown();
    support::logInAs({});
}

void HistoryFixture::connect(support::CFakeTransport& server)
{
    server.onQuery = [this](const nvservice::CKolmQueryDataReq& request, const QAV::ITransport::ReplyHandler& handler) {
        if (request.dataType == DataType::AccountGroup) {
            handler(support::replyWith(groups));
        } else if (request.dataType == DataType::Category) {
            handler(support::replyWith({}));
        } else {
            m_queries.push_back({request, handler, 0});
        }
    };
    server.onOperate = [this](const nvservice::COperateDataReq& request, const QAV::ITransport::ReplyHandler& handler) {
        operations.push_back({request, handler, 0});
    };
}

void HistoryFixture::addShenzhen()
{
    shenzhen = boost::make_shared<support::CFakeTransport>();
    connect(*shenzhen);
    support::centre().addServer(Shenzhen, "SZ", shenzhen);
}

QAV::CHistoryPanel& HistoryFixture::open(const std::set<int>& rights)
{
    support::logInAs(support::makeUser("admin", rights));
    panel = std::make_unique<QAV::CHistoryPanel>(nullptr);
    panel->resize(1200, 760);
    panel->show();
    panel->switchSystem(1, QString::fromStdString(Shanghai));
    return *panel;
}

int HistoryFixture::typeOf(const Query& query)
{
    return conditionsOf(query).has(nvservice::QueryCondition::Details) ? Details : query.request.dataType;
}

int HistoryFixture::waiting(int dataType) const
{
    return static_cast<int>(std::count_if(m_queries.begin(), m_queries.end(),
                                          [dataType](const Query& query) { return typeOf(query) == dataType; }));
}

HistoryFixture::Query HistoryFixture::take(int dataType)
{
    const bool hasCome = QTest::qWaitFor([&] { return waiting(dataType) > 0; }, 10000);
    if (!hasCome) {
        QTest::qFail(qPrintable(QString("no query of type %1").arg(dataType)), __FILE__, __LINE__);
        return {{}, [](const QAV::ITransport::Reply&) {}, 0};
    }
    const auto found = std::find_if(m_queries.begin(), m_queries.end(),
                                    [dataType](const Query& query) { return typeOf(query) == dataType; });
    const Query query = *found;
    m_queries.erase(found);
    return query;
}

nvservice::CQueryKey HistoryFixture::lastAsked()
{
    Query query = take(DataType::Audit);
    while (waiting(DataType::Audit) > 0) {
        query = take(DataType::Audit);
    }
    return conditionsOf(query);
}

nvservice::CQueryKey HistoryFixture::conditionsOf(const Query& query)
{
    nvservice::CQueryKey key;
    if (!nvservice::CQueryKey::read(query.request.queryKey, key).isSuccess()) {
        QTest::qFail("the key cannot be read", __FILE__, __LINE__);
    }
    return key;
}

void HistoryFixture::answer(const Query& query, std::vector<nvservice::IDataPtr> records, const std::string& next)
{
    QAV::ITransport::Reply reply = support::replyWith(std::move(records));
    if (!next.empty()) {
        bson::BSONObjBuilder document;
        document.append("next", next);
        reply.document = document.obj();
    }
    query.handler(std::move(reply));
}

void HistoryFixture::fail(const Query& query, const std::string& text, utils::EErrorCode code)
{
    query.handler(support::replyWithError(code, text));
}

void HistoryFixture::answer(int dataType, std::vector<nvservice::IDataPtr> records, const std::string& next)
{
    answer(take(dataType), std::move(records), next);
}

WQ::CStandardHpfTable& HistoryFixture::table(const QString& name) const
{
    for (WQ::CStandardHpfTable* const table : panel->findChildren<WQ::CStandardHpfTable*>()) {
        if (table->accessibleName() == name) {
            return *table;
        }
    }
    qFatal("no table %s", qPrintable(name));
}

QStringList HistoryFixture::shown(const WQ::CStandardHpfTable& table, int column)
{
    QStringList texts;
    for (int row = 0; row < table.dataModel()->rowCount(); ++row) {
        texts << table.dataModel()->getDataByRow(row)->getDisplayQString(column);
    }
    return texts;
}

QStringList HistoryFixture::exported(const WQ::CStandardHpfTable& table)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath("t.csv"));
    if (!table.exportCsv(file.fileName()) || !file.open(QIODevice::ReadOnly)) {
        QTest::qFail("nothing was exported", __FILE__, __LINE__);
        return {};
    }
    QStringList lines = QString::fromUtf8(file.readAll()).remove(QChar(0xfeff)).split("\r\n");
    lines.removeAll(QString());
    return lines;
}

QWidget& HistoryFixture::control(const QString& accessibleName) const
{
    for (QWidget* const widget : panel->findChildren<QWidget*>()) {
        // Labels bear the names of what they stand before.
        if (widget->accessibleName() == accessibleName && !qobject_cast<QLabel*>(widget)) {
            return *widget;
        }
    }
    qFatal("no control %s", qPrintable(accessibleName));
}

WQ::CLineEdit& HistoryFixture::edit(const QString& name) const
{
    return dynamic_cast<WQ::CLineEdit&>(control(name));
}

void HistoryFixture::type(const QString& name, const QString& text) const
{
    support::settleCallbacks();
    support::typeText(edit(name), text);
}

void HistoryFixture::choose(const QString& name, const QString& text) const
{
    auto& box = dynamic_cast<WQ::CComboBox&>(control(name));
    QVERIFY(box.findText(text) >= 0);
    box.setCurrentIndex(box.findText(text));
}

QAbstractButton& HistoryFixture::button(const QString& text) const
{
    QAbstractButton* const found = support::buttonOf(*panel, text);
    if (!found) {
        qFatal("no button %s", qPrintable(text));
    }
    return *found;
}

void HistoryFixture::click(const QString& text) const
{
    support::clickButton(*panel, text);
}

bool HistoryFixture::isOffered(const QString& text) const
{
    const QAbstractButton* const found = support::buttonOf(*panel, text);
    return found && found->isVisible();
}

bool HistoryFixture::isRead(const QString& text) const
{
    const QList<QLabel*> labels = panel->findChildren<QLabel*>();
    return std::any_of(labels.begin(), labels.end(),
                       [&](const QLabel* label) { return label->isVisible() && label->text().contains(text); });
}

QString HistoryFixture::emptyText(const WQ::CStandardHpfTable& table)
{
    return table.dataModel()->rowCount() == 0 ? WQ::emptyReason(*table.view()) : QString();
}

boost::shared_ptr<nvservice::CAccountGroup> makeGroup(int id, const std::string& name,
                                                      const std::vector<std::string>& accounts, std::int64_t revision)
{
    const auto group = boost::make_shared<nvservice::CAccountGroup>();
    group->groupId = id;
    group->groupName = name;
    group->institutionId = 1;
    group->institutionName = "远山基金";
    for (const std::string& id : accounts) {
        const auto account = boost::make_shared<nvservice::CAccountInfo>();
        account->brokerType = nvservice::EZVBrokerType::Stock;
        account->accountId = id;
        account->accountName = "户" + id;
        group->accounts.push_back(account);
    }
    group->setRevision(revision);
    return group;
}

boost::shared_ptr<nvservice::CAccountGroupRCConfig> makeConfig(int groupId, const std::vector<std::string>& securities,
                                                               std::int64_t revision)
{
    const auto config = boost::make_shared<nvservice::CAccountGroupRCConfig>();
    config->groupId = groupId;
    for (const std::string& code : securities) {
        nvservice::CTradeLimitEntry entry;
        entry.securityCode = code;
        entry.securityName = "证券" + code;
        config->rcRule.list(nvservice::EZvTraderType::Stock).entries.push_back(entry);
    }
    config->setRevision(revision);
    return config;
}

boost::shared_ptr<nvservice::CAuditEntry> makeEntry(int id, int groupId, int dataType)
{
    const auto entry = boost::make_shared<nvservice::CAuditEntry>();
    entry->entryId = id;
    entry->at = Noon + id * std::int64_t{60000};
    entry->userId = "lan";
    entry->userName = "李岚";
    entry->dataType = dataType;
    entry->groupId = groupId;
    entry->groupName = "组" + std::to_string(groupId);
    return entry;
}

std::vector<nvservice::IDataPtr> makeEntries(int from, int downTo, int groupId)
{
    std::vector<nvservice::IDataPtr> entries;
    for (int id = from; id >= downTo; --id) {
        entries.push_back(makeEntry(id, groupId));
    }
    return entries;
}

boost::shared_ptr<nvservice::CChangeInfo> makeChange(std::int64_t revision, int groupId, int dataType)
{
    const auto change = boost::make_shared<nvservice::CChangeInfo>();
    change->dataType = dataType;
    change->groupId = groupId;
    change->groupName = "组" + std::to_string(groupId);
    change->userId = "lan";
    change->userName = "李岚";
    change->changedAt = Noon + revision * 60000;
    change->setRevision(revision);
    return change;
}

} // namespace history_test
