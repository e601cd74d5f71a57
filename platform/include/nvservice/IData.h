// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/Bson.h>
#include <nvservice/Export.h>

#include <boost/shared_ptr.hpp>

#include <cstdint>
#include <string>

namespace nvservice
{

class IData;
using IDataPtr = boost::shared_ptr<IData>;

/// The base class of all records of the data service.
///
/// Texts are UTF-8. Records are not thread-safe: pass a copy() to another thread, or stop using the record yourself.
/// The copy constructor of a record shares nested records that are held by pointer; copy() never does.
class NVSERVICE_EXPORT IData
{
public:
    virtual ~IData();

    /// Identifies the record among all records of its class on all servers: the system tag and the record's own
    /// identity, joined with '|'. In texts '|' and '\' are escaped with '\', so different records never share a key.
    virtual std::string getKey() const = 0;
    /// The key by which the record is selected in a list. The same as getKey() unless a class overrides it.
    virtual std::string getCsKey() const;

    /// The tag of the server that the record belongs to; empty for a record that was never on a server.
    const std::string& getSystemTag() const;
    /// Sets the tag of this record only; the records inside it keep theirs (nvservice/SystemTag.h sets those too).
    void setSystemTag(const std::string& systemTag);

    /// A deep copy, including nested records, revision, system tag and unknown fields. Never null.
    virtual IDataPtr copy() const = 0;

    /// The revision of the record on its service; 0 if the service has not stored it. Each change raises it. The record
    /// carries it back, so that the service can refuse a change that is based on an outdated state.
    std::int64_t revision() const;
    void setRevision(std::int64_t revision);

    /// The class name as written in documents, for example "nvservice::CAccountGroup". A string literal.
    virtual const char* typeName() const = 0;

    /// Fields of the document that this version does not know. They are written back unchanged. The object must be
    /// owned (`isOwned()`) or empty. Fields whose names the record itself uses are not written.
    bson::BSONObj unknownFields;

protected:
    IData();
    IData(const IData&);
    IData(IData&&) noexcept;
    IData& operator=(const IData&);
    IData& operator=(IData&&) noexcept;

private:
    std::string m_systemTag;
    std::int64_t m_revision = 0;
};

} // namespace nvservice
