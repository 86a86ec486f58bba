# Compiles `#include "HEADER"` with the include roots ROOTS, divided by |. OUTCOME is what must come of it: `takes`, or
# `refuses` for a header that is not found.
if(NOT EXISTS ${SOURCE}/${HEADER})
  message(FATAL_ERROR "there is no ${HEADER}: the test would show nothing")
endif()
string(REPLACE "|" ";" roots "${ROOTS}")
list(TRANSFORM roots PREPEND "-I")
execute_process(COMMAND ${CMAKE_COMMAND} -E echo "#include \"${HEADER}\""
  COMMAND ${COMPILER} -std=c++20 -fsyntax-only ${roots} -x c++ -
  RESULT_VARIABLE failed ERROR_VARIABLE messages)
if(OUTCOME STREQUAL "takes" AND failed)
  message(FATAL_ERROR "${HEADER} does not compile:\n${messages}")
elseif(OUTCOME STREQUAL "refuses" AND NOT failed)
  message(FATAL_ERROR "${HEADER} can be included")
elseif(OUTCOME STREQUAL "refuses" AND NOT messages MATCHES "${HEADER}.*(No such file|not found)")
  message(FATAL_ERROR "${HEADER} is found but does not compile:\n${messages}")
endif()
