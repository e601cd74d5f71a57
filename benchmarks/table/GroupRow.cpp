// SPDX-License-Identifier: Apache-2.0
#include "GroupRow.h"

#include <array>

namespace bench
{

namespace
{

const std::array<QString, 4> servers = {QStringLiteral("上海主中心"), QStringLiteral("深圳分中心"),
                                        QStringLiteral("北京分中心"), QStringLiteral("大连灾备")};

} // namespace

const QString& serverName(int server)
{
    return servers[static_cast<std::size_t>(server)];
}

std::vector<Group> makeGroups(int count)
{
    const std::array<const char*, 12> places = {"上海", "深圳", "北京", "广州", "重庆", "杭州",
                                                "厦门", "南京", "长沙", "成都", "西安", "天津"};
    const std::array<const char*, 16> kinds = {"量化对冲", "价值成长", "稳健增利", "多策略", "指数增强", "红利精选",
                                               "债券增强", "商品趋势", "股指套利", "新能源", "医药健康", "消费升级",
                                               "科技创新", "中小盘",   "灵活配置", "全天候"};
    std::vector<Group> groups;
    groups.reserve(static_cast<std::size_t>(count));
    unsigned state = 20240601u;
    const auto next = [&state](unsigned below) {
        state = state * 1664525u + 1013904223u;
        return (state >> 8) % below;
    };
    for (int i = 0; i < count; ++i) {
        Group group;
        group.id = i + 1;
        group.name = std::string(places[next(12)]) + kinds[next(16)] + std::to_string(next(1000000)) + "号账号组";
        group.institution = std::string(places[next(12)]) + "第" + std::to_string(next(40)) + "资产管理公司";
        group.accounts = static_cast<int>(next(200));
        group.server = static_cast<int>(next(4));
        groups.push_back(std::move(group));
    }
    return groups;
}

QString GroupRow::getDisplayQString(int column) const
{
    switch (column) {
    case 0:
        return m_name;
    case 1:
        return QString::number(m_count);
    default:
        return getQStringValue(column);
    }
}

QString GroupRow::getQStringValue(int column) const
{
    switch (column) {
    case 0:
        return m_name;
    case 2:
        return m_institution;
    case 3:
        return m_server;
    default:
        return {};
    }
}

int GroupRow::getIntValue(int column) const
{
    return column == 1 ? m_count : InvalidInt;
}

QColor GroupRow::getTextColor(int) const
{
    return WQ::CUiResourceManager::instance()->colour(QStringLiteral("cle_default"));
}

QString GroupRow::getKey() const
{
    return m_server + QLatin1Char('|') + QString::number(m_id);
}

void fillRow(GroupRow& row, const Group& group)
{
    row.m_id = group.id;
    row.m_name = QString::fromStdString(group.name);
    row.m_count = group.accounts;
    row.m_institution = QString::fromStdString(group.institution);
    row.m_server = serverName(group.server);
}

QVector<WQ::ButtonData> makeButtons()
{
    QVector<WQ::ButtonData> buttons;
    buttons.append(WQ::ButtonData(0, QStringLiteral("风控设置"), 1));
    buttons.append(WQ::ButtonData(1, QStringLiteral("编辑"), 1));
    buttons.append(WQ::ButtonData(2, QStringLiteral("删除"), 1));
    return buttons;
}

QString GroupModel::getHeaderText(int column) const
{
    static const std::array<QString, 5> texts = {QStringLiteral("账号组名"), QStringLiteral("账号数量"),
                                                 QStringLiteral("所属机构"), QStringLiteral("分系统"),
                                                 QStringLiteral("操作")};
    return column >= 0 && column < 5 ? texts[static_cast<std::size_t>(column)] : QString();
}

int GroupModel::getValueKind(int column) const
{
    return column == 1 || column == 4 ? WQ::ValueInt : column >= 0 && column < 5 ? WQ::ValueText : WQ::ValueNone;
}

} // namespace bench
