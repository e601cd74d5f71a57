// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAV/Export.h>
#include <WQ/CAutoKeyboardLineEdit.h>
#include <nvservice/NoInstitutionId.h>

#include <memory>
#include <string>

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

    int id() const;

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
    struct Private;
    const std::unique_ptr<Private> m_d;
};

} // namespace QAV
