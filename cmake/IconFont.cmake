# corvellan_icon_font(target TABLE file FAMILY name)
# Cuts the packaged icon font to the symbols of the table, embeds it as ":/corvellan/icons.ttf", and puts
# "SymbolTable.inc" on the target's include path.

set(CORVELLAN_ICON_FONT /usr/share/fonts/truetype/material-design-icons-iconfont/MaterialIcons-Regular.ttf
    CACHE FILEPATH "The whole icon font")
set(CORVELLAN_ICON_CODE_POINTS /usr/share/fonts-material-design-icons-iconfont/scss/_variables.scss
    CACHE FILEPATH "Its list of names and code points")

function(corvellan_icon_font target)
    cmake_parse_arguments(ARG "" "TABLE;FAMILY" "" ${ARGN})
    foreach(input CORVELLAN_ICON_FONT CORVELLAN_ICON_CODE_POINTS)
        if(NOT EXISTS "${${input}}")
            message(FATAL_ERROR "${${input}} is missing: install fonts-material-design-icons-iconfont")
        endif()
    endforeach()
    # fonttools belongs to the system's own Python; another one earlier in the path may lack it.
    if(NOT CORVELLAN_FONT_PYTHON)
        foreach(candidate /usr/bin/python3 python3)
            execute_process(COMMAND ${candidate} -c "import fontTools" RESULT_VARIABLE failed OUTPUT_QUIET ERROR_QUIET)
            if(NOT failed)
                set(CORVELLAN_FONT_PYTHON ${candidate} CACHE STRING "A Python with fonttools")
                break()
            endif()
        endforeach()
    endif()
    if(NOT CORVELLAN_FONT_PYTHON)
        message(FATAL_ERROR "No Python with fonttools: install python3-fonttools")
    endif()

    set(tool ${CMAKE_SOURCE_DIR}/tools/cut-icon-font.py)
    set(table ${CMAKE_CURRENT_SOURCE_DIR}/${ARG_TABLE})
    set(out ${CMAKE_CURRENT_BINARY_DIR}/icons)
    file(MAKE_DIRECTORY ${out})
    add_custom_command(
        OUTPUT ${out}/icons.ttf ${out}/SymbolTable.inc
        COMMAND ${CORVELLAN_FONT_PYTHON} ${tool} --font ${CORVELLAN_ICON_FONT}
            --code-points ${CORVELLAN_ICON_CODE_POINTS} --table ${table} --family ${ARG_FAMILY}
            --font-out ${out}/icons.ttf --table-out ${out}/SymbolTable.inc
        DEPENDS ${tool} ${table} ${CORVELLAN_ICON_FONT} ${CORVELLAN_ICON_CODE_POINTS}
        COMMENT "Cutting the icon font"
        VERBATIM
    )
    target_sources(${target} PRIVATE ${out}/SymbolTable.inc)
    target_include_directories(${target} PRIVATE ${out})
    qt_add_resources(${target} ${target}Icons PREFIX /corvellan BASE ${out} FILES ${out}/icons.ttf)
endfunction()
