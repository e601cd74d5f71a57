# SPDX-License-Identifier: Apache-2.0
# Configures, builds and installs a small plug-in with qav_add_plugin, and configures plug-ins with wrong arguments.
cmake_minimum_required(VERSION 3.25)
file(REMOVE_RECURSE "${WORK_DIR}")

# configure(<name> <arguments of qav_add_plugin>): sets result and output.
function(configure name arguments)
  set(folder "${WORK_DIR}/${name}")
  file(WRITE "${folder}/CMakeLists.txt" "cmake_minimum_required(VERSION 3.25)
set(CMAKE_CXX_COMPILER_WORKS ON)
project(Probe LANGUAGES CXX)
add_library(QavPlatform::QAV INTERFACE IMPORTED)
set(QAV_SDK_VERSION 7.3)
set(QAV_SDK_INCLUDE_DIR \"${SOURCE_DIR}/platform/include\")
set(QAV_PLUGIN_DIR lib/plugins)
include(\"${SOURCE_DIR}/cmake/QavPlugin.cmake\")
qav_add_plugin(${arguments})
")
  file(WRITE "${folder}/CPanel.cpp" "namespace My
{
class __attribute__((visibility(\"default\"))) CPanel
{
public:
    CPanel();
};
CPanel::CPanel() {}
} // namespace My
")
  file(WRITE "${folder}/own.svg" "<svg xmlns='http://www.w3.org/2000/svg'/>")
  execute_process(COMMAND "${CMAKE_COMMAND}" -S "${folder}" -B "${folder}/build" -G "Ninja Multi-Config"
    RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  set(result "${result}" PARENT_SCOPE)
  set(output "${output}" PARENT_SCOPE)
endfunction()

function(expect_equal what actual expected)
  if(NOT actual STREQUAL expected)
    message(SEND_ERROR "${what} is \"${actual}\", expected \"${expected}\"")
  endif()
endfunction()

# A plug-in with everything, in two configurations.
configure(right [==[Probe CLASS My::CPanel TITLE "他说 \"你好\"; C:\\ $<1:x> @a@" SOURCES CPanel.cpp ICON own.svg
  RIGHTS EditAccountGroup DeleteAccountGroup COMPONENT probe]==])
if(NOT result EQUAL 0)
  message(FATAL_ERROR "${output}")
endif()
foreach(config Debug Release)
  set(build "${WORK_DIR}/right/build")
  execute_process(COMMAND "${CMAKE_COMMAND}" --build "${build}" --config ${config} OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
  set(prefix "${WORK_DIR}/installed/${config}")
  execute_process(COMMAND "${CMAKE_COMMAND}" --install "${build}" --config ${config} --prefix "${prefix}" --component probe
    OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
  foreach(folder "${build}/${config}" "${prefix}/lib/plugins")
    foreach(file libProbe.so Probe.plugin.json Probe.svg)
      if(NOT EXISTS "${folder}/${file}")
        message(SEND_ERROR "no ${folder}/${file}")
      endif()
    endforeach()
  endforeach()
  file(READ "${prefix}/lib/plugins/Probe.plugin.json" manifest)
  string(JSON value GET "${manifest}" title)
  expect_equal("the title" "${value}" [==[他说 "你好"; C:\ $<1:x> @a@]==])
  string(JSON value GET "${manifest}" class)
  expect_equal("the class" "${value}" "My::CPanel")
  string(JSON value GET "${manifest}" icon)
  expect_equal("the icon" "${value}" "Probe.svg")
  string(JSON value GET "${manifest}" library)
  expect_equal("the library" "${value}" "libProbe.so")
  string(JSON value GET "${manifest}" sdkVersion)
  expect_equal("the version" "${value}" "7.3")
  string(JSON first GET "${manifest}" rights 0)
  string(JSON second GET "${manifest}" rights 1)
  string(JSON count LENGTH "${manifest}" rights)
  expect_equal("the rights" "${count}: ${first} ${second}" "2: 10717 10721")
endforeach()

# A plug-in with as little as possible.
configure(least "Probe CLASS CPanel TITLE 面板 SOURCES CPanel.cpp")
if(NOT result EQUAL 0)
  message(SEND_ERROR "${output}")
endif()
file(READ "${WORK_DIR}/least/build/Release/Probe.plugin.json" manifest)
string(JSON count LENGTH "${manifest}" rights)
string(JSON value GET "${manifest}" icon)
expect_equal("rights and icon" "${count}${value}" "0")

# expect_error(<name> <arguments> <part of the message>)
function(expect_error name arguments part)
  configure(${name} "${arguments}")
  # CMake breaks long messages into lines.
  string(REGEX REPLACE "[ \n]+" " " output "${output}")
  string(FIND "${output}" "qav_add_plugin(Probe): ${part}" at)
  if(result EQUAL 0 OR at EQUAL -1)
    message(SEND_ERROR "${name}: expected the error \"${part}\", got ${result}: ${output}")
  endif()
endfunction()

expect_error(no_class "Probe TITLE T SOURCES CPanel.cpp" "CLASS is missing")
expect_error(no_title "Probe CLASS CPanel SOURCES CPanel.cpp" "TITLE is missing")
expect_error(empty_title "Probe CLASS CPanel TITLE \"\" SOURCES CPanel.cpp" "TITLE is missing")
expect_error(no_sources "Probe CLASS CPanel TITLE T" "SOURCES is missing")
expect_error(no_value "Probe CLASS CPanel TITLE T SOURCES CPanel.cpp ICON" "without a value: ICON")
expect_error(unknown "Probe PANEL x CLASS CPanel TITLE T SOURCES CPanel.cpp" "unknown arguments: PANEL;x")
expect_error(bad_class "Probe CLASS My:CPanel TITLE T SOURCES CPanel.cpp" "CLASS is no name of a class: My:CPanel")
expect_error(two_lines "Probe CLASS CPanel TITLE \"T\\nT\" SOURCES CPanel.cpp" "TITLE has to be one line")
expect_error(bad_right "Probe CLASS CPanel TITLE T SOURCES CPanel.cpp RIGHTS EditGroup"
  "nvservice/UserRight.h has no right EditGroup")
expect_error(number_as_right "Probe CLASS CPanel TITLE T SOURCES CPanel.cpp RIGHTS 10717"
  "nvservice/UserRight.h has no right 10717")
expect_error(no_icon "Probe CLASS CPanel TITLE T SOURCES CPanel.cpp ICON other.svg" "there is no ICON other.svg")
expect_error(bad_icon "Probe CLASS CPanel TITLE T SOURCES CPanel.cpp ICON own.jpg" "ICON is neither")
