// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAbstractListModel>
#include <QFrame>
#include <QSet>
#include <QStringList>

#include <vector>

class QCheckBox;
class QLabel;
class QLineEdit;
class QListView;

namespace WQ
{

class IBaseHpfTableModel;

/// The values of a column with a check box each, narrowed by a search text.
class CHpfFilterValues : public QAbstractListModel
{
    Q_OBJECT

public:
    CHpfFilterValues(const QStringList& values, const QSet<QString>* checked, QObject* parent);

    void search(const QString& text);
    /// Changes the checks of the values that are listed now.
    void setAllChecked(bool checked);
    Qt::CheckState allChecked() const;
    QSet<QString> checkedValues() const;
    bool isEverythingChecked() const;

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    QStringList m_values;
    std::vector<char> m_checked;
    std::vector<int> m_listed;
};

/// The pop-up of a header's filter button. Filters the model by the checked values.
class CHpfFilterPopup : public QFrame
{
    Q_OBJECT

public:
    CHpfFilterPopup(IBaseHpfTableModel& model, int column, QWidget* parent);

    void openBelow(const QRect& globalButton);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void accept();
    void clearFilter();
    void showAllChecked();

    IBaseHpfTableModel& m_model;
    const int m_column;
    bool m_complete = true;
    CHpfFilterValues* m_values;
    QLineEdit* m_search;
    QCheckBox* m_all;
    QListView* m_list;
};

} // namespace WQ
