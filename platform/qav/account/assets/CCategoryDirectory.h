#pragma once

#include <nvservice/CCategoryInfo.h>
#include <utils/NVError.h>

#include <QObject>
#include <QString>

#include <memory>
#include <vector>

namespace QAV
{

class CReplyBox;

/// The security categories of one server that the user may use. UI thread.
class CCategoryDirectory : public QObject
{
    Q_OBJECT

public:
    /// @param categoryType  the type of the categories wanted; -1: all
    explicit CCategoryDirectory(int categoryType, QObject* parent = nullptr);
    ~CCategoryDirectory() override;

    /// What the next load asks for; a reply that is under way is dropped. Returns whether it is another source than
    /// before.
    /// @param institutionId  nvservice::NoInstitutionId: every institution's
    bool setSource(const QString& serverName, int institutionId);
    const QString& serverName() const { return m_serverName; }
    /// Asks the server; without one does nothing. Ends with sigLoaded(), unless another load comes first.
    void load();
    /// Why the last load failed; empty: it did not.
    const QString& error() const { return m_error; }

    /// The category's name with those above it; for one that is not there, its id.
    QString text(int categoryId) const;
    /// The category of such a text, or of a name that only one category has; -1 if there is none.
    int categoryOf(const QString& text) const;
    /// Ids of the categories whose name or pinyin, or a name above it, holds each word of `typed`; without a word all.
    std::vector<int> find(const QString& typed, std::size_t limit) const;

signals:
    void sigLoaded();

private:
    struct Content;
    void take(unsigned loadNumber, const utils::NVError& error, const std::vector<nvservice::IDataPtr>& records);

    int m_categoryType;
    int m_institutionId;
    QString m_serverName;
    unsigned m_loadNumber = 0;
    QString m_error;
    std::unique_ptr<Content> m_content;
    const std::shared_ptr<CReplyBox> m_replies;
};

} // namespace QAV
