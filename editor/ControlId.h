// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace QAV
{

/// The controls of the group dialog in its events.
enum EGroupDialogControlId {
    GroupNameEditId = 0,
    AddAccountsButtonId = 1,
    SaveGroupButtonId = 2,
    CloseGroupDialogButtonId = 3,
    InstitutionEditId = 4,
    SystemComboId = 5,
    RecallGroupInputButtonId = 6,
    /// The delete button of the table row with id 0; those of the other rows follow.
    FirstDeleteButtonId = 1000,
};

/// The id under which the client keeps the layout of the group dialog's table.
constexpr int GroupAccountTableId = 1275;

/// The columns of the group dialog's table.
enum EGroupAccountColumn {
    AccountTypeColumn = 0,
    AccountIdColumn = 1,
    AccountServerColumn = 2,
    AccountProductColumn = 3,
    AccountOperationColumn = 4,
    GroupAccountColumnCount = 5,
};

/// The controls of the account picker.
enum EAccountPickerControlId {
    AccountTypeComboId = 0,
    AccountBoxId = 1,
    AcceptAccountsButtonId = 2,
    CancelAccountsButtonId = 3,
};

} // namespace QAV
