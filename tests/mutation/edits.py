"""The edits by which the mutation run changes the driver's sources, one at a time.

A source is split into tokens without its comments and preprocessor lines. This code knows no C++ beyond that and the
formatting, which puts spaces around binary operators only. An edit that makes no sense does not compile and does not
count.
"""
import hashlib
import re
from dataclasses import dataclass

TOKEN = re.compile(
    r"""(?P<comment>//[^\n]*|/\*.*?\*/)
      | (?P<directive>^[ ]*\#(?:[^\n\\]|\\.|\\\n)*)
      | (?P<string>(?:u8|[LuU])?"(?:[^"\\\n]|\\.)*")
      | (?P<char>(?:u8|[LuU])?'(?:[^'\\\n]|\\.)+')
      | (?P<number>\.?\d(?:[eE][+-]|[\w.'])*)
      | (?P<word>[A-Za-z_]\w*)
      | (?P<sign><<=|>>=|<=>|->\*|\.\.\.|<<|>>|<=|>=|==|!=|&&|\|\||\+\+|--|\+=|-=|\*=|/=|%=|&=|\|=|\^=|->|::|.)
    """,
    re.VERBOSE | re.MULTILINE | re.DOTALL,
)

SIGNS = {
    "<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "==",
    "&&": "||", "||": "&&",
    "+": "-", "-": "+", "*": "/", "/": "*", "%": "*",
    "<<": ">>", ">>": "<<", "&": "|", "|": "&", "^": "|",
    "+=": "-=", "-=": "+=", "*=": "/=", "|=": "&=", "&=": "|=", "++": "--", "--": "++",
    "?": "== 0 ?",
}
UNSPACED = {"++", "--"}

WORDS = {"true": "false", "false": "true", "TRUE": "FALSE", "FALSE": "TRUE", "min": "max", "max": "min"}

# Parts of names that are exchanged for each other.
PARTS = {
    "red": "green", "green": "blue", "blue": "red",
    "black": "cyan", "cyan": "magenta", "magenta": "yellow", "yellow": "cyan",
    "width": "height", "height": "width", "cx": "cy", "cy": "cx",
    "lower": "upper", "upper": "lower", "top": "bottom", "bottom": "top",
    "source": "destination", "destination": "source", "old": "fresh", "fresh": "old",
}

# Words that protect the rest of their statement from edits.
UNTOUCHED = {"static_assert", "using", "template", "friend", "requires", "operator"}

# First words of statements that are not expressions.
NO_EXPRESSION = {
    "return", "if", "else", "for", "while", "do", "switch", "case", "default", "break", "continue", "using", "typedef",
    "static_assert", "namespace", "struct", "class", "enum", "union", "template", "extern", "constexpr", "static",
    "public", "private", "protected", "virtual", "explicit", "inline", "friend", "goto",
}
SCOPES = {"TraceScope", "StageTimer", "LastErrorKept", "OwnedHandle"}  # objects that act by their lifetime

TABLE_ROW = re.compile(r"^[ ]+(?:\{.*\}|[A-Z]\w*\(.*\)),$", re.MULTILINE)


@dataclass(frozen=True)
class Token:
    kind: str
    text: str
    begin: int
    end: int


@dataclass(frozen=True)
class Edit:
    begin: int
    end: int
    text: str
    what: str


@dataclass
class Mutant:
    path: str    # of the source, relative to the root
    line: int
    what: str
    above: str   # the line before the changed ones
    before: str
    after: str
    source: str  # the changed source
    listed: bool = False

    @property
    def id(self):
        return hashlib.sha1((self.path + self.source).encode()).hexdigest()[:12]

    def show(self):
        print(f"{self.path}:{self.line}: {self.what}")
        for sign, text in (("-", self.before), ("+", self.after)):
            for line in text.splitlines():
                print(f"{sign} {line.strip()}")
        print(flush=True)


def tokens_of(source):
    tokens = []
    for match in TOKEN.finditer(source):
        if match.lastgroup not in ("comment", "directive") and not match.group().isspace():
            tokens.append(Token(match.lastgroup, match.group(), match.start(), match.end()))
    return tokens


