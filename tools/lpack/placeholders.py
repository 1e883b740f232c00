"""The grammar of the placeholders in a text, as the program's format language reads them."""

import re

from name_hash import utf16_units
from problem import Problem

# The program does not compare longer ones with what they replace, and shows the English text.
MAX_FORMAT_UNITS = 1024

# Each choice is final, as it is in the language's reader, which never goes back.
PLACEHOLDER = re.compile(
    r"""\{
    [0-9]*+                                       # argument
    (?>
        [+celnu]
      | s a?+
      | \? [<|>]                                  # begin, alternative and end of a condition
      | a .                                       # alignment
      | b 0?+ (?> 0*16 (?![0-9]) [xX]?+ p?+ | [0-9]*+ )
      | f .                                       # fill character, of any kind
      | p [0-9]*+
      | t \( [^})]*+ \)
      | w [0-9]*+ (?> , [0-9]*+ )?+
    )*+
    \}""",
    re.VERBOSE | re.DOTALL,
)


def found_in(text: str) -> list[str]:
    """The placeholders in their order. Raises Problem when the format language would refuse the text."""
    found = []
    position = text.find("{")
    if position >= 0 and len(utf16_units(text)) > MAX_FORMAT_UNITS:
        raise Problem(f"a text with placeholders is longer than {MAX_FORMAT_UNITS} UTF-16 code units")
    while position >= 0:
        if text.startswith("{{", position):
            position += 2
        else:
            placeholder = PLACEHOLDER.match(text, position)
            if placeholder is None:
                raise Problem(f"malformed placeholder at '{text[position:position + 20]}'")
            found.append(placeholder[0])
            position = placeholder.end()
        position = text.find("{", position)
    return found
