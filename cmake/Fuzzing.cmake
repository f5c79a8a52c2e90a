# libFuzzer targets: fuzz/fuzz_<name>.cpp -> fuzz_<name> in <build>/fuzz/.
# Off by default. scripts/fuzz configures build-fuzz/ with clang, turns this on
# and gives every library coverage and the address and undefined-behaviour
# sanitizers through CMAKE_CXX_FLAGS, so that what is fuzzed is also seen.
option(KERBANO_FUZZ "Build the libFuzzer targets of fuzz/ (clang; see scripts/fuzz)" OFF)
if(NOT KERBANO_FUZZ)
    return()
endif()

if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    message(FATAL_ERROR "KERBANO_FUZZ needs clang (CXX=clang++); this is ${CMAKE_CXX_COMPILER_ID}")
endif()
if(NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize=[^ ]*fuzzer-no-link")
    message(FATAL_ERROR "KERBANO_FUZZ: the libraries need coverage; configure with "
        "CMAKE_CXX_FLAGS=\"-fsanitize=fuzzer-no-link,address,undefined\" or use scripts/fuzz")
endif()

# The driver's libraries, one per folder where the build has them so, and the
# virtual register's.
if(DEFINED KERBANO_DRIVER_LIBRARIES)
    set(KERBANO_FUZZ_LIBRARIES ${KERBANO_DRIVER_LIBRARIES})
else()
    set(KERBANO_FUZZ_LIBRARIES kerbano_core)
endif()
if(TARGET kerbano_sim)
    list(APPEND KERBANO_FUZZ_LIBRARIES kerbano_sim)
endif()

file(GLOB KERBANO_FUZZ_SOURCES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/fuzz/fuzz_*.cpp)
add_custom_target(kerbano_fuzz)
foreach(fuzz_source ${KERBANO_FUZZ_SOURCES})
    get_filename_component(fuzz_name ${fuzz_source} NAME_WE)
    add_executable(${fuzz_name} ${fuzz_source})
    set_target_properties(${fuzz_name} PROPERTIES
        AUTOMOC OFF
        RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/fuzz)
    # The scripted register and person of the unit tests stand in for the
    # device and the operator (header-only).
    target_include_directories(${fuzz_name} PRIVATE
        ${CMAKE_SOURCE_DIR}/fuzz ${CMAKE_SOURCE_DIR}/tests/support)
    target_compile_options(${fuzz_name} PRIVATE -fsanitize=fuzzer)
    target_link_options(${fuzz_name} PRIVATE -fsanitize=fuzzer)
    target_link_libraries(${fuzz_name} PRIVATE ${KERBANO_FUZZ_LIBRARIES}
        Qt6::Core Qt6::Network Qt6::Sql)
    add_dependencies(kerbano_fuzz ${fuzz_name})
endforeach()
