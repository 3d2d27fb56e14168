# The stand-ins for libmediandk, its extension, libcutils and the plug-in helpers.

avi_add_test(unit_mediandk
    SOURCES MediaFormatLifetimeTest.cpp
            MediaFormatTest.cpp
            MediaFormatTextTest.cpp
            PluginHelperTest.cpp
            PluginWrapTest.cpp
            PropertiesTest.cpp
            RuvoKeysTest.cpp
    LIBS media_plugin mediandk_ruvo cutils)

# Plug-ins are built without exceptions and RTTI: the headers must do without too.
add_library(plugin_helper_without_rtti OBJECT PluginHelperWithoutRtti.cpp)
target_compile_options(plugin_helper_without_rtti PRIVATE -fno-exceptions -fno-rtti)
target_link_libraries(plugin_helper_without_rtti PRIVATE media_plugin)
