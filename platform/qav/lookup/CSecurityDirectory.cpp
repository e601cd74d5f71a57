// SPDX-License-Identifier: Apache-2.0
#include "lookup/CSecurityDirectory.h"

#include <WQ/CSearchIndex.h>

#include <QAV/CKolmClientCenter.h>
#include <WQ/StringConversion.h>
#include <nvservice/CSecurityInfo.h>
#include <nvservice/DataType.h>

#include <QHash>

#include <algorithm>

namespace QAV
{

struct CSecurityDirectory::Content {
    std::vector<Security> securities;
    WQ::CSearchIndex index;
    QHash<QString, int> indexesByCode; ///< codes in upper case
    bool hasOfType = false;            ///< false: every security is for any trade type

    static std::shared_ptr<const Content> of(const std::vector<nvservice::IDataPtr>& records,
                                             nvservice::EZvTraderType traderType)
    {
        auto content = std::make_shared<Content>();
        content->securities.reserve(records.size());
        for (const nvservice::IDataPtr& record : records) {
            const auto* const info = dynamic_cast<const nvservice::CSecurityInfo*>(record.get());
            const bool wanted =
                info && (info->traderType == traderType || info->traderType == nvservice::EZvTraderType::None);
            if (!wanted || info->securityCode.empty()) {
                continue;
            }
            content->hasOfType = content->hasOfType || info->traderType == traderType;
            content->securities.push_back({WQ::sToQs(info->securityCode), WQ::sToQs(info->securityName)});
        }
        std::stable_sort(content->securities.begin(), content->securities.end(),
                         [](const Security& a, const Security& b) { return a.code < b.code; });
        for (int i = 0; i < int(content->securities.size()); ++i) {
            const Security& security = content->securities[std::size_t(i)];
            content->index.append(security.code + QLatin1Char(' ') + security.name);
            const QString code = security.code.toUpper();
            if (!content->indexesByCode.contains(code)) {
                content->indexesByCode.insert(code, i);
            }
        }
        return content;
    }
};

CSecurityDirectory::CSecurityDirectory(nvservice::EZvTraderType traderType, QObject* parent)
    : QObject(parent), m_traderType(traderType)
{
}

CSecurityDirectory::~CSecurityDirectory() = default;

void CSecurityDirectory::setServer(const std::string& systemTag)
{
    if (systemTag != m_systemTag) {
        m_content.reset();
    }
    m_systemTag = systemTag;
    m_isCurrent = false;
    m_loading = false;
    m_query.drop();
}

void CSecurityDirectory::load()
{
    if (m_isCurrent || m_loading) {
        return;
    }
    m_loading = true;
    const auto server = m_systemTag.empty()
                            ? boost::shared_ptr<CKolmClient>()
                            : utils::CSingletonT<CKolmClientCenter>::instance()->getClientBySystemTag(m_systemTag);
    m_query.send(
        server, nvservice::DataType::Security, std::to_string(static_cast<int>(m_traderType)),
        [this, type = m_traderType](const utils::NVError& error, const std::vector<nvservice::IDataPtr>& records) {
            return [this, error, content = Content::of(records, type)] { take(error, content); };
        });
}

void CSecurityDirectory::take(const utils::NVError& error, const std::shared_ptr<const Content>& content)
{
    m_loading = false;
    m_isCurrent = error.isSuccess();
    m_error = error.isSuccess() ? QString() : WQ::sToQs(error.errorMsg());
    // If only some servers have failed, the securities of the others are used.
    if (error.isSuccess() || !content->securities.empty()) {
        m_content = content;
    }
    emit sigLoaded();
}

bool CSecurityDirectory::lacks(const QString& code) const
{
    return m_isCurrent && m_content->hasOfType && indexOfCode(code) < 0;
}

const CSecurityDirectory::Security& CSecurityDirectory::security(int index) const
{
    return m_content->securities[std::size_t(index)];
}

int CSecurityDirectory::indexOfCode(const QString& code) const
{
    return m_content ? m_content->indexesByCode.value(code.toUpper(), -1) : -1;
}

std::vector<int> CSecurityDirectory::find(const QString& typed, std::size_t limit) const
{
    const QVector<QByteArray> words = WQ::CSearchIndex::words(typed);
    if (!m_content || words.isEmpty()) {
        return {};
    }
    std::vector<int> found = m_content->index.find(words);
    const QString first = QString::fromUtf8(words.front());
    const auto rank = [&](int index) {
        const QString& code = security(index).code;
        if (!code.startsWith(first, Qt::CaseInsensitive)) {
            return 2;
        }
        return code.size() == first.size() ? 0 : 1;
    };
    std::stable_sort(found.begin(), found.end(), [&](int a, int b) { return rank(a) < rank(b); });
    if (found.size() > limit) {
        found.resize(limit);
    }
    return found;
}

} // namespace QAV
