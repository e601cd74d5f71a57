// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace WQ
{

/// The `type` of CEventDeliverer::handleEvent. The values are part of the interface: clients and plug-ins compare them.
enum EEventType : int {
    /// A button was clicked, by mouse or keyboard. `id` = control id.
    ButtonClicked = 5,
    /// The current index of a combo box changed. `param` = new index, -1 if the box was cleared.
    ComboIndexChanged = 67,
    /// The text of a line edit changed, by the user or by the program. `text` = new text.
    LineEditTextChanged = 97,
    /// Enter was pressed in a line edit. `text` = its text. Handlers also accept it with the id of a button.
    ButtonOrEnter = 99,
    /// A button of a table's multi-button column was clicked. `id` = column, `param` = button id, `text` = row key.
    RowButtonClicked = 218,
    /// The user changed the choice of the institution search edit.
    ManagerSelectionChanged = 237,
    /// The institution search edit has ended a load.
    ManagerDataLoaded = 3023,
};

} // namespace WQ
