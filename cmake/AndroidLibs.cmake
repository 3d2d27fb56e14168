# The platform's libutils and liblog as Debian packages them, as imported targets
# android::utils and android::log. AVI_ANDROID_LIB_DIR is the folder that holds them.

if(NOT AVI_ANDROID_LIB_DIR)
    set(AVI_ANDROID_LIB_DIR /usr/lib/${CMAKE_CXX_LIBRARY_ARCHITECTURE}/android)
endif()

# The packaged headers warn about an attribute that g++ does not know: system includes silence it.
foreach(name IN ITEMS utils log)
    # Only the amd64 -dev packages are installed, so the cross build finds the versioned names.
    find_file(AVI_LIB_${name} NAMES lib${name}.so lib${name}.so.0
              PATHS ${AVI_ANDROID_LIB_DIR} NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH REQUIRED)
    add_library(android::${name} SHARED IMPORTED GLOBAL)
    set_target_properties(android::${name} PROPERTIES
        IMPORTED_LOCATION ${AVI_LIB_${name}}
        INTERFACE_INCLUDE_DIRECTORIES /usr/include/android)
endforeach()

# libutils needs libbacktrace, and that 7z.so, which for arm64 is unpacked rather than installed.
if(AVI_ARM64_ROOT)
    execute_process(COMMAND ${CMAKE_SOURCE_DIR}/scripts/fetch-arm64-7z.sh ${AVI_ARM64_ROOT}
                    COMMAND_ERROR_IS_FATAL ANY)
    set_target_properties(android::utils PROPERTIES INTERFACE_LINK_OPTIONS
        "-Wl,--allow-shlib-undefined;-Wl,-rpath-link,${AVI_ANDROID_LIB_DIR}:${AVI_ARM64_ROOT}/usr/lib/p7zip")
endif()
