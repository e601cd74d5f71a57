// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/Export.h>
#include <nvservice/LittleEndian.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

/// BSON documents. Reading never leaves the bytes of a document, whatever they are, but it trusts their meaning: bytes
/// from outside go through nvservice::checkDocument() first. Names and texts are UTF-8.
namespace bson
{

/// The type of an element; its values and the bytes of each type are those of the format (bsonspec.org).
enum BSONType : unsigned char {
    EOO = 0x00, ///< no element
    NumberDouble = 0x01,
    String = 0x02,
    Object = 0x03,
    Array = 0x04,
    BinData = 0x05,
    Undefined = 0x06,
    ObjectId = 0x07,
    Bool = 0x08,
    Date = 0x09,
    Null = 0x0A,
    RegEx = 0x0B,
    DBRef = 0x0C,
    Code = 0x0D,
    Symbol = 0x0E,
    NumberInt = 0x10,
    Timestamp = 0x11,
    NumberLong = 0x12,
    MaxKey = 0x7F,
    MinKey = 0xFF,
};

/// What binary data is.
enum BinDataType : unsigned char {
    BinDataGeneral = 0x00,
    bdtCustom = 0x80, ///< the first of those that are free for one's own use
};

constexpr std::size_t LengthBytes = 4; ///< of the length that documents, texts and binary data begin with
constexpr std::size_t ShortestDocument = LengthBytes + 1; ///< its length and the zero that ends it
constexpr std::size_t ObjectIdBytes = 12;

class BSONObj;

/// One element of a document. It refers to the bytes of the document, which must outlive it.
///
/// The value of another type than the one asked for is 0, false or empty.
class NVSERVICE_EXPORT BSONElement
{
public:
    /// No element.
    BSONElement() = default;

    BSONType type() const { return static_cast<BSONType>(static_cast<unsigned char>(m_name[-1])); }
    /// True if this is no element: the end of a document, or a name that it does not have.
    bool eoo() const { return type() == EOO; }
    /// In an array its position: "0", "1" and so on.
    std::string_view fieldName() const { return {m_name, m_nameBytes}; }

    /// True for 32-bit and 64-bit integers and doubles.
    bool isNumber() const { return type() == NumberInt || type() == NumberLong || type() == NumberDouble; }
    /// The value of an integer.
    std::int64_t numberLong() const;
    /// The value of an integer or a double.
    double numberDouble() const;
    bool boolean() const { return type() == Bool && *data() != 0; }
    /// The value of a text, a code or a symbol. It may hold zeros.
    std::string_view str() const;
    std::string_view binData() const;
    BinDataType binDataType() const;
    /// True for documents and arrays.
    bool isABSONObj() const { return type() == Object || type() == Array; }
    /// A document or an array, as a view of the bytes of this document.
    BSONObj embeddedObject() const;

    /// The bytes of the value as the document has them.
    std::string_view value() const { return {data(), m_valueBytes}; }

private:
    friend class BSONObjIterator;

    static constexpr char NoElement[2] = {};

    BSONElement(const char* name, std::size_t nameBytes, std::size_t valueBytes)
        : m_name(name), m_nameBytes(static_cast<std::uint32_t>(nameBytes)),
          m_valueBytes(static_cast<std::uint32_t>(valueBytes))
    {
    }
    /// The element at `at`; none if the document ends there or the element does not fit before `end`.
    static BSONElement read(const char* at, const char* end);

    const char* data() const { return m_name + m_nameBytes + 1; }
    const char* next() const { return data() + m_valueBytes; }

