#pragma once

#include "Protocol.h"

#include <nvservice/Bson.h>
#include <nvservice/IData.h>
#include <utils/NVError.h>

#include <cstdint>
#include <memory>

namespace wire
{

/// Puts the records of one reply into chunks, each in one buffer:
///
///     for (const auto& record : records) {
///         error = encoder.add(*record);
///         if (!error.isSuccess())
///             break;                                   // the reply ends with this error
///         if (encoder.isFull())
///             send(encoder.take());
///     }
///     if (!encoder.isEmpty())
///         send(encoder.take());
///     send(encode(ReplyEnd{id, error, encoder.recordCount(), document}));
///
/// Not thread-safe.
class ReplyEncoder
{
public:
    explicit ReplyEncoder(std::int64_t id, std::size_t chunkBytes = ReplyChunkBytes);

    /// The error is `ResourceExhausted`, for a record beyond MaxRecordBytes or of an unknown class; such a record is
    /// left out and the encoder is as it was.
    utils::NVError add(const nvservice::IData& record);
    /// Whether the chunk has reached its size.
    bool isFull() const;
    /// Whether the chunk holds no record.
    bool isEmpty() const;
    /// The chunk as an owned message; the encoder begins the next one.
    bson::BSONObj take();
    /// Of all chunks together.
    std::int64_t recordCount() const { return m_recordCount; }

private:
    void begin();

    std::int64_t m_id;
    std::size_t m_chunkBytes;
    std::int64_t m_recordCount = 0;
    std::unique_ptr<bson::BSONObjBuilder> m_builder; ///< none while the chunk is empty
    int m_lengthOffset = 0;                          ///< where the length of the records stands
};

} // namespace wire
