// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/CEventWidgetT.h>
#include <WQ/CUiResourceChangeHandler.h>

#include <QDialog>

namespace WQ
{

/// The base class of dialogs. Receives the events of its controls and ends the chain (see
/// CEventDeliverer::handleEvent). Esc and the window's close button call done(0). Enter presses no default button. With
/// unsaved edits the first Esc only says so in a tip; as long as the tip can be seen, another one closes.
class WQ_EXPORT CBaseDialog : public CEventWidgetT<QDialog>, public CUiResourceChangeHandler
{
    Q_OBJECT

public:
    explicit CBaseDialog(QWidget* parent = nullptr);
    ~CBaseDialog() override;

    /// Runs the dialog modally through IMessagePresenter::execDialog. Returns the argument of done(): 1 for saved or
    /// accepted, 0 for closed.
    int exec() override;
    /// For presenters: runs the dialog's own event loop.
    int execLoop();

    /// True if the user has entered something that closing the dialog would discard. Called from time to time.
    virtual bool hasUnsavedEdits() const;

    void onUiResourceChanged() override;

protected:
    void keyPressEvent(QKeyEvent* event) override;
};

} // namespace WQ
