// SPDX-License-Identifier: Apache-2.0
#include "ReplyEncoder.h"

#include "FieldNames.h"

#include <nvservice/Codec.h>
#include <utils/Translation.h>

namespace wire
{

namespace
{

// So that the record that fills a chunk rarely makes its buffer grow.
constexpr std::size_t SpareBytes = std::size_t{16} * 1024;

} // namespace

ReplyEncoder::ReplyEncoder(std::int64_t id, std::size_t chunkBytes) : m_id(id), m_chunkBytes(chunkBytes) {}

void ReplyEncoder::begin()
{
    m_builder = std::make_unique<bson::BSONObjBuilder>(m_chunkBytes + SpareBytes);
    m_builder->append(TypeField, ReplyChunkType);
    m_builder->append(IdField, static_cast<long long>(m_id));
    m_builder->appendBinData(RecordsField, {}, RecordsSubtype);
    m_recordsOffset = m_builder->len();
}

utils::NVError ReplyEncoder::add(const nvservice::IData& record)
{
    const bool wasEmpty = isEmpty();
    if (wasEmpty) {
        begin();
    }
    bson::BufBuilder& buffer = m_builder->bb();
    const int before = buffer.len();
    bool isEncoded = false;
    {
        bson::BSONObjBuilder builder(buffer);
        isEncoded = nvservice::encodeRecord(record, builder);
    }
    if (isEncoded && static_cast<std::size_t>(buffer.len() - before) <= MaxRecordBytes) {
        ++m_recordCount;
        return {};
    }
    buffer.setlen(before);
    if (wasEmpty) {
        m_builder.reset();
    }
    return {utils::EErrorCode::ResourceExhausted, utils::text("wire", "单条记录过大或类型未知, 无法传输")};
}

bool ReplyEncoder::isFull() const
{
    return m_builder && static_cast<std::size_t>(m_builder->len()) >= m_chunkBytes;
}

bool ReplyEncoder::isEmpty() const
{
    return !m_builder;
}

bson::BSONObj ReplyEncoder::take()
{
    if (isEmpty()) {
        begin();
    }
    bson::BufBuilder& buffer = m_builder->bb();
    constexpr int lengthAndSubtype = static_cast<int>(bson::LengthBytes) + 1;
    nvservice::writeLittleEndian(buffer.buf() + m_recordsOffset - lengthAndSubtype, buffer.len() - m_recordsOffset);
    const bson::BSONObj chunk = m_builder->obj();
    m_builder.reset();
    return chunk;
}

} // namespace wire
