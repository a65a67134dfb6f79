"""The ways to break a line of C++, one at a time: what a slip of the hand could have written in its place.

The code is laid out by clang-format, so a binary operator stands between blanks, and a template's brackets do
not. Comments, texts and lines of the preprocessor stay as they are.
"""

import re
from collections.abc import Iterator
from dataclasses import dataclass

# Comments, texts (raw ones first), characters: an apostrophe after a digit only parts digits.
NO_CODE = re.compile(r"""//[^\n]*|/\*.*?\*/
                         |R"(\w*)\(.*?\)\1"|"(?:\\.|[^"\\\n])*"
                         |(?<![0-9A-Fa-f])'(?:\\.|[^'\\\n])+'""", re.DOTALL | re.VERBOSE)
LEFT_ALONE = re.compile(r"\s*(#|static_assert|template|using |namespace )")

OPERATOR = re.compile(r"(?<= )(<=|>=|==|!=|<<|>>|\+=|-=|&&|\|\||[<>+\-*/%&|])(?= |$)")
OTHER_OPERATOR = {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "==", "&&": "||",
                  "||": "&&", "+": "-", "-": "+", "*": "/", "/": "*", "%": "/", "<<": ">>", ">>": "<<",
                  "&": "|", "|": "&", "+=": "-=", "-=": "+="}
STEP = re.compile(r"\+\+|--")
NUMBER = re.compile(r"(?<![\w.'])(0x[0-9A-Fa-f']+|\d[\d']*\.\d*|\d[\d']*)([uUlLzZ]*)(?![\w.'])")
TRUTH = re.compile(r"\b(true|false)\b")
BOUND = re.compile(r"\bstd::(?:ranges::)?(min|max)\b")
CONDITION = re.compile(r"\b(?:if|while) (?:constexpr )?\(")
NOT = re.compile(r"!(?=[\w(:])")
CHOICE = re.compile(r" \? ([^?:,;]+(?:::[^?:,;]+)*) : ")
CALL = re.compile(r"\s*(?:[\w\]\[.:]|->|\(\)|<\w+>)+\(.*\);$|\s*(?:\+\+|--)[\w.>-]+;$")
ASSIGNMENT = re.compile(r"\s*[\w.\[\]*]+(?:->\w+)* [+|&<>*/-]*= .*;$")
JUMP = re.compile(r"\s*(?:continue|break|return);$")


@dataclass(frozen=True)
class Mutation:
    """Line `number` of a file, counted from 1, which then reads `after`."""

    number: int
    before: str
    after: str


def mutations(text: str) -> Iterator[Mutation]:
    """Every mutation of a source file's `text`."""
    lines = text.split("\n")
    last = ";"  # the last character of the code before the line
    for number, (line, code) in enumerate(zip(lines, code_of(text).split("\n")), 1):
        if not LEFT_ALONE.match(code):
            whole = last in ";{}:" and code.rstrip().endswith(";")
            seen = {line}
            for after in (*changed(line, code), *(dropped(line, code) if whole else ())):
                if after not in seen:
                    seen.add(after)
                    yield Mutation(number, line, after)
        last = code.rstrip()[-1:] or last


def code_of(text: str) -> str:
    """`text` with a "$" in the place of each character that is no code; lines stay."""
    return NO_CODE.sub(lambda found: re.sub(r"[^\n]", "$" if found[0][0] not in "/" else " ", found[0]), text)


def changed(line: str, code: str) -> Iterator[str]:
    """The line with one operator, number, bound or branch changed."""
    def put(found: re.Match, new: str, group: int = 0) -> str:
        return line[:found.start(group)] + new + line[found.end(group):]

    for found in OPERATOR.finditer(code):
        yield put(found, OTHER_OPERATOR[found[1]], 1)
    for found in STEP.finditer(code):
        yield put(found, "--" if found[0] == "++" else "++")
    for found in NUMBER.finditer(code):
        yield put(found, next_number(found[1]), 1)
    for found in TRUTH.finditer(code):
        yield put(found, "false" if found[1] == "true" else "true")
    for found in BOUND.finditer(code):
        yield put(found, "max" if found[1] == "min" else "min", 1)
    for found in NOT.finditer(code):
        yield put(found, "")
    for found in CONDITION.finditer(code):
        yield from negated(line, code, found.end())
    for found in CHOICE.finditer(code):
        yield from swapped(line, code, found)


def next_number(number: str) -> str:
    digits = number.replace("'", "")
    if digits.startswith("0x"):
        return hex(int(digits, 16) + 1)
    return str(float(digits) + 1) if "." in digits else str(int(digits) + 1)


def end_of_group(code: str, start: int, closing: str = "") -> int:
    """Where what begins at `start` ends: at the bracket around it that closes, or one of `closing`; or -1."""
    depth = 0
    for at in range(start, len(code)):
        if depth == 0 and code[at] in closing + ")]}":
            return at
        depth += (code[at] in "([{") - (code[at] in ")]}")
    return -1


def negated(line: str, code: str, start: int) -> Iterator[str]:
    """With the condition at `start` negated, unless another mutation does that: of a lone "==" or "!"."""
    end = end_of_group(code, start)
    start = max(start, code.rfind("; ", start, end) + 2)  # after a declaration
    condition = code[start:end]
    isLone = not re.search(r"&&|\|\|", condition)
    if end >= 0 and not (isLone and re.search(r" [=!]= |^!", condition)):
        yield f"{line[:start]}!({line[start:end]}){line[end:]}"


def swapped(line: str, code: str, choice: re.Match) -> Iterator[str]:
    """With the two values of "? :" in each other's place."""
    end = end_of_group(code, choice.end(), ",;?")
    if end > 0 and code[end] != "?":
        first, second = line[choice.start(1):choice.end(1)], line[choice.end():end]
        yield line[:choice.start(1)] + second + " : " + first + line[end:]


def dropped(line: str, code: str) -> Iterator[str]:
    """Without the call, the assignment or the jump that is all of the line."""
    code = code.rstrip()
    if (CALL.match(code) and balanced(code)) or ASSIGNMENT.match(code) or JUMP.match(code):
        yield re.match(r"\s*", line)[0] + ";"


def balanced(code: str) -> bool:
    return code.count("(") == code.count(")")
