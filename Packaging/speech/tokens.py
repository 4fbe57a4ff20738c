"""Turns Moonshine's tokenizer.bin into the tokens.txt that sherpa-onnx reads: base64 of the token, blank, number."""
import base64


def tokens_text(packed: bytes) -> str:
    return "".join(
        f"{base64.b64encode(token).decode()} {number}\n" for number, token in enumerate(_unpack(packed))
    )


def _unpack(packed: bytes) -> list[bytes]:
    """Each token is its length and its bytes; a length from 128 on takes two bytes, the lower seven bits first."""
    tokens, at = [], 0
    while at < len(packed):
        length = packed[at]
        at += 1
        if length >= 128:
            length += packed[at] * 128 - 128
            at += 1
        tokens.append(packed[at : at + length])
        at += length
    if at != len(packed):
        raise ValueError("the tokenizer ends in the middle of a token")
    return tokens
