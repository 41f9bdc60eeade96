# SPDX-License-Identifier: MIT
"""Solves the endings of king and one man against king the plain way, on the full board.

White has the man. Every position is a number of its own, no symmetry of the board is used, and
nothing is known of the numbering of table files. From the mates it goes backwards, a distance at a
time. A captured man is a draw, a promoted pawn takes the value of the ending that it leads to.

Squares: a1 is 0, b1 is 1, h8 is 63. Values are those of the tables, view of the side to move.
"""

from array import array

SQUARES = 64
FILES = 8
WHITE, BLACK = 0, 1
SECOND_RANK, SEVENTH_RANK = 1, 6

MATED = -127      # on the board; a mate in n more moves is n nearer to 0
MATES = 127       # less n: mates in n moves
DRAW = 0
NO_POSITION = -128

ORTHOGONAL = ((1, 0), (-1, 0), (0, 1), (0, -1))
DIAGONAL = ((1, 1), (1, -1), (-1, 1), (-1, -1))
SLIDES = {"q": ORTHOGONAL + DIAGONAL, "r": ORTHOGONAL, "b": DIAGONAL}
KNIGHT_STEPS = ((1, 2), (2, 1), (2, -1), (1, -2), (-1, -2), (-2, -1), (-2, 1), (-1, 2))
PAWN_CAPTURES = ((-1, 1), (1, 1))
PROMOTED = "qrbn"


def rank(square):
    return square // FILES


def step(square, move):
    """The square a step away, None off the board."""
    file, rank_ = square % FILES + move[0], square // FILES + move[1]
    return rank_ * FILES + file if 0 <= file < FILES and 0 <= rank_ < FILES else None


def steps(square, moves):
    return [to for to in (step(square, move) for move in moves) if to is not None]


def slides(square, directions, blocker):
    """Squares along lines, up to the edge or the blocker, which is included."""
    reached = []
    for direction in directions:
        to = step(square, direction)
        while to is not None:
            reached.append(to)
            to = step(to, direction) if to != blocker else None
    return reached


def attacks(man, square, blocker):
    """Squares that a white man attacks. The black king is no blocker: it cannot hide behind
    itself when it moves away along a line."""
    if man in SLIDES:
        return slides(square, SLIDES[man], blocker)
    return steps(square, KNIGHT_STEPS if man == "n" else PAWN_CAPTURES)


KING_MOVES = [steps(square, ORTHOGONAL + DIAGONAL) for square in range(SQUARES)]
# Squares where the other king may not stand: those around a king, and its own.
KING_ZONE = [frozenset([square, *KING_MOVES[square]]) for square in range(SQUARES)]


def number(side, king, other, square):
    """The number of a position: White's king, Black's king, White's man."""
    return ((side * SQUARES + king) * SQUARES + other) * SQUARES + square


def squares_of(position):
    """(side to move, White's king, Black's king, White's man) of a number."""
    position, square = divmod(position, SQUARES)
    position, other = divmod(position, SQUARES)
    side, king = divmod(position, SQUARES)
    return side, king, other, square


def man_squares(man):
    """Where the man may stand: pawns not on the outer ranks."""
    return range(FILES, SQUARES - FILES) if man == "p" else range(SQUARES)


def pushes(square, king, other):
    """Where a white pawn can go; captures there are none, Black has but the king."""
    ahead = square + FILES
    if ahead in (king, other):
        return []
    two_ahead = ahead + FILES
    if rank(square) != SECOND_RANK or two_ahead in (king, other):
        return [ahead]
    return [ahead, two_ahead]


