# Moves the symbols out of a library: cmake -DOBJCOPY=<program> -DLIBRARY=<dll> -DSYMBOLS=<file to write> -P ...
# objcopy gives what it writes the time of SOURCE_DATE_EPOCH or the clock's; library and symbols must have the same.
if(NOT DEFINED ENV{SOURCE_DATE_EPOCH})
  string(TIMESTAMP now %s)
  set(ENV{SOURCE_DATE_EPOCH} ${now})
endif()
foreach(options "--only-keep-debug;${LIBRARY};${SYMBOLS}" "--strip-all;${LIBRARY}" "--add-gnu-debuglink=${SYMBOLS};${LIBRARY}")
  execute_process(COMMAND "${OBJCOPY}" ${options} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
