# Wraps gnustep-config into an INTERFACE target, `talvo_gnustep`, so that
# every Objective-C(++) file of the project gets the same flags and every
# consumer links GNUstep after Talvo itself.

find_program(GNUSTEP_CONFIG gnustep-config REQUIRED)
execute_process(COMMAND ${GNUSTEP_CONFIG} --objc-flags
  OUTPUT_VARIABLE _gs_cflags OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${GNUSTEP_CONFIG} --gui-libs
  OUTPUT_VARIABLE _gs_libs OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
separate_arguments(_gs_cflags UNIX_COMMAND "${_gs_cflags}")
separate_arguments(_gs_libs UNIX_COMMAND "${_gs_libs}")

# CMake owns dependency files, optimisation, debug info and include order.
list(FILTER _gs_cflags EXCLUDE REGEX "^(-MMD|-MP|-O[0-9s]?|-g|-I\\.|-Wall)$")
# Header search paths become SYSTEM include dirs so GNUstep's own warnings
# do not fail Talvo's -Werror build, and so they follow the platform layer's
# wrapper directories (which use #include_next).
set(_gs_incs ${_gs_cflags})
list(FILTER _gs_incs INCLUDE REGEX "^-I")
list(TRANSFORM _gs_incs REPLACE "^-I" "")
list(FILTER _gs_cflags EXCLUDE REGEX "^-I")

execute_process(COMMAND gcc -print-file-name=include
  OUTPUT_VARIABLE GCC_OBJC_INCLUDE OUTPUT_STRIP_TRAILING_WHITESPACE)

add_library(talvo_gnustep INTERFACE)
target_compile_options(talvo_gnustep INTERFACE
  "$<$<COMPILE_LANGUAGE:OBJC,OBJCXX>:${_gs_cflags};-fobjc-runtime=gcc;-fblocks;-fno-objc-arc>")
target_compile_definitions(talvo_gnustep INTERFACE
  "$<$<COMPILE_LANGUAGE:OBJC,OBJCXX>:GNUSTEP_ASSUME_NONULL=1>")
target_include_directories(talvo_gnustep SYSTEM INTERFACE
  "$<$<COMPILE_LANGUAGE:OBJC,OBJCXX>:${_gs_incs};${GCC_OBJC_INCLUDE}>")

# -l items are link libraries (they must follow libTalvo on a consumer's
# line); -rdynamic, -pthread and -L stay link options.
set(_gs_l ${_gs_libs})
list(FILTER _gs_l INCLUDE REGEX "^-l")
list(FILTER _gs_libs EXCLUDE REGEX "^-l")
target_link_libraries(talvo_gnustep INTERFACE ${_gs_l} ${CMAKE_DL_LIBS})
target_link_options(talvo_gnustep INTERFACE ${_gs_libs})

set(TALVO_GNUSTEP_CFLAGS "${_gs_cflags}")
set(TALVO_GNUSTEP_INCLUDES "${_gs_incs}")
