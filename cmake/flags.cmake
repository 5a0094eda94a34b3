# One interface target for the flags that every target of the project links.
add_library(build_flags INTERFACE)
target_include_directories(build_flags INTERFACE ${CMAKE_SOURCE_DIR}/src)
target_compile_options(build_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wold-style-cast -Woverloaded-virtual -Wnon-virtual-dtor
  $<$<BOOL:${WARNINGS_AS_ERRORS}>:-Werror>)
target_compile_definitions(build_flags INTERFACE
  QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_STRICT_ITERATORS QT_DISABLE_DEPRECATED_BEFORE=0x060400)

# What a release does about mistakes that were not found: it reads what servers send.
if(CMAKE_BUILD_TYPE STREQUAL "Release")
  target_compile_options(build_flags INTERFACE -fstack-protector-strong)
  target_compile_definitions(build_flags INTERFACE _FORTIFY_SOURCE=2)
  target_link_options(build_flags INTERFACE -Wl,-z,relro,-z,now)
endif()

if(SANITIZE)
  target_compile_options(build_flags INTERFACE
    -fsanitize=${SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(build_flags INTERFACE -fsanitize=${SANITIZE})
  if(SANITIZE STREQUAL "thread")
    # Asio fences beside its locks; the locks are what the sanitizer goes by.
    target_compile_options(build_flags INTERFACE -Wno-tsan)
  endif()
endif()

# A library of one room of the house: add_room(name SOURCES.. LIBS..).
function(add_room name)
  cmake_parse_arguments(ROOM "" "PCH" "SOURCES;LIBS" ${ARGN})
  add_library(${name} STATIC ${ROOM_SOURCES})
  target_link_libraries(${name} PUBLIC build_flags ${ROOM_LIBS})
  if(PRECOMPILED_HEADERS AND ROOM_PCH)
    target_precompile_headers(${name} PRIVATE ${ROOM_PCH})
  endif()
endfunction()
