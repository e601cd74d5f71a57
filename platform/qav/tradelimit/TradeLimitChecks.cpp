// SPDX-License-Identifier: Apache-2.0
#include "tradelimit/TradeLimitChecks.h"

#include <WQ/StringConversion.h>

#include <QCoreApplication>
#include <QRegularExpression>

#include <algorithm>

namespace QAV
{

namespace
{

QString securityNameProblem(const QString& name)
{
    if (name.size() > MaxSecurityNameLength) {
        return QCoreApplication::translate("QAV", "证券名称不能超过%1个字符").arg(MaxSecurityNameLength);
    }
    if (std::any_of(name.begin(), name.end(), [](QChar letter) { return letter.category() == QChar::Other_Control; })) {
        return QCoreApplication::translate("QAV", "证券名称含有控制字符");
    }
    return {};
}

} // namespace

QString securityCodeProblem(const QString& code)
{
    if (code.isEmpty()) {
        return QCoreApplication::translate("QAV", "请输入证券代码");
    }
    if (code.size() > MaxSecurityCodeLength) {
        return QCoreApplication::translate("QAV", "证券代码不能超过%1个字符").arg(MaxSecurityCodeLength);
    }
    static const QRegularExpression letters(QRegularExpression::anchoredPattern(QStringLiteral("[0-9A-Za-z.&_-]+")));
    if (!letters.match(code).hasMatch()) {
        return QCoreApplication::translate("QAV", "“%1”不是证券代码，代码只能由字母、数字和 . - _ & 组成").arg(code);
    }
    return {};
}

QString unknownSecurity(const QString& code)
{
    return QCoreApplication::translate("QAV", "证券列表中没有“%1”，只能使用列表中的证券代码").arg(code);
}

QString entryProblem(const CTradeLimitBook& book, const nvservice::CTradeLimitEntry& entry)
{
    const QString codeProblem = securityCodeProblem(WQ::sToQs(entry.securityCode));
    if (!codeProblem.isEmpty()) {
        return codeProblem;
    }
    const QString nameProblem = securityNameProblem(WQ::sToQs(entry.securityName));
    if (!nameProblem.isEmpty()) {
        return nameProblem;
    }
    const nvservice::CTradeLimitEntry* const present = book.find(entry.securityCode);
    if (!present) {
        return {};
    }
    const QString code = WQ::sToQs(present->securityCode);
    const QString list = listKindName(present->listKind);
    if (present->listKind == entry.listKind) {
        return QCoreApplication::translate("QAV", "证券%1已在%2中").arg(code, list);
    }
    return QCoreApplication::translate("QAV", "证券%1已在%2中，同一证券不能同时在黑名单和白名单中").arg(code, list);
}

} // namespace QAV
