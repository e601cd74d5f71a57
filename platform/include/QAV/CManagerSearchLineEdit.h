#pragma once

#include <QAV/Export.h>
#include <WQ/CAutoKeyboardLineEdit.h>
#include <nvservice/CInstitutionInfo.h>
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

/// The edit in which the user chooses an institution: completes what is typed by name, pinyin and initials.
///
/// It loads its institutions itself, from the server whose system tag it was given, or from all servers for an empty
/// tag. Every `setSystemTag` loads anew; meanwhile the edit offers what it has.
///
/// Chosen is the institution that the user picked from the list or whose whole name he typed; any other text means that
/// none is chosen. When the edit loses the focus, or at Enter, a text that only one institution answers to becomes that
/// institution, and a text that none answers to goes away, so that an edit without the focus shows what is chosen or
/// nothing.
///
/// Events, with the control id: ManagerSelectionChanged (237) when the user's typing or picking has changed what is
/// chosen, never for a change by the program. ManagerDataLoaded (3023) after every `setSystemTag`, always through the
/// event loop and also when the load failed; calls that follow each other before the event share one. When a load
/// failed, the edit goes on with what came and with what it had, and its tool tip says why.
///
/// UI thread only. Destroying the edit while it loads is safe.
class QAV_EXPORT CManagerSearchLineEdit : public WQ::CAutoKeyboardLineEdit
{
    Q_OBJECT

public:
    CManagerSearchLineEdit(int id, QWidget* parent);
    ~CManagerSearchLineEdit() override;

    int id() const { return m_id; }

    /// True (as constructed): a user who is bound to an institution is offered nothing but that one. False: the
    /// logged-in user makes no difference.
    void setDependUser(bool depend);
    /// Offers the institutions of one server only; of all for an empty tag. What is chosen stays if it is among them.
    void setSystemTag(std::string systemTag);
    /// Chooses an institution among those offered, or none with nvservice::NoInstitutionId. An id that is still to be
    /// loaded is chosen when the data are there; one that isn't there then chooses none.
    void setCurrentManagerId(int institutionId);
    /// The chosen institution's id, nvservice::NoInstitutionId for none, and in `tagText` its system tag, empty for
    /// none.
    int getCurrentManagerId(QString& tagText) const;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    using InstitutionPtr = boost::shared_ptr<nvservice::CInstitutionInfo>;
    struct Mailbox;

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
    /// Takes over what the user chose, null for none.
    void changeChoice(const InstitutionPtr& institution);
    InstitutionPtr institutionOfText() const;
    QString offerText(const nvservice::CInstitutionInfo& institution) const;

    int m_id;
    bool m_dependUser = true;
    std::string m_systemTag;
    std::string m_loadedTag; ///< what the load under way was asked for
    unsigned m_loadNumber = 0;
    int m_awaitedId = nvservice::NoInstitutionId; ///< to be chosen when the data are there
    InstitutionPtr m_current;
    std::vector<InstitutionPtr> m_institutions; ///< all that were loaded, by tag and name
    std::vector<InstitutionPtr> m_offers;       ///< those of the tag, by name
    std::unique_ptr<WQ::CSearchIndex> m_index;  ///< of m_offers
    std::vector<int> m_matches;                 ///< rows of m_offers that the list shows
    QStringListModel* m_matchModel;
    QCompleter* m_completer;
    std::shared_ptr<Mailbox> m_mailbox;
};

} // namespace QAV
