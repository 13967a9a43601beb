# The vendor build's Android.bp is the one list of product sources; the host
# build reads it from there so the two cannot drift apart. Also included by
# tests/check_android_bp.cmake in script mode (set RPK_ROOT first).
if(NOT DEFINED RPK_ROOT)
  set(RPK_ROOT "${CMAKE_SOURCE_DIR}")
endif()
if(NOT CMAKE_SCRIPT_MODE_FILE)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${RPK_ROOT}/Android.bp")
endif()
file(READ "${RPK_ROOT}/Android.bp" RPK_ANDROID_BP)

# android_bp_srcs(<module name> <out var>): the srcs list of that module, as
# absolute paths.
function(android_bp_srcs module out)
  string(FIND "${RPK_ANDROID_BP}" "name: \"${module}\"" at)
  if(at EQUAL -1)
    message(FATAL_ERROR "Android.bp has no module ${module}")
  endif()
  string(SUBSTRING "${RPK_ANDROID_BP}" ${at} -1 rest)
  string(FIND "${rest}" "srcs: [" s)
  string(SUBSTRING "${rest}" ${s} -1 rest)
  string(FIND "${rest}" "]" e)
  string(SUBSTRING "${rest}" 0 ${e} list)
  string(REGEX MATCHALL "\"[^\"]+\"" quoted "${list}")
  set(files "")
  foreach(q IN LISTS quoted)
    string(REPLACE "\"" "" f "${q}")
    list(APPEND files "${RPK_ROOT}/${f}")
  endforeach()
  set(${out} "${files}" PARENT_SCOPE)
endfunction()
