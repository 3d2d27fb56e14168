# `cmake --install BUILD --prefix PREFIX`: the tool, the plug-in and what they need, anywhere. The
# installed tree may be moved: everything in it finds the rest by its own place.

include(GNUInstallDirs)

# Always "lib", also where a distribution has another name for it: avitool looks for the plug-in in
# ../lib beside its own folder.
set(AVI_INSTALL_LIBDIR lib)

# The packaged libutils and liblog lie in a folder that the loader does not search by itself. The
# build tree has the same folders, so its programs find their libraries by the same entries: those
# that CMake makes for the build alone are filled up with empty ones for the installation to write
# into, and an empty one is the current folder.
set_target_properties(aviextractor mediandk mediandk_ruvo cutils PROPERTIES
    INSTALL_RPATH "$ORIGIN;${AVI_ANDROID_LIB_DIR}")
set_target_properties(avitool PROPERTIES
    INSTALL_RPATH "$ORIGIN/../${AVI_INSTALL_LIBDIR};${AVI_ANDROID_LIB_DIR}")
set_target_properties(avitool aviextractor mediandk mediandk_ruvo cutils PROPERTIES
    BUILD_WITH_INSTALL_RPATH ON)

install(TARGETS avitool RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(TARGETS aviextractor mediandk mediandk_ruvo cutils
        LIBRARY DESTINATION ${AVI_INSTALL_LIBDIR})
install(FILES tools/avitool/avitool.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)

# Each shell searches one folder for the completions that programs bring along.
set(completions ${CMAKE_SOURCE_DIR}/tools/avitool/completions)
install(FILES ${completions}/avitool.bash RENAME avitool
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
install(FILES ${completions}/_avitool
        DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
install(FILES ${completions}/avitool.fish
        DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
