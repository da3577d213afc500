# How each room of the house is built: one static library, warnings as errors, linking only the rooms it may include.

find_program(KORVANE_CCACHE ccache)
if(KORVANE_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${KORVANE_CCACHE})
endif()

add_library(korvane_options INTERFACE)
target_compile_options(korvane_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror -fno-plt)
# GCC 12 sees overlaps in joined strings where there are none (its bug 105651).
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  target_compile_options(korvane_options INTERFACE -Wno-restrict)
endif()
if(KORVANE_UNITY AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")  # it takes what is in the same large piece for a header
  target_compile_options(korvane_options INTERFACE -Wno-subobject-linkage)
endif()
target_include_directories(korvane_options INTERFACE ${CMAKE_SOURCE_DIR}/src)
if(KORVANE_SANITIZE)
  target_compile_options(korvane_options INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(korvane_options INTERFACE -fsanitize=address,undefined)
endif()

# korvane_room(<name> [ROOMS <room>...] [LIBRARIES <library>...] [FOLDERS <folder>...]): every *.cpp of the calling folder but main.cpp,
# and of the folders in it that are named, becomes korvane_<name>.
function(korvane_room name)
  cmake_parse_arguments(ROOM "" "" "ROOMS;LIBRARIES;FOLDERS" ${ARGN})
  set(patterns ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  foreach(folder ${ROOM_FOLDERS})
    list(APPEND patterns ${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.cpp)
  endforeach()
  file(GLOB sources CONFIGURE_DEPENDS ${patterns})
  list(FILTER sources EXCLUDE REGEX "/main\\.cpp$")  # belongs to the program, not to the room
  if(NOT sources)  # a room of headers only
    add_library(korvane_${name} INTERFACE)
    target_link_libraries(korvane_${name} INTERFACE korvane_options)
    foreach(room ${ROOM_ROOMS})
      target_link_libraries(korvane_${name} INTERFACE korvane_${room})
    endforeach()
    return()
  endif()
  add_library(korvane_${name} STATIC ${sources})
  set_target_properties(korvane_${name} PROPERTIES UNITY_BUILD ${KORVANE_UNITY} UNITY_BUILD_BATCH_SIZE 13)
  target_link_libraries(korvane_${name} PUBLIC korvane_options PRIVATE ${ROOM_LIBRARIES})
  foreach(room ${ROOM_ROOMS})
    target_link_libraries(korvane_${name} PUBLIC korvane_${room})
  endforeach()
endfunction()
