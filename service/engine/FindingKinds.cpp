// SPDX-License-Identifier: Apache-2.0
#include "service/engine/FindingKinds.h"

#include <QCoreApplication>

#include <iterator>

namespace service
{

namespace
{

constexpr char RemoveMember[] = QT_TRANSLATE_NOOP("service", "编辑账号组，移除该账号。");
constexpr char SaveSettings[] =
    QT_TRANSLATE_NOOP("service", "打开账号组的风控设置，改正所列内容后保存，或恢复到较早的修订。");
constexpr char ChooseCategory[] =
    QT_TRANSLATE_NOOP("service", "打开账号组的风控设置，移除该分类，或改选其他分类后保存。");
constexpr char AskAdministrator[] = QT_TRANSLATE_NOOP("service", "请数据服务的管理员检查数据库，必要时从备份恢复。");

constexpr FindingKind Kinds[] = {
    {EFinding::OtherServerMember, "other-server-member", QT_TRANSLATE_NOOP("service", "其他分系统的账号"),
     AskAdministrator, false},
    {EFinding::OtherInstitutionMember, "other-institution-member", QT_TRANSLATE_NOOP("service", "其他机构的账号"),
     RemoveMember, false},
    {EFinding::ClosedAccount, "closed-account", QT_TRANSLATE_NOOP("service", "已销户的账号"), RemoveMember, false},
    {EFinding::ExcludedAccount, "excluded-account", QT_TRANSLATE_NOOP("service", "不允许加入账号组的账号"),
     RemoveMember, false},
    {EFinding::EmptyGroup, "empty-group", QT_TRANSLATE_NOOP("service", "没有账号的账号组"),
     QT_TRANSLATE_NOOP("service", "为账号组添加账号，或删除账号组。"), false},
    {EFinding::RuleOnEmptyGroup, "rule-on-empty-group", QT_TRANSLATE_NOOP("service", "没有账号却有风控的账号组"),
     QT_TRANSLATE_NOOP("service", "为账号组添加账号，使风控生效，或删除账号组。"), true},
    {EFinding::BrokenConfig, "broken-config", QT_TRANSLATE_NOOP("service", "无法读取的风控配置"),
     QT_TRANSLATE_NOOP("service", "请管理员将风控配置恢复到可以读取的修订。"), true},
    {EFinding::BrokenFields, "broken-fields", QT_TRANSLATE_NOOP("service", "无法读取的附加字段"), AskAdministrator,
     false},
    {EFinding::RepeatedList, "repeated-list", QT_TRANSLATE_NOOP("service", "重复的黑白名单"), SaveSettings, true},
    {EFinding::SecurityOnBothLists, "security-on-both-lists",
     QT_TRANSLATE_NOOP("service", "同时在黑名单和白名单中的证券"), SaveSettings, true},
    {EFinding::BadListEntry, "bad-list-entry", QT_TRANSLATE_NOOP("service", "无效的黑白名单条目"), SaveSettings, true},
    {EFinding::MissingCategory, "missing-category", QT_TRANSLATE_NOOP("service", "不存在的证券分类"), ChooseCategory,
     true},
    {EFinding::ForbiddenCategory, "forbidden-category", QT_TRANSLATE_NOOP("service", "不能使用的证券分类"),
     ChooseCategory, true},
    {EFinding::BadLimit, "bad-limit", QT_TRANSLATE_NOOP("service", "无效的资产组合限额"), SaveSettings, true},
    {EFinding::BadEmailRule, "bad-email-rule", QT_TRANSLATE_NOOP("service", "无效的邮件规则"), SaveSettings, true},
    {EFinding::LowCounter, "low-counter", QT_TRANSLATE_NOOP("service", "会被重复使用的编号"), AskAdministrator, false},
    {EFinding::HistoryGap, "history-gap", QT_TRANSLATE_NOOP("service", "不完整的历史"), AskAdministrator, false},
    {EFinding::HistoryMismatch, "history-mismatch", QT_TRANSLATE_NOOP("service", "与历史不符的数据"), AskAdministrator,
     false},
    {EFinding::ContradictingGroups, "contradicting-groups", QT_TRANSLATE_NOOP("service", "互相矛盾的账号组"),
     QT_TRANSLATE_NOOP("service", "将账号从其中一个账号组移除，或修改其中一组的黑白名单。"), true}};

constexpr bool areInOrder()
{
    for (std::size_t i = 0; i < std::size(Kinds); ++i) {
        if (static_cast<std::size_t>(Kinds[i].kind) != i) {
            return false;
        }
    }
    return std::size(Kinds) == static_cast<std::size_t>(EFinding::ContradictingGroups) + 1;
}
static_assert(areInOrder());

} // namespace

const FindingKind& kindOf(EFinding finding)
{
    return Kinds[static_cast<std::size_t>(finding)];
}

const char* keyOf(EFinding finding)
{
    return kindOf(finding).key;
}

} // namespace service
