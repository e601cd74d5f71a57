// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/CSearchIndex.h>

#include <QAbstractListModel>
#include <QBasicTimer>
#include <QMap>
#include <QSet>

#include <vector>

namespace QAV
{

/// Checkable items. The model shows those that match a search.
class CCheckListModel final : public QAbstractListModel
{
    Q_OBJECT

public:
    enum class ECheck { All, None, Invert };

    explicit CCheckListModel(QObject* parent);

    void clear();
    void addItems(const QMap<QString, QString>& items);
    void setCheckedKeys(const QSet<QString>& keys);
    QSet<QString> checkedKeys() const;
    int itemCount() const { return static_cast<int>(m_items.size()); }
    int checkedCount() const { return m_checkedCount; }

    /// Builds the search index in short steps. A search builds the rest at once.
    void prepareSearch();
    bool isSearchPrepared() const { return m_index.size() == itemCount(); }
    void search(const QString& input);
    void toggle(const QModelIndex& index);
    /// Changes the checks of the items that the search shows.
    void checkShown(ECheck check);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

signals:
    void sigCheckedChanged();

protected:
    void timerEvent(QTimerEvent* event) override;

private:
    struct Item {
        QString key;
        QString text;
        bool checked;
    };

    int itemOf(int row) const { return m_showsAll ? row : m_shown[static_cast<std::size_t>(row)]; }
    void dropSearch();
    void indexItems(int end);

    std::vector<Item> m_items; ///< sorted by key
    int m_checkedCount = 0;
    bool m_showsAll = true;
    std::vector<int> m_shown; ///< found items, unless all are shown
    QVector<QByteArray> m_words;
    WQ::CSearchIndex m_index;
    QBasicTimer m_preparation;
};

} // namespace QAV
