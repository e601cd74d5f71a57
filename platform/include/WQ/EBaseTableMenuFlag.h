#pragma once

namespace WQ
{

/// What the context menu of a table offers. The bits are given to a table at construction; the keyboard shortcut of an
/// entry works exactly when the entry is offered.
enum EBaseTableMenuFlag : int {
    MenuCopy = 0x01,           ///< "复制" (Ctrl+C): the selected cells as tab-separated text.
    MenuCopyWithHeader = 0x02, ///< "复制(含表头)" (Ctrl+Shift+C).
    MenuExport = 0x04, ///< "导出CSV...": the rows that are shown, in the order shown, UTF-8 with a byte order mark.
    MenuFind = 0x08,   ///< "查找..." (Ctrl+F, F3 next, Shift+F3 previous).
    MenuColumnChooser = 0x10, ///< "显示列": one checkable entry per column.
    MenuFitColumns = 0x20,    ///< "自动列宽": every column gets its automatic width back.
    MenuClear = 0x40,         ///< "清除筛选" and "清除排序".
    MenuSelectAll = 0x80,     ///< "全选" (Ctrl+A).
    MenuAll = 0xff
};

} // namespace WQ
