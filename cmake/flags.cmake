# Compiler and linker flags, in one place.
if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release)
endif()
set(CMAKE_C_FLAGS_RELEASE "-O2 -DNDEBUG")
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -DNDEBUG")

add_compile_options(-Wall -Wextra -Wpedantic -Wshadow)
if(ZEL_CC_WERROR)
  add_compile_options(-Werror)
endif()
if(ZEL_CC_SANITIZE)
  add_compile_options(-fsanitize=${ZEL_CC_SANITIZE} -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    add_compile_options(-Wno-maybe-uninitialized)  # false alarms in instrumented code
  endif()
  add_link_options(-fsanitize=${ZEL_CC_SANITIZE})
endif()
if(ZEL_CC_COVERAGE)
  add_compile_options(--coverage)
  add_link_options(--coverage)
endif()

# The library's own code: no C++ runtime, nothing at load, hidden unless the header says otherwise.
function(zel_library_flags target)
  set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE ON CXX_VISIBILITY_PRESET hidden
                                             VISIBILITY_INLINES_HIDDEN ON)
  target_compile_options(
    ${target} PRIVATE -Wconversion -Wsign-conversion -fno-exceptions -fno-rtti
                      -fno-threadsafe-statics -fno-semantic-interposition)
  if(NOT ZEL_CC_SANITIZE)
    target_compile_options(${target} PRIVATE -fstack-protector-strong)
  endif()
endfunction()

# -Bsymbolic-functions binds calls inside the library to the library; -Bsymbolic would bind objects
# too and break programs that hold the copy of a descriptor.
function(zel_link_flags target)
  set(map ${PROJECT_SOURCE_DIR}/cmake/exports.map)
  target_link_options(${target} PRIVATE -Wl,-soname,libzel_cc-${PROJECT_VERSION}.so -Wl,-Bsymbolic-functions
                      -Wl,-z,relro,-z,now -Wl,--version-script=${map})
  if(NOT ZEL_CC_SANITIZE)
    target_link_options(${target} PRIVATE -Wl,-z,defs)
  endif()
  set_target_properties(${target} PROPERTIES NO_SONAME ON LINK_DEPENDS ${map})
endfunction()
