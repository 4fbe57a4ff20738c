#!/usr/bin/env python3
"""Makes the speech model that sherpa-onnx loads from the files of Moonshine's package.

usage: prepare_model.py PACKAGE_MODEL_FOLDER RESULT_FOLDER

Weights are folded to 32-bit numbers and stored as 8-bit integers in the matrix products: a fifth to a seventh of the
time per phrase against the files as they come. The result is the same bytes on every machine; Packaging/third-party
checks them.
"""
import logging
import sys
from pathlib import Path

import onnx
from onnxruntime.quantization import QuantType, quantize_dynamic

from fold_weights import fold_weights
from ort_model import read_ort
from tokens import tokens_text

NETWORKS = {"encoder": "encoder_model.ort", "decoder": "decoder_model_merged.ort"}


def prepare_network(source: Path, target: Path) -> None:
    model = read_ort(source)
    fold_weights(model.graph)
    unquantised = target.with_suffix(".float.onnx")
    onnx.save(model, unquantised)
    quantize_dynamic(
        unquantised,
        target,
        op_types_to_quantize=["MatMul", "Gemm"],
        weight_type=QuantType.QInt8,
        per_channel=True,
        extra_options={"EnableSubgraph": True, "MatMulConstBOnly": True},
    )
    unquantised.unlink()


def main(source: Path, result: Path) -> None:
    # The advice to simplify the model first would change its bytes and brings no speed here.
    logging.getLogger().setLevel(logging.ERROR)
    for name, file in NETWORKS.items():
        prepare_network(source / file, result / f"{name}.onnx")
    (result / "tokens.txt").write_text(tokens_text((source / "tokenizer.bin").read_bytes()))


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    main(Path(sys.argv[1]), Path(sys.argv[2]))
