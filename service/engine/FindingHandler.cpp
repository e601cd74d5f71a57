// SPDX-License-Identifier: Apache-2.0
#include "service/engine/ConsistencyCheck.h"
#include "service/engine/DataHandler.h"
#include "service/engine/GroupRiskConfig.h"
#include "service/engine/QueryConditions.h"
#include "service/engine/Refusal.h"
#include "service/engine/UserRights.h"
#include "service/store/GroupHistory.h"

#include <nvservice/CFinding.h>
#include <utils/Translation.h>

#include <chrono>
#include <limits>
#include <map>
#include <mutex>

namespace service
{

namespace
{

using utils::EErrorCode;

/// A client waits half a minute for an answer.
constexpr std::chrono::seconds LongestCheck{25};

/// Whether the user may see what is found about a group, which may have been deleted.
class FindingScope
{
public:
    explicit FindingScope(const RequestContext& context) : m_context(context) {}

    bool has(std::int64_t groupId)
    {
        if (!m_context.user.institution) {
            return true;
        }
        const auto [isIn, isNew] = m_groups.try_emplace(groupId);
        if (isNew) {
            const std::optional<GroupHead> head = findGroupHead(m_context, groupId);
            const auto last = loadGroupChangesBefore(m_context, groupId, std::numeric_limits<std::int64_t>::max(), 1);
            const bool isKnown = head || !last.empty();
            isIn->second = isKnown && isInScope(m_context.user, head ? head->institution : last.front().institution);
        }
        return isIn->second;
    }

private:
    const RequestContext& m_context;
    std::map<std::int64_t, bool> m_groups;
};

nvservice::IDataPtr recordOf(const RequestContext& context, const Finding& finding, EFinding shownKind)
{
    const FindingKind& kind = kindOf(shownKind);
    const auto record = boost::make_shared<nvservice::CFinding>();
    record->kind = kind.key;
    record->kindName = utils::text("service", kind.name);
    record->advice = utils::text("service", kind.advice);
    record->groupId = static_cast<std::int32_t>(finding.groupId);
    record->groupName = finding.groupName;
    record->text = shownKind == finding.kind ? finding.text : record->kindName;
    record->setSystemTag(context.server.systemTag);
    return record;
}

} // namespace

/// Reads one state of the database and locks nothing, so writers do not wait. Ends with an error after `LongestCheck`
/// or when nobody waits for it any more, and takes one thread of the process at most.
Records queryFindings(const RequestContext& context, const std::string& key)
{
    requireRight(context.user, nvservice::UserRight::ReadAudit, AuditRightName);
    const QueryConditions noConditions(key, {});
    static std::mutex running;
    const std::unique_lock<std::mutex> turn(running, std::try_to_lock);
    if (!turn.owns_lock()) {
        throw Refusal(EErrorCode::ResourceExhausted, utils::text("service", "正在进行另一次检查，请稍后再试"));
    }
    const auto end = std::chrono::steady_clock::now() + LongestCheck;
    CheckOptions options{context.user, {}, [&context, end] {
                             if (context.isUnwanted && context.isUnwanted()) {
                                 throw Refusal(EErrorCode::Cancelled, utils::text("service", "请求已取消"));
                             }
                             if (std::chrono::steady_clock::now() > end) {
                                 throw Refusal(EErrorCode::ResourceExhausted,
                                               utils::text("service", "数据过多，请用 qav-admin check 检查"));
                             }
                         }};
    FindingScope scope(context);
    Records records;
    for (const Finding& finding : checkConsistency(context, options)) {
        // Without the right, a group with rules is just an empty one.
        const EFinding kind = finding.kind == EFinding::RuleOnEmptyGroup && !context.user.has(RiskRight)
                                  ? EFinding::EmptyGroup
                                  : finding.kind;
        const bool mayTell = !kindOf(kind).tellsRiskSettings || context.user.has(RiskRight);
        if (mayTell && scope.has(finding.groupId)) {
            records.push_back(recordOf(context, finding, kind));
        }
    }
    return records;
}

} // namespace service
