"""The mutations of a C++ source: every place where it can be broken, and how."""

import collections
import re

# A change of the text between start and end. `kind` names the family.
Mutation = collections.namedtuple("Mutation", "start end replacement kind")

Token = collections.namedtuple("Token", "kind text start end")

TOKENS = re.compile(r"""
    (?P<comment>//[^\n]*|/\*.*?\*/)
  | (?P<directive>^[ \t]*\#(?:[^\n\\]|\\.)*)
  | (?P<raw>R"(?P<fence>[^(\s]*)\(.*?\)(?P=fence)")
  | (?P<string>"(?:[^"\\\n]|\\.)*")
  | (?P<character>'(?:[^'\\\n]|\\.)+')
  | (?P<number>\b(?:0[xX][0-9a-fA-F.]+(?:[pP][+-]?\d+)?|\d[\d']*(?:\.\d*)?(?:[eE][+-]?\d+)?)\w*)
  | (?P<word>[A-Za-z_]\w*)
  | (?P<punctuation><<=|>>=|->|\+\+|--|<<|>>|<=|>=|==|!=|&&|\|\||\+=|-=|\*=|/=|%=|&=|\|=|::|[^\s])
""", re.VERBOSE | re.MULTILINE | re.DOTALL)

# What stands between two spaces: clang-format keeps such operators apart from templates, pointers and references.
SWAPPED_BETWEEN_SPACES = {
    "==": "!=", "!=": "==", "<": "<=", "<=": "<", ">": ">=", ">=": ">", "&&": "||", "||": "&&", "+": "-", "-": "+",
    "*": "/", "/": "*", "%": "/", "&": "|", "|": "&", "<<": ">>", ">>": "<<", "+=": "-=", "-=": "+=", "|=": "=",
}
SWAPPED_WORDS = {"true": "false", "false": "true", "min": "max", "max": "min", "find_first_of": "find_last_of",
                 "find_first_not_of": "find_last_not_of", "find": "rfind", "any_of": "all_of", "all_of": "any_of",
                 "none_of": "any_of"}
CONTROL = {"if", "for", "while", "switch", "catch"}
NO_STATEMENT = CONTROL | {"return", "case", "default", "using", "static", "constexpr", "const", "struct", "class", "enum",
                          "namespace", "public", "private", "protected", "else", "do", "try", "template", "typedef",
                          "auto", "static_assert", "extern", "friend"}
DECLARATION = re.compile(r"[\w:]+(<.*>)?\s*[&*]?\s+[&*]?\w+\s*(=|;|\(|\{|\[)")


def tokens_of(text):
    return [Token(found.lastgroup if found.lastgroup != "fence" else "raw", found.group(), found.start(), found.end())
            for found in TOKENS.finditer(text)
            if found.group("comment") is None and found.group("directive") is None]


def matching_brackets(tokens):
    """The position of each bracket's partner, both ways."""
    partner, open_ones = {}, []
    for position, token in enumerate(tokens):
        if token.text in ("(", "{", "["):
            open_ones.append(position)
        elif token.text in (")", "}", "]") and open_ones:
            partner[position] = open_ones.pop()
            partner[partner[position]] = position
    return partner


def is_between_spaces(text, token):
    return text[token.start - 1:token.start].isspace() and text[token.end:token.end + 1].isspace()


def shorter_string(literal):
    """The literal without its last character, or with another one when there is but one."""
    content = literal[1:-1]
    if not content:
        return '"?"'
    last = re.search(r"(\\x[0-9a-fA-F]+|\\.|[^\\])$", content)
    return '"' + (content[:last.start()] or "?") + '"'