def pairs_of(tokens):
    """Returns the positions of the brackets' partners in `tokens`."""
    pairs, open_ones = {}, []
    for i, token in enumerate(tokens):
        if token.text in ("(", "{", "["):
            open_ones.append(i)
        elif token.text in (")", "}", "]") and open_ones:
            pairs[i] = open_ones.pop()
            pairs[pairs[i]] = i
    return pairs


def statement_end(tokens, pairs, i):
    """Returns the position of the semicolon that ends the statement at `i`, or None."""
    while i < len(tokens):
        text = tokens[i].text
        if text == ";":
            return i
        if text in (")", "}", "]"):
            return None
        i = pairs.get(i, i) + 1
    return None


def begins_statement(tokens, pairs, i):
    if i == 0:
        return False
    before = tokens[i - 1].text
    if before == ")":
        return tokens[pairs.get(i - 1, 0) - 1].text in ("if", "for", "while", "constexpr")
    if before == ";":  # but not in the head of a for
        return not any(tokens[j].text == "(" and j < i < pairs.get(j, 0) for j in range(max(0, i - 80), i)
                       if tokens[j - 1].text == "for")
    return before in ("{", "}", "else", ":")


def ends_early(tokens, pairs, i, end):
    """Returns whether the return at `i` ends an if."""
    before = i - 1
    if tokens[end + 1].text == "}" and tokens[before].text != ")":
        before = pairs.get(end + 1, 0) - 1
    return tokens[before].text == ")" and tokens[pairs.get(before, 0) - 1].text == "if"


def is_spaced(source, token):
    return source[token.begin - 1].isspace() and source[token.end].isspace()


def next_character(text):
    body = text[text.index("'") + 1:-1]
    changed = "x" if len(body) > 1 or not body.isalnum() else chr(ord(body) + 1)
    return text[:text.index("'") + 1] + changed + "'"


def is_array_size(tokens, i):
    """Returns whether the number at `i` begins the size of an array that is declared there."""
    before = [token.text for token in tokens[i - 3:i]]
    if before[-1] == "[":
        return tokens[i - 3].kind == "word" and before[0] not in NO_EXPRESSION or before[0] in ("*", ">") or before[1] == "]"
    return before[-1] == "," and tokens[i + 1].text == ">"


def next_number(text, step=1):
    """Returns an integer plus `step`, or any other number plus a hundredth of it."""
    match = re.fullmatch(r"(0[xX][\da-fA-F']+|[\d']+)([uUlLzZ]*)", text)
    if match:
        digits = match.group(1).replace("'", "")
        value = int(digits, 0 if digits.lower().startswith("0x") else 10) + step
        if digits.lower().startswith("0x"):
            value %= 1 << 4 * (len(digits) - 2) if len(digits) > 9 else 1 << 64
            return f"0x{value:X}{match.group(2)}"
        return f"{value}{match.group(2)}"
    value = float(text.rstrip("fFlL").replace("'", ""))
    return repr(value * 1.01 if value else 1.0)


def word_edits(token):
    if token.text in WORDS:
        yield Edit(token.begin, token.end, WORDS[token.text], "constant" if token.text not in ("min", "max") else "bound")
    for part in re.finditer(r"[A-Z]?[a-z]+", token.text):
        other = PARTS.get(part.group().lower())
        if other is not None:
            other = other.capitalize() if part.group()[0].isupper() else other
            yield Edit(token.begin + part.start(), token.begin + part.end(), other, "component")


def sign_edits(source, tokens, i):
    token = tokens[i]
    if token.text == "!" and tokens[i + 1].text != "=":
        yield Edit(token.begin, token.end, "", "negation")
    if token.text not in SIGNS:
        return
    if token.text in UNSPACED:
        if tokens[i - 1].text in (";", ",") and "\n" not in source[tokens[i - 1].end:token.begin]:
            return  # in the head of a for, where it would only hang
    elif not is_spaced(source, token):
        return
    yield Edit(token.begin, token.end, SIGNS[token.text], "operator")


def signs_outside_brackets(tokens, pairs, begin, end):
    signs = set()
    i = begin
    while i < end:
        if tokens[i].kind == "sign":
            signs.add(tokens[i].text)
        i = pairs.get(i, i) + 1
    return signs


