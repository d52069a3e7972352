# The library. Its objects are compiled once; the shared library hides all but the exported names, and nadir_internal
# is the same objects for tests and benchmarks that look inside.
set(NADIR_FOLDERS core simd imgproc segment geometry camera numeric stereo)

set(sources "")
foreach(folder IN LISTS NADIR_FOLDERS)
  file(GLOB found CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/${folder}/*.cpp)
  list(APPEND sources ${found})
endforeach()
nadir_sources_of_levels(sources)
# gcc brings loads together to join them in pairs. In the matcher's long loops that costs registers. See docs/speed.md.
if("neon" IN_LIST NADIR_SIMD_LEVELS AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  set_property(SOURCE ${PROJECT_SOURCE_DIR}/src/stereo/kernels_neon.cpp APPEND PROPERTY COMPILE_OPTIONS -fno-schedule-fusion)
endif()

add_library(nadir_objects OBJECT ${sources})
target_include_directories(nadir_objects
  PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> PRIVATE ${PROJECT_SOURCE_DIR}/src)
target_link_libraries(nadir_objects PRIVATE nadir_library_flags)
nadir_define_levels(nadir_objects PUBLIC)
set_target_properties(nadir_objects PROPERTIES POSITION_INDEPENDENT_CODE ON)

add_library(nadir $<TARGET_OBJECTS:nadir_objects>)
add_library(nadir::nadir ALIAS nadir)
target_include_directories(nadir INTERFACE
  $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
set_target_properties(nadir PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}
                      LINK_DEPENDS ${PROJECT_SOURCE_DIR}/cmake/nadir.map)
# 32-bit ARM divides in libgcc; a part of it in each library is less than one more library to be there at run time.
if(BUILD_SHARED_LIBS)
  target_link_options(nadir PRIVATE
    -Wl,--version-script=${PROJECT_SOURCE_DIR}/cmake/nadir.map -Wl,--no-undefined -Wl,--as-needed -Wl,--gc-sections
    -Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack -static-libgcc)
endif()
target_link_libraries(nadir PRIVATE m)

add_library(nadir_internal STATIC EXCLUDE_FROM_ALL $<TARGET_OBJECTS:nadir_objects>)
target_include_directories(nadir_internal PUBLIC ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/include)
target_compile_definitions(nadir_internal PUBLIC $<TARGET_PROPERTY:nadir_objects,INTERFACE_COMPILE_DEFINITIONS>)
target_link_libraries(nadir_internal PUBLIC m)
