// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/CAccountInfo.h>
#include <nvservice/IData.h>

#include <boost/make_shared.hpp>

namespace nvservice
{

/// An account as the account query returns it, with its state on the service. Key: that of the account.
class NVSERVICE_EXPORT CKolmAccountInfo : public IData
{
public:
    /// The state of an account that is closed for good. Clients do not list it.
    static constexpr std::int32_t ClosedState = 5;

    /// The key of the account, with the system tag of this record.
    std::string getKey() const override;
    IDataPtr copy() const override;
    const char* typeName() const override;

    /// Starts as an empty account; not null when decoded.
    boost::shared_ptr<CAccountInfo> account = boost::make_shared<CAccountInfo>();
    std::int32_t stateCode = 0; ///< 5: closed
    bool excluded = false;      ///< true: not offered for account groups
};

} // namespace nvservice
