# Configuration, screen and the widgets of risk rules.
list(APPEND QAV_ACCOUNT_SOURCES
  account/CConfigService.cpp
  account/adaptScreenSize.cpp)
