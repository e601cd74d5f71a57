// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAV/Export.h>
#include <WQ/CAutoKeyboardLineEdit.h>
#include <nvservice/CInstitutionInfo.h>
#include <utils/CMailbox.h>
#include <utils/NVError.h>

#include <boost/shared_ptr.hpp>

#include <memory>
#include <string>
#include <vector>

class QCompleter;
class QStringListModel;

namespace WQ
{
class CSearchIndex;
}

namespace QAV
{

/// A line edit in which the user chooses an institution. It completes the input by name, pinyin and initials.
///
/// The edit loads its institutions itself, from the server with the given system tag, or from all servers if the tag is
/// empty. Every `setSystemTag` starts a new load; until it ends, the edit offers the institutions that it has.
///
/// An institution is chosen if the user picked it from the list or typed its whole name; any other text chooses none.
/// When the edit loses the focus, or at Enter, a text that matches exactly one institution is completed to it, and a
/// text that matches none is cleared. So without the focus the edit shows the chosen institution or nothing.
///
/// Events, with the control id:
/// - ManagerSelectionChanged (237) when the user has changed the choice, never for a change by the program.
/// - ManagerDataLoaded (3023) after every `setSystemTag`, always through the event loop, even if the load failed. Calls
///   in quick succession share one event.
///
/// After a failed load the edit keeps its institutions and adds those that it received; its tool tip shows the error.
///
/// UI thread only. Destroying the edit while it loads is safe.
class QAV_EXPORT CManagerSearchLineEdit : public WQ::CAutoKeyboardLineEdit
{
    Q_OBJECT

public:
    CManagerSearchLineEdit(int id, QWidget* parent);
    ~CManagerSearchLineEdit() override;

    int id() const { return m_id; }

    /// True (the default): a user who is bound to an institution is offered only that one. False: the offer does not
    /// depend on the user.
    void setDependUser(bool depend);
    /// Offers the institutions of one server, or of all servers if the tag is empty. The choice stays if it is among
    /// them.
    void setSystemTag(std::string systemTag);
    /// Chooses one of the offered institutions, or none with nvservice::NoInstitutionId. During a load, the id is
    /// chosen when the data have arrived; an unknown id then chooses none.
    void setCurrentManagerId(int institutionId);
    /// The id of the chosen institution, and in `tagText` its system tag. Without a choice:
    /// nvservice::NoInstitutionId and an empty tag.
    int getCurrentManagerId(QString& tagText) const;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    using InstitutionPtr = boost::shared_ptr<nvservice::CInstitutionInfo>;

    void load();
    void takeReply(unsigned loadNumber, const utils::NVError& error, const std::vector<nvservice::IDataPtr>& records);
    void keepRecords(bool complete, const std::vector<nvservice::IDataPtr>& records);
    void updateOffers();
    bool isOffered(const nvservice::CInstitutionInfo& institution) const;
    void restoreChoice(bool dataComplete);
    void onTextEdited();
    void showMatches(const QString& text);
    void chooseMatch(int row);
    void settle();
    /// Stores the user's choice; null for none.
    void changeChoice(const InstitutionPtr& institution);
    InstitutionPtr institutionOfText() const;
    QString offerText(const nvservice::CInstitutionInfo& institution) const;

    int m_id;
    bool m_dependUser = true;
    std::string m_systemTag;
    std::string m_loadedTag; ///< the tag of the pending load
    unsigned m_loadNumber = 0;
    int m_awaitedId = nvservice::NoInstitutionId; ///< to be chosen when the data have arrived
    InstitutionPtr m_current;
    std::vector<InstitutionPtr> m_institutions; ///< all loaded ones, by tag and name
    std::vector<InstitutionPtr> m_offers;       ///< those with the tag, by name
    std::unique_ptr<WQ::CSearchIndex> m_index;  ///< of m_offers
    std::vector<int> m_matches;                 ///< rows of m_offers that the list shows
    QStringListModel* m_matchModel;
    QCompleter* m_completer;
    utils::CMailbox m_mailbox;
};

} // namespace QAV
