// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QLatin1String>

/// The keys of CUiResourceManager that the framework's widgets use. Every theme defines them.
namespace WQ::key
{

#define WQ_RESOURCE_KEY(name, text) inline constexpr QLatin1String name(text, int(sizeof(text)) - 1)

// Surfaces and text
WQ_RESOURCE_KEY(Window, "clr_window");
WQ_RESOURCE_KEY(PanelBackground, "clr_panel_background");
WQ_RESOURCE_KEY(Text, "cle_default");
WQ_RESOURCE_KEY(TextWeak, "clr_text_weak");
WQ_RESOURCE_KEY(TextDisabled, "clr_text_disabled");
WQ_RESOURCE_KEY(Border, "clr_border");
WQ_RESOURCE_KEY(BorderStrong, "clr_border_strong");
WQ_RESOURCE_KEY(Accent, "clr_accent");
WQ_RESOURCE_KEY(FocusRing, "clr_focus_ring");
WQ_RESOURCE_KEY(Link, "clr_link");
WQ_RESOURCE_KEY(SelectionBackground, "clr_selection_background");
WQ_RESOURCE_KEY(SelectionText, "clr_selection_text");
WQ_RESOURCE_KEY(TipBackground, "clr_tip_background");
WQ_RESOURCE_KEY(TipText, "clr_tip_text");
WQ_RESOURCE_KEY(TitleBackground, "clr_title_background");
WQ_RESOURCE_KEY(TitleText, "clr_title_text");
WQ_RESOURCE_KEY(MaskVeil, "clr_mask_veil");
WQ_RESOURCE_KEY(MaskBackground, "clr_mask_background");
WQ_RESOURCE_KEY(MaskText, "clr_mask_text");
WQ_RESOURCE_KEY(GlobalRise, "clr_global_rise");
WQ_RESOURCE_KEY(GlobalFall, "clr_global_fall");
WQ_RESOURCE_KEY(Warning, "clr_warning");
WQ_RESOURCE_KEY(ScrollThumb, "clr_scroll_thumb");
WQ_RESOURCE_KEY(ScrollThumbHover, "clr_scroll_thumb_hover");

// Line edits, combo boxes, check boxes
WQ_RESOURCE_KEY(EditBackground, "clr_lineedit_background");
WQ_RESOURCE_KEY(EditText, "clr_lineedit_text");
WQ_RESOURCE_KEY(EditHint, "clr_lineedit_empty_hint");
WQ_RESOURCE_KEY(EditDisabled, "clr_lineedit_background_disabled");

// Tables
WQ_RESOURCE_KEY(TableBackground, "clr_table_background");
WQ_RESOURCE_KEY(TableBackground2, "clr_table_background2");
WQ_RESOURCE_KEY(TableHover, "clr_table_hover_background");
WQ_RESOURCE_KEY(TableSelection, "clr_table_selection_background");
WQ_RESOURCE_KEY(TableSelectionInactive, "clr_table_selection_inactive");
WQ_RESOURCE_KEY(TableSelectionText, "clr_table_selection_text");
WQ_RESOURCE_KEY(TableGrid, "clr_table_grid");
WQ_RESOURCE_KEY(TableHeader, "clr_table_header_background");
WQ_RESOURCE_KEY(TableHeaderHover, "clr_table_header_hover");
WQ_RESOURCE_KEY(TableHeaderText, "clr_table_header_text");
WQ_RESOURCE_KEY(TableHeaderMark, "clr_table_header_mark");
WQ_RESOURCE_KEY(TableFilterActive, "clr_table_filter_active");
WQ_RESOURCE_KEY(TableFindMatch, "clr_table_find_match");
WQ_RESOURCE_KEY(TableEmptyText, "clr_table_empty_text");

#undef WQ_RESOURCE_KEY

} // namespace WQ::key
