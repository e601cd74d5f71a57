// SPDX-License-Identifier: Apache-2.0
#include <nvservice/Bson.h>

#include <cstring>

namespace bson
{

namespace
{

using nvservice::readLittleEndian;

constexpr std::size_t SubtypeBytes = 1;
constexpr std::uint64_t DoesNotFit = 0xFFFFFFFF;

/// The bytes of two texts, each with its ending zero.
std::uint64_t patternBytes(const char* at, std::size_t left)
{
    const char* end = at;
    for (int texts = 0; texts < 2; ++texts) {
        const void* const zero = std::memchr(end, 0, left - static_cast<std::size_t>(end - at));
        if (!zero) {
            return DoesNotFit;
        }
        end = static_cast<const char*>(zero) + 1;
    }
    return static_cast<std::uint64_t>(end - at);
}

/// The bytes of a value; more than `left` if it does not fit.
std::uint64_t valueBytes(BSONType type, const char* at, std::size_t left)
{
    // A negative length becomes an enormous one.
    const auto length = [at, left](std::uint64_t least) {
        const std::uint64_t bytes = left < LengthBytes ? DoesNotFit : readLittleEndian<std::uint32_t>(at);
        return bytes < least ? DoesNotFit : bytes;
    };
    switch (type) {
    case Undefined:
    case Null:
    case MinKey:
    case MaxKey:
        return 0;
    case Bool:
        return 1;
    case NumberInt:
        return sizeof(std::int32_t);
    case NumberDouble:
    case NumberLong:
    case Date:
    case Timestamp:
        return sizeof(std::int64_t);
    case ObjectId:
        return ObjectIdBytes;
    case String:
    case Code:
    case Symbol:
        return LengthBytes + length(1);
    case DBRef:
        return LengthBytes + length(1) + ObjectIdBytes;
    case BinData:
        return LengthBytes + SubtypeBytes + length(0);
    case Object:
    case Array:
        return length(ShortestDocument);
    case RegEx:
        return patternBytes(at, left);
    case EOO:
        break;
    }
    return DoesNotFit;
}

} // namespace

const char BSONObj::EmptyDocument[] = {ShortestDocument, 0, 0, 0, 0};

BSONElement BSONElement::read(const char* at, const char* end)
{
    if (at >= end || *at == EOO) {
        return {};
    }
    const auto type = static_cast<BSONType>(static_cast<unsigned char>(*at));
    const char* const name = at + 1;
    const auto* const zero = static_cast<const char*>(std::memchr(name, 0, static_cast<std::size_t>(end - name)));
    if (!zero) {
        return {};
    }
    const auto left = static_cast<std::size_t>(end - zero) - 1;
    const std::uint64_t bytes = valueBytes(type, zero + 1, left);
    return bytes > left ? BSONElement() : BSONElement(name, static_cast<std::size_t>(zero - name), bytes);
}

std::int64_t BSONElement::numberLong() const
{
    switch (type()) {
    case NumberInt:
        return readLittleEndian<std::int32_t>(data());
    case NumberLong:
        return readLittleEndian<std::int64_t>(data());
    default:
        return 0;
    }
}

double BSONElement::numberDouble() const
{
    return type() == NumberDouble ? readLittleEndian<double>(data()) : static_cast<double>(numberLong());
}

std::string_view BSONElement::str() const
{
    if (type() != String && type() != Code && type() != Symbol) {
        return {};
    }
    return value().substr(LengthBytes, m_valueBytes - LengthBytes - 1);
}

std::string_view BSONElement::binData() const
{
    return type() == BinData ? value().substr(LengthBytes + SubtypeBytes) : std::string_view();
}

BinDataType BSONElement::binDataType() const
{
    return type() == BinData ? static_cast<BinDataType>(data()[LengthBytes]) : BinDataGeneral;
}

BSONObj BSONElement::embeddedObject() const
{
    return isABSONObj() ? BSONObj(data(), m_valueBytes) : BSONObj();
}

BSONObj::BSONObj(const char* data, std::size_t size) : BSONObj()
{
    if (data && size >= ShortestDocument && readLittleEndian<std::uint32_t>(data) == size && data[size - 1] == '\0') {
        m_data = {std::shared_ptr<const void>(), data};
    }
}

int BSONObj::nFields() const
{
    int count = 0;
    for (BSONObjIterator it(*this); it.more(); it.next()) {
        ++count;
    }
    return count;
}

BSONElement BSONObj::getField(std::string_view name) const
{
    for (BSONObjIterator it(*this); it.more();) {
        const BSONElement element = it.next();
        if (element.fieldName() == name) {
            return element;
        }
    }
    return {};
}

BSONElement BSONObj::firstElement() const
{
    return BSONObjIterator(*this).next();
}

BSONObj BSONObj::copy() const
{
    BSONObjBuilder builder(static_cast<std::size_t>(objsize()));
    return builder.appendElements(*this).obj();
}

bool BSONObj::binaryEqual(const BSONObj& other) const
{
    return objsize() == other.objsize() &&
           std::memcmp(objdata(), other.objdata(), static_cast<std::size_t>(objsize())) == 0;
}

BSONObjIterator::BSONObjIterator(const BSONObj& document)
    : m_next(BSONElement::read(document.objdata() + LengthBytes, document.objdata() + document.objsize() - 1)),
      m_end(document.objdata() + document.objsize() - 1)
{
}

BSONElement BSONObjIterator::next()
{
    const BSONElement element = m_next;
    if (more()) {
        m_next = BSONElement::read(element.next(), m_end);
    }
    return element;
}

} // namespace bson