    const char* m_name = NoElement + 1; ///< the type stands before it, a zero behind it
    std::uint32_t m_nameBytes = 0;
    std::uint32_t m_valueBytes = 0;
};

/// An immutable document. Copies of an owned document share its bytes, also between threads. A view refers to bytes
/// that must outlive it and its copies.
class NVSERVICE_EXPORT BSONObj
{
public:
    /// The empty document.
    BSONObj() : m_data(std::shared_ptr<const void>(), EmptyDocument) {}
    /// A view of `size` bytes. Empty if they don't begin with their number or don't end with a zero.
    BSONObj(const char* data, std::size_t size);
    BSONObj(const BSONObj&) = default;
    /// The other document becomes empty.
    BSONObj(BSONObj&& other) noexcept : BSONObj() { m_data.swap(other.m_data); }
    BSONObj& operator=(BSONObj other) noexcept
    {
        m_data.swap(other.m_data);
        return *this;
    }
    ~BSONObj() = default;

    const char* objdata() const { return m_data.get(); }
    /// The number of bytes.
    int objsize() const { return nvservice::readLittleEndian<std::int32_t>(objdata()); }
    bool isEmpty() const { return static_cast<std::size_t>(objsize()) == ShortestDocument; }
    /// The number of elements.
    int nFields() const;

    /// The first element with this name.
    BSONElement getField(std::string_view name) const;
    bool hasField(std::string_view name) const { return !getField(name).eoo(); }
    /// The document or array with this name as a view; empty if there is none.
    BSONObj getObjectField(std::string_view name) const { return getField(name).embeddedObject(); }
    BSONElement firstElement() const;

    /// False for a view.
    bool isOwned() const { return m_data.use_count() != 0 || objdata() == EmptyDocument; }
    /// This document, or an owned copy of a view.
    BSONObj getOwned() const { return isOwned() ? *this : copy(); }
    /// An owned document with bytes of its own.
    BSONObj copy() const;
    bool binaryEqual(const BSONObj& other) const;

    /// The document as text for people, `{ name: "value", list: [ 1, 2 ] }`; as an array it has no names. Unless
    /// `full`, long texts and binary data end with "...".
    std::string toString(bool isArray = false, bool full = false) const;

private:
    friend class BSONObjBuilder;

    static const char EmptyDocument[ShortestDocument];

    explicit BSONObj(std::shared_ptr<const char> data) : m_data(std::move(data)) {}

    std::shared_ptr<const char> m_data; ///< a view has no owner
};

/// An array, which builders write as such; its elements are named "0", "1" and so on.
class BSONArray : public BSONObj
{
public:
    BSONArray() = default;
    explicit BSONArray(const BSONObj& elements) : BSONObj(elements) {}
};

/// Goes through the elements of a document, which must outlive it. Ends before an element that does not fit in the
/// document.
class NVSERVICE_EXPORT BSONObjIterator
{
public:
    explicit BSONObjIterator(const BSONObj& document);

    bool more() const { return !m_next.eoo(); }
    BSONElement next();

private:
    BSONElement m_next;
    const char* m_end;
};

/// The bytes that builders write. They move when they grow.
class NVSERVICE_EXPORT BufBuilder
{
public:
    /// Allocates nothing until the first byte is written, and then at least `firstBytes`.
    explicit BufBuilder(std::size_t firstBytes = 512) : m_firstBytes(firstBytes) {}

    char* buf() { return m_bytes.get(); }
    int len() const { return static_cast<int>(m_size); }
    /// Cuts the end off.
    void setlen(int size) { m_size = static_cast<std::size_t>(size); }

    /// Makes room for more bytes, which the caller writes. Throws std::length_error when they would be more than a
    /// document can have (2^31 - 1).
    char* grow(std::size_t bytes)
    {
        if (bytes + m_reserved > m_capacity - m_size) {
            reallocate(bytes);
        }
        m_size += bytes;
        return m_bytes.get() + m_size - bytes;
    }

private:
    friend class BSONObjBuilder;

    struct Free {
        void operator()(char* bytes) const { std::free(bytes); }
    };

    void reallocate(std::size_t more);