def mutations_of_tokens(text, tokens):
    for position, token in enumerate(tokens):
        before = tokens[position - 1].text if position else ""
        if token.kind == "number":
            yield Mutation(token.start, token.end, f"({token.text} + 1)", "constant")
            if token.text not in ("0", "0.0"):
                yield Mutation(token.start, token.end, f"({token.text} - 1)", "constant")
        elif token.kind == "character":
            yield Mutation(token.start, token.end, "'?'" if token.text != "'?'" else "'!'", "constant")
        elif token.kind == "string" and before != "extern":
            yield Mutation(token.start, token.end, shorter_string(token.text), "constant")
        elif token.kind == "word" and token.text in SWAPPED_WORDS:
            yield Mutation(token.start, token.end, SWAPPED_WORDS[token.text], "word")
        elif token.text in ("++", "--"):
            yield Mutation(token.start, token.end, "--" if token.text == "++" else "++", "operator")
        elif token.text == "!" and not text[token.end].isspace():
            yield Mutation(token.start, token.end, "", "condition")
        elif token.text == "?":
            yield Mutation(token.start, token.end, "== false ?", "condition")
        elif token.text == "+" and "string" in (tokens[position - 1].kind, tokens[position + 1].kind):
            continue
        elif token.text in SWAPPED_BETWEEN_SPACES and is_between_spaces(text, token) and before != "template":
            yield Mutation(token.start, token.end, SWAPPED_BETWEEN_SPACES[token.text], "operator")


def negated_conditions(text, tokens, partner):
    for position, token in enumerate(tokens[:-1]):
        if token.text not in ("if", "while") or tokens[position + 1].text != "(":
            continue
        first, closing = position + 2, partner[position + 1]
        for inner in range(first, closing):
            if tokens[inner].text == ";":
                first = inner + 1
        start, end = tokens[first].start, tokens[closing].start
        yield Mutation(start, end, f"!({text[start:end]})", "condition")


def holds_code(tokens, opening, partner):
    """Whether the brace begins a block of statements, rather than a class, a namespace or a list of values."""
    position = opening - 1
    if tokens[position].text not in (")", ";", "{", "}", "const", "noexcept", "override", "else", "do", "try", ":"):
        return False
    while position >= 0 and tokens[position].text not in (";", "{", "}"):
        if tokens[position].text in ("class", "struct", "enum", "namespace", "="):
            return tokens[opening - 1].text == ")"
        position = partner.get(position, position) - 1
    return True


def is_controlled(tokens, position, partner):
    """Whether the statement is all that an if governs, or stands last in the block of one."""
    before = position - 1
    if tokens[before].text == "else":
        return True
    while before > 0 and tokens[before].text in (";", "{"):
        if tokens[before].text == "{":
            before -= 1
            break
        before -= 1
        while before > 0 and tokens[before].text not in (";", "{", "}"):
            before = partner.get(before, before) - 1
    return tokens[before].text == ")" and tokens[partner[before] - 1].text == "if"


def dropped_statements(text, tokens, partner):
    blocks = []
    for position, token in enumerate(tokens):
        if token.text == "{":
            blocks.append(holds_code(tokens, position, partner))
        elif token.text == "}" and blocks:
            blocks.pop()
        if position == 0 or not blocks or not blocks[-1]:
            continue
        before = tokens[position - 1]
        begins = before.text in (";", "{", "}", "else") or (
            before.text == ")" and tokens[partner[position - 1] - 1].text in CONTROL)
        if before.text == ";" and in_brackets(tokens, position, partner):
            begins = False
        if not begins or token.kind != "word" and token.text not in ("++", "--", "*"):
            continue
        end = position
        while end < len(tokens) and tokens[end].text != ";":
            end = partner.get(end, end) + 1
            if end <= position:
                break
        if end <= position or end >= len(tokens):
            continue
        statement = text[token.start:tokens[end].start + 1]
        leaves = token.text in ("return", "throw")
        if leaves and not is_controlled(tokens, position, partner):
            continue
        if not leaves and (token.text in NO_STATEMENT or DECLARATION.match(statement)):
            continue
        yield Mutation(token.start, tokens[end].end, ";", "dropped")


def in_brackets(tokens, position, partner):
    """Whether it stands in the head of a for or an if."""
    while position >= 0 and tokens[position].text not in ("{", "}"):
        if tokens[position].text == "(" and partner.get(position, 0) > position:
            return True
        if tokens[position].text == ")" and position in partner:
            position = partner[position]
        position -= 1
    return False


def mutations_of(text):
    """All mutations of a source text, in the order of their places."""
    tokens = tokens_of(text)
    partner = matching_brackets(tokens)
    found = [*mutations_of_tokens(text, tokens), *negated_conditions(text, tokens, partner),
             *dropped_statements(text, tokens, partner)]
    return sorted(set(found))
