// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/ServiceFixture.h"
#include "service/engine/UnreadChanges.h"

namespace testservice
{

inline QString described(const nvservice::CChangeInfo& info)
{
    return QString("%1 %2 of %3 %4 r%5 by %6")
        .arg(info.dataType == nvservice::DataType::AccountGroup ? "group" : "config")
        .arg(info.operation == EZvDataOperation::Add      ? "add"
             : info.operation == EZvDataOperation::Modify ? "modify"
                                                          : "delete")
        .arg(info.groupId)
        .arg(QString::fromStdString(info.groupName))
        .arg(info.revision())
        .arg(QString::fromStdString(info.userId));
}

/// "everything", or what each record says.
inline QStringList described(const service::UnreadChanges::News& news)
{
    QStringList all;
    if (!news.isComplete) {
        all << "everything";
    }
    for (const nvservice::CChangeInfoPtr& info : news.records) {
        all << described(*info);
    }
    return all;
}

/// A test that changes groups and reads what was committed.
class ChangesTest : public ServiceTest
{
protected:
    service::ChangePosition present() { return m_fixture->east().readChanges(std::nullopt).end; }

    /// What a session that has been told everything up to `from` hears of what came then.
    QStringList heard(const service::SessionPtr& session, const std::optional<service::ChangePosition>& from)
    {
        service::UnreadChanges unread(session, from);
        unread.add(m_fixture->east().readChanges(from));
        return described(unread.take());
    }
    QStringList heardByAdmin(const std::optional<service::ChangePosition>& from)
    {
        return heard(m_fixture->admin(), from);
    }

    int addGroup(const std::string& name, int institution = First)
    {
        return static_cast<int>(
            m_fixture->operate(EZvDataOperation::Add, group(name, institution, {future("8001")})).newId);
    }
    void rename(int groupId, const std::string& name)
    {
        const GroupPtr record = m_fixture->current(groupId);
        record->groupName = name;
        COMPARE_CODE(m_fixture->operate(EZvDataOperation::Modify, record), EErrorCode::Success);
    }
    void forbidWashTrades(int groupId)
    {
        const RiskConfigPtr config = m_fixture->loaded(groupId);
        config->ratProofSetting.washTradeForbidden = !config->ratProofSetting.washTradeForbidden;
        COMPARE_CODE(m_fixture->save(config), EErrorCode::Success);
    }
    void remove(int groupId)
    {
        COMPARE_CODE(m_fixture->operate(EZvDataOperation::Delete, m_fixture->current(groupId)), EErrorCode::Success);
    }
};

} // namespace testservice
