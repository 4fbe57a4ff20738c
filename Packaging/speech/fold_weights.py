"""Computes weights that the shipped model computes anew on every run.

Moonshine's models keep each weight as bytes followed by a cast, a product and a sum that turn it into numbers. ONNX
Runtime does not fold these in a loaded model; the recogniser then spends most of its time on them.
"""
import numpy as np
import onnx
from onnx import numpy_helper

from ort_model import subgraphs

OPERATIONS = {
    "Cast": lambda value: value,
    "Mul": np.multiply,
    "Add": np.add,
    "Sub": np.subtract,
}
STORED_SUFFIXES = ("_quantized", "_tensor")  # how Moonshine's exporter names bytes and what follows from them


def fold_weights(graph: onnx.GraphProto, outer: dict[str, np.ndarray] | None = None) -> int:
    """Folds in place, in the bodies of the graph's nodes as well. Answers how many operations went."""
    known = dict(outer or {})
    known.update({tensor.name: numpy_helper.to_array(tensor) for tensor in graph.initializer})
    folded, kept = [], []
    for node in graph.node:
        if _is_constant(node, known):
            values = [known[name] for name in node.input]
            known[node.output[0]] = OPERATIONS[node.op_type](*values).astype(np.float32)
            folded.append(node.output[0])
        else:
            kept.append(node)
    del graph.node[:]
    graph.node.extend(kept)
    count = len(folded)
    for node in graph.node:
        for body in subgraphs(node):
            count += fold_weights(body, known)
    _replace_initializers(graph, folded, known)
    return count


def _is_constant(node: onnx.NodeProto, known: dict[str, np.ndarray]) -> bool:
    return (
        node.op_type in OPERATIONS
        and all(name in known for name in node.input)
        and any(name.endswith(STORED_SUFFIXES) for name in node.input)
    )


def _names_used(graph: onnx.GraphProto) -> set[str]:
    names = {output.name for output in graph.output}
    for node in graph.node:
        names.update(node.input)
        for body in subgraphs(node):
            names |= _names_used(body)
    return names


def _replace_initializers(graph: onnx.GraphProto, folded: list[str], known: dict[str, np.ndarray]) -> None:
    used = _names_used(graph)
    kept = [tensor for tensor in graph.initializer if tensor.name in used]
    present = {tensor.name for tensor in kept}
    kept += [
        numpy_helper.from_array(np.ascontiguousarray(known[name]), name)
        for name in folded
        if name in used and name not in present
    ]
    del graph.initializer[:]
    graph.initializer.extend(kept)
