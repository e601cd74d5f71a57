// SPDX-License-Identifier: Apache-2.0
#include "RecordSamples.h"

#include "support/BsonMacros.h"
#include "support/DataRows.h"

#include <nvservice/CAccountGroup.h>
#include <nvservice/CAccountGroupRCConfig.h>
#include <nvservice/CAuditEntry.h>
#include <nvservice/CCategoryInfo.h>
#include <nvservice/CChangeInfo.h>
#include <nvservice/CFinding.h>
#include <nvservice/CGroupRestore.h>
#include <nvservice/CInstitutionInfo.h>
#include <nvservice/CKolmAccountInfo.h>
#include <nvservice/CKolmProductsResp.h>
#include <nvservice/CKolmQueryDataReq.h>
#include <nvservice/COperateDataReq.h>
#include <nvservice/CProductInfo.h>
#include <nvservice/CSecurityInfo.h>
#include <nvservice/CUserInfo.h>
#include <nvservice/CustomEmailRC.h>

#include <rapidcheck.h>

#include <boost/make_shared.hpp>

#include <type_traits>

namespace samples
{

using namespace nvservice;

namespace
{

// The members of each class. `visit` is called with a member's name and the member of each record given.
#define MEMBERS(Class, ...)                                                                                            \
    template <typename Visit, typename... Records>                                                                     \
    void visitMembers(const Class*, Visit& visit, Records&... record)                                                  \
    {                                                                                                                  \
        __VA_ARGS__                                                                                                    \
    }
#define MEMBER(name) visit(#name, record.name...);

MEMBERS(CAccountInfo, MEMBER(brokerType) MEMBER(accountId) MEMBER(unitId) MEMBER(accountName) MEMBER(institutionId)
                          MEMBER(institutionName))
MEMBERS(CAccountGroup, MEMBER(groupId) MEMBER(groupName) MEMBER(accounts) MEMBER(institutionId) MEMBER(institutionName))
MEMBERS(CKolmAccountInfo, MEMBER(account) MEMBER(stateCode) MEMBER(excluded))
MEMBERS(CProductInfo, MEMBER(productId) MEMBER(productName) MEMBER(excluded) MEMBER(accounts))
MEMBERS(CKolmProductsResp, MEMBER(products))
MEMBERS(CTradeLimitEntry, MEMBER(securityCode) MEMBER(securityName) MEMBER(direction) MEMBER(listKind))
MEMBERS(CTradeLimitList, MEMBER(traderType) MEMBER(entries))
MEMBERS(CAccountGroupRCRule, MEMBER(lists))
MEMBERS(CAssetsRC, MEMBER(ruleId) MEMBER(scope) MEMBER(assetClass) MEMBER(categoryId) MEMBER(measured) MEMBER(base)
                       MEMBER(comparison) MEMBER(threshold) MEMBER(unit) MEMBER(action) MEMBER(enabled)
                           MEMBER(serverName) MEMBER(remark))
MEMBERS(CRatProofSetting,
        MEMBER(washTradeForbidden) MEMBER(reverseOrderCheck) MEMBER(washTradeExemptCategoryIds)
            MEMBER(reverseOrderExemptCategoryIds) MEMBER(notCountCancelledOrders) MEMBER(reverseOrderWarnOnly))
MEMBERS(CEmailRC,
        MEMBER(ruleKind) MEMBER(accountKey) MEMBER(ruleKey) MEMBER(recipients) MEMBER(subject) MEMBER(enabled))
MEMBERS(CustomEmailRC, MEMBER(emailRCs))
MEMBERS(CAccountGroupRCConfig,
        MEMBER(groupId) MEMBER(rcRule) MEMBER(assetsRCs) MEMBER(ratProofSetting) MEMBER(emailRCs))
MEMBERS(CCategoryInfo, MEMBER(categoryId) MEMBER(categoryName) MEMBER(categoryType) MEMBER(sysType) MEMBER(parentId))
MEMBERS(CInstitutionInfo, MEMBER(institutionId) MEMBER(name))
MEMBERS(CSecurityInfo, MEMBER(securityCode) MEMBER(securityName) MEMBER(market) MEMBER(sysType) MEMBER(traderType))
MEMBERS(CUserInfo, MEMBER(userId) MEMBER(userName) MEMBER(institutionId) MEMBER(rights))
MEMBERS(CAuditEntry, MEMBER(entryId) MEMBER(at) MEMBER(userId) MEMBER(userName) MEMBER(operation) MEMBER(dataType)
                         MEMBER(groupId) MEMBER(groupName) MEMBER(recordKey) MEMBER(outcome) MEMBER(outcomeText)
                             MEMBER(operationId) MEMBER(attempts) MEMBER(before) MEMBER(after) MEMBER(withheldReason))
MEMBERS(CFinding, MEMBER(kind) MEMBER(kindName) MEMBER(groupId) MEMBER(groupName) MEMBER(text) MEMBER(advice))
MEMBERS(CGroupRestore, MEMBER(groupId) MEMBER(groupRevision) MEMBER(configRevision) MEMBER(seenGroupRevision)
                           MEMBER(seenConfigRevision) MEMBER(obstacles))
MEMBERS(CChangeInfo, MEMBER(dataType) MEMBER(groupId) MEMBER(groupName) MEMBER(operation) MEMBER(userId)
                         MEMBER(userName) MEMBER(changedAt) MEMBER(operationId))
MEMBERS(CKolmQueryDataReq, MEMBER(dataType) MEMBER(queryKey))
MEMBERS(COperateDataReq, MEMBER(dataType) MEMBER(operation) MEMBER(data) MEMBER(operationId))

template <typename Value>
constexpr bool isPlain = std::is_arithmetic_v<Value> || std::is_enum_v<Value>;

/// Fills members with random values.
struct Filler {
    template <typename Value>
    void operator()(const char*, Value& value)
    {
        fill(value);
    }

