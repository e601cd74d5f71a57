// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "history/Changes.h"

#include <nvservice/CGroupRestore.h>

namespace QAV
{

class CComparisonView;

/// Fills the comparison: with one change, two revisions, the state at a time, or what a restore would change. What is
/// shown belongs to what was asked for last.
class CChangeDetails
{
public:
    using RestoredHandler = std::function<void(std::int32_t groupId)>;

    /// @param gate      of the panel that owns this object
    /// @param restored  a restore of this group has been carried out; -1: of a deleted one, which has another id now
    CChangeDetails(const CCallbackGate& gate, CComparisonView& view, RestoredHandler restored);

    void setServer(const QString& serverName);
    /// @param previous  the revision of the record before a change of the history; empty if it is not known
    void open(const HistoryChange& change, std::optional<std::int64_t> previous);
    /// Two changes of the same group and kind, the earlier one first. Otherwise says so.
    void compare(const HistoryChange& earlier, const HistoryChange& later);
    void showStateAt(std::int32_t groupId, const QString& groupName, std::int64_t at);
    /// Shows what the restore of the shown state would change.
    void preview();
    /// Asks the user and restores what the preview shows.
    void restore();
    /// Shows again what was shown before the preview.
    void abandon();
    void clear();

private:
    struct Shown {
        QString title;
        std::vector<RecordPair> pairs;
        QStringList headers;
        RestoreTarget target;
    };
    void show(const Shown& shown);
    void openEntry(const HistoryChange& change);
    void openRevision(const HistoryChange& change, std::optional<std::int64_t> previous);
    void showPreview(const std::vector<QueryAnswer>& answers);
    /// @param isAwaited  the user has looked at nothing else since
    void takeOutcome(const utils::NVError& error, std::int32_t groupId, bool isAwaited);
    /// Shows the first error that is one; false if there is none.
    bool showError(const std::vector<QueryAnswer>& answers);

    const CCallbackGate& m_gate;
    CComparisonView& m_view;
    const RestoredHandler m_restored;
    QString m_serverName;
    CJointQuery m_query;
    Shown m_shown;
    boost::shared_ptr<nvservice::CGroupRestore> m_preview;
    QString m_groupName;
};

} // namespace QAV
