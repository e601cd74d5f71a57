// SPDX-License-Identifier: Apache-2.0
#include "service/engine/DataHandler.h"
#include "service/engine/ErrorCodeNames.h"
#include "service/engine/GroupRiskConfig.h"
#include "service/engine/QueryConditions.h"
#include "service/engine/RecordView.h"
#include "service/engine/UserRights.h"
#include "service/store/AuditPages.h"
#include "service/store/GroupHistory.h"

#include <nvservice/CAuditEntry.h>
#include <nvservice/Codec.h>
#include <nvservice/DataType.h>
#include <utils/Translation.h>

#include <algorithm>
#include <limits>
#include <map>
#include <set>

namespace service
{

namespace
{

namespace DataType = nvservice::DataType;
namespace QueryCondition = nvservice::QueryCondition;
using nvservice::CAuditEntry;
using utils::EErrorCode;

constexpr auto LastErrorCode = static_cast<std::int64_t>(EErrorCode::ResourceExhausted);
constexpr int MostStateBytes = 4 * 1024 * 1024;    ///< after which a page ends
constexpr int MostBytesBesidesDetails = 64 * 1024; ///< of one entry

bool isOneOf(std::int32_t value, const std::vector<std::int32_t>& values)
{
    return std::find(values.begin(), values.end(), value) != values.end();
}

/// Makes entries of the rows of a page.
class AuditEntries
{
public:
    AuditEntries(const RequestContext& context, const AuditPage& page, bool hasDetails)
        : m_context(context), m_hasDetails(hasDetails), m_seesEverything(seesEverything(context.user)),
          m_userNames(page.userNames)
    {
        std::set<std::int64_t> groupIds;
        for (const AuditRow& row : page.rows) {
            const std::optional<std::int32_t> groupId = groupOf(context.server, row);
            if (groupId && *groupId >= 0) {
                groupIds.insert(*groupId);
            }
        }
        m_groupNames = loadLastGroupNames(context, groupIds, context.user.institution);
    }

    boost::shared_ptr<CAuditEntry> entryOf(const AuditRow& row)
    {
        auto entry = boost::make_shared<CAuditEntry>();
        entry->entryId = row.id;
        entry->at = row.at;
        entry->userId = row.login;
        entry->userName = m_userNames.at(row.login);
        entry->operation = static_cast<nvservice::EZvDataOperation>(row.operation);
        entry->dataType = row.dataType;
        entry->groupId = groupOf(m_context.server, row).value_or(entry->groupId);
        entry->groupName = m_groupNames[entry->groupId];
        entry->recordKey = row.recordKey;
        entry->outcome = static_cast<std::int32_t>(row.outcome.code());
        entry->outcomeText = row.outcome.errorMsg();
        entry->operationId = row.operationId;
        addStates(*entry, row);
        entry->setSystemTag(m_context.server.systemTag);
        return entry;
    }
    /// Of the states that were read so far.
    std::int64_t bytes() const { return m_bytes; }

private:
    /// Counted refusals are in the states. What a refusal says may be as secret as what was refused. Keys of accounts
    /// have their ids.
    bool needsStates(const AuditRow& row) const
    {
        const bool mayHaveSecrets =
            !m_seesEverything && (!row.outcome.isSuccess() || row.dataType == DataType::Account);
        const bool mayBeCount = !row.outcome.isSuccess() && row.recordKey.empty();
        return m_hasDetails || mayHaveSecrets || mayBeCount;
    }

    void addStates(CAuditEntry& entry, const AuditRow& row)
    {
        if (!needsStates(row)) {
            return;
        }
        const AuditBodies bodies = loadAuditBodies(m_context, row.id);
        const int size = bodies.before.size() + bodies.after.size();
        m_bytes += size;
        const View before = viewOfBody(bodies.before, row.outcome.isSuccess());
        const View after = viewOfBody(bodies.after, row.outcome.isSuccess());
        entry.attempts = after.attempts;
        const bool isRisk = row.dataType == DataType::GroupRiskConfig || row.dataType == DataType::EmailRule;
        const bool isSecret = isRisk && !m_context.user.has(RiskRight);
        const bool isOwn = row.login == m_context.user.login;
        if (!m_seesEverything && !isOwn && (isSecret || !isWhole(row, before, after))) {
            hideTexts(entry, row);
        }
        if (!m_hasDetails) {
            return;
        }
        if (isSecret) {
            entry.withheldReason = utils::text("service", "您没有查看风控设置的权限");
        } else if (static_cast<std::size_t>(size) > nvservice::MaxRecordBytes - MostBytesBesidesDetails) {
            entry.withheldReason = utils::text("service", "内容过大，请查看该修订的状态");
        } else {
            entry.before = before.record;
            entry.after = after.record;
            if (!before.isShown || !after.isShown) {
                entry.withheldReason = utils::text("service", "部分内容不能显示");
            }
        }
    }

