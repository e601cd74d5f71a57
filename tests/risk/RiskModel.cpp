// SPDX-License-Identifier: Apache-2.0
#include "RiskModel.h"

#include <WQ/StringConversion.h>
#include <nvservice/RiskEnums.h>

#include <boost/make_shared.hpp>

#include <algorithm>
#include <iterator>

namespace risk_test
{

using nvservice::CRatProofSetting;

int RiskModel::open(const GroupKey& group)
{
    m_group = group;
    m_limits.clear();
    m_hasConfig = m_hasCategories = false;
    m_isCovered = true;
    m_coversWhole = false;
    return ++m_load;
}

std::optional<std::pair<int, ConfigPtr>> RiskModel::save()
{
    const bool valid = std::all_of(m_limits.begin(), m_limits.end(), [](const nvservice::CAssetsRC& limit) {
        return !limit.remark.empty(); // a new one has no threshold yet
    });
    if (!m_config || m_isCovered || !valid) {
        return {};
    }
    for (const nvservice::EZvTraderType type : TabTypes) {
        const nvservice::CTradeLimitList* const shown = m_lists.findList(type);
        if (shown || m_config->rcRule.findList(type)) {
            m_config->rcRule.list(type).entries = shown ? shown->entries : std::vector<nvservice::CTradeLimitEntry>();
        }
    }
    m_config->assetsRCs = m_limits;
    for (const auto field : {&CRatProofSetting::reverseOrderCheck, &CRatProofSetting::reverseOrderWarnOnly,
                             &CRatProofSetting::notCountCancelledOrders, &CRatProofSetting::washTradeForbidden}) {
        m_config->ratProofSetting.*field = m_exempt.*field;
    }
    for (const EPage page : {ReverseOrderPage, WashTradePage}) {
        idsOf(m_config->ratProofSetting, page).clear();
        for (const auto& category : m_chosen[page]) {
            idsOf(m_config->ratProofSetting, page).push_back(category->categoryId);
        }
    }
    m_config->emailRCs.clear();
    m_isCovered = m_coversWhole = true;
    return std::make_pair(++m_save, boost::dynamic_pointer_cast<nvservice::CAccountGroupRCConfig>(m_config->copy()));
}

void RiskModel::post(RiskReply reply)
{
    // Categories are let through whatever is open; the rest is for the group with this id.
    if (reply.kind == RiskReply::CategoryList || (m_group && m_group->id == reply.group.id)) {
        m_posted.push_back(std::move(reply));
    }
}

std::optional<QStringList> RiskModel::runToBox()
{
    while (!m_posted.empty()) {
        const RiskReply reply = m_posted.front();
        m_posted.pop_front();
        QStringList box;
        if (handle(reply, box)) {
            m_boxes.push_back(reply);
            return box;
        }
    }
    return {};
}

bool RiskModel::handle(const RiskReply& reply, QStringList& box)
{
    if (reply.kind == RiskReply::Save) {
        if (!(reply.group == *m_group)) {
            return false;
        }
        const bool isLoading = !m_hasConfig || !m_hasCategories;
        if (!isLoading && reply.number == m_save) {
            m_isCovered = false;
        }
        box = QStringList{"提示", reply.error.isEmpty() ? QString("保存成功") : reply.error};
        return true;
    }
    if (reply.number != m_load) {
        return false;
    }
    if (reply.kind == RiskReply::CategoryList) {
        m_offered = reply.offered;
        ++m_offers;
        m_hasCategories = true;
        finishLoad();
        return false;
    }
    if (!reply.error.isEmpty()) {
        box = QStringList{"错误", reply.error};
        return true;
    }
    takeConfig(reply.config);
    return false;
}

void RiskModel::closeBox()
{
    const RiskReply reply = m_boxes.back();
    m_boxes.pop_back();
    if (reply.kind == RiskReply::Config && reply.number == m_load) {
        takeConfig(reply.config);
    }
}

void RiskModel::takeConfig(const ConfigPtr& config)
{
    m_config = config ? boost::dynamic_pointer_cast<nvservice::CAccountGroupRCConfig>(config->copy()) : ConfigPtr();
    m_hasConfig = true;
    if (m_config) {
        m_limits = m_config->assetsRCs;
        m_lists = m_config->rcRule;
    }
    finishLoad();
}

void RiskModel::finishLoad()
{
    if (!m_hasConfig || !m_hasCategories) {
        return;
    }
    m_isCovered = false;
    if (!m_config) {
        return;
    }
    m_exempt = m_config->ratProofSetting;
    for (const EPage page : {ReverseOrderPage, WashTradePage}) {
        showExempt(page);
    }
}

std::vector<std::int32_t>& RiskModel::idsOf(CRatProofSetting& setting, EPage page)
{
    return page == ReverseOrderPage ? setting.reverseOrderExemptCategoryIds : setting.washTradeExemptCategoryIds;
}

void RiskModel::showExempt(EPage page)
{
    m_chosen[page].clear();
    for (const std::int32_t id : idsOf(m_exempt, page)) {
        std::copy_if(m_offered.begin(), m_offered.end(), std::back_inserter(m_chosen[page]),
                     [id](const auto& category) { return category->categoryId == id; });
    }
}

void RiskModel::chooseAll(EPage page)
{
    Categories& chosen = m_chosen[page];
    const Categories before = chosen;
    std::copy_if(m_offered.begin(), m_offered.end(), std::back_inserter(chosen), [&](const auto& category) {
        return std::find(before.begin(), before.end(), category) == before.end();
    });
}

bool RiskModel::toggle(bool CRatProofSetting::* field)
{
    if (!m_isCovered) {
        m_exempt.*field = !(m_exempt.*field);
    }
    return m_exempt.*field;
}

void RiskModel::addEntry(nvservice::EZvTraderType type, const std::string& code)
{
    if (m_isCovered) {
        return;
    }
    nvservice::CTradeLimitEntry entry;
    entry.securityCode = code;
    m_lists.list(type).entries.push_back(entry);
}

void RiskModel::addLimit()
{
    if (!m_isCovered) {
        m_limits.emplace_back();
    }
}

void RiskModel::removeFirstLimit()
{
    if (!m_isCovered && !m_limits.empty()) {
        m_limits.erase(m_limits.begin());
    }
}

QStringList RiskModel::limitRemarks() const
{
    QStringList remarks;
    for (const nvservice::CAssetsRC& limit : m_limits) {
        remarks << WQ::sToQs(limit.remark);
    }
    return remarks;
}

QStringList RiskModel::exemptNames(EPage page) const
{
    QStringList names;
    for (const auto& category : m_chosen[page]) {
        names << WQ::sToQs(category->categoryName);
    }
    return names;
}

} // namespace risk_test
