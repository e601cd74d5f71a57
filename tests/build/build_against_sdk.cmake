# SPDX-License-Identifier: Apache-2.0
# Installs the SDK into a fresh folder and builds the plug-ins and the example against it. Checks that library and manifest
# are there, installs the plug-in of the example and runs its test.
function(run)
  execute_process(COMMAND ${ARGN} COMMAND_ECHO STDOUT COMMAND_ERROR_IS_FATAL ANY)
endfunction()

file(REMOVE_RECURSE "${WORK_DIR}")
set(prefix "${WORK_DIR}/prefix")
foreach(component core runtime sdk)
  run("${CMAKE_COMMAND}" --install "${BUILD_DIR}" --prefix "${prefix}" --component ${component})
endforeach()

# Only the folders that are built, so that nothing else of the tree can be found by accident.
foreach(folder panel editor risk exempt history)
  if(EXISTS "${SOURCE_DIR}/${folder}")
    file(COPY "${SOURCE_DIR}/${folder}" DESTINATION "${WORK_DIR}/source")
  endif()
endforeach()

file(COPY "${SOURCE_DIR}/examples" DESTINATION "${WORK_DIR}")

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
  set(ENV{CMAKE_CXX_COMPILER_LAUNCHER} "${CCACHE_PROGRAM}")
endif()
foreach(plugin panel:QavAccountGroupRisk history:QavHistory)
  string(REGEX MATCH "^(.+):(.+)$" plugin "${plugin}")
  set(folder "${CMAKE_MATCH_1}")
  set(library "${CMAKE_MATCH_2}")
  run("${CMAKE_COMMAND}" -S "${WORK_DIR}/source/${folder}" -B "${WORK_DIR}/build/${folder}" -G "${GENERATOR}"
    "-DCMAKE_PREFIX_PATH=${prefix}" "-DCMAKE_CXX_FLAGS=${CXX_FLAGS}" -DCMAKE_UNITY_BUILD=ON)
  run("${CMAKE_COMMAND}" --build "${WORK_DIR}/build/${folder}")
  foreach(file lib${library}.so ${library}.plugin.json)
    if(NOT EXISTS "${WORK_DIR}/build/${folder}/${file}")
      message(FATAL_ERROR "The build against the installed SDK left no ${file}")
    endif()
  endforeach()
endforeach()

set(example "${WORK_DIR}/examples/accounts")
run("${CMAKE_COMMAND}" -S "${example}" -B "${example}/build" -G "${GENERATOR}" "-DCMAKE_PREFIX_PATH=${prefix}"
  "-DCMAKE_CXX_FLAGS=-Wall -Wextra -Wpedantic -Werror ${CXX_FLAGS}")
run("${CMAKE_COMMAND}" --build "${example}/build")
run("${CMAKE_CTEST_COMMAND}" --test-dir "${example}/build" --output-on-failure --no-tests=error)
run("${CMAKE_COMMAND}" --install "${example}/build" --prefix "${prefix}")
foreach(file libExampleAccounts.so ExampleAccounts.plugin.json ExampleAccounts.svg)
  if(NOT EXISTS "${prefix}/${PLUGIN_DIR}/${file}")
    message(FATAL_ERROR "The example was installed without ${file}")
  endif()
endforeach()
