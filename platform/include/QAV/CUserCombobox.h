#pragma once

#include <QAV/Export.h>
#include <WQ/CUiResourceChangeHandler.h>

#include <QComboBox>
#include <QMap>
#include <QSet>

namespace QAV
{

class CCheckListModel;
class CCheckListPopup;

/// A drop-down in which any number of items can be checked. The closed box shows how many are checked.
///
/// The list that opens has a search of its own: an item is found by its text, by the pinyin of its text and by the
/// initials of the pinyin; words separated by blanks must all be found. Its buttons check all, none or the opposite of
/// the items that the search shows; the others stay as they are. Keys: Space, F4, Alt+Down or any character open the
/// list (a character begins a search); Up, Down and the page keys move in it, Enter checks or unchecks the current
/// item, Tab goes on to the buttons, Esc closes.
///
/// 100 000 items are an ordinary number: there are no widgets per item, and what the search needs is made when the list
/// is first opened, beside the user's own work. Items stand in the order of their keys.
///
/// The box keeps its own text as the one item of its base class; the base class's operations on items are not for use.
/// UI thread only.
class QAV_EXPORT CUserCombobox : public QComboBox, public WQ::CUiResourceChangeHandler
{
    Q_OBJECT

public:
    /// @param typeText  what an item is called, for the texts of the box: "账号"
    CUserCombobox(int id, const QString& typeText, QWidget* parent);
    ~CUserCombobox() override;

    int id() const { return m_id; }

    /// Removes all items, their checks and the search.
    void clear();
    /// Adds items, text by key, unchecked. An item whose key is there already gets the new text and keeps its check.
    void addItems(const QMap<QString, QString>& items);
    /// Checks exactly the items with these keys; keys of no item are ignored.
    void setCheckItems(const QSet<QString>& keys);
    /// The keys of the checked items, whatever the search shows.
    QSet<QString> checkKeys() const;
    int itemCount() const;
    int checkedCount() const;

    void showPopup() override;
    void hidePopup() override;
    bool isPopupOpen() const;

    void onUiResourceChanged() override;

signals:
    /// The user or the program has checked or unchecked items; once for all items of one action.
    void sigCheckedChanged();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void openPopup(const QString& searchInput);
    void showCheckedCount();

    int m_id;
    QString m_typeText;
    CCheckListModel* m_model;
    CCheckListPopup* m_popup = nullptr;
};

} // namespace QAV
