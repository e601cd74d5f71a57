# High-performance tables.
set(WQ_TABLE_SOURCES)
foreach(name CBaseTableColumnDelegate CBaseTableColumnMultiButtonsDelegate CButtonFaces CContainsMatcher CHpfFilter CHpfFilterPopup
    CHpfHeader CHpfRowOrder CHpfTableView CHpfTableViewInput CHpfTableViewPaint CRowButtons
    CRowKeyIndex CSortRanks CStandardHpfTable CTableFindBar HpfAccessible HpfModelRows HpfTableContents HpfTableMenu IBaseHpfTableData
    IBaseHpfTableModel KeyHash TableActions TableExport TableLayout TableText)
  list(APPEND WQ_TABLE_SOURCES table/${name}.cpp)
endforeach()
foreach(header CBaseTableColumnDelegate CBaseTableColumnMultiButtonsDelegate CStandardHpfTable IBaseHpfTableModel)
  list(APPEND WQ_TABLE_SOURCES ${PROJECT_SOURCE_DIR}/platform/include/WQ/${header}.h)
endforeach()
