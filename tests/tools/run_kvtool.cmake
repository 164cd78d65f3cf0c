cmake_minimum_required(VERSION 3.25)
# Runs kvtool once (or two kvtools joined by a pipe) and checks what it did.
#   KVTOOL      the program
#   ARGS        its arguments, separated by "|"
#   PIPE_ARGS   optional: a second kvtool reading the first one's output
#   STDIN       optional: file for standard input
#   EXIT        expected exit code of the last program (default 0)
#   OUT         optional: file that standard output must equal
#   OUT_MATCH   optional: regular expression standard output must match
#   ERR_MATCH   optional: regular expression standard error must match
#   ERR_EMPTY   optional: standard error must be empty
string(REPLACE "|" ";" args "${ARGS}")
set(commands COMMAND ${KVTOOL} ${args})
if(DEFINED PIPE_ARGS)
    string(REPLACE "|" ";" pipe_args "${PIPE_ARGS}")
    list(APPEND commands COMMAND ${KVTOOL} ${pipe_args})
endif()
set(input)
if(DEFINED STDIN)
    set(input INPUT_FILE ${STDIN})
endif()
execute_process(${commands} ${input}
    OUTPUT_VARIABLE out ERROR_VARIABLE err RESULTS_VARIABLE codes TIMEOUT 60)
list(GET codes -1 code)
if(NOT DEFINED EXIT)
    set(EXIT 0)
endif()

set(failures)
if(NOT code STREQUAL EXIT)
    list(APPEND failures "exit code ${code}, expected ${EXIT}")
endif()
if(DEFINED OUT)
    file(READ ${OUT} expected)
    if(NOT out STREQUAL expected)
        list(APPEND failures "standard output differs from ${OUT}")
    endif()
endif()
if(DEFINED OUT_MATCH AND NOT out MATCHES "${OUT_MATCH}")
    list(APPEND failures "standard output does not match: ${OUT_MATCH}")
endif()
if(DEFINED ERR_MATCH AND NOT err MATCHES "${ERR_MATCH}")
    list(APPEND failures "standard error does not match: ${ERR_MATCH}")
endif()
if(ERR_EMPTY AND NOT err STREQUAL "")
    list(APPEND failures "standard error is not empty")
endif()
if(failures)
    string(REPLACE ";" "\n  " failures "${failures}")
    message(FATAL_ERROR "kvtool ${ARGS}\n  ${failures}\n--- standard output:\n${out}--- standard error:\n${err}")
endif()
