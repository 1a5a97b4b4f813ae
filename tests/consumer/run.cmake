# Installs the build into an empty folder, builds the consumer there by find_package and by
# pkg-config, and runs it both ways.
# Input: BUILD_DIR, SOURCE_DIR, WORK_DIR, GENERATOR, COMPILER, PKG_CONFIG, FLAGS, LIBDIR
file(REMOVE_RECURSE ${WORK_DIR})
set(prefix ${WORK_DIR}/prefix)
function(run)
  execute_process(COMMAND ${ARGV} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})
if(EXISTS ${prefix}/include/zel/kernels)
  message(FATAL_ERROR "kernels are internal and must not be installed")
endif()

run(${CMAKE_COMMAND} -S ${SOURCE_DIR} -B ${WORK_DIR}/cmake -G ${GENERATOR}
  -DCMAKE_CXX_COMPILER=${COMPILER} -DCMAKE_PREFIX_PATH=${prefix} "-DCMAKE_CXX_FLAGS=${FLAGS}")
run(${CMAKE_COMMAND} --build ${WORK_DIR}/cmake)
run(${WORK_DIR}/cmake/consumer)
run(${WORK_DIR}/cmake/consumer_unit)

set(ENV{PKG_CONFIG_PATH} ${prefix}/${LIBDIR}/pkgconfig)
execute_process(COMMAND ${PKG_CONFIG} --cflags --libs zel OUTPUT_VARIABLE flags
  OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
separate_arguments(flags)
separate_arguments(FLAGS)
run(${COMPILER} -std=c++20 ${FLAGS} ${SOURCE_DIR}/main.cpp -o ${WORK_DIR}/by_pkg_config ${flags})
set(ENV{LD_LIBRARY_PATH} ${prefix}/${LIBDIR})
run(${WORK_DIR}/by_pkg_config)
