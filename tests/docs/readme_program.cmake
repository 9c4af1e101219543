# Writes the README's first program, all of its first block of C++, to a file of its own.
#
#     cmake -D README=README.md -D OUTPUT=program.cpp -P readme_program.cmake
file(READ ${README} text)
string(FIND "${text}" "\n```cpp\n" begin)
if(begin EQUAL -1)
    message(FATAL_ERROR "${README} has no block of C++")
endif()
math(EXPR begin "${begin} + 8")
string(SUBSTRING "${text}" ${begin} -1 text)
string(FIND "${text}" "```\n" end)
if(end EQUAL -1)
    message(FATAL_ERROR "${README}: its block of C++ does not end")
endif()
string(SUBSTRING "${text}" 0 ${end} text)
file(WRITE ${OUTPUT} "${text}")