    void fill(std::string& value) { value = randomText(); }
    void fill(double& value) { value = *rc::gen::inRange(-1000000000, 1000000000) / 1024.0; }
    void fill(std::set<int>& value) { value = *rc::gen::arbitrary<std::set<int>>(); }

    void fill(IDataPtr& value)
    {
        const boost::shared_ptr<CProductInfo> product = boost::make_shared<CProductInfo>();
        fill(*product);
        value = product;
    }

    template <typename Record>
    void fill(boost::shared_ptr<Record>& value)
    {
        value = boost::make_shared<Record>();
        fill(*value);
    }

    template <typename Value>
    void fill(std::vector<Value>& values)
    {
        values.resize(static_cast<std::size_t>(*rc::gen::inRange(0, 4)));
        for (Value& value : values) {
            fill(value);
        }
    }

    template <typename Value>
    void fill(Value& value)
    {
        if constexpr (std::is_enum_v<Value>) {
            value = static_cast<Value>(*rc::gen::arbitrary<std::int32_t>());
        } else if constexpr (isPlain<Value>) {
            value = *rc::gen::arbitrary<Value>();
        } else {
            visitMembers(static_cast<Value*>(nullptr), *this, value);
            value.unknownFields = randomUnknownFields();
            if constexpr (std::is_base_of_v<IData, Value>) {
                value.setSystemTag(randomText());
                value.setRevision(*rc::gen::arbitrary<std::int64_t>());
            }
        }
    }
};

/// Compares members; remembers the first that differs.
struct Comparer {
    const char* different = nullptr;

    template <typename Value>
    void operator()(const char* name, const Value& left, const Value& right)
    {
        if (!different && !equal(left, right) && !different) {
            different = name;
        }
    }

    bool equal(const IDataPtr& left, const IDataPtr& right)
    {
        if (!left || !right) {
            return left == right;
        }
        const auto* leftProduct = dynamic_cast<const CProductInfo*>(left.get());
        const auto* rightProduct = dynamic_cast<const CProductInfo*>(right.get());
        return leftProduct && rightProduct && equal(*leftProduct, *rightProduct);
    }

    template <typename Record>
    bool equal(const boost::shared_ptr<Record>& left, const boost::shared_ptr<Record>& right)
    {
        return left && right ? equal(*left, *right) : left == right;
    }

    template <typename Value>
    bool equal(const std::vector<Value>& left, const std::vector<Value>& right)
    {
        bool same = left.size() == right.size();
        for (std::size_t i = 0; same && i < left.size(); ++i) {
            same = equal(left[i], right[i]);
        }
        return same;
    }

