cmake_minimum_required(VERSION 3.25)
# Lines that are hard on a reader: a byte-order mark and CRLF, a line longer than
# the input buffer, bytes that are not UTF-8, and a last line without a break.
string(REPEAT "9" 1100000 long)
string(ASCII 239 187 191 bom)
string(ASCII 255 254 bad)
file(WRITE ${INPUT} "${bom}59.3293 18.0686\r\n${long}\n${bad} garbage\n-33.8568 151.2153")
set(STDIN ${INPUT})
include(${CMAKE_CURRENT_LIST_DIR}/run_kvtool.cmake)
