# Compiler settings shared by every target of the project.
add_library(scrimlet_warnings INTERFACE)
target_compile_options(scrimlet_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual
  -Wcast-align -Wimplicit-fallthrough -Wmissing-declarations
  $<$<BOOL:${SCRIMLET_WERROR}>:-Werror>)
# GCC 12 at -O3 warns that libstdc++'s own `"text" + std::string` may overlap (GCC bug 105329,
# fixed in 13); the warning is about the library's inlined code, not ours.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  target_compile_options(scrimlet_warnings INTERFACE -Wno-restrict)
endif()

# A library made of every source file in one folder. New files are picked up at
# the next build (CONFIGURE_DEPENDS), so adding a component never touches CMake. A folder
# with no sources yet makes no library.
function(scrimlet_folder_library name)
  file(GLOB sources CONFIGURE_DEPENDS
    ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp ${CMAKE_CURRENT_SOURCE_DIR}/*.hpp)
  if(NOT sources)
    return()
  endif()
  add_library(${name} STATIC ${sources})
  target_include_directories(${name} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
  target_link_libraries(${name} PRIVATE scrimlet_warnings)
endfunction()
