// SPDX-License-Identifier: Apache-2.0
#include "RecordDecode.h"

#include <nvservice/Codec.h>
#include <utils/Translation.h>

#include <QCoreApplication>

#include <algorithm>
#include <stdexcept>

namespace nvservice
{

namespace
{

/// What the library knows of a record class.
struct RecordClass {
    std::string_view typeName;
    bool (*append)(bson::BSONObjBuilder&, const IData&);
    IDataPtr (*decode)(const bson::BSONObj&, DecodeState&); ///< null when refused
};

template <typename Record>
bool appendAs(bson::BSONObjBuilder& builder, const IData& record)
{
    return appendRecord(builder, static_cast<const Record&>(record), true);
}

template <typename Record>
IDataPtr decodeAs(const bson::BSONObj& document, DecodeState& state)
{
    const boost::shared_ptr<Record> record = boost::make_shared<Record>();
    return decodeFields(document, *record, state) ? record : IDataPtr();
}

template <typename... Records>
constexpr std::array<RecordClass, sizeof...(Records)> makeClasses(RecordList<Records...>)
{
    return {{{Fields<Records>::typeName, &appendAs<Records>, &decodeAs<Records>}...}};
}

constexpr auto classes = makeClasses(AllRecords());

} // namespace

bool appendAnyRecord(bson::BSONObjBuilder& builder, const IData& record)
{
    // The names are compared by address: only the classes of this library, and those that derive from them, give it.
    const char* typeName = record.typeName();
    const auto found = std::find_if(classes.begin(), classes.end(), [typeName](const RecordClass& candidate) {
        return candidate.typeName.data() == typeName;
    });
    return found != classes.end() && found->append(builder, record);
}

bool decodeAnyRecord(const bson::BSONObj& document, IDataPtr& record, DecodeState& state)
{
    const bson::BSONElement type = document.getField(typeField);
    if (type.type() != bson::String) {
        state.because(type.eoo() ? QT_TRANSLATE_NOOP("nvservice", "缺少记录类型") : wrongType);
        return state.at(typeField);
    }
    const std::string_view name = type.str();
    const auto found = std::find_if(classes.begin(), classes.end(),
                                    [&name](const RecordClass& candidate) { return candidate.typeName == name; });
    if (found == classes.end()) {
        state.because(QT_TRANSLATE_NOOP("nvservice", "记录类型未知"));
        return state.at(typeField);
    }
    record = found->decode(document, state);
    return static_cast<bool>(record);
}

bson::BSONObj encodeRecord(const IData& record)
{
    bson::BSONObjBuilder builder;
    return encodeRecord(record, builder) ? builder.obj() : bson::BSONObj();
}

bool encodeRecord(const IData& record, bson::BSONObjBuilder& builder)
{
    const int before = builder.len();
    try {
        if (!appendAnyRecord(builder, record)) {
            return false;
        }
    } catch (const std::length_error&) {
        return false; // more than any document can hold
    }
    return static_cast<std::size_t>(builder.len() - before) + bson::ShortestDocument <= MaxDocumentBytes;
}

utils::NVError decodeRecord(const bson::BSONObj& document, IDataPtr& out)
{
    return decodeRecord(document.objdata(), static_cast<std::size_t>(document.objsize()), out);
}

static utils::NVError decode(const char* data, std::size_t size, DecodeState state, IDataPtr& out,
                             std::size_t* documents)
{
    out.reset();
    utils::NVError shape = checkDocument(data, size, {}, documents);
    if (!shape.isSuccess()) {
        return shape;
    }
    if (decodeAnyRecord(bson::BSONObj(data, size), out, state)) {
        return {};
    }
    out.reset();
    return {utils::EErrorCode::Malformed, utils::filled(utils::text("nvservice", "数据格式错误: %1(字段 %2)"),
                                                        utils::text("nvservice", state.reason), state.path)};
}

utils::NVError decodeRecord(const char* data, std::size_t size, IDataPtr& out, std::size_t* documents)
{
    return decode(data, size, {}, out, documents);
}

CRecordDecoder::CRecordDecoder() : m_accounts(std::make_unique<DecodedAccounts>()) {}

CRecordDecoder::~CRecordDecoder() = default;

utils::NVError CRecordDecoder::decode(const char* data, std::size_t size, IDataPtr& out)
{
    DecodeState state;
    state.accounts = m_accounts.get();
    return nvservice::decode(data, size, std::move(state), out, &m_documents);
}

} // namespace nvservice
