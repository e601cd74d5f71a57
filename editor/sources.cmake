# SPDX-License-Identifier: Apache-2.0
set(EDITOR_SOURCES
  AccountList.h
  AccountProduct.cpp
  AccountProduct.h
  AccountType.cpp
  AccountType.h
  AccountUnitRule.cpp
  AccountUnitRule.h
  CAddAccountGroupDialog.cpp
  CAddAccountGroupDialog.h
  CAddAccountGroupDialogAccounts.cpp
  CAddAccountGroupDialogUi.cpp
  CSelectAccountDialog.cpp
  CSelectAccountDialog.h
  ControlId.h)
