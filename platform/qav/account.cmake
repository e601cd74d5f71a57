# SPDX-License-Identifier: Apache-2.0
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
  account/CUserCombobox.cpp
  account/OfferList.cpp
  account/OfferList.h)

# The black and white lists, and the asset-portfolio limits.
list(APPEND QAV_ACCOUNT_SOURCES
  ../include/QAV/CAccountStockTradeLimit.h
  ../include/QAV/CAssetsProportionWidget.h
  account/assets/AssetsChecks.cpp
  account/assets/AssetsColumns.cpp
  account/assets/CAssetsPane.cpp
  account/assets/CAssetsPane.h
  account/assets/CAssetsProportionWidget.cpp
  account/assets/CCategoryDirectory.cpp
  account/assets/CCategoryDirectory.h
  account/tradelimit/CAccountStockTradeLimit.cpp
  account/tradelimit/CImportReportDialog.cpp
  account/tradelimit/CImportReportDialog.h
  account/tradelimit/CLookUpEdit.cpp
  account/tradelimit/CLookUpEdit.h
  account/tradelimit/CSecurityDirectory.cpp
  account/tradelimit/CSecurityDirectory.h
  account/tradelimit/CTradeLimitBook.cpp
  account/tradelimit/CTradeLimitModel.cpp
  account/tradelimit/CTradeLimitModel.h
  account/tradelimit/CTradeLimitPane.cpp
  account/tradelimit/CTradeLimitPane.h
  account/tradelimit/CTradeLimitRow.cpp
  account/tradelimit/TradeLimitChecks.cpp
  account/tradelimit/TradeLimitImport.cpp
  account/tradelimit/TradeLimitPaneActions.cpp)
