"""Makes faults from sources: each is one small change that a programmer could have made by mistake."""

import re
from dataclasses import dataclass

from cpp_text import Source

NO_CALL = {"if", "for", "while", "switch", "return", "sizeof", "catch", "decltype", "operator"}
TURNED = {"==": "!=", "!=": "==", "<": "<=", "<=": "<", ">": ">=", ">=": ">"}
DECLARATION = re.compile(
    r"(?:static\s+|const\s+|constexpr\s+|using\s+)*[\w:]+(?:<.*?>)?[*&\s]+(?:\w+|\[[\w, ]+\])\s*[=;({\[:]"
)
HOLDER = re.compile(r"const zerva::SemaphoreHolder \w+\((.*)\);$", re.DOTALL)


@dataclass
class Fault:
    path: str
    line: int
    kind: str
    function: str
    old: str
    new: str
    context: str
    start: int
    end: int
    replacement: str
    number: int = 1  # of those that read the same

    @property
    def place(self):
        return f"{self.path}:{self.line}:{self.kind}"

    @property
    def content(self):
        """Tells the fault apart from all others, wherever its line has gone to."""
        number = f" #{self.number}" if self.number > 1 else ""
        within = f" in `{self.context}`" if self.context else ""
        return f"{self.path} {self.function} {self.kind}: `{self.old}` -> `{self.new}`{within}{number}"

    def planted(self, text):
        return text[:self.start] + self.replacement + text[self.end:]


def one_line(text, limit=90):
    text = " ".join(text.split())
    return text if len(text) <= limit else text[:limit - 3] + "..."


def with_lines_of(replacement, original):
    """Pads a replacement, so that what follows it stays on its line."""
    return replacement + "\n" * (original.count("\n") - replacement.count("\n"))


