function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
    if(NOT rc EQUAL 0)
        message(FATAL_ERROR "failed: ${ARGN}\n${out}\n${err}")
    endif()
    message(STATUS "${out}")
endfunction()

file(REMOVE_RECURSE ${PREFIX} ${CONSUMER_BUILD})
run(${CMAKE_COMMAND} --install ${KVBASE_BUILD_DIR} --prefix ${PREFIX})
# A sanitizer build's library needs its runtime in the consumer too.
string(REPLACE ";" " " flags "${CONSUMER_FLAGS}")
run(${CMAKE_COMMAND} -S ${CONSUMER_SOURCE} -B ${CONSUMER_BUILD} -DCMAKE_PREFIX_PATH=${PREFIX}
    -DCMAKE_CXX_COMPILER=${CONSUMER_CXX} "-DCMAKE_CXX_FLAGS=${flags}" "-DCMAKE_EXE_LINKER_FLAGS=${flags}")
run(${CMAKE_COMMAND} --build ${CONSUMER_BUILD})
run(${CONSUMER_BUILD}/kvbase_consumer)
