// SPDX-License-Identifier: Apache-2.0
// Records to bytes and back, beside libbson, which writes the same bytes, and checks and visits them without making
// records. Processor time; medians. Ends with 1 when a bound is missed.
#include "Harness.h"

#include "platform/wire/ReplyEncoder.h"

#include <nvservice/CAccountGroup.h>
#include <nvservice/Codec.h>

#include <boost/make_shared.hpp>

#include <bson/bson.h>

#include <stdexcept>

namespace
{

using namespace bench;

constexpr int Groups = 10000;
constexpr int AccountsPerGroup = 10;
constexpr int Rounds = 25;

using GroupPtr = boost::shared_ptr<nvservice::CAccountGroup>;

void require(bool holds)
{
    if (!holds) {
        throw std::runtime_error("a document is wrong");
    }
}

GroupPtr makeGroup(int number)
{
    auto group = boost::make_shared<nvservice::CAccountGroup>();
    group->setSystemTag("SH01");
    group->setRevision(number + 1);
    group->groupId = number;
    group->groupName = "账号组" + std::to_string(number);
    group->institutionId = 1 + number % 7;
    group->institutionName = "砚池证券股份有限公司";
    for (int i = 0; i < AccountsPerGroup; ++i) {
        auto account = boost::make_shared<nvservice::CAccountInfo>();
        account->setSystemTag("SH01");
        account->brokerType = static_cast<nvservice::EZVBrokerType>(1 + i % 3);
        account->accountId = std::to_string(1000000 + number * 10 + i);
        account->unitId = std::to_string(i);
        account->accountName = "账户" + std::to_string(number * 10 + i);
        account->institutionId = group->institutionId;
        account->institutionName = group->institutionName;
        group->accounts.push_back(std::move(account));
    }
    return group;
}

template <typename Work>
double timed(const Work& work)
{
    const double from = Clock::now();
    work();
    return seconds(from, Clock::now());
}

double encode(const std::vector<GroupPtr>& groups)
{
    return timed([&] {
        wire::ReplyEncoder encoder(1);
        for (const GroupPtr& group : groups) {
            require(encoder.add(*group).isSuccess());
            if (encoder.isFull()) {
                encoder.take();
            }
        }
    });
}

void append(bson_t* document, const char* name, const std::string& text)
{
    bson_append_utf8(document, name, -1, text.data(), static_cast<int>(text.size()));
}

void append(bson_t* document, const nvservice::CAccountGroup& group)
{
    append(document, "_type", group.typeName());
    append(document, "_tag", group.getSystemTag());
    bson_append_int64(document, "_rev", -1, group.revision());
    bson_append_int32(document, "groupId", -1, group.groupId);
    append(document, "groupName", group.groupName);
    bson_t accounts;
    bson_append_array_begin(document, "accounts", -1, &accounts);
    std::uint32_t index = 0;
    for (const auto& account : group.accounts) {
        char digits[16];
        const char* position = nullptr;
        bson_uint32_to_string(index++, &position, digits, sizeof digits);
        bson_t member;
        bson_append_document_begin(&accounts, position, -1, &member);
        append(&member, "_tag", account->getSystemTag());
        bson_append_int32(&member, "brokerType", -1, static_cast<int>(account->brokerType));
        append(&member, "accountId", account->accountId);
        append(&member, "unitId", account->unitId);
        append(&member, "accountName", account->accountName);
        bson_append_int32(&member, "institutionId", -1, account->institutionId);
        append(&member, "institutionName", account->institutionName);
        bson_append_document_end(&accounts, &member);
    }
    bson_append_array_end(document, &accounts);
    bson_append_int32(document, "institutionId", -1, group.institutionId);
    append(document, "institutionName", group.institutionName);
}

double encodeWithLibbson(const std::vector<GroupPtr>& groups)
{
    bson_t document = BSON_INITIALIZER;
    const double time = timed([&] {
        for (const GroupPtr& group : groups) {
            bson_reinit(&document);
            append(&document, *group);
        }
    });
    bson_destroy(&document);
    return time;
}

double decode(const std::vector<bson::BSONObj>& documents)
{
    nvservice::IDataPtr record;
    return timed([&] {
        for (const bson::BSONObj& document : documents) {
            require(nvservice::decodeRecord(document, record).isSuccess());
        }
    });
}

double check(const std::vector<bson::BSONObj>& documents)
{
    return timed([&] {
        for (const bson::BSONObj& document : documents) {
            require(
                nvservice::checkDocument(document.objdata(), static_cast<std::size_t>(document.objsize())).isSuccess());
        }
    });
}

std::size_t visit(bson_iter_t& element)
{
    std::size_t count = 0;
    while (bson_iter_next(&element)) {
        ++count;
        bson_iter_t inner;
        if (bson_iter_recurse(&element, &inner)) {
            count += visit(inner);
        }
    }
    return count;
}

double checkAndVisitWithLibbson(const std::vector<bson::BSONObj>& documents)
{
    return timed([&] {
        for (const bson::BSONObj& document : documents) {
            bson_t view;
            bson_iter_t element;
            require(bson_init_static(&view, reinterpret_cast<const std::uint8_t*>(document.objdata()),
                                     static_cast<std::size_t>(document.objsize())) &&
                    bson_validate(&view, BSON_VALIDATE_UTF8, nullptr) && bson_iter_init(&element, &view));
            require(visit(element) > AccountsPerGroup);
        }
    });
}

int run()
{
    std::vector<GroupPtr> groups;
    std::vector<bson::BSONObj> documents;
    for (int i = 0; i < Groups; ++i) {
        groups.push_back(makeGroup(i));
        documents.push_back(nvservice::encodeRecord(*groups.back()));
    }
    bson_t written = BSON_INITIALIZER;
    append(&written, *groups.back());
    require(static_cast<int>(written.len) == documents.back().objsize() &&
            std::equal(documents.back().objdata(), documents.back().objdata() + written.len,
                       reinterpret_cast<const char*>(bson_get_data(&written))));
    bson_destroy(&written);

    Side encoding{"encode", [&] { return encode(groups); }};
    Side encodingWithLibbson{"encode with libbson", [&] { return encodeWithLibbson(groups); }};
    Side decoding{"decode to records", [&] { return decode(documents); }};
    Side checking{"check", [&] { return check(documents); }};
    Side visiting{"check and visit with libbson", [&] { return checkAndVisitWithLibbson(documents); }};
    interleave({&encoding, &encodingWithLibbson, &decoding, &checking, &visiting}, Rounds);

    Report report;
    report.heading(std::to_string(Groups) + " groups of " + std::to_string(AccountsPerGroup) + " accounts, " +
                   std::to_string(documents.back().objsize()) + " bytes each");
    for (const Side* const side : {&encoding, &encodingWithLibbson, &decoding, &checking, &visiting}) {
        report.time(side->name, side->result);
    }
    report.atMost("encode / with libbson", encoding.result / encodingWithLibbson.result, 1);
    report.atMost("check / check and visit with libbson", checking.result / visiting.result, 1);
    report.atMost("decode to records / check and visit with libbson", decoding.result / visiting.result, 2);
    return report.allKept() ? 0 : 1;
}

} // namespace

int main()
{
    prepareProcess();
    try {
        return run();
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 2;
    }
}
