#pragma once

#include <WQ/CUiResourceChangeHandler.h>

#include <QComboBox>

namespace WQ
{

/// A drop-down of one choice. Every change of the current index, by the user or by the program, is reported as
/// ComboIndexChanged with the control id and `param` = new index, exactly once: the first item that is added to an
/// empty box reports 0, clear() reports -1 when an item was current. Items carry their text and user data as QComboBox
/// has them (addItem, itemData, findText, findData); the data of an item is there when its event arrives.
/// The mouse wheel changes the choice only while the box has the keyboard focus. UI thread only.
class WQ_EXPORT CComboBox : public QComboBox, public CUiResourceChangeHandler
{
    Q_OBJECT

public:
    CComboBox(int id, QWidget* parent);
    ~CComboBox() override;

    int id() const { return m_id; }

    /// The list opens as wide as its widest item asks.
    void showPopup() override;
    void onUiResourceChanged() override;

protected:
    void wheelEvent(QWheelEvent* event) override;

private:
    int m_id;
};

} // namespace WQ
