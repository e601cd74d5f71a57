// SPDX-License-Identifier: Apache-2.0
// Well-formed documents with the fields of every record class, some of them with values of any type: the decoders
// behind the document check. The input chooses the class and the values.
#include "fuzz/ByteSource.h"
#include "fuzz/Require.h"
#include "support/BsonMacros.h"

#include <nvservice/Codec.h>
#include <nvservice/Utf8.h>

#include <cstdint>
#include <limits>
#include <map>
#include <vector>

namespace
{

const char* const recordTypes[] = {"CAccountGroup",
                                   "CAccountGroupRCConfig",
                                   "CAccountGroupRCRule",
                                   "CAccountInfo",
                                   "CAssetsRC",
                                   "CAuditEntry",
                                   "CCategoryInfo",
                                   "CChangeInfo",
                                   "CEmailRC",
                                   "CFinding",
                                   "CGroupRestore",
                                   "CInstitutionInfo",
                                   "CKolmAccountInfo",
                                   "CKolmProductsResp",
                                   "CKolmQueryDataReq",
                                   "COperateDataReq",
                                   "CProductInfo",
                                   "CRatProofSetting",
                                   "CSecurityInfo",
                                   "CTradeLimitEntry",
                                   "CTradeLimitList",
                                   "CUserInfo",
                                   "CustomEmailRC"};

/// The fields of a record class as its default record writes them; empty for what stands only inside other records.
const bson::BSONObj& fieldsOf(const std::string& type)
{
    static std::map<std::string, bson::BSONObj> known;
    const auto found = known.find(type);
    if (found != known.end()) {
        return found->second;
    }
    nvservice::IDataPtr record;
    nvservice::decodeRecord(BSON("_type" << type), record);
    return known[type] = record ? nvservice::encodeRecord(*record) : bson::BSONObj();
}

class Builder
{
public:
    explicit Builder(fuzz::ByteSource& source) : m_source(source) {}

    bson::BSONObj record(int depth)
    {
        const std::string type = recordTypes[m_source.byte() % (sizeof recordTypes / sizeof *recordTypes)];
        bson::BSONObjBuilder builder;
        for (bson::BSONObjIterator it(fieldsOf(type)); it.more();) {
            const bson::BSONElement field = it.next();
            const std::uint8_t choice = m_source.byte();
            if (choice < 96) {
                builder.append(field);
            } else if (choice < 128) {
                continue;
            } else {
                append(builder, std::string(field.fieldName()), field.type(), choice, depth);
            }
        }
        if (m_source.byte() % 8 == 0) {
            append(builder, m_source.byte() % 2 ? "_rev" : "unknown", bson::NumberLong, m_source.byte(), depth);
        }
        return builder.obj();
    }

private:
    void append(bson::BSONObjBuilder& builder, const std::string& name, bson::BSONType type, std::uint8_t choice,
                int depth)
    {
        // Mostly the field's own type, so that the value is looked at and not only its type.
        const int kind = choice < 224 ? static_cast<int>(type) : m_source.byte() % 20;
        switch (kind) {
        case bson::NumberInt:
            builder.append(name, static_cast<int>(m_source.number()));
            break;
        case bson::NumberLong:
            builder.append(name, static_cast<long long>(m_source.number() >> m_source.byte() % 64));
            break;
        case bson::NumberDouble:
            builder.append(name, number());
            break;
        case bson::Bool:
            builder.append(name, m_source.byte() % 2 == 1);
            break;
        case bson::Object:
            builder.append(name, depth < 5 ? record(depth + 1) : bson::BSONObj());
            break;
        case bson::Array:
            appendArray(builder, name, depth);
            break;
        case bson::Null:
            builder.appendNull(name);
            break;
        case bson::BinData:
            builder.appendBinData(name, m_source.text());
            break;
        default:
            builder.append(name, text());
        }
    }

    std::string text() { return nvservice::repairedUtf8(m_source.text()); }

    double number()
    {
        switch (m_source.byte() % 6) {
        case 0:
            return std::numeric_limits<double>::quiet_NaN();
        case 1:
            return std::numeric_limits<double>::infinity();
        case 2:
            return -std::numeric_limits<double>::max();
        case 3:
            return static_cast<double>(m_source.number());
        default:
            return static_cast<double>(static_cast<std::int8_t>(m_source.byte())) / 4;
        }
    }

    void appendArray(bson::BSONObjBuilder& builder, const std::string& name, int depth)
    {
        bson::BSONArrayBuilder array(builder.subarrayStart(name));
        for (int left = m_source.byte() % 5; left > 0; --left) {
            const std::uint8_t choice = m_source.byte();
            if (choice < 128 && depth < 5) {
                array.append(record(depth + 1));
            } else if (choice < 224) {
                array.append(static_cast<int>(m_source.number()));
            } else {
                array.append(text());
            }
        }
        array.done();
    }

    fuzz::ByteSource& m_source;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::ByteSource source(data, size);
    const bson::BSONObj document = Builder(source).record(0);
    REQUIRE(nvservice::checkDocument(document.objdata(), static_cast<std::size_t>(document.objsize())).isSuccess());
    nvservice::IDataPtr record;
    const utils::NVError error = nvservice::decodeRecord(document, record);
    REQUIRE(error.isSuccess() == static_cast<bool>(record));
    if (!record) {
        return 0;
    }
    const bson::BSONObj written = nvservice::encodeRecord(*record);
    nvservice::IDataPtr again;
    REQUIRE(nvservice::decodeRecord(written, again).isSuccess());
    REQUIRE(nvservice::encodeRecord(*again).binaryEqual(written));
    return 0;
}
