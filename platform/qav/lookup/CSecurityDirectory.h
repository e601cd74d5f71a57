// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lookup/CLatestQuery.h"

#include <nvservice/EZvTraderType.h>

#include <QObject>
#include <QString>

#include <memory>
#include <string>
#include <vector>

namespace QAV
{

/// The securities of one trade type on one server, loaded when they are first needed. UI thread only; the index is
/// built on the service thread.
class CSecurityDirectory : public QObject
{
    Q_OBJECT

public:
    struct Security {
        QString code;
        QString name;
    };

    explicit CSecurityDirectory(nvservice::EZvTraderType traderType, QObject* parent = nullptr);
    ~CSecurityDirectory() override;

    /// Sets the server; empty: all servers. The securities are reloaded when they are next needed; until then the
    /// loaded ones stay if the server is the same.
    void setServer(const std::string& systemTag);
    /// Loads the securities unless they are loaded or being loaded. Emits sigLoaded() at the end.
    void load();
    bool isLoaded() const { return m_content != nullptr; }
    /// Why the last load failed; empty if it succeeded.
    const QString& error() const { return m_error; }

    /// True if the list is complete and has securities of the trade type, but none with this code.
    bool lacks(const QString& code) const;

    const Security& security(int index) const;
    /// The index of the first security with this code, ignoring case; -1 if there is none.
    int indexOfCode(const QString& code) const;
    /// The indexes of the securities whose code, name or pinyin matches each word of `typed`: first those with exactly
    /// this code, then those whose code starts with it. At most `limit`.
    std::vector<int> find(const QString& typed, std::size_t limit) const;

signals:
    void sigLoaded();

private:
    struct Content;
    void take(const utils::NVError& error, const std::shared_ptr<const Content>& content);

    nvservice::EZvTraderType m_traderType;
    std::string m_systemTag;
    std::shared_ptr<const Content> m_content;
    bool m_isCurrent = false;
    bool m_loading = false;
    QString m_error;
    CLatestQuery m_query;
};

} // namespace QAV
