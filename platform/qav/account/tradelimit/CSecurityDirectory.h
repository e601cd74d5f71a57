#pragma once

#include <nvservice/EZvTraderType.h>
#include <nvservice/IData.h>
#include <utils/NVError.h>

#include <QObject>
#include <QString>

#include <memory>
#include <string>
#include <vector>

namespace QAV
{

class CReplyBox;

/// The securities of one trade type on one server, loaded when they are first needed. UI thread; the index is built on
/// the service thread.
class CSecurityDirectory : public QObject
{
    Q_OBJECT

public:
    struct Security {
        QString code;
        QString name;
        QString market;
    };

    explicit CSecurityDirectory(nvservice::EZvTraderType traderType, QObject* parent = nullptr);
    ~CSecurityDirectory() override;

    /// The server to ask from now on; empty: all servers. What was loaded is loaded anew when next needed, and serves
    /// until then if it is the same server's.
    void setServer(const std::string& systemTag);
    /// Loads, unless that is under way or done. Ends with sigLoaded().
    void load();
    bool isLoaded() const;
    /// Why the last load failed; empty: it did not.
    const QString& error() const { return m_error; }

    /// Whether the list is complete and has securities of the trade type, but none of this code.
    bool lacks(const QString& code) const;

    int size() const;
    const Security& security(int index) const;
    /// Index of the first security of this code, letters of either case; -1 if there is none.
    int indexOfCode(const QString& code) const;
    /// Indexes of the securities whose code, name or pinyin holds each word of `typed`: those of the very code first,
    /// then those whose code begins with it. At most `limit`.
    std::vector<int> find(const QString& typed, std::size_t limit) const;

signals:
    void sigLoaded();

private:
    struct Content;
    void take(unsigned loadNumber, const utils::NVError& error, const std::shared_ptr<const Content>& content);

    nvservice::EZvTraderType m_traderType;
    std::string m_systemTag;
    std::shared_ptr<const Content> m_content;
    bool m_isCurrent = false;
    bool m_loading = false;
    unsigned m_loadNumber = 0;
    QString m_error;
    const std::shared_ptr<CReplyBox> m_replies;
};

} // namespace QAV
