// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lookup/CLatestQuery.h"

#include <QObject>
#include <QString>

#include <memory>
#include <vector>

namespace QAV
{

/// The security categories of one server that the user may use. UI thread only.
class CCategoryDirectory : public QObject
{
    Q_OBJECT

public:
    /// @param categoryType  the type of the categories; -1: all
    explicit CCategoryDirectory(int categoryType, QObject* parent = nullptr);
    ~CCategoryDirectory() override;

    /// Sets the source of the next load; a pending reply is dropped. Returns true if the source has changed.
    /// @param institutionId  nvservice::NoInstitutionId: all institutions
    bool setSource(const QString& serverName, int institutionId);
    const QString& serverName() const { return m_serverName; }
    /// Queries the server; does nothing without one. Emits sigLoaded() at the end, unless another load starts first.
    void load();

    /// The category's name with those of its ancestors; for an unknown category its id.
    QString text(int categoryId) const;
    /// The category with this text, or with this name if it is unique; -1 if there is none.
    int categoryOf(const QString& text) const;
    /// The ids of the categories that match each word of `typed` by name or pinyin, or by the name of an ancestor; all
    /// if there is no word.
    std::vector<int> find(const QString& typed, std::size_t limit) const;

signals:
    void sigLoaded();

private:
    struct Content;
    void take(const utils::NVError& error, const std::vector<nvservice::IDataPtr>& records);
    void setContent(const std::vector<nvservice::IDataPtr>& records);

    int m_categoryType;
    int m_institutionId;
    QString m_serverName;
    std::unique_ptr<Content> m_content;
    CLatestQuery m_query;
};

} // namespace QAV
