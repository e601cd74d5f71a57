# SPDX-License-Identifier: Apache-2.0
# Compiler settings and the few helpers that every folder's CMakeLists.txt uses.

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_AUTOMOC ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/lib")
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
# In /usr the system finds our libraries; below another prefix programs know where they are.
if(NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr")
  set(CMAKE_INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}:$ORIGIN/..:$ORIGIN")
endif()

# One code model for every object, so that precompiled headers can be shared.
add_compile_options(-fPIC)
add_compile_options($<$<CONFIG:Debug>:-Og>)
# A missing symbol of a shared library is found when it is linked, not when it is loaded.
if(NOT QAV_SANITIZE)
  add_link_options(-Wl,--no-undefined)
endif()
add_compile_definitions($<$<CONFIG:Debug>:_GLIBCXX_ASSERTIONS> QT_NO_FOREACH)
# What is shipped is hardened, and has the lines of a backtrace for the -dbgsym packages. Sanitizers do their own checks.
if(NOT QAV_SANITIZE)
  add_compile_options("$<$<CONFIG:Release>:-fstack-protector-strong;-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2;-g1>")
  add_link_options("$<$<CONFIG:Release>:-Wl,-z,relro,-z,now>"
    "$<$<AND:$<CONFIG:Release>,$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>>:-pie>")
endif()
if(CMAKE_UNITY_BUILD)
  # Every class of a unity unit looks like one that a header defines.
  add_compile_options($<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>)
endif()

if(QAV_SANITIZE)
  # Reports need lines, not variables.
  add_compile_options(-g1 -fsanitize=${QAV_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${QAV_SANITIZE})
  if(QAV_SANITIZE MATCHES thread)
    # ThreadSanitizer knows no fences; asio's queues have mutexes besides.
    add_compile_definitions(BOOST_ASIO_DISABLE_FENCED_BLOCK)
  endif()
endif()
if(QAV_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()
if(QAV_COVERAGE)
  add_compile_options(--coverage)
  add_link_options(--coverage)
endif()

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
  # Precompiled headers need the sloppiness; the base directory lets build trees share results.
  set(CMAKE_CXX_COMPILER_LAUNCHER env
    CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
    CCACHE_BASEDIR=${CMAKE_SOURCE_DIR} CCACHE_NOHASHDIR=1 ${CCACHE_PROGRAM})
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    add_compile_options(-fpch-preprocess)
  else()
    add_compile_options("SHELL:-Xclang -fno-pch-timestamp")
  endif()
  # Qt tells tests their build folder, with which no two build trees would share a result. No test looks files up by it.
  get_target_property(definitions Qt5::Test INTERFACE_COMPILE_DEFINITIONS)
  list(FILTER definitions EXCLUDE REGEX QT_TESTCASE_BUILDDIR)
  set_target_properties(Qt5::Test PROPERTIES INTERFACE_COMPILE_DEFINITIONS "${definitions}")
endif()
find_program(MOLD_PROGRAM mold)
if(MOLD_PROGRAM AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  add_link_options(-fuse-ld=mold)
endif()
# With some linkers a library would name others that it does not use, which programs beside an installed SDK do not find.
add_link_options(LINKER:--as-needed)

# The presets make every warning of our own code an error; headers of others are system headers.
add_library(qav_warnings INTERFACE)
target_compile_options(qav_warnings INTERFACE -Wall -Wextra -Wpedantic -Wno-error=deprecated-declarations
  # C++20 allows what macros of Qt and rapidcheck are called with.
  $<$<CXX_COMPILER_ID:Clang>:-Wno-gnu-zero-variadic-macro-arguments>)

# Precompiled headers are compiled once each: for code with widgets, and for the service, which has none. Tests have theirs
# in tests/support.
file(CONFIGURE OUTPUT "${CMAKE_BINARY_DIR}/precompiled/empty.cpp" CONTENT "")
function(qav_precompiled_headers name)
  cmake_parse_arguments(ARG "" "" "LIBS;HEADERS" ${ARGN})
  add_library(${name} OBJECT "${CMAKE_BINARY_DIR}/precompiled/empty.cpp")
  set_target_properties(${name} PROPERTIES AUTOMOC OFF)
  target_link_libraries(${name} PRIVATE ${ARG_LIBS} Boost::headers qav_warnings)
  target_precompile_headers(${name} PRIVATE ${ARG_HEADERS}
    <boost/bind/bind.hpp> <boost/function.hpp> <boost/shared_ptr.hpp>
    <algorithm> <functional> <map> <memory> <optional> <string> <vector>)
endfunction()
qav_precompiled_headers(qav_widget_headers LIBS Qt5::Widgets HEADERS <QtWidgets/QtWidgets>)
qav_precompiled_headers(qav_service_headers LIBS Qt5::Sql HEADERS <QtCore/QtCore> <QtSql/QtSql>)

# qav_service_library(<name> <source>... PUBLIC_LIBS ... [PRIVATE_LIBS ...])
function(qav_service_library name)
  cmake_parse_arguments(ARG "" "" "PUBLIC_LIBS;PRIVATE_LIBS" ${ARGN})
  add_library(${name} STATIC ${ARG_UNPARSED_ARGUMENTS})
  target_link_libraries(${name} PUBLIC ${ARG_PUBLIC_LIBS} PRIVATE ${ARG_PRIVATE_LIBS} qav_warnings)
  target_precompile_headers(${name} REUSE_FROM qav_service_headers)
endfunction()

# qav_platform_library(<name> COMPONENT <component> EXPORT_NAME <name> SOURCES ... PUBLIC_LIBS ... PRIVATE_LIBS ...)
# A shared library of the SDK: lib<name>.so, exported as QavPlatform::<EXPORT_NAME>. COMPONENT is the package that it goes
# into: core, which a server needs, or runtime, which has the widgets. Its code is compiled with
# <NAME>_BUILD defined (upper case), which turns the export macro of its public headers into an export.
function(qav_platform_library name)
  cmake_parse_arguments(ARG "" "COMPONENT;EXPORT_NAME" "SOURCES;PUBLIC_LIBS;PRIVATE_LIBS" ${ARGN})
  add_library(${name} SHARED ${ARG_SOURCES})
  add_library(QavPlatform::${ARG_EXPORT_NAME} ALIAS ${name})
  string(TOUPPER ${name} upper)
  target_compile_definitions(${name} PRIVATE ${upper}_BUILD)
  target_include_directories(${name}
    PUBLIC "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/platform/include>"
           "$<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/qavplatform>"
    PRIVATE "${CMAKE_CURRENT_SOURCE_DIR}")
  target_link_libraries(${name} PUBLIC ${ARG_PUBLIC_LIBS} PRIVATE ${ARG_PRIVATE_LIBS} $<BUILD_INTERFACE:qav_warnings>)
  set_target_properties(${name} PROPERTIES EXPORT_NAME ${ARG_EXPORT_NAME} VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
  if(Qt5::Widgets IN_LIST ARG_PUBLIC_LIBS)
    target_precompile_headers(${name} REUSE_FROM qav_widget_headers)
  endif()
  install(TARGETS ${name} EXPORT QavPlatformTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT ${ARG_COMPONENT} NAMELINK_COMPONENT sdk)
endfunction()

# qav_embed_texts(<target> <name>)
# Compiles translations/<name>_en.ts and embeds it in the library. A static library has to ask for it by
# Q_INIT_RESOURCE(<name>_texts).
get_target_property(qt_tools Qt5::qmake IMPORTED_LOCATION)
get_filename_component(qt_tools "${qt_tools}" DIRECTORY)
find_program(QAV_LRELEASE lrelease PATHS "${qt_tools}" NO_DEFAULT_PATH REQUIRED)
find_program(QAV_LUPDATE lupdate PATHS "${qt_tools}" NO_DEFAULT_PATH REQUIRED)
function(qav_embed_texts target name)
  set(ts "${PROJECT_SOURCE_DIR}/translations/${name}_en.ts")
  set(folder "${CMAKE_CURRENT_BINARY_DIR}/texts")
  set(qm "${folder}/${name}_en.qm")
  set(qrc "${folder}/${name}_texts.qrc")
  set(source "${folder}/${name}_texts.cpp")
  file(CONFIGURE OUTPUT "${qrc}"
    CONTENT "<RCC><qresource prefix=\"/qav/texts\"><file>${name}_en.qm</file></qresource></RCC>\n")
  add_custom_command(OUTPUT "${source}"
    COMMAND "${QAV_LRELEASE}" -silent "${ts}" -qm "${qm}"
    COMMAND Qt5::rcc --name ${name}_texts -o "${source}" "${qrc}"
    DEPENDS "${ts}" "${qrc}" COMMENT "Compiling the English texts of ${name}" VERBATIM)
  set_source_files_properties("${source}" PROPERTIES SKIP_AUTOGEN ON SKIP_PRECOMPILE_HEADERS ON
    SKIP_UNITY_BUILD_INCLUSION ON)
  target_sources(${target} PRIVATE "${source}")
endfunction()

# qav_test_program(<name> LIBS ... [SOURCES ...])
# A program for Qt tests, which qav_add_tests puts into it. One program for the tests of a room is built several times as
# fast as one for each test. Test sources come with the shared support library (tests/support) and its precompiled headers.
function(qav_test_program name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_LIBS} qav_test_support Qt5::Test qav_warnings)
  target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}")
  # The precompiled headers are made without QtNetwork, and programs that differ from them could not use them.
  target_compile_options(${name} PRIVATE -UQT_NETWORK_LIB)
  target_precompile_headers(${name} REUSE_FROM qav_test_support)
endfunction()

# qav_add_tests(<program> <file>... [LABELS ...] [TIMEOUT s])
# Adds tests, each named for its file. CTest runs each in a process of its own, offscreen.
function(qav_add_tests program)
  cmake_parse_arguments(ARG "" "TIMEOUT" "LABELS" ${ARGN})
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 120)
  endif()
  if(QAV_SANITIZE)
    math(EXPR ARG_TIMEOUT "3 * ${ARG_TIMEOUT}")
  endif()
  foreach(file IN LISTS ARG_UNPARSED_ARGUMENTS)
    target_sources(${program} PRIVATE ${file}.cpp)
    get_filename_component(test ${file} NAME)
    add_test(NAME ${test} COMMAND ${program} ${test})
    set_tests_properties(${test} PROPERTIES TIMEOUT ${ARG_TIMEOUT} LABELS "${ARG_LABELS}"
      ENVIRONMENT "${QAV_TEST_ENVIRONMENT}")
  endforeach()
endfunction()

# ThreadSanitizer would read all of a text for each memmem, which stops at what it finds.
set(QAV_TEST_ENVIRONMENT
  "QT_QPA_PLATFORM=offscreen"
  "LC_ALL=C.UTF-8"
  "ASAN_OPTIONS=detect_leaks=1:strict_string_checks=1:detect_stack_use_after_return=1"
  "UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1"
  "LSAN_OPTIONS=suppressions=${CMAKE_CURRENT_SOURCE_DIR}/tests/support/lsan.supp:print_suppressions=0"
  "TSAN_OPTIONS=suppressions=${CMAKE_CURRENT_SOURCE_DIR}/tests/support/tsan.supp:halt_on_error=1:second_deadlock_stack=1:intercept_memmem=0")
