// SPDX-License-Identifier: Apache-2.0
#include "centre/CMergedReply.h"

#include "centre/CRequestLedger.h"

#include <nvservice/CKolmProductsResp.h>

#include <boost/make_shared.hpp>

#include <QLoggingCategory>

#include <exception>
#include <utility>

namespace QAV
{

namespace
{

Q_LOGGING_CATEGORY(lcClient, "qav.client")

template <typename Callback, typename... Args>
void guarded(const Callback& callback, Args&&... args)
{
    if (!callback) {
        return;
    }
    try {
        callback(std::forward<Args>(args)...);
    } catch (const std::exception& e) {
        qCWarning(lcClient, "A reply callback threw: %s", e.what());
    } catch (...) {
        qCWarning(lcClient, "A reply callback threw something that is not an exception");
    }
}

} // namespace

CMergedReply::CMergedReply(std::vector<std::string> serverNames, QueryCallback callback)
    : m_missing(serverNames.size()), m_callback(std::move(callback))
{
    m_parts.reserve(serverNames.size());
    for (std::string& name : serverNames) {
        m_parts.push_back({std::move(name), {}, false});
    }
}

void CMergedReply::take(std::size_t index, ITransport::Reply reply, bool errorNamesServer)
{
    m_parts[index].reply = std::move(reply);
    m_parts[index].errorNamesServer = errorNamesServer;
    if (--m_missing > 0) {
        return;
    }
    ITransport::Reply merged;
    merged.error = mergedError();
    merged.records = mergedRecords();
    merged.document = mergedDocument();
    for (const Part& part : m_parts) {
        merged.totalCount += part.reply.totalCount;
    }
    callBack(m_callback, merged);
}

utils::NVError CMergedReply::mergedError() const
{
    utils::EErrorCode code = utils::EErrorCode::Success;
    std::string text;
    for (const Part& part : m_parts) {
        if (part.reply.error.isSuccess()) {
            continue;
        }
        if (code == utils::EErrorCode::Success) {
            code = part.reply.error.code();
        } else {
            text += "；";
        }
        text += part.errorNamesServer ? part.reply.error.errorMsg()
                                      : serverLabel(part.serverName) + "：" + part.reply.error.errorMsg();
    }
    return code == utils::EErrorCode::Success ? utils::NVError() : utils::NVError(code, text);
}

std::vector<nvservice::IDataPtr> CMergedReply::mergedRecords() const
{
    std::vector<nvservice::IDataPtr> records;
    boost::shared_ptr<nvservice::CKolmProductsResp> products;
    for (const Part& part : m_parts) {
        for (const nvservice::IDataPtr& record : part.reply.records) {
            const auto resp = boost::dynamic_pointer_cast<nvservice::CKolmProductsResp>(record);
            if (!resp) {
                records.push_back(record);
            } else if (!products) {
                products = resp;
                records.push_back(record);
            } else {
                products->products.insert(products->products.end(), resp->products.begin(), resp->products.end());
            }
        }
    }
    return records;
}

bson::BSONObj CMergedReply::mergedDocument() const
{
    if (m_parts.size() == 1) {
        return m_parts.front().reply.document;
    }
    bson::BSONObjBuilder builder;
    for (const Part& part : m_parts) {
        if (!part.reply.document.isEmpty()) {
            builder.append(part.serverName, part.reply.document);
        }
    }
    return builder.obj();
}

void callBack(const QueryCallback& callback, const ITransport::Reply& reply)
{
    guarded(callback, reply.error, reply.records, reply.totalCount, reply.document);
}

void callBack(const OperateCallback& callback, const ITransport::Reply& reply)
{
    guarded(callback, reply.error, reply.document);
}

void callBack(const LogInCallback& callback, const ITransport::Reply& reply)
{
    boost::shared_ptr<nvservice::CUserInfo> user;
    if (!reply.records.empty()) {
        user = boost::dynamic_pointer_cast<nvservice::CUserInfo>(reply.records.front());
    }
    guarded(callback, reply.error, user);
}

} // namespace QAV
