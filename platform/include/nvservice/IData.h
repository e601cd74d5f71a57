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

/// The base of every record of the data service.
///
/// Texts are UTF-8. A record is not synchronised: it belongs to one thread at a time, and what is handed to another
/// thread is a copy() or is no longer touched. The ordinary copy constructor of a record shares nested records that it
/// holds by pointer; copy() never does.
class NVSERVICE_EXPORT IData
{
public:
    virtual ~IData();

    /// Identifies the record among all records of its class, on all servers: the system tag and the record's own
    /// identity, joined with '|'. In text parts '|' and '\' are preceded by '\', so that no two identities share a key.
    virtual std::string getKey() const = 0;
    /// The key of the record for choosing it in a list; the same as getKey() unless a class says otherwise.
    virtual std::string getCsKey() const;

    /// The tag of the server that the record belongs to; empty for a record that no server has seen.
    const std::string& getSystemTag() const;
    /// Sets the tag of this record only; the records inside it keep theirs (nvservice/SystemTag.h sets those too).
    void setSystemTag(const std::string& systemTag);

    /// A deep copy, nested records, revision, system tag and unknown fields included. Never null.
    virtual IDataPtr copy() const = 0;

    /// Counts the changes of the record on its service; 0 for one that the service has not stored. It travels with the
    /// record, so that the service can refuse a change that is based on an outdated state.
    std::int64_t revision() const;
    void setRevision(std::int64_t revision);

    /// The name of the class as documents carry it, for example "nvservice::CAccountGroup". A literal.
    virtual const char* typeName() const = 0;

    /// Fields of the document which this version does not know. They are written again as they came. Must be owned by
    /// the object (`isOwned()`, or empty); fields whose names the record itself uses are not written.
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
