#pragma once

#include <nvservice/CAccountInfo.h>
#include <nvservice/IData.h>

#include <boost/make_shared.hpp>

namespace nvservice
{

/// An account as the account query delivers it, with its state on the service. Key: that of the account.
class NVSERVICE_EXPORT CKolmAccountInfo : public IData
{
public:
    /// An account closed for good; clients do not list it.
    static constexpr std::int32_t ClosedState = 5;

    /// Key of the account with this record's own system tag.
    std::string getKey() const override;
    IDataPtr copy() const override;
    const char* typeName() const override;

    /// Starts as an empty account; not null when decoded.
    boost::shared_ptr<CAccountInfo> account = boost::make_shared<CAccountInfo>();
    std::int32_t stateCode = 0;
    bool excluded = false; ///< not offered for account groups
};

} // namespace nvservice