    template <typename Value>
    bool equal(const Value& left, const Value& right)
    {
        if constexpr (isPlain<Value> || std::is_same_v<Value, std::string> || std::is_same_v<Value, std::set<int>>) {
            return left == right;
        } else {
            visitMembers(static_cast<Value*>(nullptr), *this, left, right);
            if (!left.unknownFields.binaryEqual(right.unknownFields)) {
                different = "unknownFields";
            }
            if constexpr (std::is_base_of_v<IData, Value>) {
                if (left.getSystemTag() != right.getSystemTag()) {
                    different = "system tag";
                }
                if (left.revision() != right.revision()) {
                    different = "revision";
                }
            }
            return different == nullptr;
        }
    }
};

template <typename Record>
RecordKind kind(const char* typeName)
{
    return {typeName, [] { return boost::make_shared<Record>(); },
            [] {
                const boost::shared_ptr<Record> record = boost::make_shared<Record>();
                Filler().fill(*record);
                return record;
            },
            [](const IData& left, const IData& right) -> const char* {
                const auto* leftRecord = dynamic_cast<const Record*>(&left);
                const auto* rightRecord = dynamic_cast<const Record*>(&right);
                if (!leftRecord || !rightRecord) {
                    return "class";
                }
                Comparer comparer;
                comparer.equal(*leftRecord, *rightRecord);
                return comparer.different;
            }};
}

} // namespace

const std::vector<RecordKind>& recordKinds()
{
    static const std::vector<RecordKind> kinds = {
        kind<CAccountInfo>("nvservice::CAccountInfo"),
        kind<CAccountGroup>("nvservice::CAccountGroup"),
        kind<CKolmAccountInfo>("nvservice::CKolmAccountInfo"),
        kind<CProductInfo>("nvservice::CProductInfo"),
        kind<CKolmProductsResp>("nvservice::CKolmProductsResp"),
        kind<CAccountGroupRCRule>("nvservice::CAccountGroupRCRule"),
        kind<CAssetsRC>("nvservice::CAssetsRC"),
        kind<CRatProofSetting>("nvservice::CRatProofSetting"),
        kind<CEmailRC>("nvservice::CEmailRC"),
        kind<CustomEmailRC>("nvservice::CustomEmailRC"),
        kind<CAccountGroupRCConfig>("nvservice::CAccountGroupRCConfig"),
        kind<CCategoryInfo>("nvservice::CCategoryInfo"),
        kind<CInstitutionInfo>("nvservice::CInstitutionInfo"),
        kind<CSecurityInfo>("nvservice::CSecurityInfo"),
        kind<CUserInfo>("nvservice::CUserInfo"),
        kind<CAuditEntry>("nvservice::CAuditEntry"),
        kind<CFinding>("nvservice::CFinding"),
        kind<CGroupRestore>("nvservice::CGroupRestore"),
        kind<CChangeInfo>("nvservice::CChangeInfo"),
        kind<CKolmQueryDataReq>("nvservice::CKolmQueryDataReq"),
        kind<COperateDataReq>("nvservice::COperateDataReq"),
    };
    return kinds;
}

void addKinds()
{
    const support::DataRows<int> row("index");
    for (std::size_t i = 0; i < recordKinds().size(); ++i) {
        row(recordKinds()[i].typeName, static_cast<int>(i));
    }
}

const RecordKind& kindOfRow()
{
    QFETCH(int, index);
    return recordKinds()[static_cast<std::size_t>(index)];
}

std::string randomText()
{
    const auto character =
        rc::gen::oneOf(rc::gen::inRange<uint>(0, 0x80), rc::gen::inRange<uint>(0x4E00, 0x9FA6),
                       rc::gen::inRange<uint>(0xE000, 0xFFFE), rc::gen::inRange<uint>(0x10000, 0x110000));
    const std::vector<uint> text = *rc::gen::container<std::vector<uint>>(character);
    const QByteArray bytes = QString::fromUcs4(text.data(), static_cast<int>(text.size())).toUtf8();
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

bson::BSONObj randomUnknownFields()
{
    bson::BSONObjBuilder builder;
    const int count = *rc::gen::inRange(0, 4);
    for (int i = 0; i < count; ++i) {
        const std::string name = "later" + std::to_string(i);
        switch (*rc::gen::inRange(0, 8)) {
        case 0:
            builder.append(name, randomText());
            break;
        case 1:
            builder.append(name, *rc::gen::arbitrary<int>());
            break;
        case 2:
            builder.append(name, BSON("inner" << BSON_ARRAY(1 << randomText() << BSON("x" << true))));
            break;
        case 3:
            builder.appendNull(name);
            break;
        case 4:
            builder.appendBinData(name, {"\0\1\2\3\4", 5});
            break;
        case 5:
            builder.appendValue(name, bson::Date, "\1\2\3\4\5\6\7\x08");
            break;
        case 6:
            builder.appendValue(name, bson::ObjectId, "0123456789ab");
            break;
        default:
            builder.append(name, *rc::gen::arbitrary<double>());
        }
    }
    return count == 0 ? bson::BSONObj() : builder.obj();
}

} // namespace samples
