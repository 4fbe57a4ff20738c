# The recogniser as Packaging/third-party lays it: SherpaOnnx::c_api. Its C interface is used, not the C++ one beside
# it: that one passes strings and vectors of the standard library it was built with.
set(_sherpa "${VESK_THIRD_PARTY}/sherpa-onnx")
if(NOT EXISTS "${_sherpa}/lib/libsherpa-onnx-c-api.so")
    message(FATAL_ERROR "The speech recogniser is missing in ${VESK_THIRD_PARTY}; run Packaging/third-party first.")
endif()

if(NOT TARGET SherpaOnnx::c_api)
    add_library(SherpaOnnx::onnxruntime SHARED IMPORTED GLOBAL)
    set_target_properties(SherpaOnnx::onnxruntime PROPERTIES
        IMPORTED_LOCATION "${_sherpa}/lib/libonnxruntime.so"
        IMPORTED_SONAME libonnxruntime.so)

    add_library(SherpaOnnx::c_api SHARED IMPORTED GLOBAL)
    set_target_properties(SherpaOnnx::c_api PROPERTIES
        IMPORTED_LOCATION "${_sherpa}/lib/libsherpa-onnx-c-api.so"
        IMPORTED_SONAME libsherpa-onnx-c-api.so
        INTERFACE_INCLUDE_DIRECTORIES "${_sherpa}/include"
        IMPORTED_LINK_DEPENDENT_LIBRARIES SherpaOnnx::onnxruntime)
endif()
