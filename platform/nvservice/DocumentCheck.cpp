// SPDX-License-Identifier: Apache-2.0
#include "DocumentCheck.h"

#include "DocumentNames.h"
#include "ElementPath.h"

#include <nvservice/Codec.h>
#include <nvservice/Utf8.h>
#include <utils/Translation.h>

#include <QCoreApplication>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <string>

namespace nvservice
{

namespace
{

using utils::EErrorCode;
using utils::NVError;

using bson::LengthBytes;
using bson::ObjectIdBytes;
using bson::ShortestDocument;

constexpr unsigned char oldBinarySubtype = 2;

std::int64_t readLength(const char* at)
{
    return readLittleEndian<std::int32_t>(at);
}

enum class EContent { Checked, NotLookedAt };

/// Walks a document once, with its own stack of open documents.
class DocumentChecker
{
public:
    DocumentChecker(const char* data, std::size_t size, const DocumentLimits& limits, EContent content)
        : m_at(data), m_size(size), m_limits(limits), m_isContentChecked(content == EContent::Checked), m_names(data),
          m_deepest(static_cast<std::size_t>(std::clamp(limits.depth, 1, MaxDocumentDepth)))
    {
    }

    NVError check()
    {
        if (m_size > m_limits.bytes) {
            return {EErrorCode::ResourceExhausted, utils::text("nvservice", "数据文档过大")};
        }
        if (!m_at || m_size < ShortestDocument || readLength(m_at) != static_cast<std::int64_t>(m_size)) {
            return fail(QT_TRANSLATE_NOOP("nvservice", "文档长度不符"));
        }
        if (m_at[m_size - 1] != '\0') {
            return fail(QT_TRANSLATE_NOOP("nvservice", "文档没有结束符"));
        }
        m_open[0].end = m_at + m_size - 1;
        m_depth = 1;
        m_at += LengthBytes;
        while (m_depth > 0) {
            Level& level = m_open[m_depth - 1];
            if (m_at == level.end) {
                if (const char* twice = m_names.close(level.firstName)) {
                    level.name = twice;
                    return fail(QT_TRANSLATE_NOOP("nvservice", "字段重复"));
                }
                ++m_at;
                --m_depth;
                continue;
            }
            if (const char* reason = element(level)) {
                return fail(reason);
            }
            if (m_exhausted) {
                return {EErrorCode::ResourceExhausted, located(m_exhausted)};
            }
        }
        return {};
    }

    std::size_t documents() const { return m_documents; }

private:
    struct Level {
        const char* end = nullptr;  ///< the zero that ends the document
        const char* name = nullptr; ///< the element read last, zero-terminated
        bool isArray = false;
        std::size_t items = 0;     ///< of an array, so far
        std::size_t firstName = 0; ///< of the document, among all names that are open
    };

    std::size_t left() const { return static_cast<std::size_t>(m_open[m_depth - 1].end - m_at); }

    /// Null, or what is wrong with the element that begins here; on success the position is behind it, or inside it
    /// when it is a document.
    const char* element(Level& level)
    {
        if (++m_elements > m_limits.elements) {
            m_exhausted = QT_TRANSLATE_NOOP("nvservice", "数据文档的元素过多");
            return nullptr;
        }
        const unsigned char type = static_cast<unsigned char>(*m_at++);
        level.name = nullptr;
        const char* name = m_at;
        if (!skipZeroTerminated()) {
            return QT_TRANSLATE_NOOP("nvservice", "元素名没有结束");
        }
        level.name = name;
        if (m_isContentChecked) {
            if (const char* reason = checkName(level)) {
                return reason;
            }
        }
        return value(type);
    }

    const char* checkName(Level& level)
    {
        const char* const name = level.name;
        if (!isUtf8({name, static_cast<std::size_t>(m_at - name) - 1})) {
            return QT_TRANSLATE_NOOP("nvservice", "字段名不是 UTF-8");
        }
        if (level.isArray) {
            return isNumber(name, level.items++) ? nullptr : QT_TRANSLATE_NOOP("nvservice", "数组元素的序号不符");
        }
        m_names.add(name);
        return nullptr;
    }

    const char* value(unsigned char type)
    {
        switch (type) {
        case 0x01: // double
        case 0x09: // date
        case 0x11: // timestamp
        case 0x12: // 64-bit integer
            return skip(8);
        case 0x10: // 32-bit integer
            return skip(4);
        case 0x06: // undefined
        case 0x0A: // null
        case 0x7F: // greatest key
        case 0xFF: // least key
            return nullptr;
        case 0x07:
            return skip(ObjectIdBytes);
        case 0x08:
            if (left() < 1 || (*m_at != 0 && *m_at != 1)) {
                return QT_TRANSLATE_NOOP("nvservice", "布尔值无效");
            }
            ++m_at;
            return nullptr;
        case 0x02: // text
        case 0x0D: // code
        case 0x0E: // symbol
            return text();
        case 0x0C: { // reference
            const char* reason = text();
            return reason || m_exhausted ? reason : skip(ObjectIdBytes);
        }
        case 0x05:
            return binary();
        case 0x0B: // pattern and its options
            return pattern();
        case 0x03: // document
        case 0x04: // array
            return open(type == 0x04);
        default: // code with scope among them: nobody needs it, and its inner lengths are one more risk
            return QT_TRANSLATE_NOOP("nvservice", "元素类型未知");
        }
    }

