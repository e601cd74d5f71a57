// SPDX-License-Identifier: Apache-2.0
#include "platform/wire/WireSamples.h"

#include "platform/wire/Protocol.h"
#include "platform/wire/ReplyEncoder.h"
#include "support/BsonMacros.h"

#include <nvservice/DataType.h>
#include <nvservice/SystemTag.h>

namespace samples
{

using namespace wire;

wire::Frame frameOf(const bson::BSONObj& message)
{
    return {message.objdata(), static_cast<std::size_t>(message.objsize())};
}

boost::shared_ptr<nvservice::CAccountGroup> groupOf(int number, int accounts)
{
    auto group = boost::make_shared<nvservice::CAccountGroup>();
    group->groupId = number;
    group->groupName = "账号组" + std::to_string(number);
    group->institutionId = 1 + number % 7;
    group->institutionName = "砚池证券股份有限公司";
    group->setRevision(number + 1);
    for (int i = 0; i < accounts; ++i) {
        auto account = boost::make_shared<nvservice::CAccountInfo>();
        account->brokerType = static_cast<nvservice::EZVBrokerType>(1 + i % 3);
        account->accountId = std::to_string(457000000 + number * 100 + i);
        account->unitId = "00" + std::to_string(i);
        account->accountName = "账号" + std::to_string(i);
        account->institutionId = group->institutionId;
        account->institutionName = group->institutionName;
        group->accounts.push_back(account);
    }
    nvservice::setSystemTagOfAll(*group, "SH01");
    return group;
}

std::vector<WireSample> clientSamples()
{
    Query query;
    query.id = 12;
    query.request.dataType = nvservice::DataType::AccountGroup;
    query.request.queryKey = "17";
    Operate operate;
    operate.id = 13;
    operate.request.dataType = nvservice::DataType::AccountGroup;
    operate.request.operation = nvservice::EZvDataOperation::Add;
    operate.request.data = groupOf(3, 2);
    operate.request.operationId = "0123-4567";
    return {{"hello", frameOf(encode(Hello{1, 3, "2.0", "风控管理客户端 1.0"}))},
            {"logIn", frameOf(encode(LogIn{11, "管理员", "密码 123"}))},
            {"query", frameOf(encode(query))},
            {"operate", frameOf(encode(operate))},
            {"cancel", frameOf(encode(Cancel{12}))},
            {"listen", frameOf(encode(Listen{"0.1.2"}))}};
}

std::vector<WireSample> serverSamples()
{
    auto user = boost::make_shared<nvservice::CUserInfo>();
    user->userId = "admin";
    user->userName = "管理员";
    user->rights = {10717, 10719};
    ReplyEncoder encoder(12);
    for (int i = 0; i < 3; ++i) {
        encoder.add(*groupOf(i, i));
    }
    const utils::NVError conflict(utils::EErrorCode::Conflict, "已被他人修改");
    return {{"welcome", frameOf(encode(Welcome{1, "2.0", "上海分系统", "SH01", 15}))},
            {"refused", frameOf(encode(Refused{{utils::EErrorCode::Unsupported, "版本不兼容"}, 2, 4, "2.1"}))},
            {"logInReply", frameOf(encode(LogInReply{11, {}, user}))},
            {"logInReply of a refusal",
             frameOf(encode(LogInReply{11, {utils::EErrorCode::NotLoggedIn, "用户名或密码错误"}, nullptr}))},
            {"replyBegin", frameOf(encode(ReplyBegin{12, 100000}))},
            {"replyChunk", frameOf(encoder.take())},
            {"replyEnd", frameOf(encode(ReplyEnd{12, {}, 3, {}}))},
            {"replyEnd with error and document", frameOf(encode(ReplyEnd{13, conflict, 0, BSON("by" << "甲")}))},
            {"changed", frameOf(encode(Changed{"0.1.2", true, {boost::make_shared<nvservice::CChangeInfo>()}}))},
            {"closing", frameOf(encode(Closing{5000, "服务维护"}))}};
}

std::vector<WireSample> wireSamples()
{
    std::vector<WireSample> all = clientSamples();
    for (WireSample& sample : serverSamples()) {
        all.push_back(std::move(sample));
    }
    all.push_back({"ping", frameOf(encode(Ping{14}))});
    all.push_back({"pong", frameOf(encode(Pong{14}))});
    all.push_back({"fault", frameOf(encode(Fault{{utils::EErrorCode::Malformed, "数据格式错误"}}))});
    return all;
}

} // namespace samples
