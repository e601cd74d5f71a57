// SPDX-License-Identifier: Apache-2.0
#include "centre/CMergedReply.h"

#include <nvservice/CKolmProductsResp.h>
#include <utils/Translation.h>

#include <utility>

namespace QAV
{

CMergedReply::CMergedReply(std::vector<std::string> serverNames, PendingRequest::Done done)
    : m_missing(serverNames.size()), m_done(std::move(done))
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
    bson::BSONObjBuilder documents;
    for (const Part& part : m_parts) {
        merged.totalCount += part.reply.totalCount;
        if (!part.reply.document.isEmpty()) {
            documents.append(part.serverName, part.reply.document);
        }
    }
    merged.document = m_parts.size() == 1 ? m_parts.front().reply.document : documents.obj();
    m_done(std::move(merged), true);
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
            text += utils::text("QAV", "；");
        }
        text += part.errorNamesServer
                    ? part.reply.error.errorMsg()
                    : utils::filled(utils::text("QAV", "分系统“%1”：%2"), part.serverName, part.reply.error.errorMsg());
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

} // namespace QAV
