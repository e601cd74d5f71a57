// SPDX-License-Identifier: Apache-2.0
#include "tradelimit/CSecurityEdit.h"

#include "tradelimit/TradeLimitChecks.h"

#include <WQ/StringConversion.h>

#include <QCoreApplication>

#include <algorithm>

namespace QAV
{

namespace
{

constexpr std::size_t MaxSecurityOffers = 100;

bool looksLikeCode(const QString& text)
{
    return securityCodeProblem(text).isEmpty() &&
           std::any_of(text.begin(), text.end(), [](QChar letter) { return letter.isDigit(); });
}

} // namespace

CSecurityEdit::CSecurityEdit(nvservice::EZvTraderType traderType, QWidget* parent)
    : CLookUpEdit(
          0, QCoreApplication::translate("QAV", "证券列表"), [this](const QString& typed) { return find(typed); },
          [this](int security) { return offerText(security); }, parent),
      m_directory(traderType)
{
    setEmptyHintText(QCoreApplication::translate("QAV", "代码、名称或拼音首字母"));
    connect(this, &CLookUpEdit::sigChosen, this, [this](int security) { m_chosen = security; });
    connect(&m_directory, &CSecurityDirectory::sigLoaded, this, &CSecurityEdit::onLoaded);
}

void CSecurityEdit::reset(const std::string& systemTag)
{
    clear();
    m_chosen = -1;
    m_directory.setServer(systemTag);
}

void CSecurityEdit::onLoaded()
{
    m_chosen = -1;
    const QString& error = m_directory.error();
    setToolTip(error.isEmpty()
                   ? QString()
                   : QCoreApplication::translate("QAV", "证券列表加载失败：%1，仍可直接输入证券代码").arg(error));
    refreshOffers();
}

std::vector<int> CSecurityEdit::find(const QString& typed)
{
    // A load that failed is tried again with the next text, not with each letter.
    if (m_directory.error().isEmpty() || typed.size() <= 1) {
        m_directory.load();
    }
    return m_directory.find(typed, MaxSecurityOffers);
}

QString CSecurityEdit::offerText(int security) const
{
    const CSecurityDirectory::Security& offer = m_directory.security(security);
    return QStringLiteral("%1 %2").arg(offer.code, offer.name);
}

int CSecurityEdit::securityOf(const QString& typed, QString& problem) const
{
    if (typed.isEmpty() || !m_directory.isLoaded()) {
        return -1;
    }
    if (m_chosen >= 0 && offerText(m_chosen).simplified() == typed) {
        return m_chosen;
    }
    const QString first = typed.section(QLatin1Char(' '), 0, 0);
    for (const QString& code : {typed, first}) {
        const int security = m_directory.indexOfCode(code);
        if (security >= 0) {
            return security;
        }
    }
    const std::vector<int> found = m_directory.find(typed, MaxSecurityOffers);
    const auto named = std::find_if(found.begin(), found.end(), [&](int security) {
        return m_directory.security(security).name.simplified() == typed;
    });
    if (named != found.end()) {
        return *named;
    }
    if (looksLikeCode(first)) {
        return -1;
    }
    if (found.size() == 1) {
        return found.front();
    }
    problem = found.empty() ? QCoreApplication::translate("QAV", "没有找到与“%1”相符的证券，请输入证券代码")
                                  .arg(typed.left(MaxSecurityCodeLength))
                            : QCoreApplication::translate("QAV", "与“%1”相符的证券不止一个，请从列表中选择").arg(typed);
    return -1;
}

QString CSecurityEdit::read(nvservice::CTradeLimitEntry& entry) const
{
    const QString typed = text().simplified();
    QString problem;
    const int security = securityOf(typed, problem);
    if (security >= 0) {
        entry.securityCode = WQ::qsToS(m_directory.security(security).code);
        entry.securityName = WQ::qsToS(m_directory.security(security).name);
    } else {
        entry.securityCode = WQ::qsToS(typed.section(QLatin1Char(' '), 0, 0));
        entry.securityName = WQ::qsToS(typed.section(QLatin1Char(' '), 1));
    }
    return problem;
}

} // namespace QAV