def condition_edits(tokens, pairs, i):
    if tokens[i].text not in ("if", "while"):
        return
    opening = i + 2 if tokens[i + 1].text == "constexpr" else i + 1
    if opening not in pairs:
        return
    operators = signs_outside_brackets(tokens, pairs, opening + 1, pairs[opening])
    if not operators & {"&&", "||"} and (operators & {"==", "!="} or tokens[opening + 1].text == "!"):
        return  # another edit has the same effect
    begin, end = tokens[opening].end, tokens[pairs[opening]].begin
    yield Edit(begin, begin, "!(", "condition"), Edit(end, end, ")", "condition")


def statement_edits(tokens, pairs, i):
    token = tokens[i]
    if token.kind not in ("word", "sign") or token.text in ("{", "}", ")", ";", ":", "~"):
        return
    if token.text in ("return", "break", "continue"):
        end = statement_end(tokens, pairs, i)
        if end is not None and (token.text != "return" or ends_early(tokens, pairs, i, end)):
            yield Edit(token.begin, tokens[end].end, ";", token.text)
        return
    if not begins_statement(tokens, pairs, i) or token.text in NO_EXPRESSION:
        return
    end = statement_end(tokens, pairs, i)
    if end is None or any(t.text in ("delete", "default") for t in tokens[end - 1:end]):
        return
    if token.text == "(" and tokens[i + 1].text == "void":
        return
    first = [t.text for t in tokens[i:i + 3] if t.text not in ("const",)]
    declares = token.text == "const" or (token.kind == "word" and tokens[i + 1].kind == "word")
    if declares and first[0] not in SCOPES:
        return
    yield Edit(token.begin, tokens[end].end, ";", "statement")


def edits_of(source):
    """Returns all edits in the order of the source, each as a tuple of replacements."""
    tokens = tokens_of(source)
    pairs = pairs_of(tokens)
    found = []
    untouched_to = -1
    for i, token in enumerate(tokens[:-1]):
        if token.text in UNTOUCHED:
            end = pairs.get(i + 1) if token.text != "using" else statement_end(tokens, pairs, i)
            if token.text == "template":  # its parameters
                end = next(j for j in range(i, len(tokens)) if tokens[j].text in (">", ">>"))
            untouched_to = max(untouched_to, i if end is None else end)
        if i <= untouched_to:
            continue
        if token.kind == "string":
            if "extern" != tokens[i - 1].text:
                at = token.begin + token.text.index('"') + 1
                found.append((Edit(at, at, "~", "text"),))
        elif token.kind == "char":
            found.append((Edit(token.begin, token.end, next_character(token.text), "constant"),))
        elif token.kind == "number":
            # A larger array is never a fault, but a smaller one is.
            step = -1 if is_array_size(tokens, i) else 1
            found.append((Edit(token.begin, token.end, next_number(token.text, step), "constant"),))
        elif token.kind == "word":
            found += [(edit,) for edit in word_edits(token)]
            found += list(condition_edits(tokens, pairs, i))
        else:
            found += [(edit,) for edit in sign_edits(source, tokens, i)]
        found += [(edit,) for edit in statement_edits(tokens, pairs, i)]
    found += [(Edit(row.start(), row.end(), "", "row"),) for row in TABLE_ROW.finditer(source)]
    found.sort(key=lambda parts: parts[0].begin)
    return found


def applied(source, parts):
    for part in sorted(parts, key=lambda part: -part.begin):
        source = source[:part.begin] + part.text + source[part.end:]
    return source


def mutants_of(path, source):
    mutants = {}
    for parts in edits_of(source):
        changed = applied(source, parts)
        begin = source.rfind("\n", 0, parts[0].begin) + 1
        end = source.index("\n", parts[-1].end)
        above = source[source.rfind("\n", 0, max(begin - 1, 0)) + 1:begin]
        after = changed[begin:len(changed) - (len(source) - end)]
        mutants.setdefault(changed, Mutant(path, source.count("\n", 0, parts[0].begin) + 1, parts[0].what, above,
                                           source[begin:end], after, changed))
    return list(mutants.values())
