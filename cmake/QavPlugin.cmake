# SPDX-License-Identifier: Apache-2.0
# qav_add_plugin(<target> CLASS <class> TITLE <title> SOURCES <file>... [LIBRARIES <target>...] [ICON <image key>] [RIGHTS <right>...])
#
# A plug-in of the desktop client: the library lib<target>.so, which exports nothing but the class CLASS (written with
# its namespaces, for example QAV::CPanel), and beside it the manifest <target>.plugin.json, from which the client learns
# the class, the title, the icon and the SDK version before it loads any code. RIGHTS are the user rights of which the
# user needs at least one to see the plug-in in the list; without RIGHTS everybody sees it.
#
# The class has to be marked Q_DECL_EXPORT, to derive from QAV::IkolmDockableWidget and to have a constructor marked
# Q_INVOKABLE with one QWidget* argument.
function(qav_add_plugin target)
  cmake_parse_arguments(ARG "" "CLASS;TITLE;ICON" "SOURCES;LIBRARIES;RIGHTS" ${ARGN})

  add_library(${target} MODULE ${ARG_SOURCES})
  target_link_libraries(${target} PRIVATE QavPlatform::QAV ${ARG_LIBRARIES})
  set_target_properties(${target} PROPERTIES CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)

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
  set_target_properties(${target} PROPERTIES LINK_DEPENDS "${map}")

  list(JOIN ARG_RIGHTS ", " rights)
  get_target_property(directory ${target} LIBRARY_OUTPUT_DIRECTORY)
  if(NOT directory)
    set(directory "${CMAKE_CURRENT_BINARY_DIR}")
  endif()
  set(manifest "${directory}/${target}.plugin.json")
  file(CONFIGURE OUTPUT "${manifest}" @ONLY CONTENT "{
  \"class\": \"@ARG_CLASS@\",
  \"title\": \"@ARG_TITLE@\",
  \"icon\": \"@ARG_ICON@\",
  \"library\": \"lib@target@.so\",
  \"sdkVersion\": \"@QAV_SDK_VERSION@\",
  \"rights\": [@rights@]
}
")
  set_property(TARGET ${target} PROPERTY QAV_PLUGIN_MANIFEST "${manifest}")
endfunction()
