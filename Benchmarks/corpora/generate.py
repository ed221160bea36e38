#!/usr/bin/env python3
"""Writes the corpora of the benchmarks: 200 lines each, the same lines in every dialect.

NAME.txt is ours; NAME.qalculate.txt, NAME.udunits.txt, NAME.muparser.txt and NAME.fparser.txt are the
same expressions as those programs read them.  The files are kept; run this only to change them.
"""
import random
from pathlib import Path

HERE = Path(__file__).parent
LINES = 200

# ours, libqalculate, UDUNITS-2
UNITS = [
    ("in", "in", "inch"), ("ft", "ft", "foot"), ("mm", "mm", "mm"), ("cm", "cm", "cm"),
    ("m", "m", "m"), ("km", "km", "km"), ("mi", "mi", "mile"), ("yd", "yd", "yard"),
    ("kg", "kg", "kg"), ("g", "g", "g"), ("s", "s", "s"), ("min", "min", "min"),
    ("hr", "h", "hour"), ("mph", "mph", "mile/hour"), ("N", "N", "N"), ("kN", "kN", "kN"),
    ("Pa", "Pa", "Pa"), ("MPa", "MPa", "MPa"), ("W", "W", "W"), ("kW", "kW", "kW"),
    ("J", "J", "J"), ("V", "V", "V"), ("A", "A", "A"), ("mA", "mA", "mA"), ("Hz", "Hz", "Hz"),
    ("K", "K", "K"), ("deg", "deg", "degree"), ("rad", "rad", "radian"), ("l", "L", "liter"),
    ("kg m / s^2", "kg m / s^2", "kg.m/s^2"), ("m / s^2", "m / s^2", "m/s^2"),
    ("W / m^2", "W / m^2", "W/m^2"),
]
FUNCTIONS = ["sqrt", "exp", "ln", "log", "abs", "sin", "cos", "max", "min"]


def number(rng):
    kind = rng.randrange(4)
    if kind == 0:
        return str(rng.choice([3, 5, 6, 7, 9, 11, 13, 15, 17, 25, 30, 45, 75, 90, 120]))
    if kind == 1:
        return f"{rng.uniform(0.1, 10):.1f}"
    if kind == 2:
        return f"{rng.uniform(0.1, 100):.2f}"
    return f"{rng.uniform(0.1, 1000):.3f}"


def divisor(rng):
    return rng.choice(["3", "5", "7", "9", "1.5", "3.7", "9.81", "12.5", "60"])


def quantities(rng):
    rows = []
    while len(rows) < LINES:
        n, (ours, qalculate, udunits) = number(rng), rng.choice(UNITS)
        rows.append({"": f"{n} {ours}", "qalculate": f"{n} {qalculate}", "udunits": f"{n} {udunits}"})
    return rows


def operand(rng, depth):
    """An operand in our spelling, as a tree of strings and function calls."""
    pick = rng.random()
    if depth < 2 and pick < 0.15:
        name = rng.choice(FUNCTIONS)
        if name in ("sqrt", "exp", "ln", "log"):  # where any number has a value
            return (name, [f"{rng.uniform(0.1, 30):.2f}"])
        arguments = [operand(rng, depth + 1) for _ in range(2 if name in ("max", "min") else 1)]
        return (name, arguments)
    if depth < 2 and pick < 0.30:
        return ("(", [chain(rng, rng.randint(1, 2), depth + 1)])
    return number(rng)


def chain(rng, operators, depth=0):
    parts = [operand(rng, depth)]
    for _ in range(operators):
        op = rng.choice("+-*/+-*")
        parts += [op, divisor(rng) if op == "/" else operand(rng, depth)]
    return ("chain", parts)


def spell(node, dialect):
    if isinstance(node, str):
        return node
    name, children = node
    texts = [spell(child, dialect) for child in children]
    if name == "chain":
        return " ".join(texts)
    if name == "(":
        return f"({texts[0]})"
    separator = "; " if dialect == "" else ", "
    name = {"fparser": {"ln": "log", "log": "log10"}, "muparser": {"log": "log10"},
            "qalculate": {"log": "log10"}}.get(dialect, {}).get(name, name)
    return f"{name}({separator.join(texts)})"


def arithmetic(rng):
    rows = []
    while len(rows) < LINES:
        node = chain(rng, rng.randint(5, 12))
        rows.append({d: spell(node, d) for d in ("", "qalculate", "muparser", "fparser")})
    return rows


def unit_arithmetic(rng):
    lengths = [u for u in UNITS if u[0] in ("in", "ft", "mm", "cm", "m", "km", "yd")]
    rows = []
    while len(rows) < LINES:
        terms = [[], []]
        for _ in range(rng.randint(3, 6)):
            a, u, form = number(rng), rng.choice(lengths), rng.randrange(4)
            b, v, d = number(rng), rng.choice(lengths), divisor(rng)
            for i in (0, 1):
                terms[i].append([f"{a} {u[i]}", f"{a} {u[i]} * {b}", f"{a} {u[i]} / {d}",
                                 f"({a} {u[i]} + {b} {v[i]}) * {d}"][form])
        ops = [rng.choice("+-") for _ in terms[0][1:]]
        join = lambda t: t[0] + "".join(f" {o} {x}" for o, x in zip(ops, t[1:]))
        rows.append({"": join(terms[0]), "qalculate": join(terms[1])})
    return rows


for name, make in (("quantities", quantities), ("arithmetic", arithmetic),
                   ("unit-arithmetic", unit_arithmetic)):
    rows = make(random.Random(name))
    for dialect in rows[0]:
        file = HERE / (name + (f".{dialect}" if dialect else "") + ".txt")
        file.write_text("".join(row[dialect] + "\n" for row in rows), encoding="utf-8")
