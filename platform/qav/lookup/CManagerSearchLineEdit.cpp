// SPDX-License-Identifier: Apache-2.0
#include <QAV/CManagerSearchLineEdit.h>

#include "lookup/CLatestQuery.h"
#include "lookup/COfferList.h"

#include <QAV/CKolmClientCenter.h>
#include <QAV/CUserManager.h>
#include <WQ/CEventDeliverer.h>
#include <WQ/CSearchIndex.h>
#include <WQ/Pinyin.h>
#include <WQ/StringConversion.h>
#include <nvservice/CInstitutionInfo.h>
#include <nvservice/DataType.h>

#include <QCoreApplication>
#include <QFocusEvent>
#include <QKeyEvent>

#include <algorithm>
#include <set>

namespace QAV
{

namespace
{

using InstitutionPtr = boost::shared_ptr<nvservice::CInstitutionInfo>;

CKolmClientCenter& centre()
{
    return *utils::CSingletonT<CKolmClientCenter>::instance();
}

QString nameOf(const InstitutionPtr& institution)
{
    return institution ? WQ::sToQs(institution->name) : QString();
}

} // namespace

struct CManagerSearchLineEdit::Private {
    Private(CManagerSearchLineEdit& edit, int id);

    void load();
    void take(const utils::NVError& error, const std::vector<nvservice::IDataPtr>& records);
    void keepRecords(bool isComplete, const std::vector<nvservice::IDataPtr>& records);
    bool isOffered(const nvservice::CInstitutionInfo& institution) const;
    void updateOffers();
    /// Finds the chosen or awaited institution among the offers.
    void restoreChoice(bool isLoaded);
    QString offerText(int offer) const;
    /// The institution whose whole name is the text.
    InstitutionPtr institutionOfText() const;
    void choose(int offer);
    /// Stores the user's choice; null for none.
    void changeChoice(const InstitutionPtr& institution);
    /// Completes the text to an institution or clears it.
    void settle();

