#pragma once

#include <WQ/CCustomDialog.h>

#include <QPointer>

namespace WQ
{

/// The dialog that the client's flows use: a title bar and one inner widget that fills the rest.
/// done() and a new exec() may follow each other as often as wished; the contents stay.
class WQ_EXPORT CCommonDialog : public CCustomDialog
{
    Q_OBJECT

public:
    explicit CCommonDialog(QWidget* parent = nullptr);
    ~CCommonDialog() override;

    /// `widget` becomes a child and fills the content area; the one set before is hidden and stays a child.
    /// The dialog never gets smaller than it asks for.
    void setInnerWidget(QWidget* widget);
    QWidget* innerWidget() const;

private:
    QPointer<QWidget> m_inner;
};

} // namespace WQ
