# SPDX-License-Identifier: MIT
"""Legal moves on boards of few men, and games that lead to a wanted position of three.

The engine takes a position only as a game from the first one, so each position needs such a game.
A board is a text of 64 men from a1 to h8, capitals for White. Neither castling nor captures en
passant are known: with one man beside the kings there are none, and games down to it do without.
"""

import heapq
import itertools

THREE_MEN = 3
LONGEST_LINE = 160   # half moves of a game down to three men; longer ones are begun anew
WALK_NODES = 20000   # positions looked at for a way to another one, until it counts as unreachable

FILES = "abcdefgh"
SQUARES = [file + rank for rank in "12345678" for file in FILES]
EMPTY = "."
FIRST_BOARD = ("RNBQKBNR" + "P" * 8 + EMPTY * 32 + "p" * 8 + "rnbqkbnr")
STRAIGHT = ((1, 0), (-1, 0), (0, 1), (0, -1))
DIAGONAL = ((1, 1), (1, -1), (-1, 1), (-1, -1))
KNIGHT = ((1, 2), (2, 1), (-1, 2), (-2, 1), (1, -2), (2, -1), (-1, -2), (-2, -1))
STEPS = {"N": KNIGHT, "B": DIAGONAL, "R": STRAIGHT, "Q": STRAIGHT + DIAGONAL,
         "K": STRAIGHT + DIAGONAL}
SLIDERS = "BRQ"


def ray(square, step, reach):
    """Squares from `square` in one direction, as many as the board and `reach` allow."""
    file, rank = square % 8, square // 8
    squares = []
    for _ in range(reach):
        file, rank = file + step[0], rank + step[1]
        if not (0 <= file < 8 and 0 <= rank < 8):
            break
        squares.append(rank * 8 + file)
    return squares


RAYS = {kind: [[ray(square, step, 7 if kind in SLIDERS else 1) for step in steps]
               for square in range(64)] for kind, steps in STEPS.items()}
# Squares that a pawn attacks, by whether it is White's.
PAWN_RAYS = {white: [[ray(square, (side, 1 if white else -1), 1) for side in (-1, 1)]
                     for square in range(64)] for white in (True, False)}


def man_of(kind, white):
    return kind if white else kind.lower()


def first_man(board, squares):
    """The square of the nearest man on a ray, or None."""
    return next((square for square in squares if board[square] != EMPTY), None)


def in_check(board, white):
    king = board.index(man_of("K", white))
    attackers = list(RAYS.items()) + [("P", PAWN_RAYS[white])]
    return any(board[at] == man_of(kind, not white)
               for kind, rays in attackers
               for squares in rays[king] if (at := first_man(board, squares)) is not None)


def pawn_targets(board, square, white):
    home, step = (1, 8) if white else (6, -8)
    ahead = square + step
    if board[ahead] == EMPTY:
        yield ahead
        if square // 8 == home and board[ahead + step] == EMPTY:
            yield ahead + step
    for target in itertools.chain(*PAWN_RAYS[white][square]):
        if board[target] != EMPTY and board[target].isupper() != white:
            yield target


def targets_of(board, square, white):
    kind = board[square].upper()
    if kind == "P":
        yield from pawn_targets(board, square, white)
        return
    for squares in RAYS[kind][square]:
        for target in squares:
            if board[target] == EMPTY or board[target].isupper() != white:
                yield target
            if board[target] != EMPTY:
                break


def legal_moves(board, white):
    """Boards after the legal moves, by the moves' text."""
    moves = {}
    for square, man in enumerate(board):
        if man == EMPTY or man.isupper() != white:
            continue
        for target in targets_of(board, square, white):
            promotes = man in "Pp" and target // 8 in (0, 7)
            for kind in "QRBN" if promotes else (man,):
                after = list(board)
                after[square], after[target] = EMPTY, man_of(kind, white) if promotes else man
                after = "".join(after)
                if not in_check(after, white):
                    moves[SQUARES[square] + SQUARES[target] + kind.lower() * promotes] = after
    return moves


def men_on(board):
    return 64 - board.count(EMPTY)


def is_dead(board):
    """Bare kings, or one knight or bishop beside them."""
    men = board.upper().replace(EMPTY, "").replace("K", "")
    return men in ("", "N", "B")


def fen(board, white):
    """The position's text; `1` for each empty square is as good as their sum."""
    rows = [board[first:first + 8].replace(EMPTY, "1") for first in range(56, -1, -8)]
    return f"{'/'.join(rows)} {'w' if white else 'b'}"


def game_down_to(chance, kept):
    """A game in which all men but the kings and the one on square `kept` are taken; its moves, the
    last board, and whether White is to move. The man stays there if it is a pawn."""
    while True:
        board, white, moves, seen = FIRST_BOARD, True, [], {(FIRST_BOARD, True)}
        man, home = board[kept], kept
        while len(moves) < LONGEST_LINE and men_on(board) > THREE_MEN:
            choices = {text: after for text, after in legal_moves(board, white).items()
                       if after.count(man) >= 1 and (after, not white) not in seen
                       and (man not in "Pp" or after[home] == man)}
            taking = [text for text, after in choices.items() if men_on(after) < men_on(board)]
            if not choices:
                break
            text = chance.choice(sorted(taking) or sorted(choices))
            board, white = choices[text], not white
            moves.append(text)
            seen.add((board, white))
        if men_on(board) == THREE_MEN and man in board:
            return moves, board, white


def steps_between(one, other):
    return max(abs(one % 8 - other % 8), abs(one // 8 - other // 8))


def walk(start, goal):
    """Legal moves from one position to another of the same men, not the fewest. None where none
    were found. A position is a board and whether White is to move."""
    men = goal[0].replace(EMPTY, "")

    def estimate(board):
        return sum(steps_between(board.index(man), goal[0].index(man)) for man in men)

    number = itertools.count()   # equal estimates: the older first
    waiting = [(estimate(start[0]), next(number), start, ())]
    seen = {start}
    while waiting and len(seen) < WALK_NODES:
        _, _, (board, white), path = heapq.heappop(waiting)
        if (board, white) == goal:
            return list(path)
        for text, after in legal_moves(board, white).items():
            position = (after, not white)
            if position not in seen and all(man in after for man in men):
                seen.add(position)
                heapq.heappush(waiting, (estimate(after), next(number), position, path + (text,)))
    return None
