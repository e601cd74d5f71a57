#pragma once

#include <nvservice/Bson.h>
#include <nvservice/Export.h>
#include <nvservice/IData.h>

#include <utils/NVError.h>

#include <cstddef>

namespace nvservice
{

/// Records as documents.
///
/// Every field of a record is an element under the field's name; nested records are documents, lists are arrays. Three
/// names are reserved in every record: "_type" (class name; written where the class is not given by the place, that is
/// at the top and in lists of any record), "_tag" (system tag, written unless empty), "_rev" (revision, written unless
/// 0). A field that is absent keeps the default of its class. A field of the wrong type, a number outside the field's
/// range and a fraction in an integer are refused, and so is what checkDocument() refuses.
/// All functions may be called from any thread.

/// Limits of a document from outside.
constexpr int MaxDocumentDepth = 32; ///< the document itself is level 1
constexpr std::size_t MaxDocumentBytes = std::size_t{16} * 1024 * 1024;
/// The largest record that a service keeps, and so the largest that it ever sends: below MaxDocumentBytes by what a
/// message needs around it, so that whatever is stored can be read and sent back.
constexpr std::size_t MaxRecordBytes = std::size_t{15} * 1024 * 1024;
constexpr std::size_t MaxDocumentElements = std::size_t{4} * 1024 * 1024; ///< of all levels together

/// The limits that a document is checked against, where those above are too wide.
struct DocumentLimits {
    int depth = MaxDocumentDepth; ///< not above MaxDocumentDepth
    std::size_t bytes = MaxDocumentBytes;
    std::size_t elements = MaxDocumentElements;
    std::size_t textBytes = MaxDocumentBytes; ///< of one text without its ending zero; binary data is not meant
    /// Documents and arrays, the document itself included: each becomes an object that takes far more memory than
    /// bytes.
    std::size_t documents = MaxDocumentElements;
};

/// The document of a record, owned. Null pointers in lists are left out. Empty (which no record's document is) when the
/// record, or one that it holds, is of a class that the library does not know, or when the document would exceed
/// MaxDocumentBytes.
NVSERVICE_EXPORT bson::BSONObj encodeRecord(const IData& record);
/// Appends the elements of the record to a document that the caller builds, so that one buffer can serve many records.
/// False in the cases in which the other function gives an empty document; the builder is then of no use. The limit is
/// that of the record alone, whatever else the builder holds.
NVSERVICE_EXPORT bool encodeRecord(const IData& record, bson::BSONObjBuilder& builder);

/// The record of a document. Checks the document first (checkDocument). On success
/// `out` holds a new record that shares no memory with `document`; otherwise `out` is null and the error (Malformed)
/// names the field, nested ones by path: "accounts.3.accountName".
NVSERVICE_EXPORT utils::NVError decodeRecord(const bson::BSONObj& document, IDataPtr& out);
/// The same for bytes that nobody has looked at yet; they are read during the call only. `documents`, unless null,
/// grows by the documents and arrays in it, itself included: with many small ones a record takes far more memory than
/// bytes.
NVSERVICE_EXPORT utils::NVError decodeRecord(const char* data, std::size_t size, IDataPtr& out,
                                             std::size_t* documents = nullptr);

/// Whether `size` bytes at `data` are one well-formed document within the limits: exact size, depth, number of
/// elements, known element types, lengths inside their document, ending zeros, booleans that are 0 or 1; names and
/// texts of any kind in UTF-8, no name twice in one document, the elements of arrays named "0", "1" and so on. Works
/// iteratively and never reads beyond `size`. The error is Malformed, or ResourceExhausted for a limit, and names the
/// element by path. Only a document that passes may be given to bson's own functions: they recurse and trust lengths.
/// `documents` as in decodeRecord().
NVSERVICE_EXPORT utils::NVError checkDocument(const char* data, std::size_t size, const DocumentLimits& limits = {},
                                              std::size_t* documents = nullptr);

/// The document, owned, of bytes that a store has kept since names and texts were not checked. In names and texts every
/// byte that belongs to no UTF-8 character becomes U+FFFD; of the elements with one name in a document the first is
/// kept; the elements of arrays are numbered anew. What checkDocument() accepts stays as it is. The error (Malformed,
/// ResourceExhausted) is that of a shape that cannot be read, or that the document would pass MaxDocumentBytes.
NVSERVICE_EXPORT utils::NVError repairDocument(const char* data, std::size_t size, bson::BSONObj& out);

} // namespace nvservice
