"""Reads a model in ONNX Runtime's own format (.ort, a flatbuffer) back into ONNX.

Moonshine's package ships only .ort files, and sherpa-onnx can be given only ONNX once the weights have been changed.
ONNX Runtime ships the readers of its flatbuffer schema in its Python package; nothing there writes ONNX.
"""
import sys
from pathlib import Path

import onnx
import onnxruntime
from onnx import AttributeProto, TensorProto, helper

sys.path.insert(0, str(Path(onnxruntime.__file__).parent / "tools" / "ort_format_model"))
from ort_flatbuffers_py.fbs.InferenceSession import InferenceSession  # noqa: E402
from ort_flatbuffers_py.fbs.TensorTypeAndShape import TensorTypeAndShape  # noqa: E402

TENSOR_TYPE_INFO = 1  # TypeInfoValue.tensor_type
DIMENSION_IS_NUMBER, DIMENSION_IS_NAME = 1, 2  # DimensionValueType
NEWEST_IR_VERSION = 10  # what the ONNX Runtime beside sherpa-onnx reads


def read_ort(path: Path) -> onnx.ModelProto:
    model = InferenceSession.GetRootAs(bytearray(path.read_bytes()), 0).Model()
    # The graph's name ends up in the file, whose checksum is pinned.
    graph = _graph(model.Graph(), name="g")
    domains = _domains(graph) | {"", "ai.onnx"}
    imports = [model.OpsetImport(i) for i in range(model.OpsetImportLength())]
    result = helper.make_model(
        graph,
        opset_imports=[
            helper.make_opsetid(_text(entry.Domain()), entry.Version())
            for entry in imports
            if _text(entry.Domain()) in domains
        ],
    )
    result.ir_version = min(int(model.IrVersion()), NEWEST_IR_VERSION)
    return result


def subgraphs(node: onnx.NodeProto) -> list[onnx.GraphProto]:
    """The bodies of a node that decides or repeats."""
    return [attribute.g for attribute in node.attribute if attribute.type == AttributeProto.GRAPH]


def _text(value) -> str:
    return value.decode() if isinstance(value, bytes) else (value or "")


def _list(owner, name: str) -> list:
    return [getattr(owner, name)(i) for i in range(getattr(owner, name + "Length")())]


def _tensor(tensor) -> TensorProto:
    result = TensorProto(name=_text(tensor.Name()), data_type=tensor.DataType())
    result.dims.extend(int(size) for size in _list(tensor, "Dims"))
    if result.data_type == TensorProto.STRING:
        result.string_data.extend(_list(tensor, "StringData"))
    else:
        result.raw_data = tensor.RawDataAsNumpy().tobytes() if tensor.RawDataLength() else b""
    return result


def _shape(tensor_type) -> list | None:
    if tensor_type.Shape() is None:
        return None
    sizes = []
    for dimension in _list(tensor_type.Shape(), "Dim"):
        value = dimension.Value()
        kind = value.DimType() if value is not None else None
        if kind == DIMENSION_IS_NUMBER:
            sizes.append(int(value.DimValue()))
        elif kind == DIMENSION_IS_NAME:
            sizes.append(_text(value.DimParam()))
        else:
            sizes.append(None)
    return sizes


def _value_info(name: str, arguments: dict) -> onnx.ValueInfoProto:
    info = arguments[name].Type() if name in arguments else None
    if info is None or info.ValueType() != TENSOR_TYPE_INFO:
        return onnx.ValueInfoProto(name=name)
    table = info.Value()
    tensor_type = TensorTypeAndShape()
    tensor_type.Init(table.Bytes, table.Pos)
    return helper.make_tensor_value_info(name, tensor_type.ElemType(), _shape(tensor_type))


def _attribute(attribute) -> AttributeProto:
    kind = attribute.Type()
    result = AttributeProto(name=_text(attribute.Name()), type=kind)
    if kind == AttributeProto.FLOAT:
        result.f = attribute.F()
    elif kind == AttributeProto.INT:
        result.i = attribute.I()
    elif kind == AttributeProto.STRING:
        result.s = _text(attribute.S()).encode()
    elif kind == AttributeProto.TENSOR:
        result.t.CopyFrom(_tensor(attribute.T()))
    elif kind == AttributeProto.GRAPH:
        result.g.CopyFrom(_graph(attribute.G(), name="g"))
    elif kind == AttributeProto.FLOATS:
        result.floats.extend(float(value) for value in _list(attribute, "Floats"))
    elif kind == AttributeProto.INTS:
        result.ints.extend(int(value) for value in _list(attribute, "Ints"))
    elif kind == AttributeProto.STRINGS:
        result.strings.extend(_list(attribute, "Strings"))
    else:
        raise ValueError(f"attribute {result.name} has the unknown type {kind}")
    return result


def _node(node) -> onnx.NodeProto:
    result = onnx.NodeProto(name=_text(node.Name()), op_type=_text(node.OpType()), domain=_text(node.Domain()))
    result.input.extend(_text(name) for name in _list(node, "Inputs"))
    result.output.extend(_text(name) for name in _list(node, "Outputs"))
    result.attribute.extend(_attribute(attribute) for attribute in _list(node, "Attributes"))
    return result


def _graph(graph, name: str) -> onnx.GraphProto:
    arguments = {_text(argument.Name()): argument for argument in _list(graph, "NodeArgs")}
    return helper.make_graph(
        _in_order([_node(node) for node in _list(graph, "Nodes")]),
        name,
        [_value_info(_text(value), arguments) for value in _list(graph, "Inputs")],
        [_value_info(_text(value), arguments) for value in _list(graph, "Outputs")],
        [_tensor(tensor) for tensor in _list(graph, "Initializers")],
    )


def _used_inside(graph: onnx.GraphProto) -> set[str]:
    names = {output.name for output in graph.output}
    for node in graph.node:
        names.update(node.input)
        for body in subgraphs(node):
            names |= _used_inside(body)
    return names


def _in_order(nodes: list[onnx.NodeProto]) -> list[onnx.NodeProto]:
    """ONNX wants a node after everything it uses; the .ort file keeps nodes by index."""
    producer = {output: i for i, node in enumerate(nodes) for output in node.output if output}

    def needs(node) -> list[int]:
        names = set(node.input)
        for body in subgraphs(node):
            names |= _used_inside(body)
        return sorted({producer[name] for name in names if name in producer}, reverse=True)

    ordered, done = [], set()
    for first in range(len(nodes)):
        pending = [(first, False)]
        while pending:
            i, ready = pending.pop()
            if ready:
                ordered.append(nodes[i])
            elif i not in done:
                done.add(i)
                pending.append((i, True))
                pending.extend((need, False) for need in needs(nodes[i]) if need not in done)
    return ordered


def _domains(graph: onnx.GraphProto) -> set[str]:
    found = set()
    for node in graph.node:
        found.add(node.domain)
        for body in subgraphs(node):
            found |= _domains(body)
    return found