    /// False if the texts say more than the records that the user sees. A refusal without a record, and one of a
    /// restore, may name anything; the key of an account names it.
    static bool isWhole(const AuditRow& row, const RecordView& before, const RecordView& after)
    {
        const bool isPlain = row.outcome.isSuccess() && row.dataType != DataType::Account;
        const bool isTold = isPlain || (after.record && row.dataType != DataType::GroupRestore);
        return isTold && before.isWhole && after.isWhole;
    }

    struct View : RecordView {
        bool isShown = true; ///< false: there is a state that is not in the entry
        std::int64_t attempts = 1;
    };
    View viewOfBody(const QByteArray& body, bool isStored) const
    {
        View view;
        if (body.isEmpty()) {
            return view;
        }
        view.isShown = false;
        bson::BSONObj document;
        nvservice::IDataPtr record;
        const auto size = static_cast<std::size_t>(body.size());
        if (!nvservice::repairDocument(body.constData(), size, document).isSuccess()) {
            return view;
        }
        const bson::BSONElement attempts = document.getField("attempts");
        if (!document.hasField("_type") && attempts.isNumber()) {
            view.attempts = attempts.numberLong();
        } else if (nvservice::decodeRecord(document, record).isSuccess()) {
            static_cast<RecordView&>(view) = viewOf(m_context, record, isStored);
            view.isShown = view.record != nullptr;
        }
        return view;
    }

    static void hideTexts(CAuditEntry& entry, const AuditRow& row)
    {
        if (!entry.outcomeText.empty()) {
            entry.outcomeText = utils::text("service", nameOfErrorCode(row.outcome.code()).title);
        }
        if (row.dataType == DataType::Account) {
            entry.recordKey.clear();
        }
    }

    const RequestContext& m_context;
    bool m_hasDetails;
    bool m_seesEverything;
    const std::map<std::string, std::string>& m_userNames;
    std::map<std::int64_t, std::string> m_groupNames;
    std::int64_t m_bytes = 0;
};

void readOutcome(const QueryConditions& conditions, AuditFilter& filter)
{
    const std::optional<std::string> wanted = conditions.text(QueryCondition::Outcome);
    if (!wanted) {
        return;
    }
    if (*wanted == "ok" || *wanted == "refused") {
        filter.isSuccess = *wanted == "ok";
    } else {
        filter.outcome = static_cast<EErrorCode>(*conditions.number(QueryCondition::Outcome, 0, LastErrorCode));
    }
}

AuditFilter filterOf(const RequestContext& context, const QueryConditions& conditions)
{
    AuditFilter filter;
    filter.login = conditions.text(QueryCondition::User);
    filter.since = conditions.number(QueryCondition::Since);
    filter.until = conditions.number(QueryCondition::Until);
    filter.institution = context.user.institution;
    if (const std::optional<std::int32_t> groupId = conditions.group()) {
        filter.recordKey = groupKey(context.server, *groupId);
        filter.dataTypes = groupDataTypes();
    }
    if (const auto type = conditions.number(QueryCondition::RecordType, 0, std::numeric_limits<std::int32_t>::max())) {
        const auto wanted = static_cast<std::int32_t>(*type);
        const bool isPossible = filter.dataTypes.empty() || isOneOf(wanted, filter.dataTypes);
        filter.dataTypes = {isPossible ? wanted : -1};
    }
    if (const auto operation = conditions.number(QueryCondition::Operation, 0, 3)) {
        filter.operation = static_cast<int>(*operation);
    }
    readOutcome(conditions, filter);
    return filter;
}

} // namespace

QueryAnswer queryAudit(const RequestContext& context, const std::string& key)
{
    requireRight(context.user, nvservice::UserRight::ReadAudit, AuditRightName);
    const QueryConditions conditions(key, {QueryCondition::Group, QueryCondition::Since, QueryCondition::Until,
                                           QueryCondition::User, QueryCondition::RecordType, QueryCondition::Operation,
                                           QueryCondition::Outcome, QueryCondition::Details, QueryCondition::PageSize,
                                           QueryCondition::Cursor});
    std::optional<AuditPosition> from;
    if (const auto cursor = conditions.cursor()) {
        from = {cursor->first, cursor->second};
    }
    AuditPage page = readAuditPage(context, filterOf(context, conditions), from, conditions.pageSize());
    AuditEntries entries(context, page, conditions.number(QueryCondition::Details, 0, 1).value_or(0) == 1);
    Records records;
    for (auto row = page.rows.begin(); row != page.rows.end(); ++row) {
        const AuditPosition position{row->at, row->id};
        records.push_back(entries.entryOf(*row));
        if (entries.bytes() > MostStateBytes && std::next(row) != page.rows.end()) {
            page.next = position;
            break;
        }
    }
    return {std::move(records), page.next ? cursorOf(page.next->at, page.next->id) : std::string()};
}

} // namespace service
