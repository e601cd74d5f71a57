// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace WQ
{

/// The entries of a table's context menu. The bits are passed to a table at construction. The keyboard shortcut of an
/// entry works exactly if the menu has the entry.
enum EBaseTableMenuFlag : int {
    MenuCopy = 0x01,           ///< "复制" (Ctrl+C): the selected cells as tab-separated text.
    MenuCopyWithHeader = 0x02, ///< "复制（含表头）" (Ctrl+Shift+C).
    MenuExport = 0x04,         ///< "导出CSV…": the shown rows in the order shown, UTF-8 with a byte order mark.
    MenuFind = 0x08,           ///< "查找…" (Ctrl+F, F3 next, Shift+F3 previous).
    MenuColumnChooser = 0x10,  ///< "显示列": one checkable entry per column.
    MenuFitColumns = 0x20,     ///< "自动列宽": restores the automatic width of every column.
    MenuClear = 0x40,          ///< "清除筛选" and "清除排序".
    MenuSelectAll = 0x80,      ///< "全选" (Ctrl+A).
    MenuAll = 0xff
};

} // namespace WQ
