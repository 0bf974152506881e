# Sets ZEB_COMMIT_HEADER to a header with the commit of the sources, made anew when that changes; the commit is empty
# where the sources are in no repository of their own.
set(ZEB_COMMIT_HEADER ${PROJECT_BINARY_DIR}/commit/Commit.h)
find_package(Git QUIET)
set(head_log "")
if(Git_FOUND)
    execute_process(COMMAND ${GIT_EXECUTABLE} rev-parse --show-prefix --git-path logs/HEAD
        WORKING_DIRECTORY ${PROJECT_SOURCE_DIR} OUTPUT_VARIABLE answer ERROR_QUIET)
    if(answer MATCHES "^\n(.+)\n$")  # no prefix: the repository is that of these sources
        get_filename_component(head_log ${CMAKE_MATCH_1} ABSOLUTE BASE_DIR ${PROJECT_SOURCE_DIR})
    endif()
endif()
if(head_log AND EXISTS ${head_log})
    add_custom_command(
        OUTPUT ${ZEB_COMMIT_HEADER}
        COMMAND ${CMAKE_COMMAND} -DGIT=${GIT_EXECUTABLE} -DSOURCE=${PROJECT_SOURCE_DIR} -DOUTPUT=${ZEB_COMMIT_HEADER}
            -P ${PROJECT_SOURCE_DIR}/cmake/WriteCommit.cmake
        DEPENDS ${head_log} ${PROJECT_SOURCE_DIR}/cmake/WriteCommit.cmake
        VERBATIM)
else()
    file(CONFIGURE OUTPUT ${ZEB_COMMIT_HEADER} CONTENT "#define ZEB_COMMIT \"\"\n")
endif()
