#!/usr/bin/env python3
"""Prints the coefficients of engine/VectorSine.h, from r^3 to r^11, and the largest relative error.

Remez exchange for sin(r) = r * (1 + c3 x + c5 x^2 + ...) with x = r^2 and |r| up to pi/2 plus a rounding error. The
relative error of the minimax polynomial takes its largest value at one more point than there are coefficients, with
alternating signs. Each step solves for coefficients with such an error at trial points, then moves the points to the
extrema of the error.
"""

from decimal import Decimal, getcontext

getcontext().prec = 50
COEFFICIENTS = 5
GRID = 2000
LIMIT = (Decimal("1.5707963267948966192313216916397514421") + Decimal(2) ** -20) ** 2


def sinc(x):
    """Returns sin(r) / r for x = r^2 by its Taylor series."""
    term = total = Decimal(1)
    for k in range(2, 60, 2):
        term *= -x / (k * (k + 1))
        total += term
    return total


def solve(rows):
    """Returns the solution of a system of linear equations. The last column is the right-hand side."""
    for i in range(len(rows)):
        pivot = max(range(i, len(rows)), key=lambda j: abs(rows[j][i]))
        rows[i], rows[pivot] = rows[pivot], rows[i]
        rows[i] = [value / rows[i][i] for value in rows[i]]
        for j, row in enumerate(rows):
            if j != i:
                rows[j] = [a - row[i] * b for a, b in zip(row, rows[i])]
    return [row[-1] for row in rows]


grid = [LIMIT * j / GRID for j in range(GRID + 1)]
sines = [sinc(x) for x in grid]
points = [GRID * (2 * k + 1) // (2 * COEFFICIENTS + 2) for k in range(COEFFICIENTS + 1)]
for _ in range(9):
    rows = []
    for k, j in enumerate(points):
        powers = [grid[j] ** i for i in range(1, COEFFICIENTS + 1)]
        rows.append(powers + [(-1) ** k * sines[j], sines[j] - 1])
    coefficients = solve(rows)[:-1]
    errors = []
    for x, sine in zip(grid, sines):
        polynomial = 1 + sum(c * x ** (i + 1) for i, c in enumerate(coefficients))
        errors.append(polynomial / sine - 1)
    ends = [j for j in range(1, GRID) if errors[j] * errors[j + 1] <= 0] + [GRID]
    points = [max(range(a, b + 1), key=lambda j: abs(errors[j])) for a, b in zip([0] + ends, ends)]

for coefficient in coefficients:
    print(float(coefficient).hex())
print(f"error 2^{max(map(abs, errors)).ln() / Decimal(2).ln():.3f}")
