# Compares what a shared library exports with a list.
#
#     cmake -D NM=nm "-DSIZE_T=unsigned long" -D LIBRARY=libkestrin.so -D LIST=exports.txt
#         -P exports.cmake
#
# SIZE_T is what size_t of the list is called in a library's symbols.
#
# Left out, since they follow from the classes: virtual tables, type information and thunks; and what
# compilers emit of the standard library, which is visible whatever they are told. Of several variants
# of a destructor the list has one line.
execute_process(COMMAND ${NM} --dynamic --defined-only --demangle ${LIBRARY}
    OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
string(REPLACE ";" "\\;" output "${output}")
string(REGEX MATCHALL "[^\n]+" lines "${output}")

set(exported)
foreach(line IN LISTS lines)
    string(REGEX REPLACE "^[0-9a-f]+ . " "" symbol "${line}")
    if(NOT symbol MATCHES "^(vtable for|typeinfo for|typeinfo name for|VTT for|(non-)?virtual thunk to) |^std::")
        list(APPEND exported "${symbol}")
    endif()
endforeach()
list(REMOVE_DUPLICATES exported)

file(STRINGS ${LIST} expected REGEX "^[^#]")
list(TRANSFORM expected REPLACE "size_t" "${SIZE_T}")
set(extra ${exported})
list(REMOVE_ITEM extra ${expected})
set(missing ${expected})
list(REMOVE_ITEM missing ${exported})
foreach(symbol IN LISTS extra)
    message("exported and not in the list: ${symbol}")
endforeach()
foreach(symbol IN LISTS missing)
    message("in the list and not exported: ${symbol}")
endforeach()
if(extra OR missing)
    message(FATAL_ERROR "${LIST} names the interface; change it only together with the headers")
endif()
