// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/CBaseWidget.h>

#include <cstdint>
#include <optional>

class QLayout;

namespace WQ
{
class CComboBox;
class CLineEdit;
} // namespace WQ

namespace QAV
{

class CPickList;

enum class EOutcome { Any, Done, Refused };

/// What the user looks for.
struct HistorySearch {
    std::int32_t groupId = -1; ///< -1: all groups
    QString user;              ///< a log-in name; empty: all
    std::optional<std::int64_t> since;
    std::optional<std::int64_t> until;
    std::int32_t dataType = 0; ///< 0: all
    EOutcome outcome = EOutcome::Any;
};

/// The conditions of the search, of which every change is reported at once, and the time of a past state.
class CSearchPane final : public WQ::CBaseWidget
{
    Q_OBJECT

public:
    /// @param hasOutcome  false: all entries have been carried out, and there is nothing to choose
    CSearchPane(bool hasOutcome, QWidget* parent);

    HistorySearch search() const;
    QString groupName() const;
    CPickList& groups() { return *m_groups; }
    CPickList& users() { return *m_users; }
    /// Says that a state at a time is that of a group.
    void askForGroup();

    bool handleEvent(int type, int id, int param, QString text, void* data) override;

Q_SIGNALS:
    void sigSearchChanged();
    /// The user wants to see the state at this time, in milliseconds since 1970 UTC.
    void sigStateWanted(std::int64_t at);

private:
    WQ::CLineEdit* addTime(int id, const QString& name);
    QLayout* createForm(bool hasOutcome);
    QLayout* createStateRow();
    void reportStateTime();
    void choosePeriod(int index);
    /// Marks a text that is no time.
    static void mark(WQ::CLineEdit& edit);

    CPickList* m_groups;
    CPickList* m_users;
    WQ::CComboBox* m_period;
    WQ::CLineEdit* m_since;
    WQ::CLineEdit* m_until;
    WQ::CComboBox* m_kind;
    WQ::CComboBox* m_outcome;
    WQ::CLineEdit* m_at;
    bool m_isSetting = true;
};

} // namespace QAV
