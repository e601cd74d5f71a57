// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "history/CComparison.h"

#include <WQ/CBaseWidget.h>

namespace WQ
{
class CCheckBox;
class CNormalButton;
class CSimpleTextWidget;
class CStandardHpfTable;
} // namespace WQ

namespace QAV
{

class CTextModel;

/// Shows records side by side: what changed, on demand what did not, and the raw records. Its buttons are handled
/// above.
class CComparisonView final : public WQ::CBaseWidget
{
    Q_OBJECT

public:
    enum EActions { NoActions, CanRestore, IsPreview, IsObstructed };

    explicit CComparisonView(QWidget* parent);

    /// Shows nothing but a text.
    void showText(const QString& title);
    /// @param headers  above the two states; without the second, `pairs` have the same record twice, which is shown
    /// once
    /// @param obstacles  are listed before everything else
    void showRecords(const QString& title, const std::vector<RecordPair>& pairs, const QStringList& headers,
                     const QStringList& obstacles = {});
    void setActions(EActions actions);
    void setCategories(CategoryNames categories);

    QString title() const;
    /// How many lines differ.
    int changedCount() const { return m_comparison ? m_comparison->changedCount() : 0; }
    WQ::CStandardHpfTable& table() { return *m_table; }

    bool handleEvent(int type, int id, int param, QString text, void* data) override;

Q_SIGNALS:
    /// The user goes back by Esc.
    void sigLeft();

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    WQ::CNormalButton* addButton(int id, int type, const QString& text);
    void fill();
    void showTitle();

    WQ::CSimpleTextWidget* m_title;
    WQ::CCheckBox* m_unchanged;
    WQ::CCheckBox* m_raw;
    WQ::CNormalButton* m_restore;
    WQ::CNormalButton* m_confirm;
    WQ::CNormalButton* m_abandon;
    WQ::CStandardHpfTable* m_table;
    CTextModel* m_model;
    QString m_text;
    QStringList m_headers;
    QStringList m_obstacles;
    boost::shared_ptr<const CComparison> m_comparison;
    CategoryNames m_categories;
};

} // namespace QAV