class Ending:
    """King and one man against king: `value[number]` of every position once it is solved."""

    def __init__(self, man, promotions):
        """`promotions`: the solved endings by man, for the pawn."""
        self.man = man
        self.value = array("b", [NO_POSITION]) * (2 * SQUARES ** 3)
        self._promotions = promotions
        self._parents = [[] for _ in self.value]  # positions with a move that leads here
        self._open_moves = bytearray(len(self.value))  # Black's moves that do not lose so far
        self._wins_by_promotion = {}  # positions by the distance of the mate
        mates = []
        for square in man_squares(man):
            for king in range(SQUARES):
                if king != square:
                    self._add_positions(king, square, mates)
        self._work_backwards(mates)
        del self._parents, self._open_moves, self._wins_by_promotion

    def _add_positions(self, king, square, mates):
        """Lists the legal positions and the moves of White's men on two squares."""
        attacked = frozenset(attacks(self.man, square, king))
        targets = [to for to in attacked if to != king]
        for other in range(SQUARES):
            if other == square or other in KING_ZONE[king]:
                continue
            self._add_black_moves(king, other, square, attacked, mates)
            if other not in attacked:
                self._add_white_moves(king, other, square, targets)

    def _add_black_moves(self, king, other, square, attacked, mates):
        position = number(BLACK, king, other, square)
        self.value[position] = DRAW
        moves = 0
        for to in KING_MOVES[other]:
            if to in KING_ZONE[king]:
                continue
            if to == square:
                moves += 1  # the capture draws, so this move stays open for ever
            elif to not in attacked:
                moves += 1
                self._parents[number(WHITE, king, to, square)].append(position)
        self._open_moves[position] = moves
        if moves == 0 and other in attacked:
            mates.append(position)

    def _add_white_moves(self, king, other, square, targets):
        position = number(WHITE, king, other, square)
        self.value[position] = DRAW
        parents = self._parents
        for to in KING_MOVES[king]:
            if to != square and to not in KING_ZONE[other]:
                parents[number(BLACK, to, other, square)].append(position)
        if self.man != "p":
            first = number(BLACK, king, other, 0)
            for to in targets:
                parents[first + to].append(position)
            return
        for to in pushes(square, king, other):
            if rank(square) == SEVENTH_RANK:
                self._add_promotions(position, number(BLACK, king, other, to))
            else:
                parents[number(BLACK, king, other, to)].append(position)

    def _add_promotions(self, position, promoted):
        for man in PROMOTED:
            value = self._promotions[man].value[promoted]
            if value != DRAW:
                distance = value - MATED + 1
                self._wins_by_promotion.setdefault(distance, []).append(position)

    def _work_backwards(self, mates):
        """Black is mated in n where every move leads to a mate in n or fewer; White mates in n + 1
        where a move leads there, and there was no sooner mate."""
        lost = mates
        for position in lost:
            self.value[position] = MATED
        distance = 1
        farthest_promotion = max(self._wins_by_promotion, default=0)
        while lost or distance <= farthest_promotion:
            won = self._mark_won(lost, distance)
            lost = self._mark_lost(won, distance)
            distance += 1

    def _mark_won(self, lost, distance):
        won = []
        value = self.value
        for parents in (*(self._parents[position] for position in lost),
                        self._wins_by_promotion.get(distance, [])):
            for position in parents:
                if value[position] == DRAW:
                    value[position] = MATES - distance
                    won.append(position)
        return won

    def _mark_lost(self, won, distance):
        lost = []
        open_moves = self._open_moves
        for position in won:
            for parent in self._parents[position]:
                open_moves[parent] -= 1
                if open_moves[parent] == 0:
                    self.value[parent] = MATED + distance
                    lost.append(parent)
        return lost

    def positions(self, side):
        """Numbers of the legal positions with a side to move."""
        half = len(self.value) // 2
        return [position for position in range(side * half, (side + 1) * half)
                if self.value[position] != NO_POSITION]

    def longest_win(self):
        """White's most moves to a mate, 0 if there is none."""
        wins = [value for value in self.value if value > DRAW]
        return MATES - min(wins) if wins else 0


def solve_all():
    """All five endings by White's man."""
    endings = {}
    for man in PROMOTED:
        endings[man] = Ending(man, {})
    endings["p"] = Ending("p", dict(endings))
    return endings
