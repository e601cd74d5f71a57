// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace QAV
{

/// The columns of the account group table, by their number in the model.
enum EAccountGroupColumn {
    AccountGroupNameColumn = 0,
    AccountCountColumn = 1,
    InstitutionColumn = 2,
    ServerColumn = 3,
    OperationColumn = 4,
    AccountGroupColumnCount = 5,
};

} // namespace QAV
