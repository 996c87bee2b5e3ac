# CheckStack.cmake: fails the build when the module could use more stack than LIMIT bytes.
#
# OBJECTS: the module's object files, with the compiler's stack-usage files (.su) beside them. Nothing
# in the module recurses, so no call chain can hold more than one frame of every function: the sum over
# all functions bounds every chain. A frame whose size is not fixed fails too.
set(total 0)
foreach(object IN LISTS OBJECTS)
  string(REGEX REPLACE "\\.o$" ".su" usage "${object}")
  file(STRINGS "${usage}" lines)
  foreach(line IN LISTS lines)
    string(REPLACE "\t" ";" fields "${line}")
    list(GET fields 0 function)
    list(GET fields 1 bytes)
    list(GET fields 2 kind)
    if(kind MATCHES "dynamic" AND NOT kind MATCHES "bounded")
      message(FATAL_ERROR "stack of no fixed size: ${function}")
    endif()
    math(EXPR total "${total} + ${bytes}")
  endforeach()
endforeach()
if(total EQUAL 0)
  message(FATAL_ERROR "no stack usage found: the check would pass whatever the code does")
endif()
if(total GREATER LIMIT)
  message(FATAL_ERROR "stack: all frames together take ${total} bytes, more than ${LIMIT}")
endif()
message(STATUS "stack: all frames together take ${total} of ${LIMIT} bytes")
