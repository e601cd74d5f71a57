// SPDX-License-Identifier: Apache-2.0
#include "lookup/CCategoryDirectory.h"

#include <WQ/CSearchIndex.h>

#include <QAV/CAssetsProportionWidget.h>
#include <QAV/CConfigService.h>
#include <QAV/CKolmClientCenter.h>
#include <WQ/StringConversion.h>
#include <nvservice/CCategoryInfo.h>
#include <nvservice/DataType.h>
#include <nvservice/NoInstitutionId.h>

#include <QCoreApplication>
#include <QHash>
#include <QStringList>

#include <algorithm>

namespace QAV
{

namespace
{

/// The maximum number of ancestors; protects against cycles.
constexpr int MaxDepth = 16;

} // namespace

struct CCategoryDirectory::Content {
    struct Category {
        int id;
        QString name;
        QString path;
    };
    std::vector<Category> categories; ///< in the order of the server
    QHash<int, int> placesById;
    WQ::CSearchIndex index;
};

CCategoryDirectory::CCategoryDirectory(int categoryType, QObject* parent)
    : QObject(parent), m_categoryType(categoryType), m_institutionId(nvservice::NoInstitutionId),
      m_content(std::make_unique<Content>())
{
}

CCategoryDirectory::~CCategoryDirectory() = default;

bool CCategoryDirectory::setSource(const QString& serverName, int institutionId)
{
    if (serverName == m_serverName && institutionId == m_institutionId) {
        return false;
    }
    // On another server the same ids mean other categories.
    if (serverName != m_serverName) {
        m_content = std::make_unique<Content>();
    }
    m_serverName = serverName;
    m_institutionId = institutionId;
    m_query.drop();
    return true;
}

void CCategoryDirectory::load()
{
    if (m_serverName.isEmpty()) {
        return;
    }
    const int institutionId = m_institutionId == nvservice::NoInstitutionId ? -1 : m_institutionId;
    m_query.send(utils::CSingletonT<CKolmClientCenter>::instance()->getClientByName(WQ::qsToS(m_serverName)),
                 nvservice::DataType::Category, std::to_string(institutionId) + '_' + std::to_string(m_categoryType),
                 [this](const utils::NVError& error, const std::vector<nvservice::IDataPtr>& records) {
                     return [this, error, records] { take(error, records); };
                 });
}

void CCategoryDirectory::take(const utils::NVError& error, const std::vector<nvservice::IDataPtr>& records)
{
    // After a failed reload the known categories stay.
    if (error.isSuccess() || !records.empty()) {
        setContent(records);
    }
    emit sigLoaded();
}

void CCategoryDirectory::setContent(const std::vector<nvservice::IDataPtr>& records)
{
    m_content = std::make_unique<Content>();
    std::vector<const nvservice::CCategoryInfo*> categories;
    QHash<int, const nvservice::CCategoryInfo*> byId;
    for (const nvservice::IDataPtr& record : records) {
        const auto* const category = dynamic_cast<const nvservice::CCategoryInfo*>(record.get());
        if (category && !byId.contains(category->categoryId)) {
            categories.push_back(category);
            byId.insert(category->categoryId, category);
        }
    }
    const CConfigService* const config = utils::CSingletonT<CConfigService>::instance();
    for (const nvservice::CCategoryInfo* const category : categories) {
        const bool isOfType =
            m_categoryType == CAssetsProportionWidget::AnyCategoryType || m_categoryType == category->categoryType;
        if (!isOfType || !config->testAuthByCategorySysType(category->sysType)) {
            continue;
        }
        QStringList names{WQ::sToQs(category->categoryName)};
        const nvservice::CCategoryInfo* parent = byId.value(category->parentId);
        for (int depth = 0; parent && depth < MaxDepth; ++depth, parent = byId.value(parent->parentId)) {
            names.prepend(WQ::sToQs(parent->categoryName));
        }
        m_content->placesById.insert(category->categoryId, int(m_content->categories.size()));
        m_content->categories.push_back({category->categoryId, names.last(), names.join(QStringLiteral(" / "))});
        m_content->index.append(m_content->categories.back().path);
    }
}

QString CCategoryDirectory::text(int categoryId) const
{
    const int place = m_content->placesById.value(categoryId, -1);
    if (place < 0) {
        return QCoreApplication::translate("QAV", "分类%1").arg(categoryId);
    }
    return m_content->categories[std::size_t(place)].path;
}

int CCategoryDirectory::categoryOf(const QString& text) const
{
    const QString wanted = text.simplified();
    int named = -1;
    int count = 0;
    for (const Content::Category& category : m_content->categories) {
        if (category.path.simplified() == wanted) {
            return category.id;
        }
        if (category.name.simplified() == wanted) {
            named = category.id;
            ++count;
        }
    }
    return count == 1 ? named : -1;
}

std::vector<int> CCategoryDirectory::find(const QString& typed, std::size_t limit) const
{
    std::vector<int> found = m_content->index.find(WQ::CSearchIndex::words(typed));
    if (found.size() > limit) {
        found.resize(limit);
    }
    std::transform(found.begin(), found.end(), found.begin(),
                   [this](int place) { return m_content->categories[std::size_t(place)].id; });
    return found;
}

} // namespace QAV
