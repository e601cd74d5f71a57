// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Stages.h"

#include <WQ/CStandardHpfTable.h>
#include <WQ/CStandardSimpleTable.h>
#include <WQ/CStandardTabControl.h>

#include <QStringList>

class QAbstractButton;
class QComboBox;
class QLineEdit;

namespace tour
{

class TourClient;

/// The columns of the asset-portfolio limits, as the user counts them.
enum LimitColumn {
    LimitEnabled,
    LimitScope,
    LimitClass,
    LimitCategory,
    LimitMeasured,
    LimitBase,
    LimitComparison,
    LimitThreshold,
    LimitUnit,
    LimitAction,
    LimitRemark,
    LimitRemove
};

/// The tab of the wash-trade ban.
inline const QString WashTrade = QStringLiteral("对敲交易设置");

/// The risk settings dialog as the user sees and uses it.
class RiskSettings
{
public:
    /// Waits until the dialog has loaded.
    explicit RiskSettings(QWidget& dialog);

    QStringList tabs() const;
    QStringList tradeTypes() const;
    /// Clicks a tab and gives its page.
    QWidget& page(const QString& tab) const;
    /// The black and white lists of a trade type, in front.
    QWidget& tradeType(const QString& tab) const;
    void save() const;
    void close() const;

    /// "code name list direction" of each row of a trade type; the direction only where there is one.
    QStringList entries(const QString& tradeType) const;
    /// Types into the look-up edit, clicks the offer that begins with `code`, chooses the list, and presses 添加.
    void addEntry(const QString& tradeType, const QString& typed, const QString& code, const QString& list) const;
    void removeEntry(const QString& tradeType, const QString& code) const;

    WQ::CStandardSimpleTable& limits() const;
    /// The texts of a limit: class, category, measured, base, comparison, threshold, unit, action, remark.
    QString limit(int row) const;
    /// Presses 新增 and gives the row.
    int addLimit() const;
    void chooseInLimit(int row, LimitColumn column, const QString& text) const;
    void typeIntoLimit(int row, LimitColumn column, const QString& text) const;
    /// Types, and clicks the offer with this text.
    void lookUpInLimit(int row, LimitColumn column, const QString& typed, const QString& offer) const;
    QWidget& limitCell(int row, LimitColumn column) const;

    QStringList exempt(const QString& tab) const;
    QAbstractButton& check(const QString& tab, const QString& text) const;
    void removeExempt(const QString& tab, const QString& category, const QString& answer) const;
    /// Opens the picker of exempt categories; `act` ends it.
    void pickExempt(const QString& tab, const std::function<void(QWidget&)>& act) const;

private:
    WQ::CStandardTabControl& outer() const;
    WQ::CStandardTabControl& inner() const;

    QWidget& m_dialog;
};

/// Opens the risk settings of a group from its row and plays `act`, which closes them. `first` come on top of the
/// dialog before.
void playRiskSettings(TourClient& client, const QString& group, const std::function<void(const RiskSettings&)>& act,
                      const std::vector<Stage>& first = {});

/// The picker of exempt categories.
class CategoryPicker
{
public:
    explicit CategoryPicker(QWidget& dialog) : m_dialog(dialog) {}

    QLineEdit& search() const;
    QStringList offered() const { return names(0); }
    QStringList chosen() const { return names(1); }
    /// Marks rows of the left or the right table and presses the button between.
    void take(const QStringList& categories) const { move(0, categories, QStringLiteral(">")); }
    void giveBack(const QStringList& categories) const { move(1, categories, QStringLiteral("<")); }

private:
    WQ::CStandardSimpleTable& table(int id) const;
    QStringList names(int id) const;
    void move(int id, const QStringList& categories, const QString& button) const;

    QWidget& m_dialog;
};

} // namespace tour
