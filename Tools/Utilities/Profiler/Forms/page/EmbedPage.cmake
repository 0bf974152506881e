# Makes a source file of a page:
# cmake -DPAGES=DIR -DNAME=NAME -DTITLE=TITLE "-DSCRIPTS=FILE;..." -DOUTPUT=FILE -P EmbedPage.cmake
#
# frame.html holds the page, shared.css is what all pages have, NAME.html and NAME.css its own. The scripts are modules,
# each behind those that it imports from. Here each becomes a function that gives what the module exports, and all of
# them stand in one.
# The content security policy names the page's style and script by their hashes, so it is made here as well.

cmake_minimum_required(VERSION 3.25)

# The base64 form of an SHA-256 in hexadecimal digits, of which three bytes become four characters.
function(base64_of_sha256 hex result)
    set(alphabet ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/)
    set(text "")
    foreach(at RANGE 0 54 6)
        string(SUBSTRING "${hex}" ${at} 6 digits)
        foreach(shift 18 12 6 0)
            math(EXPR index "(0x${digits} >> ${shift}) & 63")
            string(SUBSTRING ${alphabet} ${index} 1 character)
            string(APPEND text ${character})
        endforeach()
    endforeach()
    string(SUBSTRING "${hex}" 60 4 digits) # the two bytes that are left
    foreach(shift 10 4)
        math(EXPR index "(0x${digits} >> ${shift}) & 63")
        string(SUBSTRING ${alphabet} ${index} 1 character)
        string(APPEND text ${character})
    endforeach()
    math(EXPR index "(0x${digits} << 2) & 63")
    string(SUBSTRING ${alphabet} ${index} 1 character)
    set(${result} "${text}${character}=" PARENT_SCOPE)
endfunction()

function(read_style result)
    file(READ "${PAGES}/shared.css" shared)
    file(READ "${PAGES}/${NAME}.css" own)
    set(${result} "${shared}${own}" PARENT_SCOPE)
endfunction()

function(read_scripts result)
    set(scripts "")
    foreach(name ${SCRIPTS})
        file(READ "${PAGES}/${name}" script)
        set(script "\n${script}") # so that each line has one before it
        string(REGEX REPLACE "\nimport [^;]*;" "" script "${script}")
        string(REGEX MATCHALL "\nexport (const|function|class) [A-Za-z]+" exports "${script}")
        list(TRANSFORM exports REPLACE ".* " "")
        list(JOIN exports ", " exports)
        string(REGEX REPLACE "\nexport " "\n" script "${script}")
        string(APPEND scripts "const {${exports}} = (() => {${script}return {${exports}};\n})();\n")
    endforeach()
    # In a function none of the names is one of the document's.
    set(${result} "\"use strict\";\n(() => {\n${scripts}})();\n" PARENT_SCOPE)
endfunction()

function(source_of text result)
    string(SHA256 hash "${text}")
    base64_of_sha256(${hash} base64)
    set(${result} "'sha256-${base64}'" PARENT_SCOPE)
endfunction()

file(READ "${PAGES}/frame.html" html)
file(READ "${PAGES}/${NAME}.html" body)
string(REPLACE "@title@" "${TITLE}" html "${html}")
string(REPLACE "@body@" "${body}" html "${html}")
read_style(style)
source_of("${style}" source)
string(REPLACE "@style@" "${style}" html "${html}")
string(REPLACE "@style-source@" "${source}" html "${html}")
read_scripts(script)
source_of("${script}" source)
string(REPLACE "@script-source@" "${source}" html "${html}")
# The page is cut at its marks. No mark is looked for in the script, which comes in behind its own.
set(parts "")
foreach(mark @data@ @extra@ @script@ @late@)
    string(FIND "${html}" "${mark}" at)
    if(at EQUAL -1) # the page has all of its data in front of the script
        string(APPEND parts "    R\"page(${html})page\",\n")
        set(html "")
        break()
    endif()
    string(LENGTH "${mark}" length)
    string(SUBSTRING "${html}" 0 ${at} part)
    math(EXPR behind "${at} + ${length}")
    string(SUBSTRING "${html}" ${behind} -1 html)
    if(mark STREQUAL @script@)
        string(APPEND parts "    R\"page(${part})page\"\n    R\"page(${script})page\"\n")
    else()
        string(APPEND parts "    R\"page(${part})page\",\n")
    endif()
endforeach()
file(WRITE "${OUTPUT}" "#include \"forms/page/PageParts.h\"\n\nnamespace zeb::forms {\n\nconst PageParts ${NAME}Parts = {\n")
file(APPEND "${OUTPUT}" "${parts}    R\"page(${html})page\",\n};\n\n}  // namespace zeb::forms\n")
