# Installs into a fresh prefix, builds a module and a program from outside, runs them, moves the prefix, runs again.
# Variables: BUILD (the build tree to install) or PREFIX (an installed tree to copy), SOURCE (this folder), WORK (a
# scratch folder), CC, CXX, and FC, which may be empty.
function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT status EQUAL 0)
    list(JOIN ARGN " " command)
    message(FATAL_ERROR "${command}\n${out}${err}")
  endif()
  set(out "${out}" PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE ${WORK})
if(PREFIX)
  file(COPY ${PREFIX}/ DESTINATION ${WORK}/prefix)
else()
  run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${WORK}/prefix)
endif()

foreach(prefix prefix moved)
  if(prefix STREQUAL moved)
    file(RENAME ${WORK}/prefix ${WORK}/moved)
  endif()
  # With the CMake package.
  run(${CMAKE_COMMAND} -S ${SOURCE}/consumer -B ${WORK}/cmake-${prefix} -DCMAKE_PREFIX_PATH=${WORK}/${prefix}
    -DCMAKE_C_COMPILER=${CC} -DCMAKE_CXX_COMPILER=${CXX}
    -DCMAKE_Fortran_COMPILER=${FC} -DCMAKE_BUILD_TYPE=Release)
  run(${CMAKE_COMMAND} --build ${WORK}/cmake-${prefix})
  run(${WORK}/cmake-${prefix}/host ${WORK}/cmake-${prefix}/twice.vex)
  if(FC)
    run(${WORK}/cmake-${prefix}/host ${WORK}/cmake-${prefix}/twice_fortran.vex)
  endif()
  # The tool, with what it says of itself.
  if(EXISTS ${WORK}/${prefix}/bin/vel)
    run(${WORK}/${prefix}/bin/vel call ${WORK}/cmake-${prefix}/twice.vex 21)
    foreach(file man/man1/vel.1 bash-completion/completions/vel ox/vel.schema.json)
      file(GLOB found ${WORK}/${prefix}/share/${file} ${WORK}/${prefix}/share/${file}.gz)
      if(NOT found)
        message(FATAL_ERROR "share/${file} is not installed")
      endif()
    endforeach()
  endif()
  # With pkg-config alone.
  file(GLOB pc ${WORK}/${prefix}/lib*/pkgconfig ${WORK}/${prefix}/lib/*/pkgconfig)
  set(ENV{PKG_CONFIG_PATH} "${pc}")
  run(pkg-config --cflags --libs oxarray)
  separate_arguments(flags UNIX_COMMAND "${out}")
  run(${CC} -std=c99 -Wall -Werror -shared -fPIC ${SOURCE}/consumer/twice.c -o ${WORK}/pc-${prefix}.vex ${flags})
  run(${WORK}/cmake-${prefix}/host ${WORK}/pc-${prefix}.vex)
  if(FC)
    run(pkg-config --variable=fortrandir oxarray)
    string(STRIP ${out} fortran)
    run(${FC} -shared -fPIC -J ${WORK} ${fortran}/ox_fortran.F90 ${SOURCE}/consumer/twice.f90
      -o ${WORK}/pc-${prefix}-fortran.vex ${flags})
    run(${WORK}/cmake-${prefix}/host ${WORK}/pc-${prefix}-fortran.vex)
  endif()
endforeach()
