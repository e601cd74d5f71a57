#pragma once

namespace WQ
{

/// The `type` of CEventDeliverer::handleEvent. The numbers are part of the interface: clients and plug-ins compare
/// them.
enum EEventType : int {
    /// A button was clicked, by mouse or keyboard. `id` = control id.
    ButtonClicked = 5,
    /// The current index of a combo box changed. `param` = new index, -1 when the box was emptied.
    ComboIndexChanged = 67,
    /// The text of a line edit changed, by the user or by the program. `text` = new text.
    LineEditTextChanged = 97,
    /// Enter was pressed in a line edit. `text` = its text. Handlers take it for a button's id too.
    ButtonOrEnter = 99,
    /// A button of a table's multi-button column was clicked. `id` = column, `param` = button id, `text` = row key.
    RowButtonClicked = 218,
    /// The selection of the institution search edit changed.
    ManagerSelectionChanged = 237,
    /// The institution search edit has its data.
    ManagerDataLoaded = 3023,
};

} // namespace WQ