    CManagerSearchLineEdit& m_edit;
    const int m_id;
    bool m_dependUser = true;
    std::string m_systemTag;
    int m_awaitedId = nvservice::NoInstitutionId; ///< to be chosen when the data have arrived
    InstitutionPtr m_current;
    std::vector<InstitutionPtr> m_institutions; ///< all loaded ones
    std::vector<InstitutionPtr> m_offers;       ///< those with the tag, by name
    WQ::CSearchIndex m_index;                   ///< of m_offers
    COfferList* const m_list;
    CLatestQuery m_query;
};

CManagerSearchLineEdit::Private::Private(CManagerSearchLineEdit& edit, int id)
    : m_edit(edit), m_id(id), m_list(new COfferList(
                                  &edit, QCoreApplication::translate("QAV", "机构列表"),
                                  [this](const QString& typed) { return m_index.find(WQ::CSearchIndex::words(typed)); },
                                  [this](int offer) { return offerText(offer); }))
{
}

CManagerSearchLineEdit::CManagerSearchLineEdit(int id, QWidget* parent)
    : CAutoKeyboardLineEdit(parent), m_d(std::make_unique<Private>(*this, id))
{
    setEmptyHintText(QCoreApplication::translate("QAV", "输入机构名称、拼音或首字母"));
    setAccessibleName(QCoreApplication::translate("QAV", "机构"));
    connect(this, &QLineEdit::textEdited, this, [this](const QString& text) {
        m_d->m_list->show(text);
        m_d->changeChoice(m_d->institutionOfText());
    });
    connect(m_d->m_list, &COfferList::sigChosen, this, [this](int offer) { m_d->choose(offer); });
}

CManagerSearchLineEdit::~CManagerSearchLineEdit() = default;

int CManagerSearchLineEdit::id() const
{
    return m_d->m_id;
}

void CManagerSearchLineEdit::setDependUser(bool depend)
{
    m_d->m_dependUser = depend;
    m_d->updateOffers();
}

void CManagerSearchLineEdit::setSystemTag(std::string systemTag)
{
    m_d->m_systemTag = std::move(systemTag);
    m_d->updateOffers();
    m_d->restoreChoice(false);
    m_d->load();
}

void CManagerSearchLineEdit::setCurrentManagerId(int institutionId)
{
    m_d->m_current.reset();
    m_d->m_awaitedId = institutionId;
    clear();
    m_d->restoreChoice(false);
}

int CManagerSearchLineEdit::getCurrentManagerId(QString& tagText) const
{
    if (m_d->m_current) {
        tagText = WQ::sToQs(m_d->m_current->getSystemTag());
        return m_d->m_current->institutionId;
    }
    tagText = m_d->m_awaitedId == nvservice::NoInstitutionId ? QString() : WQ::sToQs(m_d->m_systemTag);
    return m_d->m_awaitedId;
}

void CManagerSearchLineEdit::Private::load()
{
    const auto server =
        m_systemTag.empty() ? boost::shared_ptr<CKolmClient>() : centre().getClientBySystemTag(m_systemTag);
    m_query.send(server, nvservice::DataType::Institution, {},
                 [this](const utils::NVError& error, const std::vector<nvservice::IDataPtr>& records) {
                     return [this, error, records] { take(error, records); };
                 });
}

void CManagerSearchLineEdit::Private::take(const utils::NVError& error, const std::vector<nvservice::IDataPtr>& records)
{
    const bool listWasOpen = m_list->isVisible();
    keepRecords(error.isSuccess(), records);
    updateOffers();
    restoreChoice(true);
    if (listWasOpen) {
        m_list->show(m_edit.text());
    }
    m_edit.setToolTip(error.isSuccess()
                          ? QString()
                          : QCoreApplication::translate("QAV", "机构加载失败：%1").arg(WQ::sToQs(error.errorMsg())));
    WQ::deliverEvent(&m_edit, WQ::ManagerDataLoaded, m_id);
}

void CManagerSearchLineEdit::Private::keepRecords(bool isComplete, const std::vector<nvservice::IDataPtr>& records)
{
    std::vector<InstitutionPtr> loaded;
    std::set<std::string> answered;
    for (const nvservice::IDataPtr& record : records) {
        const auto institution = boost::dynamic_pointer_cast<nvservice::CInstitutionInfo>(record);
        if (!institution || institution->institutionId == nvservice::NoInstitutionId) {
            continue;
        }
        if (institution->getSystemTag().empty()) {
            institution->setSystemTag(m_systemTag);
        }
        answered.insert(institution->getSystemTag());
        loaded.push_back(institution);
    }
    // The institutions of servers that did not answer stay.
    for (const InstitutionPtr& old : m_institutions) {
        const std::string& tag = old->getSystemTag();
        const bool isReplaced = answered.count(tag) > 0 || (isComplete && (m_systemTag.empty() || m_systemTag == tag));
        if (!isReplaced) {
            loaded.push_back(old);
        }
    }
    m_institutions = std::move(loaded);
}

bool CManagerSearchLineEdit::Private::isOffered(const nvservice::CInstitutionInfo& institution) const
{
    if (!m_systemTag.empty() && institution.getSystemTag() != m_systemTag) {
        return false;
    }
    const auto user = utils::CSingletonT<CUserManager>::instance()->getUserInfoPtr();
    const bool isBound = user && user->institutionId != nvservice::NoInstitutionId && user->institutionId != -1;
    return !m_dependUser || !isBound || user->institutionId == institution.institutionId;
}

void CManagerSearchLineEdit::Private::updateOffers()
{
    m_list->hide();
    std::vector<std::pair<QByteArray, InstitutionPtr>> sorted;
    for (const InstitutionPtr& institution : m_institutions) {
        if (isOffered(*institution)) {
            sorted.emplace_back(WQ::pinyinSortKey(nameOf(institution)), institution);
        }
    }
    std::stable_sort(sorted.begin(), sorted.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    m_offers.clear();
    m_index.clear();
    for (const auto& [key, institution] : sorted) {
        m_index.append(nameOf(institution));
        m_offers.push_back(institution);
    }
}

void CManagerSearchLineEdit::Private::restoreChoice(bool isLoaded)
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
        const bool wasAwaited = !m_current;
        m_current = *offer;
        m_awaitedId = nvservice::NoInstitutionId;
        // A user who is typing is not interrupted.
        if (wasAwaited || !m_edit.hasFocus()) {
            m_edit.setText(nameOf(m_current));
        }
    } else if (m_current) {
        m_current.reset();
        m_edit.clear();
    } else if (isLoaded) {
        m_awaitedId = nvservice::NoInstitutionId;
    }
}

