# SPDX-License-Identifier: Apache-2.0
# qav_add_plugin(<target> CLASS <class> TITLE <title> SOURCES <file>... [LIBRARIES <target>...] [ICON <image>]
#   [RIGHTS <right>...] [COMPONENT <component>])
#
# A plug-in of the desktop client: the library lib<target>.so, which exports nothing but the class CLASS (written with
# its namespaces, for example QAV::CPanel), and beside it the manifest <target>.plugin.json, from which the client learns
# the class, the title, the icon and the SDK version before it loads any code.
# - ICON is a .svg or .png file, which is copied beside the manifest, or the key of an image of the themes.
# - RIGHTS are names from nvservice/UserRight.h. The user needs at least one of them to see the plug-in in the list;
#   without RIGHTS everybody sees it.
# - The plug-in is installed, as part of COMPONENT, into the plug-in folder of the client with the same prefix.
# - The sources are compiled once, as C++17 and with moc, into the object library <target>_objects, which tests of the
#   plug-in can link to; it uses LIBRARIES publicly.
# A wrong argument ends the configuration with an error.
#
# The class has to be marked Q_DECL_EXPORT, to derive from QAV::IkolmDockableWidget and to have a constructor marked
# Q_INVOKABLE with one QWidget* argument.
function(qav_add_plugin target)
  cmake_parse_arguments(PARSE_ARGV 1 ARG "" "CLASS;TITLE;ICON;COMPONENT" "SOURCES;LIBRARIES;RIGHTS")
  set(call "qav_add_plugin(${target})")
  if(DEFINED ARG_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "${call}: unknown arguments: ${ARG_UNPARSED_ARGUMENTS}")
  endif()
  if(DEFINED ARG_KEYWORDS_MISSING_VALUES)
    message(FATAL_ERROR "${call}: without a value: ${ARG_KEYWORDS_MISSING_VALUES}")
  endif()
  foreach(keyword CLASS TITLE SOURCES)
    if("${ARG_${keyword}}" STREQUAL "")
      message(FATAL_ERROR "${call}: ${keyword} is missing")
    endif()
  endforeach()
  if(NOT target MATCHES "^[A-Za-z0-9_][A-Za-z0-9_.+-]*$")
    message(FATAL_ERROR "${call}: the target is no name of a library")
  endif()
  if(NOT ARG_CLASS MATCHES "^[A-Za-z_][A-Za-z0-9_]*(::[A-Za-z_][A-Za-z0-9_]*)*$")
    message(FATAL_ERROR "${call}: CLASS is no name of a class: ${ARG_CLASS}")
  endif()
  if(ARG_TITLE MATCHES "[\t\r\n]")
    message(FATAL_ERROR "${call}: TITLE has to be one line")
  endif()

  file(READ "${QAV_SDK_INCLUDE_DIR}/nvservice/UserRight.h" header)
  set(rights "")
  foreach(right IN LISTS ARG_RIGHTS)
    if(NOT right MATCHES "^[A-Za-z]+$" OR NOT header MATCHES "constexpr int ${right} = ([0-9]+);")
      message(FATAL_ERROR "${call}: nvservice/UserRight.h has no right ${right}")
    endif()
    list(APPEND rights ${CMAKE_MATCH_1})
  endforeach()
  list(JOIN rights ", " rights)

  set(icon "${ARG_ICON}")
  if(ARG_ICON MATCHES "\\.(svg|png)$")
    set(icon "${target}.${CMAKE_MATCH_1}")
    get_filename_component(icon_file "${ARG_ICON}" ABSOLUTE)
    if(NOT EXISTS "${icon_file}")
      message(FATAL_ERROR "${call}: there is no ICON ${ARG_ICON}")
    endif()
  elseif(NOT ARG_ICON MATCHES "^[A-Za-z0-9_]*$")
    message(FATAL_ERROR "${call}: ICON is neither a .svg or .png file nor the key of an image: ${ARG_ICON}")
  endif()

  add_library(${target}_objects OBJECT ${ARG_SOURCES})
  target_link_libraries(${target}_objects PUBLIC QavPlatform::QAV ${ARG_LIBRARIES})
  target_compile_features(${target}_objects PUBLIC cxx_std_17)
  set_target_properties(${target}_objects PROPERTIES AUTOMOC ON POSITION_INDEPENDENT_CODE ON
    CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
  add_library(${target} MODULE $<TARGET_OBJECTS:${target}_objects>)
  target_link_libraries(${target} PRIVATE ${target}_objects)
  set_target_properties(${target} PROPERTIES AUTOMOC OFF)

  # Templates of the standard library are visible whatever the compiler is told, so the linker has the last word.
  string(REPLACE "::" ";" names "${ARG_CLASS}")
  set(mangled "")
  foreach(name IN LISTS names)
    string(LENGTH "${name}" length)
    string(APPEND mangled "${length}${name}")
  endforeach()
  set(map "${CMAKE_CURRENT_BINARY_DIR}/${target}.map")
  file(CONFIGURE OUTPUT "${map}" @ONLY CONTENT "{
  global: _ZN@mangled@*; _ZNK@mangled@*; _ZT?N@mangled@E; _ZThn*_N@mangled@*; _ZThn*_NK@mangled@*;
  local: *;
};
")
  target_link_options(${target} PRIVATE "-Wl,--version-script=${map}")
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS "${map}")

  # As a text of JSON, without what CMake would read as a generator expression.
  string(REPLACE "\\" "\\\\" title "${ARG_TITLE}")
  string(REPLACE "\"" "\\\"" title "${title}")
  string(REPLACE "$" "\\u0024" title "${title}")
  set(folder "$<TARGET_FILE_DIR:${target}>")
  file(GENERATE OUTPUT "${folder}/${target}.plugin.json" CONTENT "{
  \"class\": \"${ARG_CLASS}\",
  \"title\": \"${title}\",
  \"icon\": \"${icon}\",
  \"library\": \"$<TARGET_FILE_NAME:${target}>\",
  \"sdkVersion\": \"${QAV_SDK_VERSION}\",
  \"rights\": [${rights}]
}
")
  set(files "${folder}/${target}.plugin.json")
  if(icon_file)
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS "${icon_file}")
    add_custom_command(TARGET ${target} POST_BUILD
      COMMAND "${CMAKE_COMMAND}" -E copy "${icon_file}" "${folder}/${icon}" VERBATIM)
    list(APPEND files "${folder}/${icon}")
  endif()

  set(component "")
  if(ARG_COMPONENT)
    set(component COMPONENT ${ARG_COMPONENT})
  endif()
  install(TARGETS ${target} LIBRARY DESTINATION "${QAV_PLUGIN_DIR}" ${component})
  install(FILES ${files} DESTINATION "${QAV_PLUGIN_DIR}" ${component})
endfunction()