    const char* skip(std::size_t bytes)
    {
        if (left() < bytes) {
            return QT_TRANSLATE_NOOP("nvservice", "数据不完整");
        }
        m_at += bytes;
        return nullptr;
    }

    bool skipZeroTerminated()
    {
        const void* zero = std::memchr(m_at, 0, left());
        if (!zero) {
            return false;
        }
        m_at = static_cast<const char*>(zero) + 1;
        return true;
    }

    const char* text()
    {
        if (left() < LengthBytes) {
            return QT_TRANSLATE_NOOP("nvservice", "数据不完整");
        }
        const std::int64_t length = readLength(m_at);
        m_at += LengthBytes;
        if (length < 1 || static_cast<std::size_t>(length) > left()) {
            return QT_TRANSLATE_NOOP("nvservice", "文本长度超出文档");
        }
        if (m_at[length - 1] != '\0') {
            return QT_TRANSLATE_NOOP("nvservice", "文本没有结束符");
        }
        if (static_cast<std::size_t>(length) - 1 > m_limits.textBytes) {
            m_exhausted = QT_TRANSLATE_NOOP("nvservice", "数据文档中的文本过长");
            return nullptr;
        }
        return characters(static_cast<std::size_t>(length));
    }

    /// A text of `size` bytes with its ending zero.
    const char* characters(std::size_t size)
    {
        const bool isText = !m_isContentChecked || isUtf8({m_at, size - 1});
        m_at += size;
        return isText ? nullptr : QT_TRANSLATE_NOOP("nvservice", "文本不是 UTF-8");
    }

    const char* pattern()
    {
        const char* const begin = m_at;
        if (!skipZeroTerminated() || !skipZeroTerminated()) {
            return QT_TRANSLATE_NOOP("nvservice", "正则表达式没有结束");
        }
        const auto size = static_cast<std::size_t>(m_at - begin);
        m_at = begin;
        return characters(size);
    }

    const char* binary()
    {
        if (left() < LengthBytes + 1) {
            return QT_TRANSLATE_NOOP("nvservice", "数据不完整");
        }
        const std::int64_t length = readLength(m_at);
        const unsigned char subtype = static_cast<unsigned char>(m_at[LengthBytes]);
        m_at += LengthBytes + 1;
        if (length < 0 || static_cast<std::size_t>(length) > left()) {
            return QT_TRANSLATE_NOOP("nvservice", "二进制长度超出文档");
        }
        if (subtype == oldBinarySubtype && (length < static_cast<std::int64_t>(LengthBytes) ||
                                            readLength(m_at) != length - static_cast<std::int64_t>(LengthBytes))) {
            return QT_TRANSLATE_NOOP("nvservice", "二进制长度不符");
        }
        m_at += length;
        return nullptr;
    }

    const char* open(bool isArray)
    {
        if (left() < ShortestDocument) {
            return QT_TRANSLATE_NOOP("nvservice", "数据不完整");
        }
        const std::int64_t length = readLength(m_at);
        if (length < static_cast<std::int64_t>(ShortestDocument) || static_cast<std::size_t>(length) > left()) {
            return QT_TRANSLATE_NOOP("nvservice", "内嵌文档长度超出文档");
        }
        if (m_at[length - 1] != '\0') {
            return QT_TRANSLATE_NOOP("nvservice", "内嵌文档没有结束符");
        }
        if (m_depth == m_deepest) {
            m_exhausted = QT_TRANSLATE_NOOP("nvservice", "数据文档嵌套过深");
            return nullptr;
        }
        if (++m_documents > m_limits.documents) {
            m_exhausted = QT_TRANSLATE_NOOP("nvservice", "数据文档的内嵌文档过多");
            return nullptr;
        }
        m_open[m_depth] = {m_at + length - 1, nullptr, isArray, 0, m_names.count()};
        ++m_depth;
        m_at += LengthBytes;
        return nullptr;
    }

    /// With the path of the field, if one was begun.
    std::string located(const char* reason) const
    {
        const std::string what = utils::text("nvservice", reason);
        if (!m_open[0].name) {
            return what;
        }
        std::string path = printableName(m_open[0].name);
        for (std::size_t i = 1; i < m_depth && m_open[i].name; ++i) {
            path += "." + printableName(m_open[i].name);
        }
        return utils::filled(utils::text("nvservice", "%1(字段 %2)"), what, path);
    }

    NVError fail(const char* reason) const
    {
        return {EErrorCode::Malformed, utils::filled(utils::text("nvservice", "数据格式错误: %1"), located(reason))};
    }

    const char* m_at;
    const std::size_t m_size;
    const DocumentLimits m_limits;
    const bool m_isContentChecked;
    DocumentNames m_names;
    const std::size_t m_deepest;
    std::size_t m_elements = 0;
    std::size_t m_documents = 1;
    std::array<Level, MaxDocumentDepth> m_open;
    std::size_t m_depth = 0;
    const char* m_exhausted = nullptr;
};

} // namespace

utils::NVError checkDocument(const char* data, std::size_t size, const DocumentLimits& limits, std::size_t* documents)
{
    DocumentChecker checker(data, size, limits, EContent::Checked);
    utils::NVError error = checker.check();
    if (documents) {
        *documents += checker.documents();
    }
    return error;
}

utils::NVError checkShape(const char* data, std::size_t size)
{
    return DocumentChecker(data, size, {}, EContent::NotLookedAt).check();
}

} // namespace nvservice
