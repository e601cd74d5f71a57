// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/CUiResourceChangeHandler.h>

#include <QComboBox>

#include <memory>

namespace WQ
{

/// A drop-down list with one selected item. Every change of the current index, by the user or the program, is reported
/// exactly once as ComboIndexChanged with the control id and `param` = new index. Adding the first item to an empty box
/// reports 0; clear() reports -1 if an item was current. Items have text and user data as in QComboBox (addItem,
/// itemData, findText, findData); an item's data are set before its event is sent. The mouse wheel changes the
/// selection only while the box has the keyboard focus. UI thread only.
class WQ_EXPORT CComboBox : public QComboBox, public CUiResourceChangeHandler
{
    Q_OBJECT

public:
    CComboBox(int id, QWidget* parent);
    ~CComboBox() override;

    int id() const;

    /// Opens the list as wide as its widest item needs.
    void showPopup() override;
    void onUiResourceChanged() override;

protected:
    void wheelEvent(QWheelEvent* event) override;

private:
    struct Private;
    std::unique_ptr<Private> m_d;
};

} // namespace WQ
