"""Says how a line of C++ can be changed so that it most likely means something else: the mutants of a source file."""

import collections
import re

# A change of one line: what it is, where it stands, and the line before and after.
Mutation = collections.namedtuple("Mutation", "file line kind column before after")

# What stands between spaces is an operator of two operands here, whose other meanings (pointers, references, template
# arguments) are formatted without a space before or behind them.
OTHER_OPERATORS = {
    "+": "-", "-": "+", "*": "/", "/": "*", "%": "/", "<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "==",
    "&&": "||", "||": "&&", "<<": ">>", ">>": "<<", "&": "|", "|": "&", "^": "|", "+=": "-=", "-=": "+=", "*=": "/=",
    "|=": "&=", "&=": "|=", "<<=": ">>=", ">>=": "<<=",
}
OPERATOR = re.compile(r"(?<= )(" + "|".join(re.escape(o) for o in sorted(OTHER_OPERATORS, key=len, reverse=True)) + r")(?= |$)")
NUMBER = re.compile(r"(?<![\w.])(0[xX][0-9a-fA-F]+|\d+\.\d*|\d+)(?=[uUlLfF]*\b|[uUlLfF]*$)(?![\w]*\.\d)")
CONDITION = re.compile(r"\b(if|while) \(")
ASSIGNMENT = re.compile(r"^\*?[\w.>\-\[\]()+* ]*?[\w\])] (=|[-+*/|&^]=|<<=|>>=) .*;$")
CALL = re.compile(r"^[\w.:>\-\[\]]+(<[\w, ]+>)?\(.*\);$")
STEP = re.compile(r"^(\+\+|--)[\w.>\-\[\]]+;$")
NO_STATEMENT = re.compile(r"^(return|if|for|while|switch|else|do|case|throw|static_assert|using|delete|goto)\b")
NOT_CODE = re.compile(r'//[^\n]*|/\*.*?\*/|R"\((.*?)\)"|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])+\'', re.S)
# These lines do not run; a change of them either does not compile or changes nothing.
NEVER_RUN = re.compile(r"^\s*(#|static_assert|using |template|namespace|struct |class |enum |extern |friend )")


def blank(match):
    """Blanks of the same shape, so that columns and lines stay; quotes stay, since they end an expression."""
    text = match.group(0)
    if text[0] == "/":
        return re.sub(r"[^\n]", " ", text)
    return text[0] + re.sub(r"[^\n]", " ", text[1:-1]) + text[-1]


def code_lines(text):
    """The lines of a source without its comments and the insides of its texts."""
    # A separator between digits is no quote.
    return NOT_CODE.sub(blank, re.sub(r"(?<=\d)'(?=\d)", "_", text)).split("\n")


def is_statement(code):
    """Whether a line is one whole assignment, call or step: it declares nothing, and nothing hangs on it but itself."""
    code = code.strip()
    if NO_STATEMENT.match(code) or code.count("(") != code.count(")") or code.count("{") != code.count("}"):
        return False
    if CALL.match(code) or STEP.match(code):
        return True
    left = re.split(r" (?:=|[-+*/|&^]=|<<=|>>=) ", code)[0]
    # Two words beside each other are a type and a name: a declaration.
    return bool(ASSIGNMENT.match(code)) and not re.search(r"[\w>*&] [\w*&]", re.sub(r"\[[^\]]*\]|\([^)]*\)", "", left))


def begins_statement(lines, index):
    """Whether what stands on a line begins there, told from the end of the code above."""
    above = next((line.strip() for line in reversed(lines[:index]) if line.strip()), "")
    return above == "" or above[-1] in ";{}:)" or above.endswith("else")


def other_number(text):
    """The number itself and one more."""
    if text[:2] in ("0x", "0X"):
        return "0x%x" % (int(text, 16) + 1)
    if "." in text:
        whole, fraction = text.split(".")
        return "%d.%s" % (int(whole) + 1, fraction)
    return str(int(text) + 1)


def negated(code, opening):
    """Where the condition ends whose parenthesis opens at a column; none if that is on another line."""
    depth = 0
    for column in range(opening, len(code)):
        depth += {"(": 1, ")": -1}.get(code[column], 0)
        if depth == 0:
            return column
    return None


def changes_of_line(code):
    """Kind, column, end and the text that replaces them, for each change of a line."""
    for found in OPERATOR.finditer(code):
        yield "operator", found.start(), found.end(), OTHER_OPERATORS[found.group()]
    for found in NUMBER.finditer(code):
        yield "constant", found.start(), found.end(), other_number(found.group(1))
    for found in CONDITION.finditer(code):
        end = negated(code, found.end() - 1)
        if end and not code[found.end():].startswith("!("):
            yield "condition", found.end() - 1, end + 1, None


def mutations_of_line(file, lines, codes, index):
    """All mutations of one line."""
    code, line = codes[index], lines[index]
    if NEVER_RUN.match(code) or "operator" in code:
        return
    for kind, start, end, text in changes_of_line(code):
        text = "(!" + line[start:end] + ")" if text is None else text
        yield Mutation(file, index + 1, kind, start, line, line[:start] + text + line[end:])
    if is_statement(code) and begins_statement(codes, index):
        start = len(code) - len(code.lstrip())
        yield Mutation(file, index + 1, "statement", start, line, line[:start] + ";")


def mutations(file, text):
    """The mutations of a file, a list for each line that has any."""
    lines, codes = text.split("\n"), code_lines(text)
    found = (list(mutations_of_line(file, lines, codes, index)) for index in range(len(lines)))
    return [of_line for of_line in found if of_line]
