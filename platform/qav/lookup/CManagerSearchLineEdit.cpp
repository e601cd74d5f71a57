// SPDX-License-Identifier: Apache-2.0
#include <QAV/CManagerSearchLineEdit.h>

#include "lookup/CListRowDelegate.h"
#include "lookup/OfferList.h"
#include <WQ/CSearchIndex.h>

#include <QAV/CKolmClientCenter.h>
#include <QAV/CUserManager.h>
#include <WQ/CEventDeliverer.h>
#include <WQ/Pinyin.h>
#include <WQ/StringConversion.h>
#include <nvservice/CKolmQueryDataReq.h>
#include <nvservice/DataType.h>

#include <QAbstractItemView>
#include <QCompleter>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QListView>
#include <QStringListModel>

#include <boost/make_shared.hpp>

#include <algorithm>
#include <set>

namespace QAV
{

namespace
{

const QString Hint = QStringLiteral("输入机构名称、拼音或首字母");
/// Rows that the list shows without scrolling.
constexpr int VisibleMatches = 10;

bool isBound(const nvservice::CUserInfo& user)
{
    return user.institutionId != nvservice::NoInstitutionId && user.institutionId != -1;
}

} // namespace

CManagerSearchLineEdit::CManagerSearchLineEdit(int id, QWidget* parent)
    : CAutoKeyboardLineEdit(parent), m_id(id), m_index(std::make_unique<WQ::CSearchIndex>()),
      m_matchModel(new QStringListModel(this)), m_completer(new QCompleter(this))
{
    setEmptyHintText(Hint);
    setAccessibleName(QStringLiteral("机构"));

    // The completer shows what this edit finds and leaves the text to it.
    m_completer->setCompletionMode(QCompleter::UnfilteredPopupCompletion);
    m_completer->setMaxVisibleItems(VisibleMatches);
    m_completer->setModel(m_matchModel);
    m_completer->setWidget(this);
    auto* const list = new QListView;
    list->setUniformItemSizes(true);
    list->setAccessibleName(QStringLiteral("机构列表"));
    m_completer->setPopup(list);
    // The completer has set a delegate of its own.
    list->setItemDelegate(new CListRowDelegate(list));
    connect(m_completer, QOverload<const QModelIndex&>::of(&QCompleter::activated), this,
            [this](const QModelIndex& index) { chooseMatch(index.row()); });
    connect(this, &QLineEdit::textEdited, this, &CManagerSearchLineEdit::onTextEdited);
}

CManagerSearchLineEdit::~CManagerSearchLineEdit() = default;

void CManagerSearchLineEdit::setDependUser(bool depend)
{
    m_dependUser = depend;
    updateOffers();
}

void CManagerSearchLineEdit::setSystemTag(std::string systemTag)
{
    m_systemTag = std::move(systemTag);
    updateOffers();
    restoreChoice(false);
    load();
}

void CManagerSearchLineEdit::load()
{
    const auto request = boost::make_shared<nvservice::CKolmQueryDataReq>();
    request->dataType = nvservice::DataType::Institution;
    m_loadedTag = m_systemTag;
    const QueryCallback callback = [this, mailbox = m_mailbox.address(), number = ++m_loadNumber](
                                       const utils::NVError& error, const std::vector<nvservice::IDataPtr>& records,
                                       int, const bson::BSONObj&) {
        mailbox.post([this, number, error, records] { takeReply(number, error, records); });
    };
    CKolmClientCenter* const center = utils::CSingletonT<CKolmClientCenter>::instance();
    if (m_systemTag.empty()) {
        center->queryData_async(request, callback, 0);
    } else {
        center->getClientBySystemTag(m_systemTag)->queryData_async(request, callback, 0);
    }
}

void CManagerSearchLineEdit::takeReply(unsigned loadNumber, const utils::NVError& error,
                                       const std::vector<nvservice::IDataPtr>& records)
{
    // A reply to an earlier load says nothing about the tag of now; the later one is under way.
    if (loadNumber != m_loadNumber) {
        return;
    }
    const bool listWasOpen = m_completer->popup()->isVisible();
    keepRecords(error.isSuccess(), records);
    updateOffers();
    restoreChoice(true);
    if (listWasOpen) {
        showMatches(text());
    }
    setToolTip(error.isSuccess() ? QString() : QStringLiteral("机构加载失败：%1").arg(WQ::sToQs(error.errorMsg())));
    WQ::deliverEvent(this, WQ::ManagerDataLoaded, m_id);
}

void CManagerSearchLineEdit::keepRecords(bool complete, const std::vector<nvservice::IDataPtr>& records)
{
    std::vector<InstitutionPtr> loaded;
    std::set<std::string> answered;
    for (const nvservice::IDataPtr& record : records) {
        const auto institution = boost::dynamic_pointer_cast<nvservice::CInstitutionInfo>(record);
        if (!institution || institution->institutionId == nvservice::NoInstitutionId) {
            continue;
        }
        if (institution->getSystemTag().empty()) {
            institution->setSystemTag(m_loadedTag);
        }
        answered.insert(institution->getSystemTag());
        loaded.push_back(institution);
    }
    // Of servers that did not answer the edit keeps what it had.
    for (InstitutionPtr& old : m_institutions) {
        const std::string& tag = old->getSystemTag();
        const bool replaced = answered.count(tag) > 0 || (complete && (m_loadedTag.empty() || m_loadedTag == tag));
        if (!replaced) {
            loaded.push_back(std::move(old));
        }
    }
    m_institutions = std::move(loaded);
}

bool CManagerSearchLineEdit::isOffered(const nvservice::CInstitutionInfo& institution) const
{
    if (!m_systemTag.empty() && institution.getSystemTag() != m_systemTag) {
        return false;
    }
    if (!m_dependUser) {
        return true;
    }
    const auto user = utils::CSingletonT<CUserManager>::instance()->getUserInfoPtr();
    return !user || !isBound(*user) || user->institutionId == institution.institutionId;
}

void CManagerSearchLineEdit::updateOffers()
{
    std::vector<std::pair<QByteArray, InstitutionPtr>> sorted;
    for (const InstitutionPtr& institution : m_institutions) {
        if (isOffered(*institution)) {
            sorted.emplace_back(WQ::pinyinSortKey(WQ::sToQs(institution->name)), institution);
        }
    }
    std::stable_sort(sorted.begin(), sorted.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    m_offers.clear();
    m_index->clear();
    for (auto& entry : sorted) {
        m_index->append(WQ::sToQs(entry.second->name));
        m_offers.push_back(std::move(entry.second));
    }
    m_matches.clear();
    m_completer->popup()->hide();
}

void CManagerSearchLineEdit::restoreChoice(bool dataComplete)
{
    const int id = m_current ? m_current->institutionId : m_awaitedId;
    if (id == nvservice::NoInstitutionId) {
        return;
    }
    const auto offer = std::find_if(m_offers.begin(), m_offers.end(), [&](const InstitutionPtr& institution) {
        return institution->institutionId == id &&
               (!m_current || institution->getSystemTag() == m_current->getSystemTag());
    });
    if (offer != m_offers.end()) {
        const bool awaited = !m_current;
        m_current = *offer;
        m_awaitedId = nvservice::NoInstitutionId;
        // A user who is typing is not interrupted.
        if (awaited || !hasFocus()) {
            setText(WQ::sToQs(m_current->name));
        }
    } else if (m_current) {
        m_current.reset();
        clear();
    } else if (dataComplete) {
        m_awaitedId = nvservice::NoInstitutionId;
    }
}

void CManagerSearchLineEdit::setCurrentManagerId(int institutionId)
{
    m_current.reset();
    m_awaitedId = institutionId;
    clear();
    restoreChoice(false);
}

int CManagerSearchLineEdit::getCurrentManagerId(QString& tagText) const
{
    if (m_current) {
        tagText = WQ::sToQs(m_current->getSystemTag());
        return m_current->institutionId;
    }
    tagText = m_awaitedId == nvservice::NoInstitutionId ? QString() : WQ::sToQs(m_systemTag);
    return m_awaitedId;
}

CManagerSearchLineEdit::InstitutionPtr CManagerSearchLineEdit::institutionOfText() const
{
    const QString typed = WQ::CSearchIndex::folded(text());
    if (typed.isEmpty()) {
        return {};
    }
    const auto isMeant = [&](const InstitutionPtr& institution) {
        return WQ::CSearchIndex::folded(WQ::sToQs(institution->name)) == typed;
    };
    if (m_current && isMeant(m_current)) {
        return m_current;
    }
    const auto meant = std::find_if(m_offers.begin(), m_offers.end(), isMeant);
    return meant == m_offers.end() ? InstitutionPtr() : *meant;
}

void CManagerSearchLineEdit::onTextEdited()
{
    showMatches(text());
    m_awaitedId = nvservice::NoInstitutionId;
    changeChoice(institutionOfText());
}

void CManagerSearchLineEdit::showMatches(const QString& text)
{
    m_matches = m_index->find(WQ::CSearchIndex::words(text));
    QStringList lines;
    for (const int row : m_matches) {
        lines << offerText(*m_offers[static_cast<std::size_t>(row)]);
    }
    m_matchModel->setStringList(lines);
    if (m_matches.empty()) {
        m_completer->popup()->hide();
    } else {
        openOfferList(*m_completer, *this, lines);
    }
}

QString CManagerSearchLineEdit::offerText(const nvservice::CInstitutionInfo& institution) const
{
    const QString name = WQ::sToQs(institution.name);
    if (!m_systemTag.empty()) {
        return name;
    }
    const CKolmClientCenter* const center = utils::CSingletonT<CKolmClientCenter>::instance();
    if (!center->isMultiServers()) {
        return name;
    }
    return QStringLiteral("%1 (%2)").arg(name, WQ::sToQs(center->getServerNameBySystemTag(institution.getSystemTag())));
}

void CManagerSearchLineEdit::chooseMatch(int row)
{
    if (row < 0 || row >= static_cast<int>(m_matches.size())) {
        return;
    }
    const InstitutionPtr institution = m_offers[static_cast<std::size_t>(m_matches[static_cast<std::size_t>(row)])];
    m_completer->popup()->hide();
    setText(WQ::sToQs(institution->name));
    m_awaitedId = nvservice::NoInstitutionId;
    changeChoice(institution);
}

void CManagerSearchLineEdit::changeChoice(const InstitutionPtr& institution)
{
    if (institution == m_current) {
        return;
    }
    m_current = institution;
    WQ::deliverEvent(this, WQ::ManagerSelectionChanged, m_id);
}

void CManagerSearchLineEdit::settle()
{
    QAbstractItemView* const list = m_completer->popup();
    // A list that opens has a current row which nobody picked; picked is what is selected.
    const QModelIndexList picked = list->isVisible() ? list->selectionModel()->selectedIndexes() : QModelIndexList();
    list->hide();
    if (!picked.isEmpty()) {
        chooseMatch(picked.front().row());
        return;
    }
    if (!m_current && !text().trimmed().isEmpty()) {
        m_matches = m_index->find(WQ::CSearchIndex::words(text()));
        if (m_matches.size() == 1) {
            chooseMatch(0);
        }
    }
    if (m_awaitedId == nvservice::NoInstitutionId) {
        setText(m_current ? WQ::sToQs(m_current->name) : QString());
    }
}

void CManagerSearchLineEdit::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (!event->isAutoRepeat()) {
            settle();
        }
        event->accept();
        return;
    case Qt::Key_Down:
    case Qt::Key_Up:
        if (!m_completer->popup()->isVisible()) {
            showMatches(m_current ? QString() : text());
            return;
        }
        break;
    default:
        break;
    }
    CAutoKeyboardLineEdit::keyPressEvent(event);
}

void CManagerSearchLineEdit::focusOutEvent(QFocusEvent* event)
{
    CAutoKeyboardLineEdit::focusOutEvent(event);
    const bool stays = event->reason() == Qt::PopupFocusReason || event->reason() == Qt::ActiveWindowFocusReason ||
                       event->reason() == Qt::MenuBarFocusReason;
    if (!stays) {
        settle();
    }
}

void CManagerSearchLineEdit::mousePressEvent(QMouseEvent* event)
{
    CAutoKeyboardLineEdit::mousePressEvent(event);
    // A click into the empty edit shows what there is to choose.
    if (event->button() == Qt::LeftButton && text().isEmpty() && !isReadOnly()) {
        showMatches(QString());
    }
}

} // namespace QAV
