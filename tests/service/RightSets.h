// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/ServiceFixture.h"

namespace testservice
{

/// What somebody has, and what that allows.
struct Rights {
    const char* name;
    std::set<int> rights;
    bool mayEdit;
    bool mayDelete;
    bool maySetRisk;
};

inline const std::set<int> AccountTypes = {nvservice::UserRight::FutureAccount, nvservice::UserRight::StockAccount};

inline std::set<int> withTypes(std::set<int> rights)
{
    rights.insert(AccountTypes.begin(), AccountTypes.end());
    return rights;
}

inline const std::vector<Rights>& rightSets()
{
    namespace UserRight = nvservice::UserRight;
    static const std::vector<Rights> sets = {
        {"no right", {}, false, false, false},
        {"account types only", withTypes({}), false, false, false},
        {"risk only", withTypes({UserRight::SetAccountGroupRisk}), false, false, true},
        {"edit only", withTypes({UserRight::EditAccountGroup}), true, false, false},
        {"delete only", withTypes({UserRight::DeleteAccountGroup}), false, true, false},
        {"edit and delete", withTypes({UserRight::EditAccountGroup, UserRight::DeleteAccountGroup}), true, true, false},
        {"everything", everyRight(), true, true, true}};
    return sets;
}

inline const std::vector<EZvDataOperation> Operations = {EZvDataOperation::Add, EZvDataOperation::Modify,
                                                         EZvDataOperation::Delete};

inline const char* nameOf(EZvDataOperation operation)
{
    return operation == EZvDataOperation::Add ? "add" : operation == EZvDataOperation::Modify ? "modify" : "delete";
}

inline const char* nameOf(int institution)
{
    return institution == First ? "first institution" : institution == Second ? "second institution" : "no institution";
}

} // namespace testservice