QString CManagerSearchLineEdit::Private::offerText(int offer) const
{
    const InstitutionPtr& institution = m_offers[std::size_t(offer)];
    if (!m_systemTag.empty() || !centre().isMultiServers()) {
        return nameOf(institution);
    }
    const std::string server = centre().getServerNameBySystemTag(institution->getSystemTag());
    return QStringLiteral("%1 (%2)").arg(nameOf(institution), WQ::sToQs(server));
}

InstitutionPtr CManagerSearchLineEdit::Private::institutionOfText() const
{
    const QString typed = WQ::CSearchIndex::folded(m_edit.text());
    if (typed.isEmpty()) {
        return {};
    }
    const auto isMeant = [&](const InstitutionPtr& institution) {
        return WQ::CSearchIndex::folded(nameOf(institution)) == typed;
    };
    if (m_current && isMeant(m_current)) {
        return m_current;
    }
    const auto meant = std::find_if(m_offers.begin(), m_offers.end(), isMeant);
    return meant == m_offers.end() ? InstitutionPtr() : *meant;
}

void CManagerSearchLineEdit::Private::choose(int offer)
{
    const InstitutionPtr institution = m_offers[std::size_t(offer)];
    m_edit.setText(nameOf(institution));
    changeChoice(institution);
}

void CManagerSearchLineEdit::Private::changeChoice(const InstitutionPtr& institution)
{
    m_awaitedId = nvservice::NoInstitutionId;
    if (institution != m_current) {
        m_current = institution;
        WQ::deliverEvent(&m_edit, WQ::ManagerSelectionChanged, m_id);
    }
}

void CManagerSearchLineEdit::Private::settle()
{
    if (m_list->chooseCurrent()) {
        return;
    }
    if (!m_current && !m_edit.text().trimmed().isEmpty()) {
        const std::vector<int> matches = m_index.find(WQ::CSearchIndex::words(m_edit.text()));
        if (matches.size() == 1) {
            choose(matches.front());
        }
    }
    if (m_awaitedId == nvservice::NoInstitutionId) {
        m_edit.setText(nameOf(m_current));
    }
}

void CManagerSearchLineEdit::keyPressEvent(QKeyEvent* event)
{
    // A user who has chosen an institution is looking for another one.
    if (m_d->m_list->handleKey(event, m_d->m_current ? QString() : text())) {
        return;
    }
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (!isEnter) {
        CAutoKeyboardLineEdit::keyPressEvent(event);
    } else if (!event->isAutoRepeat()) {
        m_d->settle();
    }
}

void CManagerSearchLineEdit::focusOutEvent(QFocusEvent* event)
{
    CAutoKeyboardLineEdit::focusOutEvent(event);
    const bool stays = event->reason() == Qt::PopupFocusReason || event->reason() == Qt::ActiveWindowFocusReason ||
                       event->reason() == Qt::MenuBarFocusReason;
    if (!stays) {
        m_d->settle();
    }
}

void CManagerSearchLineEdit::mousePressEvent(QMouseEvent* event)
{
    CAutoKeyboardLineEdit::mousePressEvent(event);
    // A click into the empty edit shows all institutions.
    if (event->button() == Qt::LeftButton && text().isEmpty() && !isReadOnly()) {
        m_d->m_list->show(QString());
    }
}

} // namespace QAV
