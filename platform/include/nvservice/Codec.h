// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/Bson.h>
#include <nvservice/Export.h>
#include <nvservice/IData.h>

#include <utils/NVError.h>

#include <cstddef>
#include <memory>

namespace nvservice
{

/// Encodes records as documents and decodes them.
///
/// Each field of a record is an element with the field's name; nested records are documents, lists are arrays. Three
/// names are reserved:
/// - "_type": the class name; written where the class is not implied, at the top and in lists of any record
/// - "_tag": the system tag; written unless empty
/// - "_rev": the revision; written unless 0
///
/// The classes are those of this library. A plug-in cannot add any: client, service and protocol share one list, and a
/// record of an unknown class is refused. A plug-in stores state of its own in the result of `param()` or in files.
/// Records of a new class begin here and in the service.
///
/// A missing field gets the default of its class. Decoding refuses a field of the wrong type, a number outside the
/// field's range, a fraction in an integer, and everything that checkDocument() refuses.
/// All functions may be called from any thread.

/// Limits for untrusted documents.
constexpr int MaxDocumentDepth = 32; ///< the document itself is level 1
constexpr std::size_t MaxDocumentBytes = std::size_t{16} * 1024 * 1024;
/// The largest record that a service stores or sends. It is smaller than MaxDocumentBytes, so that a message around it
/// fits and every stored record can be read and sent back.
constexpr std::size_t MaxRecordBytes = std::size_t{15} * 1024 * 1024;
constexpr std::size_t MaxDocumentElements = std::size_t{4} * 1024 * 1024; ///< of all levels together

/// Limits for checkDocument(), to be narrowed where the ones above are too wide.
struct DocumentLimits {
    int depth = MaxDocumentDepth; ///< not above MaxDocumentDepth
    std::size_t bytes = MaxDocumentBytes;
    std::size_t elements = MaxDocumentElements;
    std::size_t textBytes = MaxDocumentBytes; ///< of one text without its terminating zero; not for binary data
    /// Number of documents and arrays, including the document itself. In memory, each takes far more space than its
    /// bytes.
    std::size_t documents = MaxDocumentElements;
};

/// Encodes a record as an owned document. Null pointers in lists are skipped. Returns an empty document, which never
/// represents a record, if the class of the record or of a nested one is unknown to the library, or if the document
/// would exceed MaxDocumentBytes.
NVSERVICE_EXPORT bson::BSONObj encodeRecord(const IData& record);
/// Appends the elements of the record to the caller's builder, so that one buffer can serve many records. Returns false
/// where the function above returns an empty document; the builder must then be discarded. The size limit applies to
/// the record alone, not to the rest of the builder.
NVSERVICE_EXPORT bool encodeRecord(const IData& record, bson::BSONObjBuilder& builder);

/// Decodes a document after checking it with checkDocument(). On success `out` is a new record that shares no memory
/// with `document`. Otherwise `out` is null, and the error (Malformed) names the field by its path:
/// "accounts.3.accountName".
NVSERVICE_EXPORT utils::NVError decodeRecord(const bson::BSONObj& document, IDataPtr& out);
/// The same for unchecked bytes, which are read only during the call. If `documents` is not null, the number of
/// documents and arrays, including the document itself, is added to it: a record of many small ones takes far more
/// memory than its bytes.
NVSERVICE_EXPORT utils::NVError decodeRecord(const char* data, std::size_t size, IDataPtr& out,
                                             std::size_t* documents = nullptr);

class DecodedAccounts;

/// Decodes the records of one answer. Equal accounts in it become one record that all groups and products share,
/// because 100 000 groups of ten accounts would take four times the memory otherwise. For one thread at a time.
class NVSERVICE_EXPORT CRecordDecoder
{
public:
    CRecordDecoder();
    ~CRecordDecoder();
    CRecordDecoder(const CRecordDecoder&) = delete;
    CRecordDecoder& operator=(const CRecordDecoder&) = delete;

    /// As decodeRecord().
    utils::NVError decode(const char* data, std::size_t size, IDataPtr& out);
    /// The number of documents and arrays in all records so far, as decodeRecord() counts them.
    std::size_t documents() const { return m_documents; }

private:
    std::unique_ptr<DecodedAccounts> m_accounts;
    std::size_t m_documents = 0;
};

/// Checks that `size` bytes at `data` are one well-formed document within the limits: exact size, depth, number of
/// elements, known element types, lengths within their document, terminating zeros, booleans of 0 or 1. All names and
/// texts must be UTF-8, no name may occur twice in a document, and the elements of arrays must be named "0", "1" and so
/// on. Works iteratively and never reads beyond `size`. The error is Malformed, or ResourceExhausted for a limit, and
/// names the element by its path. Documents from outside are checked here and nowhere else: bson::BSONObj refuses
/// nothing. For `documents` see decodeRecord().
NVSERVICE_EXPORT utils::NVError checkDocument(const char* data, std::size_t size, const DocumentLimits& limits = {},
                                              std::size_t* documents = nullptr);

/// Repairs a stored document whose names and texts were never checked. Each byte of a name or text that is invalid
/// UTF-8 becomes U+FFFD. Of several elements with the same name the first is kept. The elements of arrays are
/// renumbered. A document that checkDocument() accepts stays unchanged. `out` is owned. The error is Malformed or
/// ResourceExhausted if the shape cannot be read or the result would exceed MaxDocumentBytes.
NVSERVICE_EXPORT utils::NVError repairDocument(const char* data, std::size_t size, bson::BSONObj& out);

} // namespace nvservice
