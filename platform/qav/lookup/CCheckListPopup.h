// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QFrame>

class QLabel;
class QListView;

namespace WQ
{
class CAutoKeyboardLineEdit;
class CSmallNormalButton;
} // namespace WQ

namespace QAV
{

class CCheckListModel;

/// The list that a CUserCombobox opens: a search field, buttons for the items that the search shows, and the items.
class CCheckListPopup final : public QFrame
{
    Q_OBJECT

public:
    CCheckListPopup(CCheckListModel* model, const QString& typeText, QWidget* box);

    /// Opens below the box, or above it if there is no room. Starts a new search for `input`.
    void open(const QString& input);

    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void createUi();
    void search(const QString& input);
    void showCount();
    QRect placeOnScreen() const;

    QWidget* m_box;
    CCheckListModel* m_model;
    QString m_typeText;
    WQ::CAutoKeyboardLineEdit* m_search = nullptr;
    QListView* m_list = nullptr;
    QLabel* m_count = nullptr;
};

} // namespace QAV
