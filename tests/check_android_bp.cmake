# Fails when Android.bp and the tree disagree: a product source that no module
# lists, an engine unit test (tests/modem_stats/, but the decoder's) or test
# support source missing from rpk_engine_tests, or a file named by Android.bp
# that does not exist.
cmake_minimum_required(VERSION 3.25)
set(RPK_ROOT "${ROOT}")
include("${ROOT}/cmake/AndroidBp.cmake")
set(bp "${RPK_ANDROID_BP}")
set(bad "")

file(GLOB_RECURSE sources RELATIVE "${ROOT}"
  "${ROOT}/common/*.cpp" "${ROOT}/front/*.cpp" "${ROOT}/velmar_extend_qmi/*.cpp" "${ROOT}/modem_stats/*.cpp"
  "${ROOT}/platform/device/*.cpp")
foreach(f IN LISTS sources)
  string(FIND "${bp}" "\"${f}\"" at)
  if(at EQUAL -1)
    list(APPEND bad "not in Android.bp: ${f}")
  endif()
endforeach()

android_bp_srcs(rpk_engine_tests listed)
file(GLOB engine_tests "${ROOT}/tests/modem_stats/*.cpp" "${ROOT}/tests/modem_stats/logs/*.cpp")
foreach(f IN LISTS engine_tests)
  # Test support the engine tests use: what they include from tests/support/.
  file(STRINGS "${f}" includes REGEX "#include \"support/")
  foreach(i IN LISTS includes)
    string(REGEX REPLACE ".*\"support/([a-z_]+)\\.h\".*" "${ROOT}/tests/support/\\1.cpp" support "${i}")
    if(EXISTS "${support}")
      list(APPEND engine_tests "${support}")
    endif()
  endforeach()
endforeach()
list(REMOVE_DUPLICATES engine_tests)
foreach(f IN LISTS engine_tests)
  if(NOT f IN_LIST listed)
    file(RELATIVE_PATH r "${ROOT}" "${f}")
    list(APPEND bad "not in rpk_engine_tests of Android.bp: ${r}")
  endif()
endforeach()

string(REGEX MATCHALL "\"[a-z_0-9/.-]+\\.cpp\"" named "${bp}")
foreach(q IN LISTS named)
  string(REPLACE "\"" "" f "${q}")
  if(NOT EXISTS "${ROOT}/${f}")
    list(APPEND bad "missing file named by Android.bp: ${f}")
  endif()
endforeach()
if(bad)
  list(JOIN bad "\n" text)
  message(FATAL_ERROR "${text}")
endif()
