# Builds and runs a program with the flags that pkg-config gives.
#   cmake -DPREFIX=... -DLIBDIR=... -DCOMPILER=... -DSOURCE=... -DVERSION=... -DPROGRAM=... -P pkg_config.cmake
set(ENV{PKG_CONFIG_PATH} ${PREFIX}/${LIBDIR}/pkgconfig)
find_program(PKG_CONFIG pkg-config REQUIRED)

function(ask result)
  execute_process(COMMAND ${PKG_CONFIG} ${ARGN} pixmorph
    OUTPUT_VARIABLE output OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  separate_arguments(output UNIX_COMMAND "${output}")
  set(${result} ${output} PARENT_SCOPE)
endfunction()

ask(version --modversion)
if(NOT version STREQUAL VERSION)
  message(FATAL_ERROR "pkg-config says version ${version}")
endif()
ask(flags --cflags)
ask(libraries --libs)
execute_process(COMMAND ${COMPILER} -std=c++17 ${flags} ${SOURCE} -o ${PROGRAM} ${libraries}
  -Wl,-rpath,${PREFIX}/${LIBDIR} COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${PROGRAM} COMMAND_ERROR_IS_FATAL ANY)
