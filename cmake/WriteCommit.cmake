# Writes OUTPUT, a header with the commit that SOURCE stands on: cmake -DGIT= -DSOURCE= -DOUTPUT= -P WriteCommit.cmake
execute_process(COMMAND ${GIT} -C ${SOURCE} rev-parse --short=12 HEAD
    OUTPUT_VARIABLE commit OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
file(WRITE ${OUTPUT} "#define ZEB_COMMIT \"${commit}\"\n")
