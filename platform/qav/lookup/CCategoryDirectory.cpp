// SPDX-License-Identifier: Apache-2.0
#include "lookup/CCategoryDirectory.h"

#include <WQ/CSearchIndex.h>

#include <QAV/CAssetsProportionWidget.h>
#include <QAV/CConfigService.h>
#include <QAV/CKolmClientCenter.h>
#include <WQ/StringConversion.h>
#include <nvservice/CKolmQueryDataReq.h>
#include <nvservice/DataType.h>
#include <nvservice/NoInstitutionId.h>

#include <QHash>
#include <QStringList>

#include <boost/make_shared.hpp>

#include <algorithm>

namespace QAV
{

namespace
{

/// Categories above one another; more of them are a circle.
constexpr int MaxDepth = 16;

using CategoryPtr = boost::shared_ptr<nvservice::CCategoryInfo>;

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
    // Another server's categories have other names under the same ids.
    if (serverName != m_serverName) {
        m_content = std::make_unique<Content>();
    }
    m_serverName = serverName;
    m_institutionId = institutionId;
    ++m_loadNumber;
    return true;
}

void CCategoryDirectory::load()
{
    if (m_serverName.isEmpty()) {
        return;
    }
    const int institutionId = m_institutionId == nvservice::NoInstitutionId ? -1 : m_institutionId;
    const auto request = boost::make_shared<nvservice::CKolmQueryDataReq>();
    request->dataType = nvservice::DataType::Category;
    request->queryKey = std::to_string(institutionId) + '_' + std::to_string(m_categoryType);
    const QueryCallback callback = [this, mailbox = m_mailbox.address(), number = ++m_loadNumber](
                                       const utils::NVError& error, const std::vector<nvservice::IDataPtr>& records,
                                       int, const bson::BSONObj&) {
        mailbox.post([this, number, error, records] { take(number, error, records); });
    };
    utils::CSingletonT<CKolmClientCenter>::instance()
        ->getClientByName(WQ::qsToS(m_serverName))
        ->queryData_async(request, callback, 0);
}

void CCategoryDirectory::take(unsigned loadNumber, const utils::NVError& error,
                              const std::vector<nvservice::IDataPtr>& records)
{
    if (loadNumber != m_loadNumber) {
        return;
    }
    m_error = error.isSuccess() ? QString() : WQ::sToQs(error.errorMsg());
    // A reload that fails leaves what is known.
    if (error.isSuccess() || !records.empty()) {
        m_content = std::make_unique<Content>();
        QHash<int, CategoryPtr> all;
        for (const nvservice::IDataPtr& record : records) {
            if (const auto category = boost::dynamic_pointer_cast<nvservice::CCategoryInfo>(record)) {
                all.insert(category->categoryId, category);
            }
        }
        const CConfigService* const config = utils::CSingletonT<CConfigService>::instance();
        for (const nvservice::IDataPtr& record : records) {
            const auto category = boost::dynamic_pointer_cast<nvservice::CCategoryInfo>(record);
            if (!category || m_content->placesById.contains(category->categoryId)) {
                continue;
            }
            if (m_categoryType != CAssetsProportionWidget::AnyCategoryType &&
                category->categoryType != m_categoryType) {
                continue;
            }
            if (!config->testAuthByCategorySysType(category->sysType)) {
                continue;
            }
            QStringList names{WQ::sToQs(category->categoryName)};
            CategoryPtr above = all.value(category->parentId);
            for (int depth = 0; above && depth < MaxDepth; ++depth, above = all.value(above->parentId)) {
                names.prepend(WQ::sToQs(above->categoryName));
            }
            m_content->placesById.insert(category->categoryId, int(m_content->categories.size()));
            m_content->categories.push_back({category->categoryId, names.last(), names.join(QStringLiteral(" / "))});
            m_content->index.append(m_content->categories.back().path);
        }
    }
    emit sigLoaded();
}

QString CCategoryDirectory::text(int categoryId) const
{
    const int place = m_content->placesById.value(categoryId, -1);
    if (place < 0) {
        return QStringLiteral("分类%1").arg(categoryId);
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