class Maker:
    """Collects the faults of one source."""

    def __init__(self, source):
        self.source = source
        self.faults = []
        self.seen = set()

    def add(self, kind, first, start, end, replacement, new=None, context=True):
        source = self.source
        original = source.text[start:end]
        replacement = with_lines_of(replacement, original)
        planted = source.text[:start] + replacement + source.text[end:]
        if planted == source.text or planted in self.seen:
            return
        self.seen.add(planted)
        line_start = source.text.rfind("\n", 0, start) + 1
        line_end = source.text.find("\n", start)
        context = one_line(source.text[line_start:line_end]) if context else ""
        old = one_line(original)
        self.faults.append(Fault(
            source.path, source.line_of(start), kind, source.function_at(first), old,
            one_line(replacement) if new is None else new, "" if context == old else context,
            start, end, replacement))

    def replace(self, kind, first, last, replacement, **more):
        tokens = self.source.tokens
        self.add(kind, first, tokens[first].start, tokens[last].end, replacement, **more)

    def make(self):
        for function in self.source.functions:
            for block in function.blocks:
                for earlier, later in zip(block, block[1:]):
                    self.swap(earlier, later)
            for statement in function.statements:
                if statement.kind == "plain":
                    self.plain(statement, function)
                else:
                    self.condition(statement)
            self.calls(function)
        for index, token in enumerate(self.source.tokens):
            self.token(index, token)
        numbers = {}
        for fault in self.faults:
            content = fault.content
            fault.number = numbers[content] = numbers.get(content, 0) + 1
        return self.faults

    # What concerns whole statements.

    def acts(self, statement):
        """Whether it calls, makes or deletes anything."""
        if self.source.value(statement.first) in ("return", "throw"):
            return False
        return any(
            self.source.value(i) in ("new", "delete")
            or (self.source.value(i + 1) == "(" and self.source.tokens[i].kind == "word"
                and self.source.value(i) not in NO_CALL)
            for i in range(statement.first, statement.last)
        )

    def swap(self, earlier, later):
        if not (self.acts(earlier) and self.acts(later)):
            return
        source = self.source
        first, second = (source.between(s.first, s.last) for s in (earlier, later))
        gap = source.text[source.tokens[earlier.last].end:source.tokens[later.first].start]
        self.replace("order", earlier.first, later.last, second + gap + first,
                     new=one_line(second, 40) + " " + one_line(first, 40), context=False)

    def plain(self, statement, function):
        source, first, last = self.source, statement.first, statement.last
        text = source.between(first, last)
        word = source.value(first)
        holder = HOLDER.match(text)
        if holder:
            self.replace("semaphore", first, last, f"({holder[1]}).take(-1);", context=False)
            self.replace("semaphore", first, last, "{ " + text + " }", context=False)
            self.replace("semaphore", first, last, ";", context=False)
        elif word == "return":
            self.returned(statement, text, function)
        elif word == "throw":
            self.replace("statement", first, last, ";", context=False)
        elif word == "delete":
            self.replace("delete", first, last, ";", context=False)
            self.replace("delete", first, last, f"{text} {text}", context=False)
        elif re.search(r"(\.|->)(take|give)\(-?\d*\);$", text):
            self.replace("semaphore", first, last, ";", context=False)
            self.replace("semaphore", first, last, f"{text} {text}", context=False)
        elif not DECLARATION.match(text):
            self.replace("statement", first, last, ";", context=False)
            if "LOG_" not in word and "=" not in text.split("(")[0]:
                self.replace("doubled", first, last, f"{text} {text}", context=False)

    def returned(self, statement, text, function):
        first, last = statement.first, statement.last
        value = text[len("return"):-1].strip()
        if value not in ("", "nullptr", "{}", "true", "false"):
            self.replace("return", first, last, "return {};")
        if last != function.last - 1:
            self.replace("return", first, last, ";")

    def condition(self, statement):
        first, last = statement.condition
        text = self.source.between(first, last)
        if statement.kind == "loop":
            if ";" not in text and ":" not in text.replace("::", ""):
                self.replace("guard", first, last, "false")
            return
        declares = re.match(r"(const )?[\w:]+\*? ?\*?\w+ = ", text) is not None
        for value in ("true", "false"):
            self.replace("guard", first, last, f"{text}; {value}" if declares else value,
                         new=value)

    # What concerns calls.

    def arguments(self, opening):
        """The first and the last token of each argument."""
        source, found, first = self.source, [], opening + 1
        index, closing = first, source.partner[opening]
        while index < closing:
            if source.value(index) == ",":
                found.append((first, index - 1))
                first = index + 1
            index = source.partner[index] + 1 if source.value(index) in "([{" else index + 1
        if first < closing:
            found.append((first, closing - 1))
        return found

    def calls(self, function):
        source = self.source
        for index in range(function.first, function.last):
            before = source.tokens[index - 1]
            if source.value(index) not in ("(", "{") or before.value in NO_CALL:
                continue
            if before.kind != "word" and before.value != ">":
                continue
            arguments = self.arguments(index)
            for (a, b), (c, d) in zip(arguments, arguments[1:]):
                left, right = source.between(a, b), source.between(c, d)
                gap = source.text[source.tokens[b].end:source.tokens[c].start]
                self.replace("argument", a, d, right + gap + left)

    # What concerns single tokens.

    def token(self, index, token):
        getattr(self, "on_" + token.kind, lambda *_: None)(index, token)

    def on_mark(self, index, token):
        spaced = self.source.text[token.start - 1:token.end + 1] == f" {token.value} "
        if token.value in TURNED and spaced and self.source.value(index - 1) != "operator":
            self.replace("comparison", index, index, TURNED[token.value])
            if token.value in "<>":
                self.replace("comparison", index, index, ">" if token.value == "<" else "<")
        elif token.value == "!":
            self.replace("comparison", index, index, "")
        elif token.value in ("&&", "||") and self.source.function_at(index) != "-":
            self.operands(index, token.value)

    def operands(self, index, operator):
        """Leaves out what stands on one side and then on the other."""
        source = self.source
        left = right = index
        stop = {"(", "{", "[", ",", ";", "return", "?", ":", "=", "&&", "||"}
        while source.value(left - 1) not in stop:
            left = source.partner.get(left - 1, left - 1) if source.value(left - 1) in ")]}" else left - 1
        stop = {")", "}", "]", ",", ";", "?", ":", "&&", "||"}
        while source.value(right + 1) not in stop:
            right = source.partner[right + 1] if source.value(right + 1) in "([{" else right + 1
        self.replace("guard", left, index, "")
        self.replace("guard", index, right, "")

    def on_word(self, index, token):
        value = token.value
        if self.source.function_at(index) == "-" and not token.in_macro:
            return
        if value.endswith("_LOG_ERROR"):
            self.replace("level", index, index, value.replace("ERROR", "PROGRESS"))
        elif value.endswith("_LOG_PROGRESS"):
            self.replace("level", index, index, value.replace("PROGRESS", "ERROR"))
        elif value == "LOG_EMERG":
            self.replace("level", index, index, "LOG_ALERT")
        elif value in ("true", "false"):
            self.replace("constant", index, index, "false" if value == "true" else "true")

    def on_number(self, index, token):
        if not token.value.isdigit():
            return
        logs = re.search(r"LOG_AT|logAppUni|loggingOnAppUni", self.source.text[
            self.source.text.rfind("\n", 0, token.start):token.start])
        self.replace("level" if logs else "constant", index, index, str(int(token.value) + 1))

    def on_text(self, index, token):
        self.replace("text", index, index, changed_text(token.value), context=False)

    def on_character(self, index, token):
        other = {"'\\0'": "'0'", "'\\n'": "'\\r'", "' '": "'_'", "'#'": "'%'", "':'": "';'"}
        self.replace("text", index, index, other.get(token.value, "'~'"))


def changed_text(literal):
    """Another letter for the one nearest to the middle that is no part of a format or an escape."""
    body = literal[1:-1]
    taken = set()
    for match in re.finditer(r"%[-\d.]*l?[a-zA-Z]|\\.", body):
        taken.update(range(match.start(), match.end()))
    middle = len(body) // 2
    for index in sorted(range(len(body)), key=lambda i: (abs(i - middle), i)):
        if index not in taken and body[index].isalpha():
            letter = body[index]
            other = chr(ord(letter) - 1) if letter in "zZ" else chr(ord(letter) + 1)
            return f'"{body[:index]}{other}{body[index + 1:]}"'
    if body and len(body) - 1 not in taken:
        return f'"{body[:-1]}_"'
    return f'"~{body}"'


def faults_of(path, text):
    return Maker(Source(path, text)).make()
