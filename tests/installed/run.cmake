# Installs the build into a folder of its own, builds the example host against it as a stranger would, and lets it
# hear a key. Needs no network.
#   cmake -DBUILD=... -DSOURCE=... -DWORK=... -DCOMPILER=... -DFLAGS=... -P run.cmake

function(run output)
  execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE out ERROR_VARIABLE err RESULT_VARIABLE status)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "${ARGN}\nended with ${status}:\n${out}${err}")
  endif()
  set(${output} "${out}" PARENT_SCOPE)
endfunction()

function(expect what text pattern)
  if(NOT text MATCHES "${pattern}")
    message(FATAL_ERROR "${what}: expected ${pattern} in\n${text}")
  endif()
endfunction()

file(REMOVE_RECURSE ${WORK})
set(prefix ${WORK}/tree)
set(app ${WORK}/app)
run(ignored ${CMAKE_COMMAND} --install ${BUILD} --prefix ${prefix})

file(GLOB headers RELATIVE ${prefix}/include ${prefix}/include/* ${prefix}/include/keplo/*)
expect("Headers" "${headers}"
       "^keplo;keplo/component_entry.h;keplo/host_records.h;keplo/ivelmora_input_plugin.h$")
file(READ ${prefix}/lib/systemd/system/keplo-host.service unit)
expect("Unit" "${unit}" "ExecStart=${prefix}/bin/keplo-host ")

run(ignored ${CMAKE_COMMAND} -G Ninja -S ${SOURCE}/examples/host -B ${WORK}/example -DCMAKE_PREFIX_PATH=${prefix}
    -DCMAKE_CXX_COMPILER=${COMPILER} "-DCMAKE_CXX_FLAGS=-Wall -Wextra -Wpedantic -Werror ${FLAGS}")
run(ignored ${CMAKE_COMMAND} --build ${WORK}/example)

run(ignored ${prefix}/bin/keplo install --app-path ${app})
run(ignored ${prefix}/bin/keplo events add NEC&TV_POWER --name Lamp --app-path ${app})
run(heard ${WORK}/example/example-host ${app} ${SOURCE}/samples/nec_tv_power.mode2)
expect("Example host" "${heard}" "^event 1 \\(Lamp\\): NEC&TV_POWER\n")

find_program(pkg_config pkg-config)
if(NOT pkg_config)
  message("Skipped what is found by pkg-config, which is not installed.")
  return()
endif()
file(GLOB_RECURSE file ${prefix}/keplo.pc)
run(cflags ${pkg_config} --cflags ${file})
run(component ${pkg_config} --variable=component ${file})
separate_arguments(cflags UNIX_COMMAND "${cflags} ${FLAGS}")
string(STRIP "${component}" component)
run(ignored ${COMPILER} -std=c++17 ${cflags} ${SOURCE}/tests/installed/no_event_loop.cpp -o ${WORK}/no_event_loop)
run(told ${WORK}/no_event_loop ${component})
expect("Host without an event loop" "${told}" "Make a QCoreApplication before the object")
if(EXISTS ${WORK}/never-made OR EXISTS never-made)
  message(FATAL_ERROR "A host that cannot run got a first install.")
endif()
