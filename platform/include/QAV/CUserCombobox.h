// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAV/Export.h>
#include <WQ/CUiResourceChangeHandler.h>

#include <QComboBox>
#include <QMap>
#include <QSet>

#include <memory>

namespace QAV
{

/// A drop-down list in which any number of items can be checked. The closed box shows how many are checked.
///
/// The open list has a search field. It finds an item by its text, its pinyin and its pinyin initials; words separated
/// by blanks must all match. Buttons check all, uncheck all, or invert the items that the search shows; other items do
/// not change. Keys: Space, F4, Alt+Down or any character opens the list (a character starts a search). In the list,
/// Up, Down and the page keys move, Enter checks or unchecks the current item, Tab moves to the buttons, Esc closes.
///
/// Built for 100 000 items: there are no widgets per item, and the search index is built in short steps when the list
/// is first opened, so that the user can go on. Items are in the order of their keys.
///
/// The box stores its own text as the only item of the base class. Do not use the item functions of the base class.
/// UI thread only.
class QAV_EXPORT CUserCombobox : public QComboBox, public WQ::CUiResourceChangeHandler
{
    Q_OBJECT

public:
    /// @param typeText  the name of an item in the texts of the box, for example "账号"
    CUserCombobox(int id, const QString& typeText, QWidget* parent);
    ~CUserCombobox() override;

    int id() const;

    /// Removes all items, their checks and the search text.
    void clear();
    /// Adds unchecked items, given as text by key. An item with an existing key gets the new text and keeps its check.
    void addItems(const QMap<QString, QString>& items);
    /// Checks the items with these keys and unchecks all others. Unknown keys are ignored.
    void setCheckItems(const QSet<QString>& keys);
    /// The keys of all checked items, including those that the search hides.
    QSet<QString> checkKeys() const;
    int itemCount() const;
    int checkedCount() const;

    void showPopup() override;
    void hidePopup() override;
    bool isPopupOpen() const;

    void onUiResourceChanged() override;

Q_SIGNALS:
    /// The user or the program has checked or unchecked items. Emitted once per action.
    void sigCheckedChanged();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void openPopup(const QString& searchInput);
    void showCheckedCount();

    struct Private;
    std::unique_ptr<Private> m_d;
};

} // namespace QAV
