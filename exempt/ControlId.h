// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace QAV
{

/// The controls of an exempt category page in its events.
enum EExemptPageControlId {
    EnableCheckId = 0,
    NotCountCancelledCheckId = 1,
    WarnOnlyCheckId = 2,
    ChooseCategoriesButtonId = 3,
    /// The delete button of the row with the id 0; those of the other rows follow by row id.
    FirstRowDeleteButtonId = 1000,
};

/// The controls of the exempt category picker.
enum EExemptPickerControlId {
    ChooseButtonId = 2,
    GiveBackButtonId = 3,
    AcceptButtonId = 4,
    CloseButtonId = 5,
    CategorySearchEditId = 6,
};

/// The ids under which the client keeps the tables' layouts.
enum EExemptTableId {
    AvailableCategoryTableId = 0,
    SelectedCategoryTableId = 1,
    ReverseOrderCategoryTableId = 1277,
    WashTradeCategoryTableId = 1278,
};

} // namespace QAV
