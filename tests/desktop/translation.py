"""Writes compiled translations as Qt reads them, without Qt's tools: a file of hashes, messages and rules for plurals."""

import struct

MAGIC = bytes.fromhex("3cb86418caef9c95cd211cbf60a1bddd")
HASHES, MESSAGES, PLURALS = 0x42, 0x69, 0x88
END, TRANSLATION, SOURCE, CONTEXT = 1, 3, 6, 7
ONE_AND_OTHERS = bytes([1, 1])  # the first form when the number equals one


def hash_of(text):
    """The hash of ELF symbols."""
    value = 0
    for byte in text.encode():
        value = (value << 4) + byte
        high = value & 0xf0000000
        value = (value ^ high >> 24) & ~high & 0xffffffff
    return value or 1


def part(tag, content, form=">BI"):
    return struct.pack(form, tag, len(content)) + content


def compiled(texts):
    """`texts`: for each (context, English text) the translation, or its singular and plural."""
    messages, hashes = b"", []
    for (context, source), forms in texts.items():
        hashes.append((hash_of(source), len(messages)))
        messages += b"".join(part(TRANSLATION, form.encode("utf-16-be")) for form in forms)
        messages += part(SOURCE, source.encode()) + part(CONTEXT, context.encode()) + bytes([END])
    table = b"".join(struct.pack(">II", *entry) for entry in sorted(hashes))
    return MAGIC + part(HASHES, table) + part(MESSAGES, messages) + part(PLURALS, ONE_AND_OTHERS)
