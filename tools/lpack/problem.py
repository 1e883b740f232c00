class Problem(Exception):
    """Something is wrong with the input; the text names the place and says what."""
