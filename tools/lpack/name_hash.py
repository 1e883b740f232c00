"""The hash by which strings and modules are found."""


def utf16_units(text: str) -> list[int]:
    raw = text.encode("utf-16-le")
    return [low | high << 8 for low, high in zip(raw[::2], raw[1::2])]


def name_hash(key: str) -> int:
    """32-bit FNV-1a over the UTF-16 code units: A to Z count as a to z, of each unit the low byte, sign-extended."""
    value = 0x811C9DC5
    for unit in utf16_units(key):
        if 0x41 <= unit <= 0x5A:
            unit += 32
        low = unit & 0xFF
        value ^= low | 0xFFFFFF00 if low >= 0x80 else low
        value = value * 0x01000193 & 0xFFFFFFFF
    return value
