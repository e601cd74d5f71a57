// SPDX-License-Identifier: Apache-2.0
#include <nvservice/Bson.h>

#include <algorithm>
#include <limits>
#include <new>
#include <stdexcept>

namespace bson
{

namespace
{

using nvservice::writeLittleEndian;

constexpr std::size_t MaxBytes = std::numeric_limits<std::int32_t>::max();

void putLength(char* at, std::size_t length)
{
    writeLittleEndian(at, static_cast<std::int32_t>(length));
}

} // namespace

void BufBuilder::reallocate(std::size_t more)
{
    if (more > MaxBytes - m_size - m_reserved) {
        throw std::length_error("a BSON document has less than 2 GiB");
    }
    const std::size_t capacity = std::max({m_size + m_reserved + more, 2 * m_capacity, m_firstBytes});
    auto* const bytes = static_cast<char*>(std::realloc(m_bytes.get(), capacity));
    if (!bytes) {
        throw std::bad_alloc();
    }
    static_cast<void>(m_bytes.release()); // realloc() has freed it
    m_bytes.reset(bytes);
    m_capacity = capacity;
}

BSONObjBuilder::BSONObjBuilder(std::size_t firstBytes) : m_own(firstBytes), m_buffer(m_own)
{
    begin();
}

BSONObjBuilder::BSONObjBuilder(BufBuilder& buffer) : m_own(0), m_buffer(buffer), m_start(buffer.m_size)
{
    begin();
}

// end() throws nothing: the byte that it writes was reserved. NOLINTNEXTLINE(bugprone-exception-escape)
BSONObjBuilder::~BSONObjBuilder()
{
    end();
}

void BSONObjBuilder::begin()
{
    m_buffer.grow(ShortestDocument);
    --m_buffer.m_size;
    ++m_buffer.m_reserved;
}

void BSONObjBuilder::end()
{
    if (m_isDone) {
        return;
    }
    m_isDone = true;
    --m_buffer.m_reserved;
    *m_buffer.grow(1) = '\0';
    putLength(m_buffer.buf() + m_start, m_buffer.m_size - m_start);
}

char* BSONObjBuilder::element(BSONType type, std::string_view name, std::size_t valueBytes)
{
    name = name.substr(0, name.find('\0'));
    char* at = m_buffer.grow(1 + name.size() + 1 + valueBytes);
    *at++ = static_cast<char>(type);
    at += name.copy(at, name.size());
    *at++ = '\0';
    return at;
}

BSONObjBuilder& BSONObjBuilder::append(std::string_view name, bool value)
{
    *element(Bool, name, 1) = value ? '\1' : '\0';
    return *this;
}

BSONObjBuilder& BSONObjBuilder::append(std::string_view name, int value)
{
    writeLittleEndian(element(NumberInt, name, sizeof value), value);
    return *this;
}

BSONObjBuilder& BSONObjBuilder::append(std::string_view name, long long value)
{
    writeLittleEndian(element(NumberLong, name, sizeof value), value);
    return *this;
}

BSONObjBuilder& BSONObjBuilder::append(std::string_view name, double value)
{
    writeLittleEndian(element(NumberDouble, name, sizeof value), value);
    return *this;
}

BSONObjBuilder& BSONObjBuilder::append(std::string_view name, std::string_view value)
{
    char* const at = element(String, name, LengthBytes + value.size() + 1);
    putLength(at, value.size() + 1);
    at[LengthBytes + value.copy(at + LengthBytes, value.size())] = '\0';
    return *this;
}

BSONObjBuilder& BSONObjBuilder::append(std::string_view name, const BSONObj& value)
{
    return appendValue(name, Object, {value.objdata(), static_cast<std::size_t>(value.objsize())});
}

BSONObjBuilder& BSONObjBuilder::append(std::string_view name, const BSONArray& value)
{
    return appendValue(name, Array, {value.objdata(), static_cast<std::size_t>(value.objsize())});
}

BSONObjBuilder& BSONObjBuilder::appendAs(const BSONElement& element, std::string_view name)
{
    return element.eoo() ? *this : appendValue(name, element.type(), element.value());
}

BSONObjBuilder& BSONObjBuilder::appendElements(const BSONObj& document)
{
    const std::size_t bytes = static_cast<std::size_t>(document.objsize()) - ShortestDocument;
    std::copy_n(document.objdata() + LengthBytes, bytes, m_buffer.grow(bytes));
    return *this;
}

BSONObjBuilder& BSONObjBuilder::appendBinData(std::string_view name, std::string_view bytes, BinDataType type)
{
    char* const at = element(BinData, name, LengthBytes + 1 + bytes.size());
    putLength(at, bytes.size());
    at[LengthBytes] = static_cast<char>(type);
    bytes.copy(at + LengthBytes + 1, bytes.size());
    return *this;
}

BSONObjBuilder& BSONObjBuilder::appendValue(std::string_view name, BSONType type, std::string_view value)
{
    value.copy(element(type, name, value.size()), value.size());
    return *this;
}

BufBuilder& BSONObjBuilder::subobjStart(std::string_view name)
{
    element(Object, name, 0);
    return m_buffer;
}

BufBuilder& BSONObjBuilder::subarrayStart(std::string_view name)
{
    element(Array, name, 0);
    return m_buffer;
}

BSONObj BSONObjBuilder::done()
{
    end();
    return {m_buffer.buf() + m_start, m_buffer.m_size - m_start};
}

BSONObj BSONObjBuilder::obj()
{
    const BSONObj document = done();
    if (&m_buffer != &m_own) {
        return document.copy();
    }
    m_own.m_size = m_own.m_capacity = 0;
    return BSONObj(std::shared_ptr<const char>(std::move(m_own.m_bytes)));
}

} // namespace bson
