# corvellan_app_icon(target)
# Draws the program's icon in the usual sizes, embeds the pictures as ":/corvellan/icon/<size>.png", and puts
# what is to be installed in the target's property CORVELLAN_ICON_FOLDER.

function(corvellan_app_icon target)
    find_program(CORVELLAN_RSVG_CONVERT rsvg-convert)
    if(NOT CORVELLAN_RSVG_CONVERT)
        message(FATAL_ERROR "rsvg-convert is missing: install librsvg2-bin")
    endif()
    set(drawings ${CMAKE_SOURCE_DIR}/packaging/icons)
    set(out ${CMAKE_CURRENT_BINARY_DIR}/pictures)
    file(MAKE_DIRECTORY ${out})
    foreach(size 16 24 32 48 64 128 256)
        # Small sizes have drawings of their own, whose edges lie on pixels.
        set(drawing ${drawings}/com.teskara.CorvellanBram.svg)
        if(EXISTS ${drawings}/small-${size}.svg)
            set(drawing ${drawings}/small-${size}.svg)
        endif()
        add_custom_command(
            OUTPUT ${out}/${size}.png
            COMMAND ${CORVELLAN_RSVG_CONVERT} --width ${size} --height ${size} --output ${out}/${size}.png ${drawing}
            DEPENDS ${drawing}
            COMMENT "Drawing the icon at ${size} pixels"
            VERBATIM
        )
        list(APPEND pictures ${out}/${size}.png)
    endforeach()
    qt_add_resources(${target} ${target}Pictures PREFIX /corvellan/icon BASE ${out} FILES ${pictures})
    # For those who install the pictures and need no program.
    add_custom_target(${target}Drawn DEPENDS ${pictures})
    add_dependencies(${target} ${target}Drawn)
    set_target_properties(${target} PROPERTIES CORVELLAN_ICON_FOLDER ${out})
endfunction()
