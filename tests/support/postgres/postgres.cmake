# SPDX-License-Identifier: Apache-2.0
# One PostgreSQL server for all tests of a run.
set(QAV_CLUSTER_SCRIPT "${CMAKE_CURRENT_LIST_DIR}/cluster.sh")
file(GLOB QAV_POSTGRES_SERVERS /usr/lib/postgresql/*/bin/postgres)
find_program(QAV_POSTGRES_ON_PATH postgres)
if(QAV_POSTGRES_SERVERS OR QAV_POSTGRES_ON_PATH)
  set(QAV_HAS_POSTGRES TRUE)
else()
  set(QAV_HAS_POSTGRES FALSE)
endif()

# A short path, as sockets need it, that the server's user may enter; in memory where that is possible, because every
# test makes a database.
string(MD5 build_hash "${CMAKE_BINARY_DIR}")
string(SUBSTRING "${build_hash}" 0 8 build_hash)
if(EXISTS /dev/shm)
  set(QAV_TEST_POSTGRES "/dev/shm/qav-test-postgres-${build_hash}")
else()
  set(QAV_TEST_POSTGRES "/tmp/qav-test-postgres-${build_hash}")
endif()

if(QAV_HAS_POSTGRES)
  add_test(NAME postgres_start COMMAND "${QAV_CLUSTER_SCRIPT}" start "${QAV_TEST_POSTGRES}"
    fsync=off full_page_writes=off shared_buffers=64MB autovacuum=off)
  add_test(NAME postgres_stop COMMAND "${QAV_CLUSTER_SCRIPT}" stop "${QAV_TEST_POSTGRES}")
  set_tests_properties(postgres_start PROPERTIES FIXTURES_SETUP postgres TIMEOUT 120)
  set_tests_properties(postgres_stop PROPERTIES FIXTURES_CLEANUP postgres TIMEOUT 120)
else()
  add_test(NAME postgres_tests COMMAND "${CMAKE_COMMAND}" -E echo "PostgreSQL is not installed: its tests are skipped")
  set_tests_properties(postgres_tests PROPERTIES SKIP_REGULAR_EXPRESSION "not installed")
endif()

# qav_needs_postgres(<test>...): gives tests the server. QAV_TEST_POSTGRES in their environment is the folder of its socket.
function(qav_needs_postgres)
  foreach(test IN LISTS ARGN)
    get_test_property(${test} ENVIRONMENT environment)
    set_tests_properties(${test} PROPERTIES ENVIRONMENT "${environment};QAV_TEST_POSTGRES=${QAV_TEST_POSTGRES}"
      FIXTURES_REQUIRED postgres)
  endforeach()
endfunction()

# qav_test_on_postgres(<program> <test>...): runs tests that were added with qav_add_tests on PostgreSQL too, as
# <test>_postgres.
function(qav_test_on_postgres program)
  if(NOT QAV_HAS_POSTGRES)
    return()
  endif()
  foreach(test IN LISTS ARGN)
    add_test(NAME ${test}_postgres COMMAND ${program} ${test})
    get_test_property(${test} TIMEOUT timeout)
    get_test_property(${test} LABELS labels)
    get_test_property(${test} ENVIRONMENT environment)
    set_tests_properties(${test}_postgres PROPERTIES TIMEOUT ${timeout} LABELS "${labels};postgres"
      ENVIRONMENT "${environment}")
    qav_needs_postgres(${test}_postgres)
  endforeach()
endfunction()
