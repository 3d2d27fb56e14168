# The media foundation: one program.

avi_add_test(unit_foundation
    SOURCES
        ABitReaderTest.cpp
        ABufferTest.cpp
        ADebugTest.cpp
        AStringTest.cpp
        AvcDimensionsTest.cpp
        AvcUtilsTest.cpp
        ByteUtilsTest.cpp
        MediaDefsTest.cpp
        SpsBuilder.cpp
    LIBS stagefright_foundation)
