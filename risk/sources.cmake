# SPDX-License-Identifier: Apache-2.0
set(RISK_SOURCES
  CSetAccountGroupRiskDialog.cpp
  CSetAccountGroupRiskDialog.h
  CSetAccountGroupRiskDialogRequests.cpp
  CStockTradeLimitWidget.cpp
  CStockTradeLimitWidget.h
  ControlId.h)
