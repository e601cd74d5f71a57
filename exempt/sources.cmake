# SPDX-License-Identifier: Apache-2.0
set(EXEMPT_SOURCES
  CExemptCategoryWidget.cpp
  CExemptCategoryWidget.h
  CSelectExemptCategoryDialog.cpp
  CSelectExemptCategoryDialog.h
  CategoryList.h
  CategorySearch.cpp
  CategorySearch.h
  ControlId.h)
