// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/store/Journal.h"

#include <QByteArray>

namespace service
{

/// Selects rows of the audit. Unset conditions are ignored.
struct AuditFilter {
    std::optional<std::string> login;
    std::optional<std::int64_t> since; ///< milliseconds since 1970 UTC, inclusive
    std::optional<std::int64_t> until; ///< inclusive
    std::optional<std::string> recordKey;
    std::vector<std::int32_t> dataTypes; ///< empty: all
    std::optional<int> operation;
    std::optional<bool> isSuccess;
    std::optional<utils::EErrorCode> outcome;
    InstitutionId institution; ///< of the row's group; empty: all
};

/// Where a page begins: with the row before this one.
struct AuditPosition {
    std::int64_t at = 0;
    std::int64_t id = 0;
};

struct AuditPage {
    std::vector<AuditRow> rows;                   ///< the latest first, without their documents
    std::map<std::string, std::string> userNames; ///< of the rows, by log-in; "" for who is no user
    std::optional<AuditPosition> next;            ///< empty: there are no more
};

constexpr int MostAuditRowsRead = 10000; ///< for one page

/// Reads at most `limit` rows. One condition is looked up in an index; the others are checked row by row. If they match
/// few rows, the page ends early, so that no page takes longer than reading `MostAuditRowsRead` rows.
AuditPage readAuditPage(const ServerData& data, const AuditFilter& filter, const std::optional<AuditPosition>& from,
                        int limit);

/// The states before and after as they are stored, for `documentOf`.
struct AuditBodies {
    QByteArray before;
    QByteArray after;
};
AuditBodies loadAuditBodies(const ServerData& data, std::int64_t id);

} // namespace service
