// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAV/CKolmClient.h>

#include <string>
#include <vector>

namespace QAV
{

/// Gathers the replies of several servers to one query and answers once. Used on the service thread only.
class CMergedReply
{
public:
    /// @param serverNames   in the order in which the records are to stand
    CMergedReply(std::vector<std::string> serverNames, QueryCallback callback);

    /// Takes the reply of the server at `index`; the last one triggers the callback.
    void take(std::size_t index, ITransport::Reply reply, bool errorNamesServer);

private:
    struct Part {
        std::string serverName;
        ITransport::Reply reply;
        bool errorNamesServer = false;
    };

    utils::NVError mergedError() const;
    std::vector<nvservice::IDataPtr> mergedRecords() const;
    bson::BSONObj mergedDocument() const;

    std::vector<Part> m_parts;
    std::size_t m_missing;
    QueryCallback m_callback;
};

/// Calls a callback; what it throws is logged and goes no further.
void callBack(const QueryCallback& callback, const ITransport::Reply& reply);
void callBack(const OperateCallback& callback, const ITransport::Reply& reply);
void callBack(const LogInCallback& callback, const ITransport::Reply& reply);

} // namespace QAV
