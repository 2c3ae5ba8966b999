"""Cuts C++ sources into tokens and the bodies of functions into statements.

Knows as much of the language as the sources of src/ use, formatted by clang-format; it is no compiler.
What it misreads becomes a fault that does not compile, and those are counted.
"""

import re
from dataclasses import dataclass, field

TOKEN = re.compile(
    r"""(?P<comment>//[^\n]*|/\*.*?\*/)
      | (?P<directive>^[ \t]*\#(?:[^\n\\]|\\\n|\\.)*)
      | (?P<text>"(?:[^"\\\n]|\\.)*")
      | (?P<character>'(?:[^'\\\n]|\\.)')
      | (?P<word>[A-Za-z_]\w*)
      | (?P<number>\d[\w.]*)
      | (?P<mark>::|->|\+\+|--|<<|>>|<=|>=|==|!=|&&|\|\||\+=|-=|\.\.\.|[^\s\w])
      | (?P<blank>\s+)""",
    re.VERBOSE | re.DOTALL | re.MULTILINE,
)
OPEN = {"(": ")", "[": "]", "{": "}"}
DEFINITION = re.compile(r"[ \t]*#define\s+\w+(\([^)]*\))?")


@dataclass
class Token:
    kind: str
    value: str
    start: int
    in_macro: bool = False

    @property
    def end(self):
        return self.start + len(self.value)


@dataclass
class Statement:
    """Of the tokens first to last, both included."""

    kind: str  # plain, block, if, loop
    first: int
    last: int
    condition: tuple = None  # first and last token between the parentheses


@dataclass
class Function:
    name: str
    first: int  # of the body, with its braces
    last: int
    blocks: list = field(default_factory=list)  # each a list of the statements beside each other
    statements: list = field(default_factory=list)  # all, those inside of others too


def tokens_of(text, offset=0, in_macro=False):
    """The tokens of a text without comments and blanks; of directives only the bodies of macros."""
    tokens = []
    position = 0
    while position < len(text):
        match = TOKEN.match(text, position)
        if match is None:
            raise ValueError(f"cannot be read: {text[position:position + 40]!r}")
        position = match.end()
        kind = match.lastgroup
        if kind in ("comment", "blank"):
            continue
        if kind == "directive":
            definition = DEFINITION.match(match.group())
            if definition:
                body = match.group()[definition.end():].replace("\\\n", " \n")
                tokens += tokens_of(body, offset + match.start() + definition.end(), True)
            continue
        tokens.append(Token(kind, match.group(), offset + match.start(), in_macro))
    return tokens


class Source:
    """One file: its text, tokens and functions."""

    def __init__(self, path, text):
        self.path = path
        self.text = text
        self.tokens = tokens_of(text)
        self.partner = self._partners()
        self.functions = []
        self._find_functions()

    def between(self, first, last):
        """The text from one token to another, both included."""
        return self.text[self.tokens[first].start:self.tokens[last].end]

    def line_of(self, offset):
        return self.text.count("\n", 0, offset) + 1

    def function_at(self, index):
        for function in self.functions:
            if function.first <= index <= function.last:
                return function.name
        return "-"

    def value(self, index):
        return self.tokens[index].value if 0 <= index < len(self.tokens) else ""

    def _partners(self):
        partner, stack = {}, []
        for index, token in enumerate(self.tokens):
            if token.kind != "mark":
                continue
            if token.value in OPEN:
                stack.append(index)
            elif stack and token.value == OPEN[self.tokens[stack[-1]].value]:
                opening = stack.pop()
                partner[opening] = index
                partner[index] = opening
        return partner

    def _find_functions(self):
        """Walks namespaces and classes; what has parentheses before its brace is a function."""
        index, head = 0, 0
        while index < len(self.tokens):
            token = self.tokens[index]
            if token.in_macro:
                index += 1
                head = index
            elif token.value in (";", "}"):
                index += 1
                head = index
            elif token.value == "{":
                words = [t.value for t in self.tokens[head:index]]
                if "namespace" in words or (
                    ("class" in words or "struct" in words) and "(" not in words
                ):
                    index += 1
                elif "(" in words:
                    last = self.partner[index]
                    name = words[words.index("(") - 1]
                    function = Function(name, index, last)
                    self._read_block(index, function)
                    self.functions.append(function)
                    index = last + 1
                else:
                    index = self.partner[index] + 1
                    continue
                head = index
            else:
                index += 1

    def _read_block(self, opening, function):
        statements = []
        function.blocks.append(statements)
        index = opening + 1
        while index < self.partner[opening]:
            statement = self._read_statement(index, function)
            statements.append(statement)
            index = statement.last + 1
        return statements

    def _read_statement(self, index, function):
        value = self.value(index)
        if value == "{":
            self._read_block(index, function)
            return Statement("block", index, self.partner[index])
        if value in ("if", "for", "while"):
            statement = self._read_conditional(index, function)
        else:
            statement = Statement("plain", index, self._end_of_plain(index, function))
        function.statements.append(statement)
        return statement

    def _read_conditional(self, index, function):
        opening = index + 1
        closing = self.partner[opening]
        statement = Statement("if" if self.value(index) == "if" else "loop", index, closing)
        statement.condition = (opening + 1, closing - 1)
        statement.last = self._read_statement(closing + 1, function).last
        if self.value(statement.last + 1) == "else":
            statement.last = self._read_statement(statement.last + 2, function).last
        return statement

    def _end_of_plain(self, index, function):
        """The semicolon; on the way the bodies of lambdas are read."""
        while self.value(index) != ";":
            if self.value(index) == "{" and self._is_lambda(index):
                self._read_block(index, function)
            if self.value(index) in OPEN and not self._holds_lambda(index):
                index = self.partner[index]
            index += 1
        return index

    def _is_lambda(self, brace):
        before = self.value(brace - 1)
        if before == ")":
            return self.value(self.partner[brace - 1] - 1) == "]"
        return before == "]"

    def _holds_lambda(self, opening):
        """Parentheses with a lambda in them are entered, since its body has statements."""
        return self.value(opening) == "(" and any(
            self.value(i) == "{" and self._is_lambda(i)
            for i in range(opening, self.partner[opening])
        )
