# Compiles every file of tests/compile_fail for syntax only: a file named *_fails.cpp must be
# refused by the compiler and a file named *_compiles.cpp accepted (the control that keeps the
# check from passing because of a broken include path or flag). The compilers run side by side
# (one execute_process with several commands runs them at once).
file(GLOB sources ${SOURCE_DIR}/tests/compile_fail/*.cpp)
set(commands "")
foreach(source ${sources})
  list(APPEND commands COMMAND ${COMPILER} -std=c++20 -fsyntax-only -I${SOURCE_DIR}/src ${source})
endforeach()
execute_process(${commands} RESULTS_VARIABLE results OUTPUT_QUIET ERROR_QUIET)
set(failures "")
foreach(source rc IN ZIP_LISTS sources results)
  get_filename_component(name ${source} NAME)
  if(name MATCHES "_fails\\.cpp$" AND rc EQUAL 0)
    list(APPEND failures "${name} compiled but must not")
  elseif(name MATCHES "_compiles\\.cpp$" AND NOT rc EQUAL 0)
    list(APPEND failures "${name} did not compile")
  endif()
endforeach()
if(failures)
  message(FATAL_ERROR "${failures}")
endif()
