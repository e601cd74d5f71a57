// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/Request.h"

#include "platform/wire/MessageCodec.h"
#include "service/engine/Requests.h"

#include <nvservice/Codec.h>
#include <utils/Translation.h>

#include <utility>

namespace service::daemon
{

namespace
{

using utils::NVError;

/// The size of the records on the network, estimated from some of them.
std::size_t encodedBytes(const std::vector<nvservice::IDataPtr>& records)
{
    constexpr std::size_t Samples = 16;
    const std::size_t step = records.size() / Samples + 1;
    std::size_t bytes = 0;
    std::size_t count = 0;
    for (std::size_t i = 0; i < records.size(); i += step, ++count) {
        bytes += static_cast<std::size_t>(nvservice::encodeRecord(*records[i]).objsize());
    }
    return count == 0 ? 0 : bytes * records.size() / count;
}

/// For the metrics: a limited set of names, whatever a client sends.
std::string kindOf(const char* verb, std::int32_t dataType)
{
    return verb + (isKnownDataType(dataType) ? std::to_string(dataType) : "other");
}

} // namespace

Request::Request(std::int64_t messageId, bool isAnOperation, Content content)
    : id(messageId), isOperation(isAnOperation)
{
    job->content = std::move(content);
    nameKind();
    if (const auto* query = std::get_if<nvservice::CKolmQueryDataReq>(&job->content)) {
        answerKind = query->queryKey.empty() ? kind : kind + "_key";
    }
}

void Request::nameKind()
{
    if (const auto* query = std::get_if<nvservice::CKolmQueryDataReq>(&job->content)) {
        kind = kindOf("query_", query->dataType);
    } else if (const auto* operation = std::get_if<nvservice::COperateDataReq>(&job->content)) {
        kind = kindOf("operate_", operation->dataType);
    } else {
        kind = isOperation ? "operate_other" : "query_other";
    }
}

NVError Request::Job::read()
{
    auto* frame = std::get_if<wire::Frame>(&content);
    if (!frame) {
        return {};
    }
    wire::Message message;
    NVError error = wire::decode(std::move(*frame), wire::LimitsAfterLogIn, message);
    if (auto* query = std::get_if<wire::Query>(&message); error.isSuccess() && query) {
        content = std::move(query->request);
    } else if (auto* operate = std::get_if<wire::Operate>(&message); error.isSuccess() && operate) {
        content = std::move(operate->request);
    }
    return error;
}

void Request::Job::carryOut(service::DataEngine& engine, const service::SessionPtr& session)
{
    const utils::CLanguageScope scope(language);
    reply.error = read();
    if (auto* query = std::get_if<nvservice::CKolmQueryDataReq>(&content)) {
        if (!isUnwanted) {
            reply = engine.query(session, *query, [this] { return isUnwanted.load(); });
        }
        if (isUnwanted) {
            reply = service::Reply();
        }
        replyBytes = encodedBytes(reply.records);
    } else if (auto* operation = std::get_if<nvservice::COperateDataReq>(&content)) {
        reply = engine.operate(session, *operation);
        operation->data.reset();
    }
}

} // namespace service::daemon
