# Configuration, screen and the widgets of risk rules.
list(APPEND QAV_ACCOUNT_SOURCES
  ../include/QAV/CAccountRcEmailWidget.h
  account/CAccountRcEmailWidget.cpp
  account/CConfigService.cpp
  account/adaptScreenSize.cpp)

# The drop-down of many checks and the institution search.
list(APPEND QAV_ACCOUNT_SOURCES
  ../include/QAV/CManagerSearchLineEdit.h
  ../include/QAV/CUserCombobox.h
  account/CCheckListModel.cpp
  account/CCheckListModel.h
  account/CCheckListPopup.cpp
  account/CCheckListPopup.h
  account/CManagerSearchLineEdit.cpp
  account/CSearchIndex.cpp
  account/CUserCombobox.cpp)
