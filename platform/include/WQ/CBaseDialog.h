#pragma once

#include <WQ/CEventWidgetT.h>
#include <WQ/CUiResourceChangeHandler.h>

#include <QDialog>

namespace WQ
{

/// The base of dialogs: receives the events of its controls, and ends the chain (see CEventDeliverer::handleEvent).
/// Esc and the window's close button end it with done(0). Enter presses nothing by itself.
class WQ_EXPORT CBaseDialog : public CEventWidgetT<QDialog>, public CUiResourceChangeHandler
{
    Q_OBJECT

public:
    explicit CBaseDialog(QWidget* parent = nullptr);
    ~CBaseDialog() override;

    /// Runs modally through IMessagePresenter::execDialog; returns what done() was given, 1 saved or accepted, 0
    /// closed.
    int exec() override;
    /// Runs the dialog's own event loop; for presenters.
    int execLoop();

    void onUiResourceChanged() override;

protected:
    void keyPressEvent(QKeyEvent* event) override;
};

} // namespace WQ
