# Base widgets, theme, message boxes, pinyin and search.
set(WQ_WIDGET_SOURCES
  ButtonPainter.cpp CAutoKeyboardLineEdit.cpp CBaseDialog.cpp CBaseWidget.cpp CCommonDialog.cpp CCustomDialog.cpp
  CEventDeliverer.cpp CJiuGongBackgroundPainter.cpp CLineEdit.cpp CLoadingMaskWidget.cpp CMessageBox.cpp
  CMessageBoxDialog.cpp CNormalButton.cpp CSimpleTextWidget.cpp CTheme.cpp CThemeStyle.cpp CThemeStyleDrawing.cpp
  CUiResourceManager.cpp CWidgetList.cpp IDockableWidget.cpp StringConversion.cpp themes.qrc)
foreach(header CAutoKeyboardLineEdit CBaseDialog CBaseWidget CCommonDialog CCustomDialog CLineEdit CLoadingMaskWidget
    CMediumNormalButton CNormalButton CSimpleTextWidget CSmallNormalButton CUiResourceManager CWidgetList IDockableWidget)
  list(APPEND WQ_WIDGET_SOURCES ${PROJECT_SOURCE_DIR}/platform/include/WQ/${header}.h)
endforeach()

# The readings of Chinese characters are a table that is written at build time, so that nothing of it is loaded or computed
# when the client starts.
find_package(PkgConfig REQUIRED)
pkg_check_modules(WQ_ICU REQUIRED IMPORTED_TARGET icu-i18n icu-uc)
add_executable(wq_generate_pinyin pinyin/GeneratePinyinTable.cpp)
target_link_libraries(wq_generate_pinyin PRIVATE PkgConfig::WQ_ICU qav_warnings)
set(WQ_PINYIN_TABLE ${CMAKE_CURRENT_BINARY_DIR}/PinyinTable.cpp)
set(WQ_PINYIN_FOLDER ${CMAKE_CURRENT_SOURCE_DIR}/pinyin)
add_custom_command(OUTPUT ${WQ_PINYIN_TABLE}
  COMMAND wq_generate_pinyin ${WQ_PINYIN_FOLDER} ${WQ_PINYIN_TABLE}
  DEPENDS wq_generate_pinyin ${WQ_PINYIN_FOLDER}/phrases.txt ${WQ_PINYIN_FOLDER}/readings.txt ${WQ_PINYIN_FOLDER}/surnames.txt
    ${WQ_PINYIN_FOLDER}/givennames.txt
  COMMENT "Writing the pinyin table" VERBATIM)
set_source_files_properties(${WQ_PINYIN_TABLE} PROPERTIES SKIP_PRECOMPILE_HEADERS ON SKIP_AUTOGEN ON)
list(APPEND WQ_WIDGET_SOURCES pinyin/Pinyin.cpp ${WQ_PINYIN_TABLE} search/CSearchIndex.cpp search/MixedMatch.cpp)
