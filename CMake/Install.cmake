# An installation: bin/vesk, lib/vesk/ with the program's own libraries and modules, share/vesk/speech with the model.
# The program finds everything relative to itself, so a prefix may be moved as a whole. lib and share are not taken from
# GNUInstallDirs because the program would not look elsewhere.

# What ./run builds: the program and its modules, without tests and benchmarks.
add_custom_target(vesk_program)

function(vesk_install_program target)
    add_dependencies(vesk_program ${target})
    # In the build tree as well: CMake's own path there ends with colons, room for the other one, and the loader takes
    # the empty folder between two colons for the working directory.
    set_target_properties(${target} PROPERTIES INSTALL_RPATH "$ORIGIN/../lib/vesk" BUILD_WITH_INSTALL_RPATH ON)
    install(TARGETS ${target} RUNTIME DESTINATION bin)
endfunction()

# For libvesk-core and for every module.
function(vesk_install_module target)
    add_dependencies(vesk_program ${target})
    set_target_properties(${target} PROPERTIES INSTALL_RPATH "$ORIGIN")
    install(TARGETS ${target} LIBRARY DESTINATION lib/vesk)
endfunction()

# A program that only the program itself starts.
function(vesk_install_helper target)
    add_dependencies(vesk_program ${target})
    set_target_properties(${target} PROPERTIES INSTALL_RPATH "$ORIGIN")
    install(TARGETS ${target} RUNTIME DESTINATION lib/vesk)
endfunction()

install(PROGRAMS
    "${VESK_THIRD_PARTY}/sherpa-onnx/lib/libsherpa-onnx-c-api.so"
    "${VESK_THIRD_PARTY}/sherpa-onnx/lib/libonnxruntime.so"
    DESTINATION lib/vesk)
install(DIRECTORY "${VESK_THIRD_PARTY}/speech" DESTINATION share/vesk)
install(DIRECTORY "${VESK_THIRD_PARTY}/sherpa-onnx/" DESTINATION share/doc/vesk
    FILES_MATCHING PATTERN "LICENSE.*" PATTERN "NOTICES.*" PATTERN include EXCLUDE PATTERN lib EXCLUDE)

# The build tree has the same shape, with a link in place of a copy.
file(MAKE_DIRECTORY "${CMAKE_BINARY_DIR}/share/vesk")
file(CREATE_LINK "${VESK_THIRD_PARTY}/speech" "${CMAKE_BINARY_DIR}/share/vesk/speech" SYMBOLIC)
