// SPDX-License-Identifier: Apache-2.0
#include "service/engine/GroupRestore.h"
#include "service/engine/GroupPast.h"
#include "service/engine/GroupRiskConfig.h"
#include "service/engine/Objections.h"
#include "service/engine/RecordView.h"
#include "service/engine/Requests.h"
#include "service/engine/RiskConfigRules.h"

#include <nvservice/Codec.h>
#include <nvservice/DataType.h>
#include <utils/Translation.h>

#include <limits>

namespace service
{

namespace
{

namespace DataType = nvservice::DataType;
using nvservice::CAccountGroup;
using nvservice::CAccountGroupRCConfig;
using nvservice::CGroupRestore;
using nvservice::EZvDataOperation;
using utils::EErrorCode;

constexpr char EditRightName[] = QT_TRANSLATE_NOOP("service", "编辑账号组");

/// True if two states of a record differ in their revisions only.
template <typename Record>
bool isSame(const Record& a, const Record& b)
{
    Record x = a;
    Record y = b;
    x.setRevision(0);
    y.setRevision(0);
    return nvservice::encodeRecord(x).binaryEqual(nvservice::encodeRecord(y));
}

class Restore
{
public:
    Restore(const RequestContext& context, const CGroupRestore& wanted)
        : m_context(context), m_wanted(wanted), m_stored(findGroup(context, wanted.groupId))
    {
        m_restored.groupId = wanted.groupId;
    }

    Restored run()
    {
        if (!m_context.isTrial()) {
            requireRights();
        }
        if (m_stored) {
            requireInScope(m_context.user, m_stored->record->institutionId);
        } else if (m_wanted.groupRevision == 0 || m_wanted.seenGroupRevision != 0) {
            refuseMissingGroup(m_context, m_wanted.groupId);
        }
        if (m_wanted.groupRevision != 0) {
            restoreGroup();
        }
        if (m_wanted.configRevision != 0 && m_context.user.has(RiskRight)) {
            restoreConfig();
        } else if (m_wanted.configRevision != 0) {
            require(m_context, [&] { requireRight(m_context.user, RiskRight, RiskRightName); });
        }
        return std::move(m_restored);
    }

private:
    void requireRights() const
    {
        if (m_wanted.groupRevision != 0) {
            requireRight(m_context.user, nvservice::UserRight::EditAccountGroup, EditRightName);
        }
        if (m_wanted.configRevision != 0) {
            requireRight(m_context.user, RiskRight, RiskRightName);
        }
    }

    void restoreGroup()
    {
        const PastGroup past = requireRevision(m_context, m_wanted.groupId, m_wanted.groupRevision);
        requireInScope(m_context.user, past.revision.institution);
        if (past.isDeletion()) {
            throw Refusal(EErrorCode::InvalidValue,
                          utils::filled(utils::text("service", "修订%1是账号组的删除，请选择更早的修订"),
                                        m_wanted.groupRevision));
        }
        if (m_stored && isSame(*past.record, *m_stored->record)) {
            return;
        }
        viewOf(m_context, past.record);
        past.record->groupId = m_stored ? m_wanted.groupId : CAccountGroup().groupId;
        past.record->setRevision(m_wanted.seenGroupRevision);
        apply(DataType::AccountGroup, m_stored ? EZvDataOperation::Modify : EZvDataOperation::Add, *past.record);
        m_restored.revision = past.record->revision() + 1;
    }

    void restoreConfig()
    {
        const PastRiskConfig past = requireRiskRevision(m_context, m_wanted.groupId, m_wanted.configRevision);
        requireInScope(m_context.user, institutionOf(m_context, past));
        CAccountGroupRCConfig config = *past.record;
        config.groupId = m_restored.groupId;
        if (m_stored) {
            if (isSame(config, *GroupRiskConfig(m_context, config.groupId).record())) {
                return;
            }
            config.setRevision(m_wanted.seenConfigRevision);
        } else {
            const CAccountGroupRCConfig ofNewGroup = *riskConfigOf({}, m_context.server, config.groupId, 1);
            for (nvservice::CEmailRC& rule : config.emailRCs) {
                rule.accountKey = std::to_string(config.groupId);
            }
            if (isSame(config, ofNewGroup)) {
                return;
            }
            config.setRevision(ofNewGroup.revision());
            if (m_context.isTrial()) {
                requireValidRiskConfig(m_context, config, ofNewGroup);
                m_restored.changes.push_back({config.getKey(), {}, nvservice::encodeRecord(config)});
                return;
            }
        }
        apply(DataType::GroupRiskConfig, EZvDataOperation::Modify, config);
        m_restored.revision = config.revision() + 1;
    }

    void apply(std::int32_t dataType, EZvDataOperation operation, const nvservice::IData& record)
    {
        AppliedChange change = applyOperation(m_context, dataType, operation, record);
        change.kind = AppliedChange::Kind{dataType, operation};
        m_restored.groupId = change.newId != 0 ? change.newId : m_restored.groupId;
        m_restored.changes.push_back(std::move(change));
    }

    const RequestContext& m_context;
    const CGroupRestore& m_wanted;
    std::optional<StoredGroup> m_stored;
    Restored m_restored;
};

} // namespace

Restored restoreGroup(const RequestContext& context, const CGroupRestore& wanted)
{
    if (wanted.groupRevision < 0 || wanted.configRevision < 0 ||
        (wanted.groupRevision == 0 && wanted.configRevision == 0)) {
        throw Refusal(EErrorCode::InvalidValue, utils::text("service", "请指定要恢复的修订"));
    }
    return Restore(context, wanted).run();
}

std::int64_t lastConfigRevision(const ServerData& data, std::int64_t groupId)
{
    const auto last = loadRiskChangesBefore(data, groupId, std::numeric_limits<std::int64_t>::max(), 1);
    return last.empty() ? 0 : last.front().revision;
}

} // namespace service
