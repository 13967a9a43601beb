# Fails when a product source file is missing from Android.bp or Android.bp
# names a file that does not exist.
file(READ "${ROOT}/Android.bp" bp)
file(GLOB_RECURSE sources RELATIVE "${ROOT}"
  "${ROOT}/common/*.cpp" "${ROOT}/front/*.cpp" "${ROOT}/velmar_extend_qmi/*.cpp" "${ROOT}/modem_stats/*.cpp"
  "${ROOT}/platform/device/*.cpp")
set(bad "")
foreach(f IN LISTS sources)
  string(FIND "${bp}" "\"${f}\"" at)
  if(at EQUAL -1)
    list(APPEND bad "not in Android.bp: ${f}")
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
