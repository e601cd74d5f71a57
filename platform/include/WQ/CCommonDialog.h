// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/CCustomDialog.h>

#include <memory>

namespace WQ
{

/// The standard dialog of the client: a title bar and one inner widget that fills the rest. It can be run again after
/// done() any number of times; the contents stay.
class WQ_EXPORT CCommonDialog : public CCustomDialog
{
    Q_OBJECT

public:
    explicit CCommonDialog(QWidget* parent = nullptr);
    ~CCommonDialog() override;

    /// Makes `widget` a child that fills the content area. The previous one is hidden and stays a child. The dialog
    /// never gets smaller than the widget's minimum size.
    void setInnerWidget(QWidget* widget);
    QWidget* innerWidget() const;

private:
    struct Private;
    std::unique_ptr<Private> m_d;
};

} // namespace WQ
