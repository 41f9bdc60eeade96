# SPDX-License-Identifier: MIT
"""Which endgame tables a table needs, worked out by the rules of chess alone.

A name lists the men of one side, king first, then those of the other. Of two ways to name the same
men, the one stands that has more men in front, or else the better ones.
"""

ORDER = "qrbnp"
PROMOTIONS = "qrbn"


def sides_of(name):
    """Men of both sides, kings left out."""
    first, second = name[1:].split("k")
    return first, second


def name_of(first, second):
    sides = sorted((in_order(first), in_order(second)), key=strength)
    return f"k{sides[0]}k{sides[1]}"


def in_order(men):
    return "".join(sorted(men, key=ORDER.index))


def strength(men):
    """Sorts the side that is named first to the front."""
    return -len(men), [ORDER.index(man) for man in men]


def without_one(men):
    return [men[:i] + men[i + 1:] for i in range(len(men))]


def with_a_promotion(men):
    return [men[:i] + to + men[i + 1:] for i, man in enumerate(men) if man == "p"
            for to in PROMOTIONS]


def needs_of(name):
    """Tables that one move leads to: a capture, a promotion, or both."""
    found = set()
    first, second = sides_of(name)
    for mover, other in ((first, second), (second, first)):
        for left in without_one(other):
            found.add(name_of(mover, left))
            found.update(name_of(promoted, left) for promoted in with_a_promotion(mover))
        found.update(name_of(promoted, other) for promoted in with_a_promotion(mover))
    return found - {"kk"}


def all_tables(most_men):
    """Names of all tables of 3 to `most_men` men."""
    sides = {""}
    for _ in range(most_men - 2):
        sides |= {in_order(men + man) for men in sides for man in ORDER}
    return {name_of(first, second) for first in sides for second in sides
            if 1 <= len(first) + len(second) <= most_men - 2}