    std::unique_ptr<char, Free> m_bytes;
    std::size_t m_size = 0;
    std::size_t m_reserved = 0; ///< for the zeros that end the open documents
    std::size_t m_capacity = 0;
    std::size_t m_firstBytes;
};

/// Writes a document. What cannot be in a document is not checked: a name that is used twice, UTF-8. A name ends at its
/// first zero. Not thread-safe.
///
///     bson::BSONObjBuilder builder;
///     builder.append("name", "value");
///     {
///         bson::BSONObjBuilder nested(builder.subobjStart("inner"));
///         nested.append("number", 1);
///     } // ends the inner document
///     const bson::BSONObj document = builder.obj();
///
/// Functions that write throw std::length_error as BufBuilder::grow() does; the builder is then of no use.
class NVSERVICE_EXPORT BSONObjBuilder
{
public:
    explicit BSONObjBuilder(std::size_t firstBytes = 512);
    /// Writes to the end of `buffer`, into which nothing else may be written until done() or the end of the builder.
    explicit BSONObjBuilder(BufBuilder& buffer);
    ~BSONObjBuilder();
    BSONObjBuilder(const BSONObjBuilder&) = delete;
    BSONObjBuilder& operator=(const BSONObjBuilder&) = delete;

    BSONObjBuilder& append(std::string_view name, bool value);
    BSONObjBuilder& append(std::string_view name, int value);
    BSONObjBuilder& append(std::string_view name, long value) { return append(name, static_cast<long long>(value)); }
    BSONObjBuilder& append(std::string_view name, long long value);
    BSONObjBuilder& append(std::string_view name, double value);
    BSONObjBuilder& append(std::string_view name, std::string_view value);
    BSONObjBuilder& append(std::string_view name, const char* value) { return append(name, std::string_view(value)); }
    BSONObjBuilder& append(std::string_view name, const BSONObj& value);
    BSONObjBuilder& append(std::string_view name, const BSONArray& value);
    /// Appends an element of another document with its name.
    BSONObjBuilder& append(const BSONElement& element) { return appendAs(element, element.fieldName()); }
    BSONObjBuilder& appendAs(const BSONElement& element, std::string_view name);
    /// Appends all elements of another document.
    BSONObjBuilder& appendElements(const BSONObj& document);
    BSONObjBuilder& appendNull(std::string_view name) { return appendValue(name, Null, {}); }
    BSONObjBuilder& appendBinData(std::string_view name, std::string_view bytes, BinDataType type = BinDataGeneral);
    /// Appends an element of any type by the bytes of its value.
    BSONObjBuilder& appendValue(std::string_view name, BSONType type, std::string_view value);

    /// Begins a document or an array: the argument of the builder that writes it.
    BufBuilder& subobjStart(std::string_view name);
    BufBuilder& subarrayStart(std::string_view name);

    /// Ends the document. The view is valid until the buffer is written to.
    BSONObj done();
    /// Ends the document and returns it as an owned one.
    BSONObj obj();

    /// The bytes in the buffer, with those before this document.
    int len() const { return m_buffer.len(); }
    BufBuilder& bb() { return m_buffer; }

private:
    void begin();
    void end();
    /// Writes type and name and makes room for the value, which the caller writes.
    char* element(BSONType type, std::string_view name, std::size_t valueBytes);

    BufBuilder m_own;
    BufBuilder& m_buffer;
    std::size_t m_start = 0;
    bool m_isDone = false;
};

/// Writes an array.
class BSONArrayBuilder
{
public:
    BSONArrayBuilder() = default;
    /// As BSONObjBuilder's.
    explicit BSONArrayBuilder(BufBuilder& buffer) : m_builder(buffer) {}

    template <typename Value>
    BSONArrayBuilder& append(const Value& value)
    {
        m_builder.append(std::to_string(m_count++), value);
        return *this;
    }
    BSONArrayBuilder& appendNull()
    {
        m_builder.appendNull(std::to_string(m_count++));
        return *this;
    }

    BSONObj done() { return m_builder.done(); }
    BSONArray arr() { return BSONArray(m_builder.obj()); }

private:
    BSONObjBuilder m_builder;
    int m_count = 0;
};

} // namespace bson
