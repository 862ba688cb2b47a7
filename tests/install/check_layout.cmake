# Installs the package's component into a scratch DESTDIR under /usr and compares the files that
# arrive with the list below, both ways: a missing file and a stray one (a test, a tool) fail.
# Run as: cmake -DBUILD_DIR=... -DDESTDIR=... -DAPP_ID=... -P check_layout.cmake
file(REMOVE_RECURSE ${DESTDIR})
set(ENV{DESTDIR} ${DESTDIR})
execute_process(
    COMMAND ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix /usr --component trendax2
    RESULT_VARIABLE result OUTPUT_QUIET)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "cmake --install failed: ${result}")
endif()

set(expected
    usr/bin/trendax2
    usr/share/applications/${APP_ID}.desktop
    usr/share/icons/hicolor/128x128/apps/${APP_ID}.png
    usr/share/icons/hicolor/256x256/apps/${APP_ID}.png
    usr/share/icons/hicolor/48x48/apps/${APP_ID}.png
    usr/share/icons/hicolor/scalable/apps/${APP_ID}.svg
    usr/share/man/man1/trendax2.1.gz
    usr/share/metainfo/${APP_ID}.metainfo.xml)
file(GLOB_RECURSE installed RELATIVE ${DESTDIR} ${DESTDIR}/*)
list(SORT installed)
list(SORT expected)
if(NOT installed STREQUAL expected)
    set(missing ${expected})
    list(REMOVE_ITEM missing ${installed})
    set(stray ${installed})
    list(REMOVE_ITEM stray ${expected})
    message(FATAL_ERROR "installed files differ; missing: ${missing}; not expected: ${stray}")
endif()

# The executable must be one, and the icons the sizes their folders say.
execute_process(COMMAND test -x ${DESTDIR}/usr/bin/trendax2 RESULT_VARIABLE notExecutable)
if(notExecutable)
    message(FATAL_ERROR "usr/bin/trendax2 is not executable")
endif()
foreach(size 48 128 256)
    set(png ${DESTDIR}/usr/share/icons/hicolor/${size}x${size}/apps/${APP_ID}.png)
    # A PNG's width and height are the big-endian words at bytes 16 and 20.
    file(READ ${png} header OFFSET 16 LIMIT 8 HEX)
    string(SUBSTRING ${header} 0 8 widthHex)
    string(SUBSTRING ${header} 8 8 heightHex)
    math(EXPR width "0x${widthHex}")
    math(EXPR height "0x${heightHex}")
    if(NOT width EQUAL size OR NOT height EQUAL size)
        message(FATAL_ERROR "the ${size}x${size} icon is ${width}x${height}")
    endif()
endforeach()
