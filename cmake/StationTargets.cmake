# Declares libraries, programs and tests, so that every target has the same warnings, include root and
# sanitizers.

add_library(station_options INTERFACE)
target_compile_features(station_options INTERFACE cxx_std_20)
if(MSVC)
    target_compile_options(station_options INTERFACE /W4 /WX /utf-8)
else()
    target_compile_options(station_options INTERFACE
        -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
    # A release has the same bytes wherever the clone is; debug builds keep the true paths.
    target_compile_options(station_options INTERFACE
        "$<$<AND:$<CONFIG:Release>,$<COMPILE_LANGUAGE:CXX>>:-ffile-prefix-map=${CMAKE_SOURCE_DIR}=.>")
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
        # False alarms on std::string operator+ (GCC bug 105651).
        target_compile_options(station_options INTERFACE -Wno-restrict -Wno-stringop-overread)
    endif()
endif()
if(STATION_SANITIZE)
    target_compile_options(station_options INTERFACE
        -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(station_options INTERFACE -fsanitize=address,undefined)
endif()

# station_library(NAME SOURCES ... LINK ...): a static library; includes start at src/.
function(station_library name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
    add_library(${name} STATIC ${ARG_SOURCES})
    target_include_directories(${name} PUBLIC $<BUILD_INTERFACE:${CMAKE_SOURCE_DIR}/src>)
    target_link_libraries(${name} PUBLIC ${ARG_LINK} PRIVATE $<BUILD_INTERFACE:station_options>)
endfunction()

# station_program(NAME SOURCES ... LINK ...)
function(station_program name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/src ${CMAKE_SOURCE_DIR})
    target_link_libraries(${name} PRIVATE ${ARG_LINK} station_options)
endfunction()

# station_test(NAME LABEL engine|logic|windows SOURCES ... LINK ...): every TEST() becomes a CTest
# test. Includes start at src/ and at the repository root ("tests/support/...").
function(station_test name)
    cmake_parse_arguments(ARG "" "LABEL" "SOURCES;LINK" ${ARGN})
    if(ARG_LABEL STREQUAL "engine")
        set(main GTest::gtest_main)
    else()
        set(main test_main_${ARG_LABEL})
    endif()
    station_program(${name} SOURCES ${ARG_SOURCES} LINK ${ARG_LINK} GTest::gtest GTest::gmock ${main})
    gtest_discover_tests(${name}
        DISCOVERY_TIMEOUT 60
        PROPERTIES
            LABELS ${ARG_LABEL} TIMEOUT 240
            ENVIRONMENT "QT_QPA_PLATFORM=offscreen")
endfunction()
